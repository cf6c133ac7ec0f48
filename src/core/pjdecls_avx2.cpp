// Level shift, decoding side, AVX2 kernels.
#include <immintrin.h>

#include <cstring>

#include "core/pjls.h"
#include "core/rowwalk.h"

namespace zvp::ls {

void add128RowAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int len) {
  const __m256i k256 = _mm256_set1_epi16(128);
  const __m128i k128 = _mm_set1_epi16(128);
  walk16(
      pSrc, len, [&](int i) { pDst[i] = add128(load16s(pSrc + i)); },
      [&]<int N>(int i) {
        if constexpr (N == 32) {
          const __m256i a = _mm256_adds_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc + i)), k256);
          const __m256i b = _mm256_adds_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSrc + i + 16)), k256);
          // packus works per 128-bit lane: restore the element order.
          const __m256i p = _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
          _mm256_storeu_si256(reinterpret_cast<__m256i*>(pDst + i), p);
        } else if constexpr (N == 16) {
          const __m128i a = _mm_adds_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(pSrc + i)), k128);
          const __m128i b = _mm_adds_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(pSrc + i + 8)), k128);
          _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + i), _mm_packus_epi16(a, b));
        } else if constexpr (N == 8) {
          const __m128i a = _mm_adds_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(pSrc + i)), k128);
          _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + i), _mm_packus_epi16(a, a));
        } else {
          const __m128i a = _mm_adds_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pSrc + i)), k128);
          const int32_t w = _mm_cvtsi128_si32(_mm_packus_epi16(a, a));
          std::memcpy(pDst + i, &w, 4);
        }
      });
}

}  // namespace zvp::ls
