// MCU functions: one minimum coded unit between pixels and level-shifted
// 16-bit blocks. Private to the pjdecccss / pjencccss modules and their tests.
//
// Layout of one MCU: sampling 444 is 8x8 pixels (one block per component),
// 422 is 16x8 (Y and K: left, right), 411 is 16x16 (Y and K: top left, top
// right, bottom left, bottom right). Cb and Cr are always one block; pixel
// (x, y) takes chroma position 8 (y / sy) + x / sx.
//
// Every kernel is one template over (direction, colour model, sampling): the
// scalar twins of the fast bodies, the careful scalar bodies and the SSE4.1
// fast bodies (SSE4.1 and AVX2) each fill a table
// [model][sampling].
#pragma once

#include <cstdint>
#include <cstring>

#include "sample/colour.h"
#include "zvpj.h"

namespace zvp::mcu {

enum class Samp : int { S444 = 0, S422 = 1, S411 = 2 };
constexpr int kSamplings = 3;

// Decoding outputs.
enum class Dec : int { RGB = 0, BGR, CMYK, BGR555, BGR565, Up, Join422 };
constexpr int kDecModels = 7;
// Encoding inputs.
enum class Enc : int { RGB = 0, BGR, CMYK, BGR555, BGR565, Down, Split422 };
constexpr int kEncModels = 7;

constexpr int mcuWidth(Samp s) { return s == Samp::S444 ? 8 : 16; }
constexpr int mcuHeight(Samp s) { return s == Samp::S411 ? 16 : 8; }
constexpr int chromaSx(Samp s) { return s == Samp::S444 ? 1 : 2; }
constexpr int chromaSy(Samp s) { return s == Samp::S411 ? 2 : 1; }
// log2 of the pixels per chroma sample.
constexpr int chromaLog(Samp s) { return s == Samp::S444 ? 0 : (s == Samp::S422 ? 1 : 2); }

// Offset of pixel (x, y) in a Y (or K) run, and in a chroma block.
constexpr int lumaIndex(int x, int y) { return 64 * (2 * (y / 8) + x / 8) + 8 * (y % 8) + x % 8; }
template <Samp S>
constexpr int chromaIndex(int x, int y) {
  return 8 * (y / chromaSy(S)) + x / chromaSx(S);
}

// Blocks may sit at any address: element access goes through memcpy.
inline int16_t ld16(const Zvp16s* p) {
  int16_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
inline void st16(Zvp16s* p, int v) {
  const int16_t s = static_cast<int16_t>(v);
  std::memcpy(p, &s, sizeof s);
}
// The 0..255 limit and the 555 / 565 field layouts are those of the plane
// colour functions.
inline uint8_t clip8(int v) { return cc::clip(v); }
template <auto M>  // Dec or Enc
constexpr cc::Packed packedLayout() {
  static_assert(M == decltype(M)::BGR555 || M == decltype(M)::BGR565);
  return M == decltype(M)::BGR555 ? cc::Packed::BGR555 : cc::Packed::BGR565;
}

inline bool aligned16(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15u) == 0; }

// ---- Arithmetic of the fast bodies (also the scalar twins) ----

// 128.5 in the 14-bit scale: level shift and rounding in one constant.
constexpr int kDecBias = 2105344;
struct Rgb {
  int r, g, b;
};
// Decoding: the sums wrap at 16 bits before the limit to 0..255. Not
// cc::decodeB on purpose: the bias here rounds at 8192, that one at 8145, 8302, 8135.
inline Rgb decodeFast(int y, int cb, int cr) {
  const int dR = (22970 * cr + kDecBias) >> 14;
  const int dG = (-5638 * cb - 11700 * cr + kDecBias) >> 14;
  const int dB = (29032 * cb + kDecBias) >> 14;
  return {clip8(static_cast<int16_t>(y + dR)), clip8(static_cast<int16_t>(y + dG)),
          clip8(static_cast<int16_t>(y + dB))};
}
// Decoding, careful body: no rounding, exact products (cc::decodeTail rounds).
inline Rgb decodeScalar(int y, int cb, int cr) {
  const int64_t c = cb, r = cr;
  return {clip8(y + static_cast<int>((91881 * r) >> 16) + 128),
          clip8(y + static_cast<int>((-22554 * c - 46802 * r) >> 16) + 128),
          clip8(y + static_cast<int>((116130 * c) >> 16) + 128)};
}

// Y is set 14 of the plane encoders less the level shift (its limit never
// acts: the coefficients sum to 16384).
inline int encodeYFast(int r, int g, int b) { return cc::encode14(r, g, b).y - 128; }
// Chroma from sums over 2^m pixels with rounding term rnd (set 14 of the
// plane encoders is the case m = 0, rnd = 8192, plus 128; kept apart for the sums).
inline int encodeCbFast(int sr, int sg, int sb, int rnd, int m) {
  return (-2764 * sr - 5428 * sg + 8192 * sb + rnd) >> (14 + m);
}
inline int encodeCrFast(int sr, int sg, int sb, int rnd, int m) {
  return (8192 * sr - 6860 * sg - 1332 * sb + rnd) >> (14 + m);
}
// Careful bodies (RGB/BGR 411, CMYK): truncating, no rounding term (unlike
// the cc_table rule of the plane encoders, which rounds Y).
inline int encodeYScalar(int r, int g, int b) { return ((19595 * r + 38470 * g + 7471 * b) >> 16) - 128; }
inline int encodeCbScalar(int sr, int sg, int sb, int shift) { return (-11059 * sr - 21709 * sg + 32768 * sb) >> shift; }
inline int encodeCrScalar(int sr, int sg, int sb, int shift) { return (32768 * sr - 27439 * sg - 5329 * sb) >> shift; }

// The chroma rounding term of a fast encoder: 8192 per pixel of the sample,
// but 8133 in the 444 CMYK body.
constexpr int chromaRound(Enc e, Samp s) {
  return (e == Enc::CMYK && s == Samp::S444) ? 8133 : (8192 << chromaLog(s));
}

// ---- Kernel tables ----

using DecFn = void (*)(const Zvp16s* const* mcu, void* dst, int dstStep);
using EncFn = void (*)(const void* src, int srcStep, Zvp16s* const* mcu);
using DecTable = DecFn[kDecModels][kSamplings];
using EncTable = EncFn[kEncModels][kSamplings];

// Fast bodies: scalar twins and SSE4.1 kernels (same results).
extern const DecTable kDecFastScalar;
extern const EncTable kEncFastScalar;
#if !defined(ZVP_NO_X86)
extern const DecTable kDecFastSSE41;
extern const EncTable kEncFastSSE41;
// Two 8-pixel groups per register, one per 128-bit lane.
extern const DecTable kDecFastAVX2;
extern const EncTable kEncFastAVX2;
#endif
// Careful scalar bodies (only the entries of members that have one are set).
extern const DecTable kDecCareful;
extern const EncTable kEncCareful;

// The one dispatch point of the family: the fast-body kernel for this processor.
DecFn decodeFastKernel(Dec d, Samp s);
EncFn encodeFastKernel(Enc e, Samp s);

}  // namespace zvp::mcu

// Fast bodies of the exported members (they test nothing). Each colour model
// comes in the three samplings, named pre##444##post, pre##422##post, pre##411##post.
#define ZVP_MCU_3(X, pre, post, model, T, n) \
  X(pre##444##post, model, S444, T, n)       \
  X(pre##422##post, model, S422, T, n)       \
  X(pre##411##post, model, S411, T, n)

#define ZVP_MCU_DEC_BODIES(X)                                             \
  ZVP_MCU_3(X, YCbCr, ToRGBLS_MCU_16s8u_P3C3R, RGB, Zvp8u, 3)             \
  ZVP_MCU_3(X, YCbCr, ToBGRLS_MCU_16s8u_P3C3R, BGR, Zvp8u, 3)             \
  ZVP_MCU_3(X, YCCK, ToCMYKLS_MCU_16s8u_P4C4R, CMYK, Zvp8u, 4)            \
  ZVP_MCU_3(X, YCbCr, ToBGR555LS_MCU_16s16u_P3C3R, BGR555, Zvp16u, 3)     \
  ZVP_MCU_3(X, YCbCr, ToBGR565LS_MCU_16s16u_P3C3R, BGR565, Zvp16u, 3)     \
  ZVP_MCU_3(X, SampleUp, LS_MCU_16s8u_P3C3R, Up, Zvp8u, 3)                \
  X(Join422LS_MCU_16s8u_P3C2R, Join422, S422, Zvp8u, 3)

#define ZVP_MCU_ENC_BODIES(X)                                             \
  ZVP_MCU_3(X, RGBToYCbCr, LS_MCU_8u16s_C3P3R, RGB, Zvp8u, 3)             \
  ZVP_MCU_3(X, BGRToYCbCr, LS_MCU_8u16s_C3P3R, BGR, Zvp8u, 3)             \
  ZVP_MCU_3(X, CMYKToYCCK, LS_MCU_8u16s_C4P4R, CMYK, Zvp8u, 4)            \
  ZVP_MCU_3(X, BGR555ToYCbCr, LS_MCU_16u16s_C3P3R, BGR555, Zvp16u, 3)     \
  ZVP_MCU_3(X, BGR565ToYCbCr, LS_MCU_16u16s_C3P3R, BGR565, Zvp16u, 3)     \
  ZVP_MCU_3(X, SampleDown, LS_MCU_8u16s_C3P3R, Down, Zvp8u, 3)            \
  X(Split422LS_MCU_8u16s_C2P3R, Split422, S422, Zvp8u, 3)

#define ZVP_MCU_DECLARE_DEC(name, model, samp, T, n) \
  void ownpj_##name(const Zvp16s* const pSrcMCU[n], T* pDst, int dstStep);
#define ZVP_MCU_DECLARE_ENC(name, model, samp, T, n) \
  void ownpj_##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]);
ZVP_MCU_DEC_BODIES(ZVP_MCU_DECLARE_DEC)
ZVP_MCU_ENC_BODIES(ZVP_MCU_DECLARE_ENC)
#undef ZVP_MCU_DECLARE_DEC
#undef ZVP_MCU_DECLARE_ENC
