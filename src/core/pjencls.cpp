// Level shift of the encoding side: 8-bit samples minus 128.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "core/pjls.h"

namespace zvp::ls {

void sub128RowScalar(const Zvp8u* pSrc, Zvp16s* pDst, int len) {
  for (int i = 0; i < len; ++i) store16s(pDst + i, sub128(pSrc[i]));
}

void sub128BlockScalar(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst) {
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) store16s(pDst + 8 * y + x, sub128(pSrc[static_cast<std::ptrdiff_t>(y) * srcStep + x]));
}

Sub128RowFn sub128Row() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return sub128RowAVX2;
    case Isa::SSE41: return sub128RowSSE41;
#endif
    default: return sub128RowScalar;
  }
}

Sub128BlockFn sub128Block() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return sub128BlockSSE41;
#endif
  return sub128BlockScalar;
}

}  // namespace zvp::ls

void ownpj_Sub128_JPEG_8u16s_C1(const Zvp8u* pSrc, Zvp16s* pDst, int len) { zvp::ls::sub128Row()(pSrc, pDst, len); }

void ownpj_Sub128_8x8_8u16s(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst) {
  zvp::ls::sub128Block()(pSrc, srcStep, pDst);
}

ZvpStatus ownpj_Sub128_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst, int dstStep, ZvpiSize roiSize) {
  const zvp::ls::Sub128RowFn row = zvp::ls::sub128Row();
  zvp::parallelRows(roiSize, [&](int y) {
    row(zvp::rowPtr(pSrc, srcStep, y), zvp::rowPtr(pDst, dstStep, y), roiSize.width);
  });
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSub128_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst, int dstStep,
                                                        ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::checkPairs({{pSrc, srcStep}, {pDst, dstStep}}, roiSize)) return st;
  return ownpj_Sub128_JPEG_8u16s_C1R(pSrc, srcStep, pDst, dstStep, roiSize);
}
