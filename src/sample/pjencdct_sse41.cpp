// Float forward transform of the 12-bit path, SSE4.1: 4 lanes of the same
// passes, rows by transposition; the order of operations per element is the
// scalar one.
#include <smmintrin.h>

#include "sample/dctf4.h"

namespace zvp::dct {

void fwd32SSE41(const Zvp32f* pSrc, Zvp32f* pDst) {
  F4 lo[8], hi[8];  // row r: columns 0..3 and 4..7
  for (int r = 0; r < 8; ++r) {
    lo[r] = F4(_mm_loadu_ps(pSrc + 8 * r));
    hi[r] = F4(_mm_loadu_ps(pSrc + 8 * r + 4));
  }
  // Row pass: after transposition, vector i holds element i of 4 rows.
  transpose8(lo, hi);
  fwdPassT(lo);  // rows 0..3
  fwdPassT(hi);  // rows 4..7
  transpose8(lo, hi);
  // Column pass on rows as vectors.
  fwdPassT(lo);
  fwdPassT(hi);
  const float* n = _t_norm_frw;
  for (int r = 0; r < 8; ++r) {
    _mm_storeu_ps(pDst + 8 * r, _mm_mul_ps(lo[r].v, _mm_loadu_ps(n + 8 * r)));
    _mm_storeu_ps(pDst + 8 * r + 4, _mm_mul_ps(hi[r].v, _mm_loadu_ps(n + 8 * r + 4)));
  }
}

}  // namespace zvp::dct

namespace zvp::dct {

void qntFwdLsSSE41(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst, const Zvp32f* pQuantFwdTable) {
  alignas(16) float b[64];
  const __m128 shift = _mm_set1_ps(2048.0f);
  for (int y = 0; y < 8; ++y) {
    // Samples read as signed 16-bit values.
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(reinterpret_cast<const Zvp8u*>(pSrc) +
                                                                        static_cast<std::ptrdiff_t>(y) * srcStep));
    _mm_store_ps(b + 8 * y, _mm_sub_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(v)), shift));
    _mm_store_ps(b + 8 * y + 4, _mm_sub_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(_mm_srli_si128(v, 8))), shift));
  }
  fwd32SSE41(b, b);
  for (int i = 0; i < 64; i += 8) {
    // Round to nearest even; out of range and NaN give the lowest value; then saturate.
    const __m128i lo = _mm_cvtps_epi32(_mm_mul_ps(_mm_load_ps(b + i), _mm_loadu_ps(pQuantFwdTable + i)));
    const __m128i hi = _mm_cvtps_epi32(_mm_mul_ps(_mm_load_ps(b + i + 4), _mm_loadu_ps(pQuantFwdTable + i + 4)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + i), _mm_packs_epi32(lo, hi));
  }
}

}  // namespace zvp::dct
