// Chroma sampling down: box filters. Region members with a fixed bias
// (1 for H2V1, 3 for H2V2), Row members with a bias alternating by output
// index. Scalar twins and the dispatch point of the sampling family.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "sample/sampling.h"

namespace zvp::ss {

namespace {
void downH2V1Scalar(const Zvp8u* s, Zvp8u* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = downH2V1(s, i);
}
void downH2V2Scalar(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = downH2V2(s, t, i);
}
void upH2V1Scalar(const Zvp8u* s, Zvp8u* d, int n) {
  for (int k = 0; k < n; ++k) d[k] = upH2V1(s, k);
}
void upH2V2Scalar(const Zvp8u* nr, const Zvp8u* f, Zvp8u* d, int n) {
  for (int k = 0; k < n; ++k) d[k] = upH2V2(nr, f, k);
}
void boxH2V1Scalar(const Zvp8u* s, Zvp8u* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = boxH2V1(s, i);
}
void boxH2V2Scalar(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = boxH2V2(s, t, i);
}
}  // namespace

const Kernels kScalar = {downH2V1Scalar, downH2V2Scalar, upH2V1Scalar, upH2V2Scalar, boxH2V1Scalar, boxH2V2Scalar};

const Kernels& kernels() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return kSSE41;
#endif
  return kScalar;
}

}  // namespace zvp::ss

using zvp::rowPtr;

void ownpj_SampleDownH2V1_JPEG_8u_C1(const Zvp8u* pSrc, Zvp8u* pDst, int dstWidth) {
  zvp::ss::kernels().downH2V1(pSrc, pDst, dstWidth);
}
void ownpj_SampleDownH2V2_JPEG_8u_C1(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstWidth) {
  zvp::ss::kernels().downH2V2(pSrc, pSrc + srcStep, pDst, dstWidth);
}

// Odd srcWidth: srcWidth / 2 outputs; the last sample is not read.
void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst) {
  zvp::ss::kernels().boxH2V1(pSrc, pDst, srcWidth / 2);
}
void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth, Zvp8u* pDst) {
  zvp::ss::kernels().boxH2V2(pSrc1, pSrc2, pDst, srcWidth / 2);
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleDownH2V1_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                            Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize) {
  if (ZvpStatus st = zvp::ss::checkRegion(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize)) return st;
  zvp::parallelRows(dstRoiSize, [&](int y) {
    ownpj_SampleDownH2V1_JPEG_8u_C1(rowPtr(pSrc, srcStep, y), rowPtr(pDst, dstStep, y), dstRoiSize.width);
  });
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleDownH2V2_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                            Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize) {
  if (ZvpStatus st = zvp::ss::checkRegion(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize)) return st;
  zvp::parallelRows(dstRoiSize, [&](int y) {
    ownpj_SampleDownH2V2_JPEG_8u_C1(rowPtr(pSrc, srcStep, 2 * y), srcStep, rowPtr(pDst, dstStep, y),
                                    dstRoiSize.width);
  });
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst) {
  if (ZvpStatus st = zvp::checkRows({pSrc, pDst}, srcWidth)) return st;
  ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(pSrc, srcWidth, pDst);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2,
                                                                  int srcWidth, Zvp8u* pDst) {
  if (ZvpStatus st = zvp::checkRows({pSrc1, pSrc2, pDst}, srcWidth)) return st;
  if (srcWidth < 32) {
    for (int i = 0; i < srcWidth / 2; ++i) pDst[i] = zvp::ss::boxH2V2(pSrc1, pSrc2, i);
  } else {
    ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(pSrc1, pSrc2, srcWidth, pDst);
  }
  return zvpStatusOk;
}
