// The float passes of the 12-bit pair, written once for any lane type T that
// has +, - and * (a float, or four or eight floats of a vector): the order of
// operations per element is the same on every path. The build forbids
// contraction into fused multiply-add.
#pragma once

#include "sample/dct.h"

namespace zvp::dct {

template <class T>
inline void fwdPassT(T x[8]) {
  const T k0 = T(CONST_TABLE[0]), k1 = T(CONST_TABLE[1]), k3 = T(CONST_TABLE[3]), k5 = T(CONST_TABLE[5]);
  const T s1 = x[6] + x[1], d1 = x[1] - x[6], s2 = x[5] + x[2], d2 = x[2] - x[5];
  const T s0 = x[7] + x[0], d0 = x[0] - x[7], s3 = x[3] + x[4], d3 = x[3] - x[4];
  const T a = s1 - s2, t1 = s2 + s1, b = s0 - s3;
  const T c = (a + b) * k0;
  const T t0 = s3 + s0;
  x[0] = t1 + t0;
  x[4] = t0 - t1;
  x[6] = b - c;
  x[2] = c + b;
  const T p = d3 + d2, q = d2 + d1, r = d1 + d0;
  const T A0 = q * k3, A1 = d0 * k5;
  const T w = k1 * p + r;
  const T v = p - r * k1;
  const T A = A0 + A1, B = A1 - A0;
  x[1] = w + A;
  x[7] = A - w;
  x[5] = v + B;
  x[3] = B - v;
}

// n: the 8 scales of the pass (per lane), or null for none.
template <class T>
inline void invPassT(T x[8], const T* n) {
  const T k1 = T(CONST_TABLE[1]), k2 = T(CONST_TABLE[2]), k3 = T(CONST_TABLE[3]), k4 = T(CONST_TABLE[4]);
  T a1 = x[1], a3 = x[3], a5 = x[5], a7 = x[7], a2 = x[2], a6 = x[6];
  T E0 = x[0] + x[4], E1 = x[0] - x[4];
  if (n) {
    a1 = x[1] * n[1];
    a3 = x[3] * n[3];
    a5 = x[5] * n[5];
    a7 = x[7] * n[7];
    a2 = x[2] * n[2];
    a6 = x[6] * n[6];
    E0 = E0 * n[0];
    E1 = E1 * n[0];
  }
  const T D35 = a3 - a5, S35 = a5 + a3, S17 = a7 + a1, D17 = a1 - a7;
  const T S = S35 + S17, Dd = S17 - S35;
  const T Q = k1 * D35 + D17;
  const T R = k1 * D17 - D35;
  const T Sp = S * k4, Dp = Dd * k3;
  const T Q2 = Q - Sp;
  const T M = Dp - Q2;
  const T S26 = a6 + a2;
  const T D26 = (a2 - a6) * k2;
  const T P0 = S26 + E0, P3 = E0 - S26, Tt = D26 - S26;
  x[0] = Sp + P0;
  x[7] = P0 - Sp;
  const T R2 = R - M;
  x[3] = R2 + P3;
  x[4] = P3 - R2;
  const T G = Tt + E1, H = E1 - Tt;
  x[1] = Q2 + G;
  x[6] = G - Q2;
  x[2] = M + H;
  x[5] = H - M;
}

using Float64Fn = void (*)(const Zvp32f* pSrc, Zvp32f* pDst);
void fwd32Scalar(const Zvp32f* pSrc, Zvp32f* pDst);
void inv32Scalar(const Zvp32f* pSrc, Zvp32f* pDst);
// The fused 12-bit members: level shift, transform, table, conversion.
void qntFwdLsScalar(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst, const Zvp32f* pQuantFwdTable);
void qntInvLsScalar(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep, const Zvp32f* pQuantInvTable);
#if !defined(ZVP_NO_X86)
void qntFwdLsSSE41(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst, const Zvp32f* pQuantFwdTable);
void qntInvLsSSE41(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep, const Zvp32f* pQuantInvTable);
void fwd32SSE41(const Zvp32f* pSrc, Zvp32f* pDst);
void inv32SSE41(const Zvp32f* pSrc, Zvp32f* pDst);
#endif

}  // namespace zvp::dct
