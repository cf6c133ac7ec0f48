// Integer 8x8 transforms, SSE4.1: the column passes on 8 columns at a time
// (multiply-high and saturating adds), the row passes as paired
// multiply-adds. Bit for bit the scalar twins.
#include <smmintrin.h>

#include "sample/dct.h"

namespace zvp::dct {

namespace {

inline __m128i ld8(const Zvp16s* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void st8(Zvp16s* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline __m128i set8(int a, int b, int c, int d, int e, int f, int g, int h) {
  return _mm_setr_epi16(static_cast<short>(a), static_cast<short>(b), static_cast<short>(c), static_cast<short>(d),
                        static_cast<short>(e), static_cast<short>(f), static_cast<short>(g), static_cast<short>(h));
}
inline __m128i pairMask(int i, int j) {
  const char a = static_cast<char>(2 * i), b = static_cast<char>(2 * j);
  return _mm_setr_epi8(a, a + 1, b, b + 1, a, a + 1, b, b + 1, a, a + 1, b, b + 1, a, a + 1, b, b + 1);
}

// Multiply-add weights of the inverse row pass, per coefficient set.
struct InvRowW {
  __m128i w04, w26, w13, w57;
};
inline InvRowW invWeights(int set) {
  const int16_t* k = kRowSets[set];
  const int c = k[0], m1 = k[1], m2 = k[2], o1 = k[3], o2 = k[4], o3 = k[5], o4 = k[6];
  return {set8(c, c, c, -c, c, -c, c, c), set8(m1, m2, m2, -m1, -m2, m1, -m1, -m2),
          set8(o1, o2, o2, -o4, o3, -o1, o4, -o3), set8(o3, o4, -o1, -o3, o4, o2, o2, -o1)};
}

inline __m128i invRowV(__m128i x, const InvRowW& w, int32_t round) {
  const __m128i x04 = _mm_shuffle_epi8(x, pairMask(0, 4));
  const __m128i x26 = _mm_shuffle_epi8(x, pairMask(2, 6));
  const __m128i x13 = _mm_shuffle_epi8(x, pairMask(1, 3));
  const __m128i x57 = _mm_shuffle_epi8(x, pairMask(5, 7));
  const __m128i e = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(x04, w.w04), _mm_madd_epi16(x26, w.w26)),
                                  _mm_set1_epi32(round));
  const __m128i d = _mm_add_epi32(_mm_madd_epi16(x13, w.w13), _mm_madd_epi16(x57, w.w57));
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(e, d), 11);
  const __m128i hi = _mm_shuffle_epi32(_mm_srai_epi32(_mm_sub_epi32(e, d), 11), 0x1B);
  return _mm_packs_epi32(lo, hi);
}

inline __m128i adds(__m128i a, __m128i b) { return _mm_adds_epi16(a, b); }
inline __m128i subs(__m128i a, __m128i b) { return _mm_subs_epi16(a, b); }
inline __m128i mulhi(__m128i a, int16_t k) { return _mm_mulhi_epi16(a, _mm_set1_epi16(k)); }

// The odd half of the inverse column pass (rows 1, 3, 5, 7): a + b, a - b,
// d + c and d - c.
struct OddCol {
  __m128i ab, amb, dc, dmc;
};
inline OddCol invOddCol(__m128i r1, __m128i r3, __m128i r5, __m128i r7) {
  const __m128i a = adds(mulhi(r7, _tg_1_16), r1);
  const __m128i d = subs(mulhi(r1, _tg_1_16), r7);
  const __m128i b = adds(adds(mulhi(r5, _tg_3_16), r5), r3);
  const __m128i c = subs(r5, adds(mulhi(r3, _tg_3_16), r3));
  return {adds(a, b), subs(a, b), adds(d, c), subs(d, c)};
}

// The parts of the full inverse column pass besides rows 0 and 4: the odd
// sums ab and dc, the even rotation e, f of rows 2 and 6, and g, h.
struct ColParts {
  __m128i ab, dc, e, f, g, h;
};
inline ColParts invColParts(__m128i r1, __m128i r2, __m128i r3, __m128i r5, __m128i r6, __m128i r7) {
  const OddCol o = invOddCol(r1, r3, r5, r7);
  const __m128i e = adds(mulhi(r6, _tg_2_16), r2);
  const __m128i f = subs(mulhi(r2, _tg_2_16), r6);
  const __m128i X = adds(o.amb, o.dmc), Y = subs(o.amb, o.dmc);
  return {o.ab, o.dc, e, f, adds(X, mulhi(X, _cos_4_16)), adds(Y, mulhi(Y, _cos_4_16))};
}

}  // namespace

namespace {

// The inverse on 8 rows of coefficients already in registers.
inline void invRegs(const __m128i x[8], Zvp16s* pDst) {
  const InvRowW w0 = invWeights(0), w1 = invWeights(1), w2 = invWeights(2), w3 = invWeights(3);
  const __m128i r0 = invRowV(x[0], w0, _round_i[0]);
  const __m128i r1 = invRowV(x[1], w1, _round_i[1]);
  const __m128i r2 = invRowV(x[2], w2, _round_i[2]);
  const __m128i r3 = invRowV(x[3], w3, _round_i[3]);
  const __m128i r4 = invRowV(x[4], w0, _round_i[4]);
  const __m128i r5 = invRowV(x[5], w3, _round_i[5]);
  const __m128i r6 = invRowV(x[6], w2, _round_i[6]);
  const __m128i r7 = invRowV(x[7], w1, _round_i[7]);
  const ColParts cp = invColParts(r1, r2, r3, r5, r6, r7);
  const __m128i ab = cp.ab, dc = cp.dc, e = cp.e, f = cp.f, g = cp.g, h = cp.h;
  const __m128i s = adds(r0, r4), t = subs(r0, r4);
  const __m128i se = adds(s, e), sme = subs(s, e), tf = adds(t, f), tmf = subs(t, f);
  st8(pDst + 0, _mm_srai_epi16(adds(se, ab), 6));
  st8(pDst + 8, _mm_srai_epi16(adds(tf, g), 6));
  st8(pDst + 16, _mm_srai_epi16(adds(tmf, h), 6));
  st8(pDst + 24, _mm_srai_epi16(adds(sme, dc), 6));
  st8(pDst + 32, _mm_srai_epi16(subs(sme, dc), 6));
  st8(pDst + 40, _mm_srai_epi16(subs(tmf, h), 6));
  st8(pDst + 48, _mm_srai_epi16(subs(tf, g), 6));
  st8(pDst + 56, _mm_srai_epi16(subs(se, ab), 6));
}

}  // namespace

void invSSE41(const Zvp16s* pSrc, Zvp16s* pDst) {
  __m128i x[8];
  for (int r = 0; r < 8; ++r) x[r] = ld8(pSrc + 8 * r);
  invRegs(x, pDst);
}

// Dequantisation of the top-left N x N corner (rows 0 to N-1 multiplied,
// low 16 bits) and the inverse of the block with everything else zero.
template <int N>
void invCornerQuantSSE41(const Zvp16s* pSrc, const Zvp16u* pTable, Zvp16s* pDst) {
  const __m128i keep = N == 2 ? _mm_setr_epi16(-1, -1, 0, 0, 0, 0, 0, 0) : _mm_setr_epi16(-1, -1, -1, -1, 0, 0, 0, 0);
  __m128i x[8];
  for (int r = 0; r < 8; ++r)
    x[r] = r < N ? _mm_and_si128(_mm_mullo_epi16(ld8(pSrc + 8 * r), _mm_loadu_si128(reinterpret_cast<const __m128i*>(pTable + 8 * r))), keep)
                 : _mm_setzero_si128();
  invRegs(x, pDst);
}
template void invCornerQuantSSE41<2>(const Zvp16s*, const Zvp16u*, Zvp16s*);
template void invCornerQuantSSE41<4>(const Zvp16s*, const Zvp16u*, Zvp16s*);

namespace {

struct FwdRowW {
  __m128i a01, a23, b01, b23;
};
inline FwdRowW fwdWeights(int set) {
  const int16_t* k = kRowSets[set];
  const int c = k[0], m1 = k[1], m2 = k[2], o1 = k[3], o2 = k[4], o3 = k[5], o4 = k[6];
  return {set8(c, c, m1, m2, c, -c, m2, -m1), set8(c, c, -m2, -m1, -c, c, m1, -m2),
          set8(o1, o2, o2, -o4, o3, -o1, o4, -o3), set8(o3, o4, -o1, -o3, o4, o2, o2, -o1)};
}

inline __m128i fwdRowV(__m128i y, const FwdRowW& w) {
  const __m128i rev = _mm_shuffle_epi8(y, _mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
  const __m128i a = _mm_adds_epi16(y, rev);  // a0..a3 in lanes 0..3
  const __m128i b = _mm_subs_epi16(y, rev);  // b0..b3
  const __m128i rnd = _mm_set1_epi32(_round_frw_row);
  const __m128i even = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi32(a, 0x00), w.a01),
                                                   _mm_madd_epi16(_mm_shuffle_epi32(a, 0x55), w.a23)),
                                     rnd);
  const __m128i odd = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi32(b, 0x00), w.b01),
                                                  _mm_madd_epi16(_mm_shuffle_epi32(b, 0x55), w.b23)),
                                    rnd);
  const __m128i packed = _mm_packs_epi32(_mm_srai_epi32(even, 20), _mm_srai_epi32(odd, 20));
  return _mm_shuffle_epi8(packed, _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
}

}  // namespace

void fwdSSE41(const Zvp16s* pSrc, Zvp16s* pDst) {
  const __m128i x0 = ld8(pSrc + 0), x1 = ld8(pSrc + 8), x2 = ld8(pSrc + 16), x3 = ld8(pSrc + 24);
  const __m128i x4 = ld8(pSrc + 32), x5 = ld8(pSrc + 40), x6 = ld8(pSrc + 48), x7 = ld8(pSrc + 56);
  const __m128i one = _mm_set1_epi16(1);
  const __m128i S1 = _mm_slli_epi16(adds(x1, x6), 3), S2 = _mm_slli_epi16(adds(x2, x5), 3);
  const __m128i s0 = adds(x0, x7), s3 = adds(x3, x4);
  const __m128i B = subs(S1, S2), Q = adds(S1, S2);
  const __m128i A = _mm_slli_epi16(subs(s0, s3), 3), P = _mm_slli_epi16(adds(s0, s3), 3);
  const __m128i y0 = adds(P, Q), y4 = subs(P, Q);
  const __m128i y2 = _mm_or_si128(adds(mulhi(B, _tg_2_16), A), one);
  const __m128i y6 = _mm_or_si128(subs(mulhi(A, _tg_2_16), B), one);
  const __m128i D1 = _mm_slli_epi16(subs(x1, x6), 4), D2 = _mm_slli_epi16(subs(x2, x5), 4);
  const __m128i D3 = _mm_slli_epi16(subs(x3, x4), 3), D0 = _mm_slli_epi16(subs(x0, x7), 3);
  const __m128i U = _mm_or_si128(mulhi(adds(D1, D2), _ocos_4_16), one);
  const __m128i V = mulhi(subs(D1, D2), _ocos_4_16);
  const __m128i W = adds(D3, V), Z = subs(D3, V), H = adds(D0, U), G = subs(D0, U);
  const __m128i y1 = _mm_or_si128(adds(mulhi(W, _tg_1_16), H), one);
  const __m128i y7 = subs(mulhi(H, _tg_1_16), W);
  const __m128i y3 = subs(G, adds(mulhi(Z, _tg_3_16), Z));
  const __m128i y5 = adds(adds(mulhi(G, _tg_3_16), G), Z);
  const FwdRowW w0 = fwdWeights(0), w1 = fwdWeights(1), w2 = fwdWeights(2), w3 = fwdWeights(3);
  st8(pDst + 0, fwdRowV(y0, w0));
  st8(pDst + 8, fwdRowV(y1, w1));
  st8(pDst + 16, fwdRowV(y2, w2));
  st8(pDst + 24, fwdRowV(y3, w3));
  st8(pDst + 32, fwdRowV(y4, w0));
  st8(pDst + 40, fwdRowV(y5, w3));
  st8(pDst + 48, fwdRowV(y6, w2));
  st8(pDst + 56, fwdRowV(y7, w1));
}

void quantFwdSSE41(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable) {
  const __m128i one = _mm_set1_epi16(1);
  for (int i = 0; i < 64; i += 8) {
    const __m128i a = _mm_slli_epi16(ld8(pSrc + i), 3);
    const __m128i b = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pTable + i)), 1);
    st8(pDst + i, _mm_srai_epi16(_mm_add_epi16(_mm_mulhi_epi16(a, b), one), 1));
  }
}

void quantInvSSE41(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable) {
  for (int i = 0; i < 64; i += 8)
    st8(pDst + i, _mm_mullo_epi16(ld8(pSrc + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(pTable + i))));
}

void lsClipSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin, Zvp8u clipMax) {
  const bool limit = !(clipMin == 0 && clipMax == 255);
  const __m128i lv = _mm_set1_epi16(level);
  const __m128i lo = _mm_set1_epi8(static_cast<char>(clipMin)), hi = _mm_set1_epi8(static_cast<char>(clipMax));
  for (int y = 0; y < 8; y += 2) {
    __m128i v = _mm_packus_epi16(_mm_add_epi16(ld8(pSrc + 8 * y), lv), _mm_add_epi16(ld8(pSrc + 8 * y + 8), lv));
    if (limit) v = _mm_min_epu8(_mm_max_epu8(v, lo), hi);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + static_cast<std::ptrdiff_t>(y) * dstStep), v);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst + static_cast<std::ptrdiff_t>(y + 1) * dstStep),
                     _mm_unpackhi_epi64(v, v));
  }
}

}  // namespace zvp::dct

// Downscaling inverses: the row pass as paired multiply-adds (the unread
// coefficients paired with weight 0 or not loaded at all), the column pass on
// the 4 or 2 columns in the low lanes.
namespace zvp::dct {

namespace {

// One row of the 4x4 downscaling row pass: lanes E0+O0, E1+O1, E1-O1, E0-O0.
inline __m128i to4Row(__m128i x, int c, int p, int q, const int a[4], const int b[4], int32_t round) {
  const __m128i x02 = _mm_shuffle_epi8(x, pairMask(0, 2));
  const __m128i x61 = _mm_shuffle_epi8(x, pairMask(6, 1));
  const __m128i x35 = _mm_shuffle_epi8(x, pairMask(3, 5));
  const __m128i x7 = _mm_shuffle_epi8(x, _mm_setr_epi8(14, 15, -1, -1, 14, 15, -1, -1, 14, 15, -1, -1, 14, 15, -1, -1));
  __m128i s = _mm_madd_epi16(x02, set8(c, p, c, -p, c, -p, c, p));
  s = _mm_add_epi32(s, _mm_madd_epi16(x61, set8(q, a[0], -q, b[0], -q, -b[0], q, -a[0])));
  s = _mm_add_epi32(s, _mm_madd_epi16(x35, set8(a[1], a[2], b[1], b[2], -b[1], -b[2], -a[1], -a[2])));
  s = _mm_add_epi32(s, _mm_madd_epi16(x7, set8(a[3], 0, b[3], 0, -b[3], 0, -a[3], 0)));
  s = _mm_add_epi32(s, _mm_set1_epi32(round));
  return _mm_srai_epi32(s, 12);  // packed to 16 bits by the caller
}

}  // namespace

void to4x4SSE41(const Zvp16s* pSrc, Zvp16s* pDst) {
  static constexpr int A[4][4] = {{20995, 7373, -4926, -4176}, {29121, 10226, -6833, -5793},
                                  {27432, 9633, -6436, -5457}, {24688, 8669, -5793, -4911}};
  static constexpr int B[4][4] = {{8697, -17799, 11893, -1730}, {12063, -24688, 16496, -2399},
                                  {11363, -23256, 15539, -2260}, {10226, -20929, 13985, -2034}};
  static constexpr int C[4][3] = {{16384, 15137, -6270}, {22725, 20995, -8697}, {21407, 19777, -8192}, {19266, 17799, -7373}};
  auto row = [&](int r, int set, int32_t round) {
    return to4Row(ld8(pSrc + 8 * r), C[set][0], C[set][1], C[set][2], A[set], B[set], round);
  };
  const __m128i r01 = _mm_packs_epi32(row(0, 0, 66560), row(1, 1, 5802));
  const __m128i r23 = _mm_packs_epi32(row(2, 2, 4520), row(3, 3, 3408));
  const __m128i r56 = _mm_packs_epi32(row(5, 3, 910), row(6, 2, 1024));
  const __m128i r7 = _mm_packs_epi32(row(7, 1, 746), _mm_setzero_si128());
  const __m128i r0 = r01, r1 = _mm_srli_si128(r01, 8), r2 = r23, r3 = _mm_srli_si128(r23, 8);
  const __m128i r5 = r56, r6 = _mm_srli_si128(r56, 8);
  // Column pass in the low 4 lanes.
  const ColParts cp = invColParts(r1, r2, r3, r5, r6, r7);
  const __m128i ab = cp.ab, dc = cp.dc, e = cp.e, f = cp.f, g = cp.g, h = cp.h;
  const __m128i ef = adds(f, e), p = adds(g, ab), q = adds(h, dc), w = adds(r0, r0);
  const __m128i u = adds(ef, w), v = subs(w, ef);
  const __m128i o0 = _mm_srai_epi16(adds(p, u), 6), o1 = _mm_srai_epi16(adds(q, v), 6);
  const __m128i o2 = _mm_srai_epi16(subs(v, q), 6), o3 = _mm_srai_epi16(subs(u, p), 6);
  st8(pDst, _mm_unpacklo_epi64(o0, o1));
  st8(pDst + 8, _mm_unpacklo_epi64(o2, o3));
}

void to2x2SSE41(const Zvp16s* pSrc, Zvp16s* pDst) {
  // Rows 0, 1, 3, 5, 7: lanes (w + o, w - o) from pairs (x0, x1), (x3, x5), (x7, 0).
  auto row = [&](int r, int c, int p, int q, int u, int v, int32_t round) {
    const __m128i x = ld8(pSrc + 8 * r);
    const __m128i x01 = _mm_shuffle_epi8(x, pairMask(0, 1));
    const __m128i x35 = _mm_shuffle_epi8(x, pairMask(3, 5));
    const __m128i x7 = _mm_shuffle_epi8(x, _mm_setr_epi8(14, 15, -1, -1, 14, 15, -1, -1, 14, 15, -1, -1, 14, 15, -1, -1));
    __m128i s = _mm_madd_epi16(x01, set8(c, p, c, -p, 0, 0, 0, 0));
    s = _mm_add_epi32(s, _mm_madd_epi16(x35, set8(q, u, -q, -u, 0, 0, 0, 0)));
    s = _mm_add_epi32(s, _mm_madd_epi16(x7, set8(v, 0, -v, 0, 0, 0, 0, 0)));
    return _mm_srai_epi32(_mm_add_epi32(s, _mm_set1_epi32(round)), 12);
  };
  const __m128i z = _mm_setzero_si128();
  const __m128i r0 = _mm_packs_epi32(row(0, 16384, 14846, -5213, 3483, -2953, 67072), z);
  const __m128i r1 = _mm_packs_epi32(row(1, 22725, 20592, -7231, 4832, -4096, 5802), z);
  const __m128i r3 = _mm_packs_epi32(row(3, 19266, 17457, -6130, 4096, -3472, 3408), z);
  const __m128i r5 = _mm_packs_epi32(row(5, 19266, 17457, -6130, 4096, -3472, 910), z);
  const __m128i r7 = _mm_packs_epi32(row(7, 22725, 20592, -7231, 4832, -4096, 746), z);
  const OddCol o = invOddCol(r1, r3, r5, r7);
  const __m128i ab = o.ab, amb = o.amb, dc = o.dc;
  const __m128i g = adds(amb, mulhi(amb, _cos_4_16));
  const __m128i Z = adds(adds(ab, dc), adds(g, g));
  const __m128i w1 = adds(r0, r0), w = adds(w1, w1);
  const __m128i o0 = _mm_srai_epi16(adds(w, Z), 7), o1 = _mm_srai_epi16(subs(w, Z), 7);
  const __m128i out = _mm_unpacklo_epi32(o0, o1);  // o0[0], o0[1], o1[0], o1[1]
  _mm_storel_epi64(reinterpret_cast<__m128i*>(pDst), out);
}

}  // namespace zvp::dct
