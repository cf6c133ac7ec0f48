// Level shift, decoding side, SSE4.1 kernels: saturating add of 128, then
// unsigned saturating pack, which is min(max(x + 128, 0), 255) without wrap.
#include <smmintrin.h>

#include <cstring>

#include "core/pjls.h"
#include "core/rowwalk.h"

namespace zvp::ls {

namespace {
inline __m128i add16(__m128i a, __m128i b) {
  const __m128i k = _mm_set1_epi16(128);
  return _mm_packus_epi16(_mm_adds_epi16(a, k), _mm_adds_epi16(b, k));
}
}  // namespace

void add128RowSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int len) {
  walk16(
      pSrc, len, [&](int i) { pDst[i] = add128(load16s(pSrc + i)); },
      [&]<int N>(int i) {
        const __m128i* s = reinterpret_cast<const __m128i*>(pSrc + i);
        if constexpr (N >= 16) {
          for (int k = 0; k < N / 8; k += 2)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + i + 8 * k), add16(_mm_load_si128(s + k), _mm_load_si128(s + k + 1)));
        } else if constexpr (N == 8) {
          const __m128i v = add16(_mm_load_si128(s), _mm_setzero_si128());
          _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + i), v);
        } else {
          const __m128i v = add16(_mm_loadl_epi64(s), _mm_setzero_si128());
          const int32_t w = _mm_cvtsi128_si32(v);
          std::memcpy(pDst + i, &w, 4);
        }
      });
}

void add128BlockSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep) {
  for (int y = 0; y < 8; y += 2) {
    const __m128i v = add16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 8 * y)),
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 8 * y + 8)));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + static_cast<std::ptrdiff_t>(y) * dstStep), v);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + static_cast<std::ptrdiff_t>(y + 1) * dstStep),
                     _mm_unpackhi_epi64(v, v));
  }
}

}  // namespace zvp::ls
