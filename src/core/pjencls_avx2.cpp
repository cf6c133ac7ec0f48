// Level shift, encoding side, AVX2 kernels.
#include <immintrin.h>

#include <cstring>

#include "core/pjls.h"
#include "core/rowwalk.h"

namespace zvp::ls {

void sub128RowAVX2(const Zvp8u* pSrc, Zvp16s* pDst, int len) {
  const __m256i k256 = _mm256_set1_epi16(128);
  const __m128i k128 = _mm_set1_epi16(128);
  walk16(
      pDst, len, [&](int i) { store16s(pDst + i, sub128(pSrc[i])); },
      [&]<int N>(int i) {
        if constexpr (N >= 16) {
          for (int k = 0; k < N; k += 16) {
            const __m256i v = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i + k)));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(pDst + i + k), _mm256_sub_epi16(v, k256));
          }
        } else if constexpr (N == 8) {
          const __m128i v = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pSrc + i)));
          _mm_store_si128(reinterpret_cast<__m128i*>(pDst + i), _mm_sub_epi16(v, k128));
        } else {
          int32_t w;
          std::memcpy(&w, pSrc + i, 4);
          const __m128i v = _mm_cvtepu8_epi16(_mm_cvtsi32_si128(w));
          _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + i), _mm_sub_epi16(v, k128));
        }
      });
}

}  // namespace zvp::ls
