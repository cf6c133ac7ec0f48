// Widening of bytes into 16-bit values, with the cache decision of the
// region made once per call.
#include <cstdint>
#include <cstring>
#if !defined(ZVP_NO_X86)
#include <emmintrin.h>
#endif

#include "core/checks.h"
#include "core/primitives.h"

void owniConvert_8u16u_W7(const Zvp8u* pSrc, Zvp16u* pDst, int len, bool nonTemporal) {
  int i = 0;
  // Align the destination to 16 bytes one element at a time (an odd address
  // never gets there and runs element by element).
  while (i < len && (reinterpret_cast<uintptr_t>(pDst + i) & 15) != 0) {
    const Zvp16u v = pSrc[i];
    std::memcpy(pDst + i, &v, 2);
    ++i;
  }
#if !defined(ZVP_NO_X86)
  if ((reinterpret_cast<uintptr_t>(pDst + i) & 15) == 0) {
    const __m128i zero = _mm_setzero_si128();
    for (; i + 32 <= len; i += 32) {
      const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
      const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i + 16));
      __m128i* d = reinterpret_cast<__m128i*>(pDst + i);
      if (nonTemporal) {
        _mm_stream_si128(d, _mm_unpacklo_epi8(a, zero));
        _mm_stream_si128(d + 1, _mm_unpackhi_epi8(a, zero));
        _mm_stream_si128(d + 2, _mm_unpacklo_epi8(b, zero));
        _mm_stream_si128(d + 3, _mm_unpackhi_epi8(b, zero));
      } else {
        _mm_store_si128(d, _mm_unpacklo_epi8(a, zero));
        _mm_store_si128(d + 1, _mm_unpackhi_epi8(a, zero));
        _mm_store_si128(d + 2, _mm_unpacklo_epi8(b, zero));
        _mm_store_si128(d + 3, _mm_unpackhi_epi8(b, zero));
      }
    }
    for (; i + 16 <= len; i += 16) {
      const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
      __m128i* d = reinterpret_cast<__m128i*>(pDst + i);
      _mm_store_si128(d, _mm_unpacklo_epi8(a, zero));
      _mm_store_si128(d + 1, _mm_unpackhi_epi8(a, zero));
    }
    if (nonTemporal) _mm_sfence();
  }
#endif
  for (; i < len; ++i) {
    const Zvp16u v = pSrc[i];
    std::memcpy(pDst + i, &v, 2);
  }
}

ZvpStatus zvpiConvert_8u16u_C1R(const Zvp8u* pSrc, int srcStep, Zvp16u* pDst, int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkSize(roiSize),
                                        zvp::checkStep(srcStep), zvp::checkStep(dstStep)}))
    return st;
  int width = roiSize.width, height = roiSize.height;
  // A contiguous region is one row.
  if (dstStep == 2 * srcStep && srcStep == width) {
    const int64_t all = static_cast<int64_t>(width) * height;
    if (all <= INT32_MAX) {
      width = static_cast<int>(all);
      height = 1;
    }
  }
  bool nonTemporal = false;
  const int64_t bytes = 3 * static_cast<int64_t>(roiSize.width) * roiSize.height;
  if (bytes > 1048576) {
    int cache = 0;
    if (zvpGetMaxCacheSizeB(&cache) == zvpStatusOk) nonTemporal = bytes >= cache;
  }
  for (int y = 0; y < height; ++y)
    owniConvert_8u16u_W7(pSrc + static_cast<std::ptrdiff_t>(y) * srcStep,
                         reinterpret_cast<Zvp16u*>(reinterpret_cast<Zvp8u*>(pDst) + static_cast<std::ptrdiff_t>(y) * dstStep),
                         width, nonTemporal);
  return zvpStatusOk;
}
