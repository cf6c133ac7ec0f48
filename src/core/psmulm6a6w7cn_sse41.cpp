// Scaled multiplication, SSE4.1: 8 elements at a time from 15 elements on,
// the rounding computed in 32-bit lanes exactly as the scalar form.
#include <smmintrin.h>

#include "core/pjls.h"
#include "core/primitives.h"

namespace zvp::prim {

namespace {
inline __m128i round4(__m128i p, __m128i sh, __m128i half, __m128i one) {
  const __m128i h = _mm_srai_epi32(p, 1);
  __m128i t = _mm_and_si128(_mm_sra_epi32(h, sh), one);
  t = _mm_add_epi32(t, _mm_and_si128(p, one));
  t = _mm_srai_epi32(_mm_add_epi32(t, half), 1);
  return _mm_sra_epi32(_mm_add_epi32(h, t), sh);
}
}  // namespace

void mulSfsSSE41(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int s) {
  int i = 0;
  if (len >= 15) {
    const __m128i sh = _mm_cvtsi32_si128(s - 1);
    const __m128i half = _mm_set1_epi32((1 << (s - 1)) - 1);
    const __m128i one = _mm_set1_epi32(1);
    for (; i + 8 <= len; i += 8) {
      const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc1 + i));
      const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc2 + i));
      // The exact 32-bit products from 16-bit halves: the signed high half,
      // corrected by b where a (unsigned) has its top bit set.
      const __m128i low = _mm_mullo_epi16(a, b);
      const __m128i high = _mm_add_epi16(_mm_mulhi_epi16(a, b), _mm_and_si128(_mm_srai_epi16(a, 15), b));
      const __m128i plo = _mm_unpacklo_epi16(low, high);
      const __m128i phi = _mm_unpackhi_epi16(low, high);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + i),
                       _mm_packs_epi32(round4(plo, sh, half, one), round4(phi, sh, half, one)));
    }
  }
  for (; i < len; ++i) {
    Zvp16u a;
    __builtin_memcpy(&a, pSrc1 + i, 2);
    zvp::ls::store16s(pDst + i, mulPosSfs(a, zvp::ls::load16s(pSrc2 + i), s));
  }
}

}  // namespace zvp::prim
