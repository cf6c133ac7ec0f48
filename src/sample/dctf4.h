// Four float lanes with the operators of the float passes, and the 8x8
// transposition of a block held as 8 rows of two halves. Only for the
// SSE4.1 kernels.
#pragma once

#include <xmmintrin.h>

#include "sample/dctfloat.h"

namespace zvp::dct {

struct F4 {
  __m128 v;
  F4() = default;
  explicit F4(__m128 x) : v(x) {}
  explicit F4(float f) : v(_mm_set1_ps(f)) {}
};
inline F4 operator+(F4 a, F4 b) { return F4(_mm_add_ps(a.v, b.v)); }
inline F4 operator-(F4 a, F4 b) { return F4(_mm_sub_ps(a.v, b.v)); }
inline F4 operator*(F4 a, F4 b) { return F4(_mm_mul_ps(a.v, b.v)); }

// lo[r], hi[r]: columns 0..3 and 4..7 of row r. Afterwards lo[c] holds column
// c of rows 0..3 and hi[c] column c of rows 4..7 (and the other way back).
inline void transpose8(F4 lo[8], F4 hi[8]) {
  __m128 a0 = lo[0].v, a1 = lo[1].v, a2 = lo[2].v, a3 = lo[3].v;  // rows 0..3, cols 0..3
  __m128 b0 = hi[0].v, b1 = hi[1].v, b2 = hi[2].v, b3 = hi[3].v;  // rows 0..3, cols 4..7
  __m128 c0 = lo[4].v, c1 = lo[5].v, c2 = lo[6].v, c3 = lo[7].v;  // rows 4..7, cols 0..3
  __m128 d0 = hi[4].v, d1 = hi[5].v, d2 = hi[6].v, d3 = hi[7].v;  // rows 4..7, cols 4..7
  _MM_TRANSPOSE4_PS(a0, a1, a2, a3);
  _MM_TRANSPOSE4_PS(b0, b1, b2, b3);
  _MM_TRANSPOSE4_PS(c0, c1, c2, c3);
  _MM_TRANSPOSE4_PS(d0, d1, d2, d3);
  // Column c (0..3) of rows 0..3 is a_c, of rows 4..7 is c_c; column 4+c: b_c, d_c.
  lo[0] = F4(a0), lo[1] = F4(a1), lo[2] = F4(a2), lo[3] = F4(a3);
  lo[4] = F4(b0), lo[5] = F4(b1), lo[6] = F4(b2), lo[7] = F4(b3);
  hi[0] = F4(c0), hi[1] = F4(c1), hi[2] = F4(c2), hi[3] = F4(c3);
  hi[4] = F4(d0), hi[5] = F4(d1), hi[6] = F4(d2), hi[7] = F4(d3);
}

}  // namespace zvp::dct
