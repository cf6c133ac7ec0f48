// AVX2 helpers of the colour kernels: 16 pixels in 16-bit lanes, the same
// linear forms as the SSE4.1 helpers (in-lane unpack and pack, so the pixel
// order is kept). Only for files compiled with -mavx2.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "sample/colour.h"

namespace zvp::cc::avx2 {
namespace {  // internal linkage, as in colour_sse41.h

inline __m256i load16(const Zvp8u* p) {
  return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
// 16 lanes saturated to bytes, in pixel order.
inline __m128i bytes(__m256i v) {
  return _mm256_castsi256_si128(_mm256_permute4x64_epi64(_mm256_packus_epi16(v, v), 0x08));
}
inline void store16(Zvp8u* p, __m256i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes(v)); }

template <int Shift>
inline __m256i lin3(__m256i a, __m256i b, __m256i c, int ca, int cb, int cc, int add) {
  const __m256i cab = _mm256_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(cb) << 16) | (ca & 0xFFFF)));
  const __m256i cc0 = _mm256_set1_epi32(cc & 0xFFFF);
  const __m256i k = _mm256_set1_epi32(add);
  const __m256i z = _mm256_setzero_si256();
  __m256i lo = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), cab),
                                _mm256_madd_epi16(_mm256_unpacklo_epi16(c, z), cc0));
  __m256i hi = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), cab),
                                _mm256_madd_epi16(_mm256_unpackhi_epi16(c, z), cc0));
  lo = _mm256_srai_epi32(_mm256_add_epi32(lo, k), Shift);
  hi = _mm256_srai_epi32(_mm256_add_epi32(hi, k), Shift);
  return _mm256_packs_epi32(lo, hi);
}

struct Rgb16 {
  __m256i r, g, b;
};
inline Rgb16 setA(const Zvp8u* py, const Zvp8u* pcb, const Zvp8u* pcr) {
  const __m256i y = load16(py), cb = load16(pcb), cr = load16(pcr), z = _mm256_setzero_si256();
  return {_mm256_add_epi16(y, lin3<14>(cr, z, z, 22970, 0, 0, -2932015)),
          _mm256_sub_epi16(y, lin3<14>(cb, cr, z, 5638, 11700, 0, -2211182)),
          _mm256_add_epi16(y, lin3<14>(cb, z, z, 29032, 0, 0, -3708561))};
}
inline Rgb16 setB(const Zvp8u* py, const Zvp8u* pcb, const Zvp8u* pcr) {
  const __m256i y = load16(py), cb = load16(pcb), cr = load16(pcr), z = _mm256_setzero_si256();
  return {_mm256_add_epi16(y, lin3<14>(cr, z, z, 22970, 0, 0, -2932015)),
          _mm256_add_epi16(y, lin3<14>(cb, cr, z, -5638, -11700, 0, 2227566)),
          _mm256_add_epi16(y, lin3<14>(cb, z, z, 29032, 0, 0, -3707961))};
}

struct Ycc16 {
  __m256i y, cb, cr;
};
// Difference set (38470 G as 19235 G twice, as in the SSE4.1 form).
inline Ycc16 diffSet(__m256i r, __m256i g, __m256i b) {
  const __m256i crg = _mm256_set1_epi32(static_cast<int32_t>((19235u << 16) | 19595u));
  const __m256i cgb = _mm256_set1_epi32(static_cast<int32_t>((7471u << 16) | 19235u));
  const __m256i k = _mm256_set1_epi32(32768);
  const __m256i lo = _mm256_srai_epi32(
      _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(r, g), crg),
                                        _mm256_madd_epi16(_mm256_unpacklo_epi16(g, b), cgb)),
                       k),
      16);
  const __m256i hi = _mm256_srai_epi32(
      _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(r, g), crg),
                                        _mm256_madd_epi16(_mm256_unpackhi_epi16(g, b), cgb)),
                       k),
      16);
  const __m256i y0 = _mm256_packs_epi32(lo, hi), z = _mm256_setzero_si256();
  return {y0, lin3<15>(_mm256_sub_epi16(b, y0), z, z, 18491, 0, 0, 4210688),
          lin3<15>(_mm256_sub_epi16(r, y0), z, z, 23373, 0, 0, 4210688)};
}

}  // namespace
}  // namespace zvp::cc::avx2
