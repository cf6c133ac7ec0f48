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
inline uint8_t clip8(int v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

inline bool aligned16(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15u) == 0; }

// ---- Arithmetic of the fast bodies (also the scalar twins) ----

// 128.5 in the 14-bit scale: level shift and rounding in one constant.
constexpr int kDecBias = 2105344;
struct Rgb {
  int r, g, b;
};
// Decoding: the sums wrap at 16 bits before the limit to 0..255.
inline Rgb decodeFast(int y, int cb, int cr) {
  const int dR = (22970 * cr + kDecBias) >> 14;
  const int dG = (-5638 * cb - 11700 * cr + kDecBias) >> 14;
  const int dB = (29032 * cb + kDecBias) >> 14;
  return {clip8(static_cast<int16_t>(y + dR)), clip8(static_cast<int16_t>(y + dG)),
          clip8(static_cast<int16_t>(y + dB))};
}
// Decoding, careful body: no rounding, exact products.
inline Rgb decodeScalar(int y, int cb, int cr) {
  const int64_t c = cb, r = cr;
  return {clip8(y + static_cast<int>((91881 * r) >> 16) + 128),
          clip8(y + static_cast<int>((-22554 * c - 46802 * r) >> 16) + 128),
          clip8(y + static_cast<int>((116130 * c) >> 16) + 128)};
}

// 127.5 in the 14-bit scale.
constexpr int kEncYBias = 2088960;
inline int encodeYFast(int r, int g, int b) { return (4899 * r + 9617 * g + 1868 * b - kEncYBias) >> 14; }
// Chroma from sums over 2^m pixels with rounding term rnd.
inline int encodeCbFast(int sr, int sg, int sb, int rnd, int m) {
  return (-2764 * sr - 5428 * sg + 8192 * sb + rnd) >> (14 + m);
}
inline int encodeCrFast(int sr, int sg, int sb, int rnd, int m) {
  return (8192 * sr - 6860 * sg - 1332 * sb + rnd) >> (14 + m);
}
// Careful bodies (RGB/BGR 411, CMYK): truncating, no rounding term.
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

// Fast bodies of the exported members (they test nothing).
#define ZVP_MCU_DEC_BODIES(X)                                                    \
  X(YCbCr444ToRGBLS_MCU_16s8u_P3C3R, RGB, S444, Zvp8u, 3)                        \
  X(YCbCr422ToRGBLS_MCU_16s8u_P3C3R, RGB, S422, Zvp8u, 3)                        \
  X(YCbCr411ToRGBLS_MCU_16s8u_P3C3R, RGB, S411, Zvp8u, 3)                        \
  X(YCbCr444ToBGRLS_MCU_16s8u_P3C3R, BGR, S444, Zvp8u, 3)                        \
  X(YCbCr422ToBGRLS_MCU_16s8u_P3C3R, BGR, S422, Zvp8u, 3)                        \
  X(YCbCr411ToBGRLS_MCU_16s8u_P3C3R, BGR, S411, Zvp8u, 3)                        \
  X(YCCK444ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S444, Zvp8u, 4)                       \
  X(YCCK422ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S422, Zvp8u, 4)                       \
  X(YCCK411ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S411, Zvp8u, 4)                       \
  X(YCbCr444ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S444, Zvp16u, 3)                \
  X(YCbCr422ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S422, Zvp16u, 3)                \
  X(YCbCr411ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S411, Zvp16u, 3)                \
  X(YCbCr444ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S444, Zvp16u, 3)                \
  X(YCbCr422ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S422, Zvp16u, 3)                \
  X(YCbCr411ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S411, Zvp16u, 3)                \
  X(SampleUp444LS_MCU_16s8u_P3C3R, Up, S444, Zvp8u, 3)                           \
  X(SampleUp422LS_MCU_16s8u_P3C3R, Up, S422, Zvp8u, 3)                           \
  X(SampleUp411LS_MCU_16s8u_P3C3R, Up, S411, Zvp8u, 3)                           \
  X(Join422LS_MCU_16s8u_P3C2R, Join422, S422, Zvp8u, 3)

#define ZVP_MCU_ENC_BODIES(X)                                                    \
  X(RGBToYCbCr444LS_MCU_8u16s_C3P3R, RGB, S444, Zvp8u, 3)                        \
  X(RGBToYCbCr422LS_MCU_8u16s_C3P3R, RGB, S422, Zvp8u, 3)                        \
  X(RGBToYCbCr411LS_MCU_8u16s_C3P3R, RGB, S411, Zvp8u, 3)                        \
  X(BGRToYCbCr444LS_MCU_8u16s_C3P3R, BGR, S444, Zvp8u, 3)                        \
  X(BGRToYCbCr422LS_MCU_8u16s_C3P3R, BGR, S422, Zvp8u, 3)                        \
  X(BGRToYCbCr411LS_MCU_8u16s_C3P3R, BGR, S411, Zvp8u, 3)                        \
  X(CMYKToYCCK444LS_MCU_8u16s_C4P4R, CMYK, S444, Zvp8u, 4)                       \
  X(CMYKToYCCK422LS_MCU_8u16s_C4P4R, CMYK, S422, Zvp8u, 4)                       \
  X(CMYKToYCCK411LS_MCU_8u16s_C4P4R, CMYK, S411, Zvp8u, 4)                       \
  X(BGR555ToYCbCr444LS_MCU_16u16s_C3P3R, BGR555, S444, Zvp16u, 3)                \
  X(BGR555ToYCbCr422LS_MCU_16u16s_C3P3R, BGR555, S422, Zvp16u, 3)                \
  X(BGR555ToYCbCr411LS_MCU_16u16s_C3P3R, BGR555, S411, Zvp16u, 3)                \
  X(BGR565ToYCbCr444LS_MCU_16u16s_C3P3R, BGR565, S444, Zvp16u, 3)                \
  X(BGR565ToYCbCr422LS_MCU_16u16s_C3P3R, BGR565, S422, Zvp16u, 3)                \
  X(BGR565ToYCbCr411LS_MCU_16u16s_C3P3R, BGR565, S411, Zvp16u, 3)                \
  X(SampleDown444LS_MCU_8u16s_C3P3R, Down, S444, Zvp8u, 3)                       \
  X(SampleDown422LS_MCU_8u16s_C3P3R, Down, S422, Zvp8u, 3)                       \
  X(SampleDown411LS_MCU_8u16s_C3P3R, Down, S411, Zvp8u, 3)                       \
  X(Split422LS_MCU_8u16s_C2P3R, Split422, S422, Zvp8u, 3)

#define ZVP_MCU_DECLARE_DEC(name, model, samp, T, n) \
  void ownpj_##name(const Zvp16s* const pSrcMCU[n], T* pDst, int dstStep);
#define ZVP_MCU_DECLARE_ENC(name, model, samp, T, n) \
  void ownpj_##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]);
ZVP_MCU_DEC_BODIES(ZVP_MCU_DECLARE_DEC)
ZVP_MCU_ENC_BODIES(ZVP_MCU_DECLARE_ENC)
#undef ZVP_MCU_DECLARE_DEC
#undef ZVP_MCU_DECLARE_ENC
