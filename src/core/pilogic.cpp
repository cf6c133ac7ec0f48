// And with a constant over a region of 32-bit elements, and the 32-bit fill.
#include <cstring>

#include "core/checks.h"
#include "core/primitives.h"

ZvpStatus zvpiAndC_32s_C1R(const Zvp32s* pSrc, int srcStep, Zvp32s value, Zvp32s* pDst, int dstStep,
                           ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkStep(srcStep),
                                        zvp::checkStep(dstStep), zvp::checkSize(roiSize)}))
    return st;
  for (int y = 0; y < roiSize.height; ++y) {
    const Zvp8u* s = reinterpret_cast<const Zvp8u*>(pSrc) + static_cast<std::ptrdiff_t>(y) * srcStep;
    Zvp8u* d = reinterpret_cast<Zvp8u*>(pDst) + static_cast<std::ptrdiff_t>(y) * dstStep;
    for (int x = 0; x < roiSize.width; ++x) {
      Zvp32s v;
      std::memcpy(&v, s + 4 * x, 4);
      v &= value;
      std::memcpy(d + 4 * x, &v, 4);
    }
  }
  return zvpStatusOk;
}

ZvpStatus zvpiAndC_32s_C1IR(Zvp32s value, Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize) {
  return zvpiAndC_32s_C1R(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize);
}

void ownsSet_32s(Zvp32s value, Zvp32s* pDst, int len) {
  for (int i = 0; i < len; ++i) std::memcpy(pDst + i, &value, 4);
}
