// SSE4.1 kernel of the BC7 decoder: the interpolation of a block's 64
// channel values in 16-bit lanes. Gives the bytes of bc7InterpolateScalar.
#if !defined(ZVP_NO_X86)
#include <smmintrin.h>

#include "texture/texture.h"

namespace zvp::tex {

void bc7InterpolateSSE41(const Zvp8u* e0, const Zvp8u* e1, const Zvp8u* w, Zvp8u* out) {
  const __m128i k64 = _mm_set1_epi16(64), k32 = _mm_set1_epi16(32);
  for (int i = 0; i < 64; i += 16) {
    __m128i res[2];
    for (int h = 0; h < 2; ++h) {
      const __m128i a = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(e0 + i + 8 * h)));
      const __m128i b = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(e1 + i + 8 * h)));
      const __m128i wv = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(w + i + 8 * h)));
      const __m128i sum = _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(a, _mm_sub_epi16(k64, wv)), _mm_mullo_epi16(b, wv)), k32);
      res[h] = _mm_srli_epi16(sum, 6);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(res[0], res[1]));
  }
}

}  // namespace zvp::tex
#endif
