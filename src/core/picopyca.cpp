// Region copy worker of the 16-bit and 32-bit copies: rows of rowBytes,
// one cache decision for the whole region.
#include <climits>

#include "core/copykernels.h"
#include "core/memory.h"

void owniCopy8uas(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, int rowBytes, int height) {
  int64_t row = rowBytes;
  int64_t rows = height;
  // Contiguous regions are one long row.
  if (srcStep == rowBytes && dstStep == rowBytes) {
    row = static_cast<int64_t>(rowBytes) * height;
    rows = 1;
  }
  const int64_t total = row * rows;
  bool nonTemporal = false;
  if (total > INT_MAX) {
    nonTemporal = true;  // the product overflows: no further question
  } else if (total >= 1048576 && row >= 64) {
    const int cache = zvp::cacheSizeByDescriptor();
    nonTemporal = cache > 0 && total >= cache / 2;
  }
  for (int64_t y = 0; y < rows; ++y) {
    const Zvp8u* s = pSrc + y * srcStep;
    Zvp8u* d = pDst + y * dstStep;
    if (nonTemporal)
      zvp::copyNonTemporal(s, d, row);
    else if (row < 64)
      zvp::copyShort(s, d, static_cast<int>(row), true);
    else
      zvp::copyOrdinary(s, d, row, zvp::DirectionRule::Region);
  }
}

// The 16-bit and 32-bit region copies: the row length in bytes is all the
// worker needs. No test of the steps.
#include "core/checks.h"
#include "core/primitives.h"

ZvpStatus zvpiCopy_16s_C1R(const Zvp16s* pSrc, int srcStep, Zvp16s* pDst, int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkSize(roiSize)})) return st;
  owniCopy8uas(reinterpret_cast<const Zvp8u*>(pSrc), srcStep, reinterpret_cast<Zvp8u*>(pDst), dstStep,
               roiSize.width * 2, roiSize.height);
  return zvpStatusOk;
}

ZvpStatus zvpiCopy_32f_C1R(const Zvp32f* pSrc, int srcStep, Zvp32f* pDst, int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkSize(roiSize)})) return st;
  owniCopy8uas(reinterpret_cast<const Zvp8u*>(pSrc), srcStep, reinterpret_cast<Zvp8u*>(pDst), dstStep,
               roiSize.width * 4, roiSize.height);
  return zvpStatusOk;
}
