// MCU functions, encoding side: interleaved or packed pixels of one MCU to
// level-shifted Y Cb Cr (K) blocks. Exported entries and the scalar bodies;
// the dispatch point of the family sits in pjdecccss.cpp.
#include "core/checks.h"
#include "sample/mcu.h"

namespace zvp::mcu {

namespace {

struct Px {
  int a, b, c, k;  // R G B (K), or Y Cb Cr for the sampling members
};

template <Enc E>
Px readPixel(const uint8_t* row, int x) {
  if constexpr (E == Enc::RGB || E == Enc::Down) {
    return {row[3 * x], row[3 * x + 1], row[3 * x + 2], 0};
  } else if constexpr (E == Enc::BGR) {
    return {row[3 * x + 2], row[3 * x + 1], row[3 * x], 0};
  } else if constexpr (E == Enc::CMYK) {
    // The colour formulas take R = 255 - C, G = 255 - M, B = 255 - Y.
    return {255 - row[4 * x], 255 - row[4 * x + 1], 255 - row[4 * x + 2], row[4 * x + 3]};
  } else if constexpr (E == Enc::Split422) {
    // Both pixels of a pair carry the pair's chroma.
    return {row[2 * x], row[4 * (x / 2) + 1], row[4 * (x / 2) + 3], 0};
  } else {
    uint16_t v;
    std::memcpy(&v, row + 2 * x, sizeof v);
    const cc::Rgb p = cc::unpack(packedLayout<E>(), v);
    return {p.r, p.g, p.b, 0};
  }
}

// One pixel loop over the whole MCU; Fast selects the arithmetic of the fast
// body (its scalar twin), otherwise the careful scalar body.
template <Enc E, Samp S, bool Fast>
void encodePixels(const void* src, int srcStep, Zvp16s* const* mcu) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S), SX = chromaSx(S), SY = chromaSy(S), M = chromaLog(S);
  constexpr bool kSampling = E == Enc::Down || E == Enc::Split422;
  auto row = [&](int y) {
    return static_cast<const uint8_t*>(src) + static_cast<std::ptrdiff_t>(y) * srcStep;
  };
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < W; ++x) {
      const Px p = readPixel<E>(row(y), x);
      const int li = lumaIndex(x, y);
      if constexpr (kSampling)
        st16(mcu[0] + li, p.a - 128);
      else
        st16(mcu[0] + li, Fast ? encodeYFast(p.a, p.b, p.c) : encodeYScalar(p.a, p.b, p.c));
      if constexpr (E == Enc::CMYK) st16(mcu[3] + li, p.k - 128);
    }
  for (int cy = 0; cy < 8; ++cy)
    for (int cx = 0; cx < 8; ++cx) {
      int sa = 0, sb = 0, sc = 0;
      for (int dy = 0; dy < SY; ++dy)
        for (int dx = 0; dx < SX; ++dx) {
          const Px p = readPixel<E>(row(cy * SY + dy), cx * SX + dx);
          sa += p.a;
          sb += p.b;
          sc += p.c;
        }
      int cb, cr;
      if constexpr (kSampling) {
        cb = (sb >> M) - 128;
        cr = (sc >> M) - 128;
      } else if constexpr (Fast) {
        cb = encodeCbFast(sa, sb, sc, chromaRound(E, S), M);
        cr = encodeCrFast(sa, sb, sc, chromaRound(E, S), M);
      } else {
        cb = encodeCbScalar(sa, sb, sc, 16 + M);
        cr = encodeCrScalar(sa, sb, sc, 16 + M);
      }
      st16(mcu[1] + 8 * cy + cx, cb);
      st16(mcu[2] + 8 * cy + cx, cr);
    }
}

}  // namespace

constinit const EncTable kEncFastScalar = {
    {encodePixels<Enc::RGB, Samp::S444, true>, encodePixels<Enc::RGB, Samp::S422, true>,
     encodePixels<Enc::RGB, Samp::S411, true>},
    {encodePixels<Enc::BGR, Samp::S444, true>, encodePixels<Enc::BGR, Samp::S422, true>,
     encodePixels<Enc::BGR, Samp::S411, true>},
    {encodePixels<Enc::CMYK, Samp::S444, true>, encodePixels<Enc::CMYK, Samp::S422, true>,
     encodePixels<Enc::CMYK, Samp::S411, true>},
    {encodePixels<Enc::BGR555, Samp::S444, true>, encodePixels<Enc::BGR555, Samp::S422, true>,
     encodePixels<Enc::BGR555, Samp::S411, true>},
    {encodePixels<Enc::BGR565, Samp::S444, true>, encodePixels<Enc::BGR565, Samp::S422, true>,
     encodePixels<Enc::BGR565, Samp::S411, true>},
    {encodePixels<Enc::Down, Samp::S444, true>, encodePixels<Enc::Down, Samp::S422, true>,
     encodePixels<Enc::Down, Samp::S411, true>},
    {nullptr, encodePixels<Enc::Split422, Samp::S422, true>, nullptr},
};

// Careful bodies exist for the RGB/BGR 411 members and the CMYK members.
constinit const EncTable kEncCareful = {
    {nullptr, nullptr, encodePixels<Enc::RGB, Samp::S411, false>},
    {nullptr, nullptr, encodePixels<Enc::BGR, Samp::S411, false>},
    {encodePixels<Enc::CMYK, Samp::S444, false>, encodePixels<Enc::CMYK, Samp::S422, false>,
     encodePixels<Enc::CMYK, Samp::S411, false>},
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
};

}  // namespace zvp::mcu

#define ZVP_MCU_DEFINE_ENC(name, model, samp, T, n)                                                     \
  void ownpj_##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]) {                             \
    zvp::mcu::encodeFastKernel(zvp::mcu::Enc::model, zvp::mcu::Samp::samp)(pSrc, srcStep, pDstMCU);     \
  }
ZVP_MCU_ENC_BODIES(ZVP_MCU_DEFINE_ENC)
#undef ZVP_MCU_DEFINE_ENC

namespace {

using zvp::mcu::aligned16;
using zvp::mcu::Enc;
using zvp::mcu::Samp;

// The encoders test the source, the block array itself and the step before
// they read the block pointers out of the array.
template <int N>
ZvpStatus checkEncode(const void* pSrc, int srcStep, Zvp16s* const* pDstMCU) {
  if (!pSrc || !pDstMCU) return zvpStatusNullPointer;
  if (ZvpStatus st = zvp::checkStep(srcStep)) return st;
  for (int i = 0; i < N; ++i)
    if (!pDstMCU[i]) return zvpStatusNullPointer;
  return zvpStatusOk;
}

}  // namespace

#define ZVP_MCU_EXPORT_ENC1(name, model, samp, T, n)                                                   \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]) {     \
    if (ZvpStatus st = checkEncode<n>(pSrc, srcStep, pDstMCU)) return st;                              \
    ownpj_##name(pSrc, srcStep, pDstMCU);                                                              \
    return zvpStatusOk;                                                                                \
  }
// The careful body runs when the Y run is not 16-byte aligned.
#define ZVP_MCU_EXPORT_ENC_BY_Y(name, model, samp, T, n)                                               \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]) {     \
    if (ZvpStatus st = checkEncode<n>(pSrc, srcStep, pDstMCU)) return st;                              \
    if (aligned16(pDstMCU[0]))                                                                         \
      ownpj_##name(pSrc, srcStep, pDstMCU);                                                            \
    else                                                                                               \
      zvp::mcu::kEncCareful[static_cast<int>(Enc::model)][static_cast<int>(Samp::samp)](pSrc, srcStep, \
                                                                                         pDstMCU);     \
    return zvpStatusOk;                                                                                \
  }
// The fast body runs when all four block runs are 16-byte aligned.
#define ZVP_MCU_EXPORT_ENC_BY_ALL(name, model, samp, T, n)                                             \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const T* pSrc, int srcStep, Zvp16s* const pDstMCU[n]) {     \
    if (ZvpStatus st = checkEncode<n>(pSrc, srcStep, pDstMCU)) return st;                              \
    if (aligned16(pDstMCU[0]) && aligned16(pDstMCU[1]) && aligned16(pDstMCU[2]) && aligned16(pDstMCU[3])) \
      ownpj_##name(pSrc, srcStep, pDstMCU);                                                            \
    else                                                                                               \
      zvp::mcu::kEncCareful[static_cast<int>(Enc::model)][static_cast<int>(Samp::samp)](pSrc, srcStep, \
                                                                                         pDstMCU);     \
    return zvpStatusOk;                                                                                \
  }

ZVP_MCU_EXPORT_ENC1(RGBToYCbCr444LS_MCU_8u16s_C3P3R, RGB, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(RGBToYCbCr422LS_MCU_8u16s_C3P3R, RGB, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC_BY_Y(RGBToYCbCr411LS_MCU_8u16s_C3P3R, RGB, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(BGRToYCbCr444LS_MCU_8u16s_C3P3R, BGR, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(BGRToYCbCr422LS_MCU_8u16s_C3P3R, BGR, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC_BY_Y(BGRToYCbCr411LS_MCU_8u16s_C3P3R, BGR, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC_BY_ALL(CMYKToYCCK444LS_MCU_8u16s_C4P4R, CMYK, S444, Zvp8u, 4)
ZVP_MCU_EXPORT_ENC_BY_ALL(CMYKToYCCK422LS_MCU_8u16s_C4P4R, CMYK, S422, Zvp8u, 4)
ZVP_MCU_EXPORT_ENC_BY_ALL(CMYKToYCCK411LS_MCU_8u16s_C4P4R, CMYK, S411, Zvp8u, 4)
ZVP_MCU_EXPORT_ENC1(BGR555ToYCbCr444LS_MCU_16u16s_C3P3R, BGR555, S444, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(BGR555ToYCbCr422LS_MCU_16u16s_C3P3R, BGR555, S422, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(BGR555ToYCbCr411LS_MCU_16u16s_C3P3R, BGR555, S411, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(BGR565ToYCbCr444LS_MCU_16u16s_C3P3R, BGR565, S444, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(BGR565ToYCbCr422LS_MCU_16u16s_C3P3R, BGR565, S422, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(BGR565ToYCbCr411LS_MCU_16u16s_C3P3R, BGR565, S411, Zvp16u, 3)
ZVP_MCU_EXPORT_ENC1(SampleDown444LS_MCU_8u16s_C3P3R, Down, S444, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(SampleDown422LS_MCU_8u16s_C3P3R, Down, S422, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(SampleDown411LS_MCU_8u16s_C3P3R, Down, S411, Zvp8u, 3)
ZVP_MCU_EXPORT_ENC1(Split422LS_MCU_8u16s_C2P3R, Split422, S422, Zvp8u, 3)
