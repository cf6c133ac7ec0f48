// Reverse division, SSE4.1 kernel: groups of 8 by a refined reciprocal estimate.
#include <smmintrin.h>

#include <cstdint>
#include <cstring>

#include "core/primitives.h"

namespace zvp::prim {

namespace {
inline __m128 quot4(__m128 x, __m128 v) {
  const __m128 r = _mm_rcp_ps(x);
  const __m128 q = _mm_mul_ps(v, r);
  const __m128 e = _mm_sub_ps(_mm_set1_ps(1.0f), _mm_mul_ps(x, r));
  const __m128 a = _mm_add_ps(q, _mm_mul_ps(e, q));
  return _mm_add_ps(a, _mm_mul_ps(_mm_mul_ps(e, e), a));
}
}  // namespace

int divRevSSE41(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len) {
  int zero = 0;
  const uintptr_t addr = reinterpret_cast<uintptr_t>(pDst);
  int lead = (addr & 1) ? len : static_cast<int>(((16 - (addr & 15)) & 15) / 2);
  if (lead > len) lead = len;
  int i = 0;
  // One element at a time: the unaligned head and the tail.
  auto lone = [&](int j) {
    Zvp16u x;
    std::memcpy(&x, pSrc + j, 2);
    zero |= x == 0;
    const Zvp16u r = divLone(value, x);
    std::memcpy(pDst + j, &r, 2);
  };
  for (; i < lead; ++i) lone(i);
  const __m128 v = _mm_set1_ps(static_cast<float>(value));
  const __m128i zeroV = _mm_setzero_si128();
  const __m128i ones = _mm_set1_epi16(1);
  const __m128i valV = _mm_set1_epi16(static_cast<int16_t>(value));
  const bool big = value > 0x7FFF;
  __m128i anyZero = _mm_setzero_si128();
  for (; i + 8 <= len; i += 8) {
    const __m128i xs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
    const __m128 lo = _mm_cvtepi32_ps(_mm_cvtepu16_epi32(xs));
    const __m128 hi = _mm_cvtepi32_ps(_mm_cvtepu16_epi32(_mm_srli_si128(xs, 8)));
    __m128i res = _mm_packs_epi32(_mm_cvtps_epi32(quot4(lo, v)), _mm_cvtps_epi32(quot4(hi, v)));
    if (big) res = _mm_blendv_epi8(res, valV, _mm_cmpeq_epi16(xs, ones));
    const __m128i isZero = _mm_cmpeq_epi16(xs, zeroV);
    res = _mm_or_si128(res, isZero);  // zero divisors give 0xFFFF
    anyZero = _mm_or_si128(anyZero, isZero);
    _mm_store_si128(reinterpret_cast<__m128i*>(pDst + i), res);
  }
  zero |= !_mm_testz_si128(anyZero, anyZero);
  for (; i < len; ++i) lone(i);
  return zero;
}

}  // namespace zvp::prim
