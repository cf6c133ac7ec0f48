// PackBits token scanners, 16 bytes at a time (SSE4.1).
#include <immintrin.h>

#include "sample/pjrle.h"

namespace zvp::rle {

int runLengthSSE41(const Zvp8u* s, int rem) {
  const int limit = rem < 128 ? rem : 128;
  const __m128i first = _mm_set1_epi8(static_cast<char>(s[0]));
  int n = 1;
  for (; n + 16 <= limit; n += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + n));
    const unsigned same = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, first)));
    if (same != 0xFFFFu) return n + __builtin_ctz(~same);
  }
  while (n < limit && s[n] == s[0]) ++n;
  return n;
}

int literalLengthSSE41(const Zvp8u* s, int rem) {
  const int limit = rem < 128 ? rem : 128;
  int j = 1;
  // Lanes k of a pass stand for position j + k; s[j + k + 2] is read, so a
  // pass needs 18 bytes from j on. A pair ending the data lies beyond them.
  for (; j < limit && j + 18 <= rem; j += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + j));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + j + 1));
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + j + 2));
    unsigned triple = static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, b), _mm_cmpeq_epi8(b, c))));
    if (limit - j < 16) triple &= (1u << (limit - j)) - 1u;
    if (triple) return j + __builtin_ctz(triple);
  }
  for (; j < limit; ++j) {
    if (j + 1 < rem && s[j] == s[j + 1]) {
      if (j + 2 == rem) break;
      if (s[j + 1] == s[j + 2]) break;
    }
  }
  return j < limit ? j : limit;
}

}  // namespace zvp::rle
