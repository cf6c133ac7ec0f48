// Byte-plane join and split, 16 samples at a time (SSE4.1).
#include <immintrin.h>

#include "sample/pjrle.h"

namespace zvp::rle {

void joinSSE41(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len) {
  int i = 0;
  for (; i + 16 <= len; i += 16) {
    const __m128i l = _mm_loadu_si128(reinterpret_cast<const __m128i*>(lo + i));
    const __m128i h = _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * i), _mm_unpacklo_epi8(l, h));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * i + 16), _mm_unpackhi_epi8(l, h));
  }
  joinScalar(lo + i, hi + i, dst + 2 * i, len - i);
}

void splitSSE41(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len) {
  const __m128i even = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
  int i = 0;
  for (; i + 16 <= len; i += 16) {
    const __m128i a = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * i)), even);
    const __m128i b = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * i + 16)), even);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lo + i), _mm_unpacklo_epi64(a, b));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(hi + i), _mm_unpackhi_epi64(a, b));
  }
  splitScalar(src + 2 * i, lo + i, hi + i, len - i);
}

}  // namespace zvp::rle
