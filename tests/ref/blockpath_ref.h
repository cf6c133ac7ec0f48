// Reference model of the JPEG block path (quantisation tables, quantisers,
// zig-zag and the 8x8 block transforms), written straight from the steps of
// the arithmetic: plain loops, 64-bit intermediates with explicit wrap and
// saturation. Nothing here comes from the library's sources.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace ref::bp {

// ---- 16-bit helpers -------------------------------------------------------
inline int16_t sat(int64_t v) { return static_cast<int16_t>(v < -32768 ? -32768 : (v > 32767 ? 32767 : v)); }
inline int16_t sadd(int16_t a, int16_t b) { return sat(int64_t{a} + b); }
inline int16_t ssub(int16_t a, int16_t b) { return sat(int64_t{a} - b); }
inline int16_t mulhi(int16_t a, int16_t b) {
  const int64_t p = int64_t{a} * b;
  return static_cast<int16_t>(p >= 0 ? p / 65536 : -((-p + 65535) / 65536));  // floor division
}
inline int16_t wrap16(int64_t v) {
  int64_t m = ((v % 65536) + 65536) % 65536;
  return static_cast<int16_t>(m >= 32768 ? m - 65536 : m);
}
inline int16_t shl(int16_t x, int n) { return wrap16(int64_t{x} * (int64_t{1} << n)); }
inline int32_t wrap32(int64_t v) {
  int64_t m = ((v % 4294967296LL) + 4294967296LL) % 4294967296LL;
  return static_cast<int32_t>(m >= 2147483648LL ? m - 4294967296LL : m);
}
inline int64_t asr(int64_t v, int n) {  // floor(v / 2^n)
  const int64_t d = int64_t{1} << n;
  return v >= 0 ? v / d : -((-v + d - 1) / d);
}
inline uint8_t satU8(int v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// ---- zig-zag: the T.81 scan, walked by hand --------------------------------
inline void zigzagScan(int natural[64]) {
  int r = 0, c = 0;
  for (int k = 0; k < 64; ++k) {
    natural[k] = 8 * r + c;
    if ((r + c) % 2 == 0) {  // moving up-right
      if (c == 7) ++r;
      else if (r == 0) ++c;
      else { --r; ++c; }
    } else {  // moving down-left
      if (r == 7) ++c;
      else if (c == 0) ++r;
      else { ++r; --c; }
    }
  }
}

// ---- quantisation tables ----------------------------------------------------
inline void scaleRaw(uint8_t t[64], int q) {
  const long s = q < 50 ? 5000 / q : 200 - 2L * q;
  for (int i = 0; i < 64; ++i) {
    long v = (long{t[i]} * s + 50);
    v = v / 100;  // truncation toward zero
    if (v > 255) v = 255;
    if (v < 1) v = 1;
    t[i] = static_cast<uint8_t>(v);
  }
}
// round(32768 / q) in exact integers; 65535 for q = 0.
inline uint16_t fwdEntry(unsigned q) { return q == 0 ? 65535 : static_cast<uint16_t>((65536 / q + 1) / 2); }

inline int16_t quantFwd(int16_t x, uint16_t t) {
  const int16_t a = wrap16(int64_t{x} * 8);
  const int16_t b = static_cast<int16_t>(t / 2);
  const int16_t h = static_cast<int16_t>(asr(int64_t{a} * b, 16));
  return static_cast<int16_t>(asr(wrap16(int64_t{h} + 1), 1));
}
inline int16_t quantInv(int16_t x, uint16_t q) { return wrap16(int64_t{x} * q); }

// Product divided by 2^s, rounded to nearest with ties to even, saturated.
inline int16_t mulSfs(uint16_t a, int16_t b, int s) {
  const int64_t p = int64_t{a} * b;
  const int64_t d = int64_t{1} << s;
  int64_t q = asr(p, s);
  const int64_t rem = p - q * d;  // 0 <= rem < d
  if (2 * rem > d || (2 * rem == d && (q & 1))) ++q;
  return sat(q);
}

// ---- integer inverse --------------------------------------------------------
struct RowSet { int64_t c, m1, m2, o1, o2, o3, o4; };
inline RowSet rowSet(int row) {
  static const RowSet s[4] = {{16384, 21407, 8867, 22725, 19266, 12873, 4520},
                              {22725, 29692, 12299, 31521, 26722, 17855, 6270},
                              {21407, 27969, 11585, 29692, 25172, 16819, 5906},
                              {19266, 25172, 10426, 26722, 22654, 15137, 5315}};
  static const int of[8] = {0, 1, 2, 3, 0, 3, 2, 1};
  return s[of[row]];
}
constexpr int16_t TG1 = 13036, TG2 = 27146, TG3 = -21746, COS4 = -19195, OCOS4 = 23170;

inline void invRow(const int16_t* x, int16_t* y, int row) {
  static const int64_t R[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
  const RowSet k = rowSet(row);
  const int64_t e0 = k.c * x[0] + k.m1 * x[2] + k.c * x[4] + k.m2 * x[6] + R[row];
  const int64_t e1 = k.c * x[0] + k.m2 * x[2] - k.c * x[4] - k.m1 * x[6] + R[row];
  const int64_t e2 = k.c * x[0] - k.m2 * x[2] - k.c * x[4] + k.m1 * x[6] + R[row];
  const int64_t e3 = k.c * x[0] - k.m1 * x[2] + k.c * x[4] - k.m2 * x[6] + R[row];
  const int64_t d0 = k.o1 * x[1] + k.o2 * x[3] + k.o3 * x[5] + k.o4 * x[7];
  const int64_t d1 = k.o2 * x[1] - k.o4 * x[3] - k.o1 * x[5] - k.o3 * x[7];
  const int64_t d2 = k.o3 * x[1] - k.o1 * x[3] + k.o4 * x[5] + k.o2 * x[7];
  const int64_t d3 = k.o4 * x[1] - k.o3 * x[3] + k.o2 * x[5] - k.o1 * x[7];
  auto f = [](int64_t v) { return sat(asr(wrap32(v), 11)); };
  y[0] = f(e0 + d0); y[1] = f(e1 + d1); y[2] = f(e2 + d2); y[3] = f(e3 + d3);
  y[4] = f(e3 - d3); y[5] = f(e2 - d2); y[6] = f(e1 - d1); y[7] = f(e0 - d0);
}

inline void invCol(const int16_t r[8], int16_t out[8]) {
  const int16_t a = sadd(mulhi(r[7], TG1), r[1]);
  const int16_t d = ssub(mulhi(r[1], TG1), r[7]);
  const int16_t b = sadd(sadd(mulhi(r[5], TG3), r[5]), r[3]);
  const int16_t c = ssub(r[5], sadd(mulhi(r[3], TG3), r[3]));
  const int16_t e = sadd(mulhi(r[6], TG2), r[2]);
  const int16_t f = ssub(mulhi(r[2], TG2), r[6]);
  const int16_t ab = sadd(a, b), amb = ssub(a, b), dc = sadd(d, c), dmc = ssub(d, c);
  const int16_t X = sadd(amb, dmc), Y = ssub(amb, dmc);
  const int16_t g = sadd(X, mulhi(X, COS4)), h = sadd(Y, mulhi(Y, COS4));
  const int16_t s = sadd(r[0], r[4]), t = ssub(r[0], r[4]);
  const int16_t se = sadd(s, e), sme = ssub(s, e), tf = sadd(t, f), tmf = ssub(t, f);
  const int16_t o[8] = {sadd(se, ab), sadd(tf, g), sadd(tmf, h), sadd(sme, dc),
                        ssub(sme, dc), ssub(tmf, h), ssub(tf, g), ssub(se, ab)};
  for (int i = 0; i < 8; ++i) out[i] = static_cast<int16_t>(asr(o[i], 6));
}

inline void inv(const int16_t in[64], int16_t out[64]) {
  int16_t y[64];
  for (int r = 0; r < 8; ++r) invRow(in + 8 * r, y + 8 * r, r);
  for (int c = 0; c < 8; ++c) {
    int16_t col[8], o[8];
    for (int i = 0; i < 8; ++i) col[i] = y[8 * i + c];
    invCol(col, o);
    for (int i = 0; i < 8; ++i) out[8 * i + c] = o[i];
  }
}

// ---- integer forward --------------------------------------------------------
inline void fwd(const int16_t in[64], int16_t out[64]) {
  int16_t y[64];
  for (int c = 0; c < 8; ++c) {
    int16_t x[8];
    for (int i = 0; i < 8; ++i) x[i] = in[8 * i + c];
    const int16_t S1 = shl(sadd(x[1], x[6]), 3), S2 = shl(sadd(x[2], x[5]), 3);
    const int16_t s0 = sadd(x[0], x[7]), s3 = sadd(x[3], x[4]);
    const int16_t B = ssub(S1, S2), Q = sadd(S1, S2), A = shl(ssub(s0, s3), 3), P = shl(sadd(s0, s3), 3);
    int16_t o[8];
    o[0] = sadd(P, Q);
    o[4] = ssub(P, Q);
    o[2] = static_cast<int16_t>(sadd(mulhi(B, TG2), A) | 1);
    o[6] = static_cast<int16_t>(ssub(mulhi(A, TG2), B) | 1);
    const int16_t D1 = shl(ssub(x[1], x[6]), 4), D2 = shl(ssub(x[2], x[5]), 4);
    const int16_t D3 = shl(ssub(x[3], x[4]), 3), D0 = shl(ssub(x[0], x[7]), 3);
    const int16_t U = static_cast<int16_t>(mulhi(sadd(D1, D2), OCOS4) | 1);
    const int16_t V = mulhi(ssub(D1, D2), OCOS4);
    const int16_t W = sadd(D3, V), Z = ssub(D3, V), H = sadd(D0, U), G = ssub(D0, U);
    o[1] = static_cast<int16_t>(sadd(mulhi(W, TG1), H) | 1);
    o[7] = ssub(mulhi(H, TG1), W);
    o[3] = ssub(G, sadd(mulhi(Z, TG3), Z));
    o[5] = sadd(sadd(mulhi(G, TG3), G), Z);
    for (int i = 0; i < 8; ++i) y[8 * i + c] = o[i];
  }
  for (int r = 0; r < 8; ++r) {
    const RowSet k = rowSet(r);
    int64_t a[4], b[4];
    for (int i = 0; i < 4; ++i) {
      a[i] = sadd(y[8 * r + i], y[8 * r + 7 - i]);
      b[i] = ssub(y[8 * r + i], y[8 * r + 7 - i]);
    }
    const int64_t o[8] = {k.c * (a[0] + a[1] + a[2] + a[3]),
                          k.o1 * b[0] + k.o2 * b[1] + k.o3 * b[2] + k.o4 * b[3],
                          k.m1 * a[0] + k.m2 * a[1] - k.m2 * a[2] - k.m1 * a[3],
                          k.o2 * b[0] - k.o4 * b[1] - k.o1 * b[2] - k.o3 * b[3],
                          k.c * (a[0] - a[1] - a[2] + a[3]),
                          k.o3 * b[0] - k.o1 * b[1] + k.o4 * b[2] + k.o2 * b[3],
                          k.m2 * a[0] - k.m1 * a[1] + k.m1 * a[2] - k.m2 * a[3],
                          k.o4 * b[0] - k.o3 * b[1] + k.o2 * b[2] - k.o1 * b[3]};
    for (int i = 0; i < 8; ++i) out[8 * r + i] = sat(asr(wrap32(o[i] + 524288), 20));
  }
}

// ---- reduced and downscaling inverses ---------------------------------------
// The reduced members equal the full inverse of the masked block.
inline void invCorner(const int16_t in[64], int16_t out[64], int n) {
  int16_t m[64] = {};
  for (int r = 0; r < n; ++r)
    for (int c = 0; c < n; ++c) m[8 * r + c] = in[8 * r + c];
  inv(m, out);
}

inline void invTo4x4(const int16_t in[64], int16_t out[16]) {
  struct S { int64_t c, p, q, a1, a3, a5, a7, b1, b3, b5, b7; };
  const S s0{16384, 15137, -6270, 20995, 7373, -4926, -4176, 8697, -17799, 11893, -1730};
  const S s1{22725, 20995, -8697, 29121, 10226, -6833, -5793, 12063, -24688, 16496, -2399};
  const S s2{21407, 19777, -8192, 27432, 9633, -6436, -5457, 11363, -23256, 15539, -2260};
  const S s3{19266, 17799, -7373, 24688, 8669, -5793, -4911, 10226, -20929, 13985, -2034};
  const S* sets[8] = {&s0, &s1, &s2, &s3, nullptr, &s3, &s2, &s1};
  const int64_t R[8] = {66560, 5802, 4520, 3408, 0, 910, 1024, 746};
  int16_t y[8][4] = {};
  for (int r = 0; r < 8; ++r) {
    if (!sets[r]) continue;
    const S& k = *sets[r];
    const int16_t* x = in + 8 * r;
    const int64_t E0 = k.c * x[0] + k.p * x[2] + k.q * x[6] + R[r];
    const int64_t E1 = k.c * x[0] - k.p * x[2] - k.q * x[6] + R[r];
    const int64_t O0 = k.a1 * x[1] + k.a3 * x[3] + k.a5 * x[5] + k.a7 * x[7];
    const int64_t O1 = k.b1 * x[1] + k.b3 * x[3] + k.b5 * x[5] + k.b7 * x[7];
    y[r][0] = sat(asr(wrap32(E0 + O0), 12));
    y[r][1] = sat(asr(wrap32(E1 + O1), 12));
    y[r][2] = sat(asr(wrap32(E1 - O1), 12));
    y[r][3] = sat(asr(wrap32(E0 - O0), 12));
  }
  for (int c = 0; c < 4; ++c) {
    int16_t r[8];
    for (int i = 0; i < 8; ++i) r[i] = y[i][c];
    const int16_t a = sadd(mulhi(r[7], TG1), r[1]);
    const int16_t d = ssub(mulhi(r[1], TG1), r[7]);
    const int16_t b = sadd(sadd(mulhi(r[5], TG3), r[5]), r[3]);
    const int16_t cc = ssub(r[5], sadd(mulhi(r[3], TG3), r[3]));
    const int16_t e = sadd(mulhi(r[6], TG2), r[2]);
    const int16_t f = ssub(mulhi(r[2], TG2), r[6]);
    const int16_t ab = sadd(a, b), amb = ssub(a, b), dc = sadd(d, cc), dmc = ssub(d, cc);
    const int16_t X = sadd(amb, dmc), Y = ssub(amb, dmc);
    const int16_t g = sadd(X, mulhi(X, COS4)), h = sadd(Y, mulhi(Y, COS4));
    const int16_t ef = sadd(f, e), p = sadd(g, ab), q = sadd(h, dc), w = sadd(r[0], r[0]);
    const int16_t u = sadd(ef, w), v = ssub(w, ef);
    out[c] = static_cast<int16_t>(asr(sadd(p, u), 6));
    out[4 + c] = static_cast<int16_t>(asr(sadd(q, v), 6));
    out[8 + c] = static_cast<int16_t>(asr(ssub(v, q), 6));
    out[12 + c] = static_cast<int16_t>(asr(ssub(u, p), 6));
  }
}

inline void invTo2x2(const int16_t in[64], int16_t out[4]) {
  struct S { int64_t c, p, q, u, v; };
  const S s0{16384, 14846, -5213, 3483, -2953}, s1{22725, 20592, -7231, 4832, -4096},
      s3{19266, 17457, -6130, 4096, -3472};
  const S* sets[8] = {&s0, &s1, nullptr, &s3, nullptr, &s3, nullptr, &s1};
  const int64_t R[8] = {67072, 5802, 0, 3408, 0, 910, 0, 746};
  int16_t y[8][2] = {};
  for (int r = 0; r < 8; ++r) {
    if (!sets[r]) continue;
    const S& k = *sets[r];
    const int16_t* x = in + 8 * r;
    const int64_t w = k.c * x[0] + R[r];
    const int64_t o = k.p * x[1] + k.q * x[3] + k.u * x[5] + k.v * x[7];
    y[r][0] = sat(asr(wrap32(w + o), 12));
    y[r][1] = sat(asr(wrap32(w - o), 12));
  }
  for (int c = 0; c < 2; ++c) {
    const int16_t r0 = y[0][c], r1 = y[1][c], r3 = y[3][c], r5 = y[5][c], r7 = y[7][c];
    const int16_t a = sadd(mulhi(r7, TG1), r1);
    const int16_t d = ssub(mulhi(r1, TG1), r7);
    const int16_t b = sadd(sadd(mulhi(r5, TG3), r5), r3);
    const int16_t cc = ssub(r5, sadd(mulhi(r3, TG3), r3));
    const int16_t ab = sadd(a, b), amb = ssub(a, b), dc = sadd(d, cc);
    const int16_t g = sadd(amb, mulhi(amb, COS4));
    const int16_t Z = sadd(sadd(ab, dc), sadd(g, g));
    const int16_t w = sadd(sadd(r0, r0), sadd(r0, r0));
    out[c] = static_cast<int16_t>(asr(sadd(w, Z), 7));
    out[2 + c] = static_cast<int16_t>(asr(ssub(w, Z), 7));
  }
}

inline uint8_t dcOnly(int16_t dc, uint16_t q) {
  const int64_t p = int64_t{dc} * q;
  const uint32_t bits = static_cast<uint32_t>(wrap32(p));
  const int16_t v = static_cast<int16_t>(static_cast<uint16_t>((bits >> 3) & 0xFFFF));
  return satU8(wrap16(int64_t{v} + 128));
}

inline uint8_t lsClip(int16_t v, int16_t level, uint8_t lo, uint8_t hi) {
  int s = satU8(wrap16(int64_t{v} + level));
  if (!(lo == 0 && hi == 255)) {
    if (s < lo) s = lo;
    if (s > hi) s = hi;
  }
  return static_cast<uint8_t>(s);
}

// ---- float pair ---------------------------------------------------------------
struct FloatTables {
  float frw[64], inv[64];
  FloatTables() {
    const double pi = std::acos(-1.0), r2 = std::sqrt(2.0), K = 1.082392200292394;
    double g[8], h[8];
    for (int k = 0; k < 8; ++k) {
      const double ck = std::cos(k * pi / 16);
      if (k == 0 || k == 4) g[k] = h[k] = 1;
      else if (k % 2 == 0) { g[k] = 1 / (r2 * ck); h[k] = r2 * ck; }
      else { g[k] = 1 / (K * r2 * ck); h[k] = 2 * std::cos(pi / 8) * r2 * ck; }
    }
    for (int u = 0; u < 8; ++u)
      for (int v = 0; v < 8; ++v) {
        frw[8 * u + v] = static_cast<float>(0.125 * g[u] * g[v]);
        inv[8 * u + v] = static_cast<float>(0.125 * h[u] * h[v]);
      }
  }
};
inline const FloatTables& floatTables() { static FloatTables t; return t; }

// Every operation on a named float variable: no contraction can arise.
inline void fwdPass32(float x[8]) {
  const float k0 = 0.70710677f, k1 = 0.41421357f, k3 = 0.76536685f, k5 = 1.0823922f;
  volatile float s1 = x[6] + x[1], d1 = x[1] - x[6], s2 = x[5] + x[2], d2 = x[2] - x[5];
  volatile float s0 = x[7] + x[0], d0 = x[0] - x[7], s3 = x[3] + x[4], d3 = x[3] - x[4];
  volatile float a = s1 - s2, t1 = s2 + s1, b = s0 - s3;
  volatile float ab = a + b;
  volatile float c = ab * k0, t0 = s3 + s0;
  float o[8];
  o[0] = t1 + t0; o[4] = t0 - t1; o[6] = b - c; o[2] = c + b;
  volatile float p = d3 + d2, q = d2 + d1, r = d1 + d0, A0 = q * k3, A1 = d0 * k5;
  volatile float kp = k1 * p, rk = r * k1;
  volatile float w = kp + r, v = p - rk, A = A0 + A1, B = A1 - A0;
  o[1] = w + A; o[7] = A - w; o[5] = v + B; o[3] = B - v;
  for (int i = 0; i < 8; ++i) x[i] = o[i];
}

inline void invPass32(float x[8], const float* n) {
  const float k1 = 0.41421357f, k2 = 1.4142135f, k3 = 0.76536685f, k4 = 0.5411961f;
  volatile float a1 = x[1], a3 = x[3], a5 = x[5], a7 = x[7], a2 = x[2], a6 = x[6];
  volatile float s04 = x[0] + x[4], d04 = x[0] - x[4];
  volatile float E0 = s04, E1 = d04;
  if (n) {
    a1 = x[1] * n[1]; a3 = x[3] * n[3]; a5 = x[5] * n[5]; a7 = x[7] * n[7]; a2 = x[2] * n[2]; a6 = x[6] * n[6];
    E0 = s04 * n[0]; E1 = d04 * n[0];
  }
  volatile float D35 = a3 - a5, S35 = a5 + a3, S17 = a7 + a1, D17 = a1 - a7;
  volatile float S = S35 + S17, Dd = S17 - S35;
  volatile float t1 = k1 * D35, t2 = k1 * D17;
  volatile float Q = t1 + D17, R = t2 - D35, Sp = S * k4, Dp = Dd * k3;
  volatile float Q2 = Q - Sp;
  volatile float M = Dp - Q2;
  volatile float S26 = a6 + a2, d26 = a2 - a6;
  volatile float D26 = d26 * k2;
  volatile float P0 = S26 + E0, P3 = E0 - S26, T = D26 - S26;
  volatile float R2 = R - M, G = T + E1, H = E1 - T;
  x[0] = Sp + P0; x[7] = P0 - Sp; x[3] = R2 + P3; x[4] = P3 - R2;
  x[1] = Q2 + G; x[6] = G - Q2; x[2] = M + H; x[5] = H - M;
}

inline void fwd32(const float in[64], float out[64]) {
  float b[64];
  std::memcpy(b, in, sizeof b);
  for (int r = 0; r < 8; ++r) fwdPass32(b + 8 * r);
  for (int c = 0; c < 8; ++c) {
    float col[8];
    for (int i = 0; i < 8; ++i) col[i] = b[8 * i + c];
    fwdPass32(col);
    for (int i = 0; i < 8; ++i) b[8 * i + c] = col[i];
  }
  for (int i = 0; i < 64; ++i) out[i] = b[i] * floatTables().frw[i];
}

inline void inv32(const float in[64], float out[64]) {
  float b[64];
  std::memcpy(b, in, sizeof b);
  for (int r = 0; r < 8; ++r) invPass32(b + 8 * r, floatTables().inv + 8 * r);
  for (int c = 0; c < 8; ++c) {
    float col[8];
    for (int i = 0; i < 8; ++i) col[i] = b[8 * i + c];
    invPass32(col, nullptr);
    for (int i = 0; i < 8; ++i) b[8 * i + c] = col[i];
  }
  std::memcpy(out, b, sizeof b);
}

// Float to 32-bit integer as x86 converts: NaN and out-of-range give INT32_MIN.
inline int64_t toIntRound(float f) {
  if (std::isnan(f) || f >= 2147483648.0f || f < -2147483648.0f) return INT32_MIN;
  return static_cast<int64_t>(std::nearbyint(static_cast<double>(f)));
}
inline int64_t toIntTrunc(float f) {
  if (std::isnan(f) || f >= 2147483648.0f || f < -2147483648.0f) return INT32_MIN;
  return static_cast<int64_t>(std::trunc(static_cast<double>(f)));
}

}  // namespace ref::bp
