// Integer 8x8 transforms of the 8-bit path: the inverse (rows, then columns
// by tangents), the forward (columns by tangents, then rows), the reduced
// and downscaling inverses, the level shift with clip, and the family's
// dispatch point.
#include <cstring>
#include <initializer_list>

#include "core/cpu.h"
#include "sample/dct.h"

namespace zvp::dct {

// One row of the inverse row pass: 8 coefficients into 8 values.
void invRow(const int16_t* x, int16_t* y, int row) {
  const int16_t* k = kRowSets[kSetOfRow[row]];
  const int32_t c = k[0], m1 = k[1], m2 = k[2], o1 = k[3], o2 = k[4], o3 = k[5], o4 = k[6];
  const int32_t R = _round_i[row];
  const uint32_t X0 = static_cast<uint32_t>(x[0]), X1 = static_cast<uint32_t>(x[1]), X2 = static_cast<uint32_t>(x[2]),
                 X3 = static_cast<uint32_t>(x[3]), X4 = static_cast<uint32_t>(x[4]), X5 = static_cast<uint32_t>(x[5]),
                 X6 = static_cast<uint32_t>(x[6]), X7 = static_cast<uint32_t>(x[7]);
  const uint32_t C = static_cast<uint32_t>(c), M1 = static_cast<uint32_t>(m1), M2 = static_cast<uint32_t>(m2),
                 O1 = static_cast<uint32_t>(o1), O2 = static_cast<uint32_t>(o2), O3 = static_cast<uint32_t>(o3),
                 O4 = static_cast<uint32_t>(o4), RR = static_cast<uint32_t>(R);
  // Sums wrap at 32 bits: unsigned arithmetic, read back as signed.
  const int32_t e0 = static_cast<int32_t>(C * X0 + M1 * X2 + C * X4 + M2 * X6 + RR);
  const int32_t e1 = static_cast<int32_t>(C * X0 + M2 * X2 - C * X4 - M1 * X6 + RR);
  const int32_t e2 = static_cast<int32_t>(C * X0 - M2 * X2 - C * X4 + M1 * X6 + RR);
  const int32_t e3 = static_cast<int32_t>(C * X0 - M1 * X2 + C * X4 - M2 * X6 + RR);
  const int32_t d0 = static_cast<int32_t>(O1 * X1 + O2 * X3 + O3 * X5 + O4 * X7);
  const int32_t d1 = static_cast<int32_t>(O2 * X1 - O4 * X3 - O1 * X5 - O3 * X7);
  const int32_t d2 = static_cast<int32_t>(O3 * X1 - O1 * X3 + O4 * X5 + O2 * X7);
  const int32_t d3 = static_cast<int32_t>(O4 * X1 - O3 * X3 + O2 * X5 - O1 * X7);
  y[0] = sat16(wadd(e0, d0) >> 11);
  y[1] = sat16(wadd(e1, d1) >> 11);
  y[2] = sat16(wadd(e2, d2) >> 11);
  y[3] = sat16(wadd(e3, d3) >> 11);
  y[4] = sat16(wadd(e3, -d3) >> 11);
  y[5] = sat16(wadd(e2, -d2) >> 11);
  y[6] = sat16(wadd(e1, -d1) >> 11);
  y[7] = sat16(wadd(e0, -d0) >> 11);
}

// Steps 1 to 9 of the inverse column pass.
struct ColOdd {
  int16_t ab, dc, g, h, e, f;
};
ColOdd invColOdd(const int16_t r[8]) {
  const int16_t a = sadd(mulhi(r[7], _tg_1_16), r[1]);
  const int16_t d = ssub(mulhi(r[1], _tg_1_16), r[7]);
  const int16_t b = sadd(sadd(mulhi(r[5], _tg_3_16), r[5]), r[3]);
  const int16_t c = ssub(r[5], sadd(mulhi(r[3], _tg_3_16), r[3]));
  const int16_t e = sadd(mulhi(r[6], _tg_2_16), r[2]);
  const int16_t f = ssub(mulhi(r[2], _tg_2_16), r[6]);
  const int16_t ab = sadd(a, b), amb = ssub(a, b), dc = sadd(d, c), dmc = ssub(d, c);
  const int16_t X = sadd(amb, dmc), Y = ssub(amb, dmc);
  const int16_t g = sadd(X, mulhi(X, _cos_4_16)), h = sadd(Y, mulhi(Y, _cos_4_16));
  return {ab, dc, g, h, e, f};
}

void invCol(const int16_t r[8], int16_t out[8]) {
  const ColOdd o = invColOdd(r);
  const int16_t s = sadd(r[0], r[4]), t = ssub(r[0], r[4]);
  const int16_t se = sadd(s, o.e), sme = ssub(s, o.e), tf = sadd(t, o.f), tmf = ssub(t, o.f);
  out[0] = static_cast<int16_t>(sadd(se, o.ab) >> 6);
  out[1] = static_cast<int16_t>(sadd(tf, o.g) >> 6);
  out[2] = static_cast<int16_t>(sadd(tmf, o.h) >> 6);
  out[3] = static_cast<int16_t>(sadd(sme, o.dc) >> 6);
  out[4] = static_cast<int16_t>(ssub(sme, o.dc) >> 6);
  out[5] = static_cast<int16_t>(ssub(tmf, o.h) >> 6);
  out[6] = static_cast<int16_t>(ssub(tf, o.g) >> 6);
  out[7] = static_cast<int16_t>(ssub(se, o.ab) >> 6);
}

namespace {

void loadBlock(const Zvp16s* p, int16_t b[64]) { std::memcpy(b, p, 128); }
void storeBlock(Zvp16s* p, const int16_t b[64]) { std::memcpy(p, b, 128); }

// The inverse on a block already in memory (rows given by `rows`, the rest
// being their fixed result on zero input).
void invRowsCols(const int16_t x[64], int16_t out[64]) {
  int16_t y[64];
  for (int r = 0; r < 8; ++r) invRow(x + 8 * r, y + 8 * r, r);
  for (int col = 0; col < 8; ++col) {
    int16_t r[8], o[8];
    for (int i = 0; i < 8; ++i) r[i] = y[8 * i + col];
    invCol(r, o);
    for (int i = 0; i < 8; ++i) out[8 * i + col] = o[i];
  }
}

}  // namespace

void invScalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  int16_t x[64], out[64];
  loadBlock(pSrc, x);
  invRowsCols(x, out);
  storeBlock(pDst, out);
}

void fwdScalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  int16_t x[64], y[64];
  loadBlock(pSrc, x);
  for (int col = 0; col < 8; ++col) {
    int16_t v[8];
    for (int i = 0; i < 8; ++i) v[i] = x[8 * i + col];
    const int16_t S1 = shl(sadd(v[1], v[6]), 3), S2 = shl(sadd(v[2], v[5]), 3);
    const int16_t s0 = sadd(v[0], v[7]), s3 = sadd(v[3], v[4]);
    const int16_t B = ssub(S1, S2), Q = sadd(S1, S2), A = shl(ssub(s0, s3), 3), P = shl(sadd(s0, s3), 3);
    int16_t o[8];
    o[0] = sadd(P, Q);
    o[4] = ssub(P, Q);
    o[2] = static_cast<int16_t>(sadd(mulhi(B, _tg_2_16), A) | 1);
    o[6] = static_cast<int16_t>(ssub(mulhi(A, _tg_2_16), B) | 1);
    const int16_t D1 = shl(ssub(v[1], v[6]), 4), D2 = shl(ssub(v[2], v[5]), 4);
    const int16_t D3 = shl(ssub(v[3], v[4]), 3), D0 = shl(ssub(v[0], v[7]), 3);
    const int16_t U = static_cast<int16_t>(mulhi(sadd(D1, D2), _ocos_4_16) | 1);
    const int16_t V = mulhi(ssub(D1, D2), _ocos_4_16);
    const int16_t W = sadd(D3, V), Z = ssub(D3, V), H = sadd(D0, U), G = ssub(D0, U);
    o[1] = static_cast<int16_t>(sadd(mulhi(W, _tg_1_16), H) | 1);
    o[7] = ssub(mulhi(H, _tg_1_16), W);
    o[3] = ssub(G, sadd(mulhi(Z, _tg_3_16), Z));
    o[5] = sadd(sadd(mulhi(G, _tg_3_16), G), Z);
    for (int i = 0; i < 8; ++i) y[8 * i + col] = o[i];
  }
  int16_t out[64];
  for (int r = 0; r < 8; ++r) {
    const int16_t* k = kRowSets[kSetOfRow[r]];
    const int32_t c = k[0], m1 = k[1], m2 = k[2], o1 = k[3], o2 = k[4], o3 = k[5], o4 = k[6];
    const int16_t* v = y + 8 * r;
    int32_t a[4], b[4];
    for (int i = 0; i < 4; ++i) {
      a[i] = sadd(v[i], v[7 - i]);
      b[i] = ssub(v[i], v[7 - i]);
    }
    auto sum = [](std::initializer_list<int32_t> t) {
      uint32_t s = static_cast<uint32_t>(_round_frw_row);
      for (int32_t q : t) s += static_cast<uint32_t>(q);
      return sat16(static_cast<int32_t>(s) >> 20);
    };
    int16_t* o = out + 8 * r;
    o[0] = sum({c * a[0], c * a[1], c * a[2], c * a[3]});
    o[1] = sum({o1 * b[0], o2 * b[1], o3 * b[2], o4 * b[3]});
    o[2] = sum({m1 * a[0], m2 * a[1], -m2 * a[2], -m1 * a[3]});
    o[3] = sum({o2 * b[0], -o4 * b[1], -o1 * b[2], -o3 * b[3]});
    o[4] = sum({c * a[0], -c * a[1], -c * a[2], c * a[3]});
    o[5] = sum({o3 * b[0], -o1 * b[1], o4 * b[2], o2 * b[3]});
    o[6] = sum({m2 * a[0], -m1 * a[1], m1 * a[2], -m2 * a[3]});
    o[7] = sum({o4 * b[0], -o3 * b[1], o2 * b[2], -o1 * b[3]});
  }
  storeBlock(pDst, out);
}

void lsClipScalar(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin, Zvp8u clipMax) {
  const bool limit = !(clipMin == 0 && clipMax == 255);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      const int16_t v = static_cast<int16_t>(static_cast<uint16_t>(ld(pSrc + 8 * y + x) + level));
      int s = v < 0 ? 0 : (v > 255 ? 255 : v);
      if (limit) {
        if (s < clipMin) s = clipMin;
        if (s > clipMax) s = clipMax;
      }
      pDst[static_cast<std::ptrdiff_t>(y) * dstStep + x] = static_cast<Zvp8u>(s);
    }
}

Kernels kernels() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return {invSSE41, fwdSSE41, quantFwdSSE41, quantInvSSE41, lsClipSSE41};
#endif
  return {invScalar, fwdScalar, quantFwdScalar, quantInvScalar, lsClipScalar};
}

}  // namespace zvp::dct

using namespace zvp::dct;

void dct_8x8_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst) { kernels().inv(pSrc, pDst); }
void dct_8x8_fwd_16s(const Zvp16s* pSrc, Zvp16s* pDst) { kernels().fwd(pSrc, pDst); }

void own_8x8_LSClip_16s8u(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin,
                          Zvp8u clipMax) {
  kernels().lsClip(pSrc, pDst, dstStep, level, clipMin, clipMax);
}

// Reduced inverses: only the top-left corner is read; the other rows of the
// row pass take their fixed result on zero input (row 2 of the 2x2 case:
// 2260 >> 11 = 1; every row from 4 on: 0).
namespace zvp::dct {

void inv2x2Scalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  const int16_t x0[8] = {ld(pSrc), ld(pSrc + 1), 0, 0, 0, 0, 0, 0};
  const int16_t x1[8] = {ld(pSrc + 8), ld(pSrc + 9), 0, 0, 0, 0, 0, 0};
  int16_t y0[8], y1[8];
  invRow(x0, y0, 0);
  invRow(x1, y1, 1);
  int16_t out[64];
  for (int col = 0; col < 8; ++col) {
    const int16_t r0 = y0[col], r1 = y1[col];
    const int16_t d = mulhi(r1, _tg_1_16);
    const int16_t u = sadd(r0, 1), v = ssub(r0, 1);
    const int16_t gz = ssub(r1, d), hz = sadd(r1, d);
    const int16_t g = sadd(gz, mulhi(gz, _cos_4_16)), h = sadd(hz, mulhi(hz, _cos_4_16));
    out[0 * 8 + col] = static_cast<int16_t>(sadd(r1, u) >> 6);
    out[7 * 8 + col] = static_cast<int16_t>(ssub(u, r1) >> 6);
    out[3 * 8 + col] = static_cast<int16_t>(sadd(d, v) >> 6);
    out[4 * 8 + col] = static_cast<int16_t>(ssub(v, d) >> 6);
    out[2 * 8 + col] = static_cast<int16_t>(sadd(r0, g) >> 6);
    out[5 * 8 + col] = static_cast<int16_t>(ssub(r0, g) >> 6);
    out[1 * 8 + col] = static_cast<int16_t>(sadd(r0, h) >> 6);
    out[6 * 8 + col] = static_cast<int16_t>(ssub(r0, h) >> 6);
  }
  std::memcpy(pDst, out, 128);
}

void inv4x4Scalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  int16_t y[4][8];
  for (int r = 0; r < 4; ++r) {
    const int16_t x[8] = {ld(pSrc + 8 * r), ld(pSrc + 8 * r + 1), ld(pSrc + 8 * r + 2), ld(pSrc + 8 * r + 3), 0, 0, 0, 0};
    invRow(x, y[r], r);
  }
  int16_t out[64];
  for (int col = 0; col < 8; ++col) {
    const int16_t r[8] = {y[0][col], y[1][col], y[2][col], y[3][col], 0, 0, 0, 0};
    int16_t o[8];
    invCol(r, o);
    for (int i = 0; i < 8; ++i) out[8 * i + col] = o[i];
  }
  std::memcpy(pDst, out, 128);
}

}  // namespace zvp::dct

// With a vector kernel, the reduced inverses run the full one on the block
// with everything outside the corner zeroed: the same result bit for bit,
// saturating cases included (the row pass gives the other rows their fixed
// values either way).
namespace {
template <int N>
void invCorner(const Zvp16s* pSrc, Zvp16s* pDst) {
  alignas(16) int16_t m[64] = {};
  for (int r = 0; r < N; ++r) std::memcpy(m + 8 * r, pSrc + 8 * r, 2 * N);
  zvp::dct::kernels().inv(m, pDst);
}
}  // namespace

void dct_8x8_inv_2x2_16s(const Zvp16s* pSrc, Zvp16s* pDst) {
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) invCorner<2>(pSrc, pDst);
  else zvp::dct::inv2x2Scalar(pSrc, pDst);
}

void dct_8x8_inv_4x4_16s(const Zvp16s* pSrc, Zvp16s* pDst) {
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) invCorner<4>(pSrc, pDst);
  else zvp::dct::inv4x4Scalar(pSrc, pDst);
}

namespace {

struct To4Set {
  int32_t c, p, q, a[4], b[4];
};
constexpr To4Set kTo4Sets[4] = {
    {16384, 15137, -6270, {20995, 7373, -4926, -4176}, {8697, -17799, 11893, -1730}},
    {22725, 20995, -8697, {29121, 10226, -6833, -5793}, {12063, -24688, 16496, -2399}},
    {21407, 19777, -8192, {27432, 9633, -6436, -5457}, {11363, -23256, 15539, -2260}},
    {19266, 17799, -7373, {24688, 8669, -5793, -4911}, {10226, -20929, 13985, -2034}}};
// Set and rounder of each row (row 4 is not read).
constexpr int kTo4SetOfRow[8] = {0, 1, 2, 3, -1, 3, 2, 1};
constexpr int32_t kTo4Round[8] = {66560, 5802, 4520, 3408, 0, 910, 1024, 746};

struct To2Set {
  int32_t c, p, q, u, v;
};
constexpr To2Set kTo2Sets[3] = {{16384, 14846, -5213, 3483, -2953},
                                {22725, 20592, -7231, 4832, -4096},
                                {19266, 17457, -6130, 4096, -3472}};
constexpr int kTo2SetOfRow[8] = {0, 1, -1, 2, -1, 2, -1, 1};
constexpr int32_t kTo2Round[8] = {67072, 5802, 0, 3408, 0, 910, 0, 746};

inline int32_t wmul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }

}  // namespace

void zvp::dct::to4x4Scalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  int16_t y[8][4] = {};
  for (int r = 0; r < 8; ++r) {
    if (kTo4SetOfRow[r] < 0) continue;
    const To4Set& k = kTo4Sets[kTo4SetOfRow[r]];
    int32_t x[8];
    for (int i = 0; i < 8; ++i) x[i] = ld(pSrc + 8 * r + i);
    const int32_t cx = wmul(k.c, x[0]), px = wmul(k.p, x[2]), qx = wmul(k.q, x[6]);
    const int32_t E0 = wadd(wadd(wadd(cx, px), qx), kTo4Round[r]);
    const int32_t E1 = wadd(wadd(wadd(cx, -px), -qx), kTo4Round[r]);
    const int32_t O0 = wadd(wadd(wmul(k.a[0], x[1]), wmul(k.a[1], x[3])), wadd(wmul(k.a[2], x[5]), wmul(k.a[3], x[7])));
    const int32_t O1 = wadd(wadd(wmul(k.b[0], x[1]), wmul(k.b[1], x[3])), wadd(wmul(k.b[2], x[5]), wmul(k.b[3], x[7])));
    y[r][0] = sat16(wadd(E0, O0) >> 12);
    y[r][1] = sat16(wadd(E1, O1) >> 12);
    y[r][2] = sat16(wadd(E1, -O1) >> 12);
    y[r][3] = sat16(wadd(E0, -O0) >> 12);
  }
  int16_t out[16];
  for (int col = 0; col < 4; ++col) {
    int16_t r[8];
    for (int i = 0; i < 8; ++i) r[i] = y[i][col];
    r[4] = 0;
    const ColOdd o = invColOdd(r);
    const int16_t ef = sadd(o.f, o.e), p = sadd(o.g, o.ab), q = sadd(o.h, o.dc), w = sadd(r[0], r[0]);
    const int16_t u = sadd(ef, w), v = ssub(w, ef);
    out[0 * 4 + col] = static_cast<int16_t>(sadd(p, u) >> 6);
    out[1 * 4 + col] = static_cast<int16_t>(sadd(q, v) >> 6);
    out[2 * 4 + col] = static_cast<int16_t>(ssub(v, q) >> 6);
    out[3 * 4 + col] = static_cast<int16_t>(ssub(u, p) >> 6);
  }
  std::memcpy(pDst, out, 32);
}

void zvp::dct::to2x2Scalar(const Zvp16s* pSrc, Zvp16s* pDst) {
  int16_t y[8][2] = {};
  for (int r = 0; r < 8; ++r) {
    if (kTo2SetOfRow[r] < 0) continue;
    const To2Set& k = kTo2Sets[kTo2SetOfRow[r]];
    const int32_t w = wadd(wmul(k.c, ld(pSrc + 8 * r)), kTo2Round[r]);
    const int32_t o = wadd(wadd(wmul(k.p, ld(pSrc + 8 * r + 1)), wmul(k.q, ld(pSrc + 8 * r + 3))),
                           wadd(wmul(k.u, ld(pSrc + 8 * r + 5)), wmul(k.v, ld(pSrc + 8 * r + 7))));
    y[r][0] = sat16(wadd(w, o) >> 12);
    y[r][1] = sat16(wadd(w, -o) >> 12);
  }
  int16_t out[4];
  for (int col = 0; col < 2; ++col) {
    const int16_t r0 = y[0][col], r1 = y[1][col], r3 = y[3][col], r5 = y[5][col], r7 = y[7][col];
    const int16_t a = sadd(mulhi(r7, _tg_1_16), r1);
    const int16_t d = ssub(mulhi(r1, _tg_1_16), r7);
    const int16_t b = sadd(sadd(mulhi(r5, _tg_3_16), r5), r3);
    const int16_t c = ssub(r5, sadd(mulhi(r3, _tg_3_16), r3));
    const int16_t ab = sadd(a, b), amb = ssub(a, b), dc = sadd(d, c);
    const int16_t g = sadd(amb, mulhi(amb, _cos_4_16));
    const int16_t g2 = sadd(g, g);
    const int16_t Z = sadd(sadd(ab, dc), g2);
    const int16_t w1 = sadd(r0, r0), w = sadd(w1, w1);
    out[0 * 2 + col] = static_cast<int16_t>(sadd(w, Z) >> 7);
    out[1 * 2 + col] = static_cast<int16_t>(ssub(w, Z) >> 7);
  }
  std::memcpy(pDst, out, 8);
}

void dct_8x8To4x4_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::to4x4SSE41(pSrc, pDst);
#endif
  zvp::dct::to4x4Scalar(pSrc, pDst);
}

void dct_8x8To2x2_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::to2x2SSE41(pSrc, pDst);
#endif
  zvp::dct::to2x2Scalar(pSrc, pDst);
}
