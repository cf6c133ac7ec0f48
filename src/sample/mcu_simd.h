// MCU functions: the pieces shared by the SSE4.1 and AVX2 fast bodies.
// Lane operations come in one overload per register width (128 bits always,
// 256 bits when the including file is compiled for AVX2), so each formula
// below is written once, as a template over the register type; every
// operation stays within its 128-bit lane. Shuffle tables are built once by
// rule and broadcast to both lanes by the AVX2 kernels.
#pragma once

#include <immintrin.h>

#include "sample/mcu.h"

namespace zvp::mcu {

// Internal linkage on purpose: each vector file compiles these helpers with
// its own instruction set, and one file's copy must never stand in for another's.
namespace {

// Two 16-bit coefficients as one 32-bit madd operand (a in the low half).
constexpr int32_t pairBits(int16_t a, int16_t b) {
  return static_cast<int32_t>((static_cast<uint32_t>(static_cast<uint16_t>(b)) << 16) | static_cast<uint16_t>(a));
}

// One overload of each lane operation per register type V, with intrinsic
// prefix P (_mm, _mm256) and whole-register suffix S (si128, si256). The
// first argument of the splat / zero forms only selects the width.
#define ZVP_MCU_LANE_OPS(V, P, S)                                                      \
  inline V add16(V a, V b) { return P##_add_epi16(a, b); }                             \
  inline V sub16(V a, V b) { return P##_sub_epi16(a, b); }                             \
  inline V min16(V a, V b) { return P##_min_epi16(a, b); }                             \
  inline V max16(V a, V b) { return P##_max_epi16(a, b); }                             \
  inline V add32(V a, V b) { return P##_add_epi32(a, b); }                             \
  inline V madd16(V a, V b) { return P##_madd_epi16(a, b); }                           \
  inline V unpacklo16(V a, V b) { return P##_unpacklo_epi16(a, b); }                   \
  inline V unpackhi16(V a, V b) { return P##_unpackhi_epi16(a, b); }                   \
  inline V packs32(V a, V b) { return P##_packs_epi32(a, b); }                         \
  inline V sra32(V a, __m128i n) { return P##_sra_epi32(a, n); }                       \
  inline V vand(V a, V b) { return P##_and_##S(a, b); }                                \
  inline V vor(V a, V b) { return P##_or_##S(a, b); }                                  \
  template <int N> inline V srli16(V a) { return P##_srli_epi16(a, N); }               \
  template <int N> inline V slli16(V a) { return P##_slli_epi16(a, N); }               \
  template <int N> inline V srai32(V a) { return P##_srai_epi32(a, N); }               \
  template <int N> inline V slli32(V a) { return P##_slli_epi32(a, N); }               \
  inline V splat16(V, int16_t x) { return P##_set1_epi16(x); }                         \
  inline V splat32(V, int32_t x) { return P##_set1_epi32(x); }                         \
  inline V zeroLike(V) { return P##_setzero_##S(); }

ZVP_MCU_LANE_OPS(__m128i, _mm, si128)
#if defined(__AVX2__)
ZVP_MCU_LANE_OPS(__m256i, _mm256, si256)
#endif
#undef ZVP_MCU_LANE_OPS

// (a, b) coefficients as a madd operand of the width of `like`.
template <class V>
inline V coefPair(V like, int16_t a, int16_t b) {
  return splat32(like, pairBits(a, b));
}

// ---- Encoding ----

// (ca a + cb b + cc c + cd d) >> shift for every lane, packed with
// saturation to 16 bits; cab = (ca, cb) and ccd = (cc, cd) pairs.
template <class V>
inline V dot(V a, V b, V c, V d, V cab, V ccd, int shift) {
  const __m128i sh = _mm_cvtsi32_si128(shift);
  const V lo = add32(madd16(unpacklo16(a, b), cab), madd16(unpacklo16(c, d), ccd));
  const V hi = add32(madd16(unpackhi16(a, b), cab), madd16(unpackhi16(c, d), ccd));
  return packs32(sra32(lo, sh), sra32(hi, sh));
}

// The coefficient pairs of a fast encoder: Y = dot(r, g, b, 255), chroma =
// dot(sr, sg, sb, lanes) where `lanes` (nLanes) times the last coefficient is
// the rounding term: n x 8192 over the n pixels of a sample, or 1 x 8133.
template <class V>
struct EncCoefs {
  V nLanes, cbAB, cbCD, crAB, crCD, yAB, yCD;
};
template <Enc E, Samp S, class V>
inline EncCoefs<V> encCoefs(V like) {
  constexpr int kRound = chromaRound(E, S);
  constexpr bool kOdd = kRound == 8133;
  constexpr int16_t rb = kOdd ? 8133 : 8192;
  return {splat16(like, static_cast<int16_t>(kOdd ? 1 : (1 << chromaLog(S)))),
          coefPair(like, -2764, -5428),
          coefPair(like, 8192, rb),
          coefPair(like, 8192, -6860),
          coefPair(like, -1332, rb),
          coefPair(like, 4899, 9617),
          coefPair(like, 1868, -8192)};
}

// BGR555 / BGR565 pixels (B in the low field) into 8-bit R G B in 16-bit
// lanes, each field shifted up to 8 bits (the rule of zvp::cc::unpack).
template <Enc E, class V>
inline void unpackBgr(V v, V& r, V& g, V& b) {
  const V m5 = splat16(v, 31);
  b = slli16<3>(vand(v, m5));
  if constexpr (E == Enc::BGR555) {
    r = slli16<3>(vand(srli16<10>(v), m5));
    g = slli16<3>(vand(srli16<5>(v), m5));
  } else {
    r = slli16<3>(srli16<11>(v));
    g = slli16<2>(vand(srli16<5>(v), splat16(v, 63)));
  }
}

// Byte gathers that spread one channel of 8 pixels into 16-bit lanes.
struct GatherBytes {
  alignas(16) int8_t lo[16];
  alignas(16) int8_t hi[16];
};
// 8 pixels of `size` bytes starting in lo (16 bytes) and continuing in hi.
constexpr GatherBytes makeGather(int size, int ch) {
  GatherBytes g{};
  for (int i = 0; i < 8; ++i) {
    const int at = size * i + ch;
    g.lo[2 * i] = static_cast<int8_t>(at < 16 ? at : -128);
    g.hi[2 * i] = static_cast<int8_t>(at >= 16 ? at - 16 : -128);
    g.lo[2 * i + 1] = g.hi[2 * i + 1] = -128;
  }
  return g;
}
constexpr GatherBytes kGather3[3] = {makeGather(3, 0), makeGather(3, 1), makeGather(3, 2)};
constexpr GatherBytes kGather4[4] = {makeGather(4, 0), makeGather(4, 1), makeGather(4, 2), makeGather(4, 3)};
// Y Cb Y Cr: Y of pixel i at byte 2i, its pair's Cb at 4 (i / 2) + 1, Cr at 4 (i / 2) + 3.
constexpr GatherBytes makeGather422(int ch) {
  GatherBytes g{};
  for (int i = 0; i < 8; ++i) {
    const int at = ch == 0 ? 2 * i : 4 * (i / 2) + (ch == 1 ? 1 : 3);
    g.lo[2 * i] = static_cast<int8_t>(at);
    g.lo[2 * i + 1] = -128;
    g.hi[2 * i] = g.hi[2 * i + 1] = -128;
  }
  return g;
}
constexpr GatherBytes kGather422[3] = {makeGather422(0), makeGather422(1), makeGather422(2)};

template <Enc E>
constexpr int bytesPerPixel() {
  return (E == Enc::RGB || E == Enc::BGR || E == Enc::Down) ? 3 : (E == Enc::CMYK ? 4 : 2);
}

// ---- Decoding ----

// Low 16 bits of each 32-bit lane of lo (lanes 0..3) and hi (lanes 4..7).
template <class V>
inline V low16(V lo, V hi) {
  return packs32(srai32<16>(slli32<16>(lo)), srai32<16>(slli32<16>(hi)));
}

// madd of interleaved (a, b) pairs with coef, bias added, then >> 14, as 16-bit lanes.
template <class V>
inline V term(V a, V b, V coef, V bias) {
  const V lo = srai32<14>(add32(madd16(unpacklo16(a, b), coef), bias));
  const V hi = srai32<14>(add32(madd16(unpackhi16(a, b), coef), bias));
  return low16(lo, hi);
}

// y + d for R G B (the arithmetic of decodeFast), wrapped at 16 bits, not yet limited.
template <class V>
inline void colour(V y, V cb, V cr, V& r, V& g, V& b) {
  const V zero = zeroLike(y), bias = splat32(y, kDecBias);
  r = add16(y, term(cr, zero, coefPair(y, 22970, 0), bias));
  g = add16(y, term(cb, cr, coefPair(y, -5638, -11700), bias));
  b = add16(y, term(cb, zero, coefPair(y, 29032, 0), bias));
}

// R G B limited to 0..255, then packed as BGR555 / BGR565 (the rule of zvp::cc::pack).
template <Dec D, class V>
inline V packBgr(V r, V g, V b) {
  const V zero = zeroLike(r), max = splat16(r, 255);
  r = min16(max16(r, zero), max);
  g = min16(max16(g, zero), max);
  b = min16(max16(b, zero), max);
  if constexpr (D == Dec::BGR555)
    return vor(vor(srli16<3>(b), slli16<5>(srli16<3>(g))), slli16<10>(srli16<3>(r)));
  else
    return vor(vor(srli16<3>(b), slli16<5>(srli16<2>(g))), slli16<11>(srli16<3>(r)));
}

// Shuffle masks that interleave 8 pixels of three byte channels, held as
// first = [c0 x8, c1 x8] and second = [c2 x8, ...], into 24 bytes; swap02
// exchanges channels 0 and 2 in the output.
struct MaskBytes {
  alignas(16) int8_t a[32];
  alignas(16) int8_t b[32];
};
constexpr MaskBytes makeMasks(bool swap02) {
  MaskBytes m{};
  for (int j = 0; j < 32; ++j) {
    const int p = j / 3;
    int c = j % 3;
    if (swap02 && c != 1) c = 2 - c;
    m.a[j] = static_cast<int8_t>(j < 24 && c < 2 ? 8 * c + p : -128);
    m.b[j] = static_cast<int8_t>(j < 24 && c == 2 ? p : -128);
  }
  return m;
}
constexpr MaskBytes kMasks[2] = {makeMasks(false), makeMasks(true)};

inline __m128i load128(const int8_t* p) { return _mm_load_si128(reinterpret_cast<const __m128i*>(p)); }
#if defined(__AVX2__)
// A 16-byte table in both lanes.
inline __m256i bcast(const int8_t* p) { return _mm256_broadcastsi128_si256(load128(p)); }
#endif

}  // namespace

}  // namespace zvp::mcu
