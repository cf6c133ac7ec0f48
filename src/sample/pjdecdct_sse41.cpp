// Float inverse transform of the 12-bit path, SSE4.1: 4 lanes of the same
// passes, rows by transposition with the row scales transposed alike; the
// order of operations per element is the scalar one.
#include <smmintrin.h>

#include "sample/dctf4.h"

namespace zvp::dct {

namespace {
// The row scales by position within the pass: lo[i] holds scale i of rows
// 0..3, hi[i] of rows 4..7.
struct ScalesT {
  float lo[8][4], hi[8][4];
  ScalesT() {
    for (int i = 0; i < 8; ++i)
      for (int r = 0; r < 4; ++r) {
        lo[i][r] = _t_norm_inv[8 * r + i];
        hi[i][r] = _t_norm_inv[8 * (r + 4) + i];
      }
  }
};
const ScalesT& scales() {
  static const ScalesT s;
  return s;
}
}  // namespace

void inv32SSE41(const Zvp32f* pSrc, Zvp32f* pDst) {
  F4 lo[8], hi[8];
  for (int r = 0; r < 8; ++r) {
    lo[r] = F4(_mm_loadu_ps(pSrc + 8 * r));
    hi[r] = F4(_mm_loadu_ps(pSrc + 8 * r + 4));
  }
  const ScalesT& s = scales();
  F4 nlo[8], nhi[8];
  for (int i = 0; i < 8; ++i) {
    nlo[i] = F4(_mm_loadu_ps(s.lo[i]));
    nhi[i] = F4(_mm_loadu_ps(s.hi[i]));
  }
  transpose8(lo, hi);
  invPassT(lo, nlo);
  invPassT(hi, nhi);
  transpose8(lo, hi);
  invPassT<F4>(lo, nullptr);
  invPassT<F4>(hi, nullptr);
  for (int r = 0; r < 8; ++r) {
    _mm_storeu_ps(pDst + 8 * r, lo[r].v);
    _mm_storeu_ps(pDst + 8 * r + 4, hi[r].v);
  }
}

}  // namespace zvp::dct

namespace zvp::dct {

void qntInvLsSSE41(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep, const Zvp32f* pQuantInvTable) {
  alignas(16) float b[64];
  for (int i = 0; i < 64; i += 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
    _mm_store_ps(b + i, _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(v)), _mm_loadu_ps(pQuantInvTable + i)));
    _mm_store_ps(b + i + 4, _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(_mm_srli_si128(v, 8))),
                                       _mm_loadu_ps(pQuantInvTable + i + 4)));
  }
  inv32SSE41(b, b);
  const __m128 shift = _mm_set1_ps(2048.0f);
  const __m128i top = _mm_set1_epi16(4095), zero = _mm_setzero_si128();
  for (int y = 0; y < 8; ++y) {
    // Truncate toward zero; out of range and NaN give the lowest value; saturate; limit to 0..4095.
    const __m128i lo = _mm_cvttps_epi32(_mm_add_ps(_mm_load_ps(b + 8 * y), shift));
    const __m128i hi = _mm_cvttps_epi32(_mm_add_ps(_mm_load_ps(b + 8 * y + 4), shift));
    const __m128i v = _mm_min_epi16(_mm_max_epi16(_mm_packs_epi32(lo, hi), zero), top);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(reinterpret_cast<Zvp8u*>(pDst) + static_cast<std::ptrdiff_t>(y) * dstStep), v);
  }
}

}  // namespace zvp::dct
