// Chroma sampling up, SSE4.1: 16 outputs (8 source samples) per step in
// 16-bit lanes; the last outputs through the scalar formula.
#include <smmintrin.h>

#include "sample/sampling.h"

namespace zvp::ss {

namespace {
inline __m128i ld8(const Zvp8u* p) { return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))); }
}  // namespace

// Outputs k .. k + 15 come from s[k/2 - 1] .. s[k/2 + 8]: exactly what the
// formulas read, nothing more.
void upH2V1SSE41(const Zvp8u* s, Zvp8u* d, int n) {
  int k = 0;
  for (; k + 16 <= n; k += 16) {
    const int i = k >> 1;
    const __m128i l = ld8(s + i - 1), c = ld8(s + i), r = ld8(s + i + 1);
    const __m128i c3 = _mm_add_epi16(_mm_add_epi16(c, c), c);
    const __m128i ev = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, l), _mm_set1_epi16(1)), 2);
    const __m128i od = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, r), _mm_set1_epi16(2)), 2);
    const __m128i e8 = _mm_packus_epi16(ev, ev), o8 = _mm_packus_epi16(od, od);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k), _mm_unpacklo_epi8(e8, o8));
  }
  for (; k < n; ++k) d[k] = upH2V1(s, k);
}

void upH2V2SSE41(const Zvp8u* nr, const Zvp8u* f, Zvp8u* d, int n) {
  int k = 0;
  auto v = [&](int i) {
    const __m128i a = ld8(nr + i);
    return _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(a, a), a), ld8(f + i));
  };
  for (; k + 16 <= n; k += 16) {
    const int i = k >> 1;
    const __m128i l = v(i - 1), c = v(i), r = v(i + 1);
    const __m128i c3 = _mm_add_epi16(_mm_add_epi16(c, c), c);
    const __m128i ev = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, l), _mm_set1_epi16(8)), 4);
    const __m128i od = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c3, r), _mm_set1_epi16(7)), 4);
    const __m128i e8 = _mm_packus_epi16(ev, ev), o8 = _mm_packus_epi16(od, od);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k), _mm_unpacklo_epi8(e8, o8));
  }
  for (; k < n; ++k) d[k] = upH2V2(nr, f, k);
}

}  // namespace zvp::ss
