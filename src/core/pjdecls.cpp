// Level shift of the decoding side: 16-bit values plus 128, clipped to 0..255.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "core/pjls.h"

namespace zvp::ls {

void add128RowScalar(const Zvp16s* pSrc, Zvp8u* pDst, int len) {
  for (int i = 0; i < len; ++i) pDst[i] = add128(load16s(pSrc + i));
}

void add128BlockScalar(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep) {
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) pDst[static_cast<std::ptrdiff_t>(y) * dstStep + x] = add128(load16s(pSrc + 8 * y + x));
}

Add128RowFn add128Row() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return add128RowAVX2;
    case Isa::SSE41: return add128RowSSE41;
#endif
    default: return add128RowScalar;
  }
}

Add128BlockFn add128Block() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return add128BlockSSE41;
#endif
  return add128BlockScalar;
}

}  // namespace zvp::ls

void ownpj_Add128_JPEG_16s8u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int len) { zvp::ls::add128Row()(pSrc, pDst, len); }

void ownpj_Add128_8x8_16s8u(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep) {
  zvp::ls::add128Block()(pSrc, pDst, dstStep);
}

ZvpStatus ownpj_Add128_JPEG_16s8u_C1R(const Zvp16s* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roiSize) {
  const zvp::ls::Add128RowFn row = zvp::ls::add128Row();
  zvp::parallelRows(roiSize, [&](int y) {
    row(zvp::rowPtr(pSrc, srcStep, y), zvp::rowPtr(pDst, dstStep, y), roiSize.width);
  });
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiAdd128_JPEG_16s8u_C1R(const Zvp16s* pSrc, int srcStep, Zvp8u* pDst, int dstStep,
                                                        ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::checkPairs({{pSrc, srcStep}, {pDst, dstStep}}, roiSize)) return st;
  return ownpj_Add128_JPEG_16s8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize);
}
