// Level shift, encoding side, SSE4.1 kernels.
#include <smmintrin.h>

#include <cstring>

#include "core/pjls.h"
#include "core/rowwalk.h"

namespace zvp::ls {

namespace {
inline __m128i sub8(const Zvp8u* s) {
  return _mm_sub_epi16(_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s))), _mm_set1_epi16(128));
}
}  // namespace

void sub128RowSSE41(const Zvp8u* pSrc, Zvp16s* pDst, int len) {
  walk16(
      pDst, len, [&](int i) { store16s(pDst + i, sub128(pSrc[i])); },
      [&]<int N>(int i) {
        if constexpr (N == 4) {
          int32_t w;
          std::memcpy(&w, pSrc + i, 4);
          const __m128i v = _mm_sub_epi16(_mm_cvtepu8_epi16(_mm_cvtsi32_si128(w)), _mm_set1_epi16(128));
          _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + i), v);
        } else {
          for (int k = 0; k < N; k += 8) _mm_store_si128(reinterpret_cast<__m128i*>(pDst + i + k), sub8(pSrc + i + k));
        }
      });
}

void sub128BlockSSE41(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst) {
  for (int y = 0; y < 8; ++y)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + 8 * y), sub8(pSrc + static_cast<std::ptrdiff_t>(y) * srcStep));
}

}  // namespace zvp::ls
