// MCU functions, decoding side: level-shifted Y Cb Cr (K) blocks of one MCU
// to interleaved or packed pixels. Exported entries, the scalar bodies and the
// family's dispatch point.
#include "core/checks.h"
#include "core/cpu.h"
#include "sample/mcu.h"

namespace zvp::mcu {

namespace {

// One pixel loop over the whole MCU. Fast selects the arithmetic of the fast
// body (this is then its scalar twin); otherwise the careful scalar body.
template <Dec D, Samp S, bool Fast>
void decodePixels(const Zvp16s* const* mcu, void* dst, int dstStep) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S);
  for (int y = 0; y < H; ++y) {
    uint8_t* row = static_cast<uint8_t*>(dst) + static_cast<std::ptrdiff_t>(y) * dstStep;
    for (int x = 0; x < W; ++x) {
      const int li = lumaIndex(x, y), ci = chromaIndex<S>(x, y);
      const int yv = ld16(mcu[0] + li), cb = ld16(mcu[1] + ci), cr = ld16(mcu[2] + ci);
      if constexpr (D == Dec::Up) {
        row[3 * x + 0] = clip8(yv + 128);
        row[3 * x + 1] = clip8(cb + 128);
        row[3 * x + 2] = clip8(cr + 128);
      } else if constexpr (D == Dec::Join422) {
        row[2 * x + 0] = clip8(yv + 128);
        row[2 * x + 1] = clip8((x % 2 == 0 ? cb : cr) + 128);
      } else {
        const Rgb c = Fast ? decodeFast(yv, cb, cr) : decodeScalar(yv, cb, cr);
        if constexpr (D == Dec::RGB) {
          row[3 * x + 0] = static_cast<uint8_t>(c.r);
          row[3 * x + 1] = static_cast<uint8_t>(c.g);
          row[3 * x + 2] = static_cast<uint8_t>(c.b);
        } else if constexpr (D == Dec::BGR) {
          row[3 * x + 0] = static_cast<uint8_t>(c.b);
          row[3 * x + 1] = static_cast<uint8_t>(c.g);
          row[3 * x + 2] = static_cast<uint8_t>(c.r);
        } else if constexpr (D == Dec::CMYK) {
          const int k = ld16(mcu[3] + li);
          row[4 * x + 0] = static_cast<uint8_t>(255 - c.r);
          row[4 * x + 1] = static_cast<uint8_t>(255 - c.g);
          row[4 * x + 2] = static_cast<uint8_t>(255 - c.b);
          // Fast: k + 128 limited to 0..255; careful: the low 8 bits of k - 128.
          row[4 * x + 3] = Fast ? clip8(k + 128) : static_cast<uint8_t>((k - 128) & 0xFF);
        } else {
          const uint16_t p = cc::pack(packedLayout<D>(), {static_cast<uint8_t>(c.r), static_cast<uint8_t>(c.g),
                                                          static_cast<uint8_t>(c.b)});
          std::memcpy(row + 2 * x, &p, sizeof p);
        }
      }
    }
  }
}

}  // namespace

constinit const DecTable kDecFastScalar = {
    {decodePixels<Dec::RGB, Samp::S444, true>, decodePixels<Dec::RGB, Samp::S422, true>,
     decodePixels<Dec::RGB, Samp::S411, true>},
    {decodePixels<Dec::BGR, Samp::S444, true>, decodePixels<Dec::BGR, Samp::S422, true>,
     decodePixels<Dec::BGR, Samp::S411, true>},
    {decodePixels<Dec::CMYK, Samp::S444, true>, decodePixels<Dec::CMYK, Samp::S422, true>,
     decodePixels<Dec::CMYK, Samp::S411, true>},
    {decodePixels<Dec::BGR555, Samp::S444, true>, decodePixels<Dec::BGR555, Samp::S422, true>,
     decodePixels<Dec::BGR555, Samp::S411, true>},
    {decodePixels<Dec::BGR565, Samp::S444, true>, decodePixels<Dec::BGR565, Samp::S422, true>,
     decodePixels<Dec::BGR565, Samp::S411, true>},
    {decodePixels<Dec::Up, Samp::S444, true>, decodePixels<Dec::Up, Samp::S422, true>,
     decodePixels<Dec::Up, Samp::S411, true>},
    {nullptr, decodePixels<Dec::Join422, Samp::S422, true>, nullptr},
};

// The packed members have no careful body.
constinit const DecTable kDecCareful = {
    {decodePixels<Dec::RGB, Samp::S444, false>, decodePixels<Dec::RGB, Samp::S422, false>,
     decodePixels<Dec::RGB, Samp::S411, false>},
    {decodePixels<Dec::BGR, Samp::S444, false>, decodePixels<Dec::BGR, Samp::S422, false>,
     decodePixels<Dec::BGR, Samp::S411, false>},
    {decodePixels<Dec::CMYK, Samp::S444, false>, decodePixels<Dec::CMYK, Samp::S422, false>,
     decodePixels<Dec::CMYK, Samp::S411, false>},
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
    {decodePixels<Dec::Up, Samp::S444, false>, decodePixels<Dec::Up, Samp::S422, false>,
     decodePixels<Dec::Up, Samp::S411, false>},
    {nullptr, decodePixels<Dec::Join422, Samp::S422, false>, nullptr},
};

// The dispatch point of the family, for both directions.
DecFn decodeFastKernel(Dec d, Samp s) {
  const int m = static_cast<int>(d), k = static_cast<int>(s);
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return kDecFastAVX2[m][k];
    case Isa::SSE41: return kDecFastSSE41[m][k];
#endif
    default: return kDecFastScalar[m][k];
  }
}

EncFn encodeFastKernel(Enc e, Samp s) {
  const int m = static_cast<int>(e), k = static_cast<int>(s);
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return kEncFastAVX2[m][k];
    case Isa::SSE41: return kEncFastSSE41[m][k];
#endif
    default: return kEncFastScalar[m][k];
  }
}

}  // namespace zvp::mcu

#define ZVP_MCU_DEFINE_DEC(name, model, samp, T, n)                                                      \
  void ownpj_##name(const Zvp16s* const pSrcMCU[n], T* pDst, int dstStep) {                              \
    zvp::mcu::decodeFastKernel(zvp::mcu::Dec::model, zvp::mcu::Samp::samp)(pSrcMCU, pDst, dstStep);      \
  }
ZVP_MCU_DEC_BODIES(ZVP_MCU_DEFINE_DEC)
#undef ZVP_MCU_DEFINE_DEC

namespace {

using zvp::mcu::Dec;
using zvp::mcu::Samp;

// Null array, null destination or null block pointer, then the step.
template <int N>
ZvpStatus checkDecode(const Zvp16s* const* pSrcMCU, const void* pDst, int dstStep) {
  if (!pSrcMCU || !pDst) return zvpStatusNullPointer;
  for (int i = 0; i < N; ++i)
    if (!pSrcMCU[i]) return zvpStatusNullPointer;
  return zvp::checkStep(dstStep);
}

template <int N>
bool allAligned(const Zvp16s* const* p) {
  for (int i = 0; i < N; ++i)
    if (!zvp::mcu::aligned16(p[i])) return false;
  return true;
}

}  // namespace

#define ZVP_MCU_EXPORT_DEC2(name, model, samp, T, n)                                                        \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const Zvp16s* const pSrcMCU[n], T* pDst, int dstStep) {          \
    if (ZvpStatus st = checkDecode<n>(pSrcMCU, pDst, dstStep)) return st;                                   \
    if (allAligned<n>(pSrcMCU))                                                                             \
      ownpj_##name(pSrcMCU, pDst, dstStep);                                                                 \
    else                                                                                                    \
      zvp::mcu::kDecCareful[static_cast<int>(Dec::model)][static_cast<int>(Samp::samp)](pSrcMCU, pDst,      \
                                                                                         dstStep);          \
    return zvpStatusOk;                                                                                     \
  }
#define ZVP_MCU_EXPORT_DEC1(name, model, samp, T, n)                                                        \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const Zvp16s* const pSrcMCU[n], T* pDst, int dstStep) {          \
    if (ZvpStatus st = checkDecode<n>(pSrcMCU, pDst, dstStep)) return st;                                   \
    ownpj_##name(pSrcMCU, pDst, dstStep);                                                                   \
    return zvpStatusOk;                                                                                     \
  }

// Fast and careful bodies (SampleUp and Join422 give the same bytes in both).
ZVP_MCU_EXPORT_DEC2(YCbCr444ToRGBLS_MCU_16s8u_P3C3R, RGB, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCbCr422ToRGBLS_MCU_16s8u_P3C3R, RGB, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCbCr411ToRGBLS_MCU_16s8u_P3C3R, RGB, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCbCr444ToBGRLS_MCU_16s8u_P3C3R, BGR, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCbCr422ToBGRLS_MCU_16s8u_P3C3R, BGR, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCbCr411ToBGRLS_MCU_16s8u_P3C3R, BGR, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(YCCK444ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S444, Zvp8u, 4)
ZVP_MCU_EXPORT_DEC2(YCCK422ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S422, Zvp8u, 4)
ZVP_MCU_EXPORT_DEC2(YCCK411ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S411, Zvp8u, 4)
ZVP_MCU_EXPORT_DEC2(SampleUp444LS_MCU_16s8u_P3C3R, Up, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(SampleUp422LS_MCU_16s8u_P3C3R, Up, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(SampleUp411LS_MCU_16s8u_P3C3R, Up, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_DEC2(Join422LS_MCU_16s8u_P3C2R, Join422, S422, Zvp8u, 3)
// Fast body only.
ZVP_MCU_EXPORT_DEC1(YCbCr444ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S444, Zvp16u, 3)
ZVP_MCU_EXPORT_DEC1(YCbCr422ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S422, Zvp16u, 3)
ZVP_MCU_EXPORT_DEC1(YCbCr411ToBGR555LS_MCU_16s16u_P3C3R, BGR555, S411, Zvp16u, 3)
ZVP_MCU_EXPORT_DEC1(YCbCr444ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S444, Zvp16u, 3)
ZVP_MCU_EXPORT_DEC1(YCbCr422ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S422, Zvp16u, 3)
ZVP_MCU_EXPORT_DEC1(YCbCr411ToBGR565LS_MCU_16s16u_P3C3R, BGR565, S411, Zvp16u, 3)
