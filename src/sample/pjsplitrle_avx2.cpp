// Byte-plane join and split, 32 samples at a time (AVX2).
#include <immintrin.h>

#include "sample/pjrle.h"

namespace zvp::rle {

void joinAVX2(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len) {
  int i = 0;
  for (; i + 32 <= len; i += 32) {
    const __m256i l = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(lo + i));
    const __m256i h = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(hi + i));
    const __m256i a = _mm256_unpacklo_epi8(l, h);  // samples 0-7 | 16-23
    const __m256i b = _mm256_unpackhi_epi8(l, h);  // samples 8-15 | 24-31
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * i), _mm256_permute2x128_si256(a, b, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * i + 32), _mm256_permute2x128_si256(a, b, 0x31));
  }
  joinSSE41(lo + i, hi + i, dst + 2 * i, len - i);
}

void splitAVX2(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len) {
  const __m256i even = _mm256_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15,
                                        0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
  int i = 0;
  for (; i + 32 <= len; i += 32) {
    // Per 128-bit lane: 8 low bytes then 8 high bytes.
    const __m256i a = _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * i)), even);
    const __m256i b = _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * i + 32)), even);
    // 64-bit quarters: a = L0 H0 L1 H1, b = L2 H2 L3 H3.
    const __m256i pa = _mm256_permute4x64_epi64(a, 0xD8);  // L0 L1 H0 H1
    const __m256i pb = _mm256_permute4x64_epi64(b, 0xD8);  // L2 L3 H2 H3
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(lo + i), _mm256_permute2x128_si256(pa, pb, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(hi + i), _mm256_permute2x128_si256(pa, pb, 0x31));
  }
  splitSSE41(src + 2 * i, lo + i, hi + i, len - i);
}

}  // namespace zvp::rle
