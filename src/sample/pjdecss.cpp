// Chroma sampling up: triangle filters. Region members read one sample (and
// for H2V2 one row) beyond each end as it stands in memory; Row members treat
// the ends themselves.
#include "core/checks.h"
#include "core/parallel.h"
#include "sample/sampling.h"

using zvp::rowPtr;

void ownpj_SampleUpH2V1_JPEG_8u_C1(const Zvp8u* pSrc, Zvp8u* pDst, int dstWidth) {
  zvp::ss::kernels().upH2V1(pSrc, pDst, dstWidth);
}
void ownpj_SampleUpH2V2_JPEG_8u_C1(const Zvp8u* pNear, const Zvp8u* pFar, Zvp8u* pDst, int dstWidth) {
  zvp::ss::kernels().upH2V2(pNear, pFar, pDst, dstWidth);
}

// Interior outputs 2 .. 2n - 3 through the region kernel (shifted by one
// source sample so that it reads s[0] .. s[n - 1] only), ends here.
// n = 1 (outside the interface): both outputs from the one sample.
void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst) {
  const int n = srcWidth;
  if (n < 2) {
    pDst[0] = pSrc[0], pDst[1] = pSrc[0];
    return;
  }
  pDst[0] = pSrc[0];
  pDst[1] = static_cast<Zvp8u>((3 * pSrc[0] + pSrc[1] + 2) >> 2);
  zvp::ss::kernels().upH2V1(pSrc + 1, pDst + 2, 2 * n - 4);
  pDst[2 * n - 2] = static_cast<Zvp8u>((3 * pSrc[n - 1] + pSrc[n - 2] + 1) >> 2);
  pDst[2 * n - 1] = pSrc[n - 1];
}

void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth, Zvp8u* pDst) {
  const int n = srcWidth;
  auto v = [&](int i) { return 3 * pSrc1[i] + pSrc2[i]; };
  if (n < 2) {
    pDst[0] = static_cast<Zvp8u>((4 * v(0) + 8) >> 4), pDst[1] = static_cast<Zvp8u>((4 * v(0) + 7) >> 4);
    return;
  }
  pDst[0] = static_cast<Zvp8u>((4 * v(0) + 8) >> 4);
  pDst[1] = static_cast<Zvp8u>((3 * v(0) + v(1) + 7) >> 4);
  zvp::ss::kernels().upH2V2(pSrc1 + 1, pSrc2 + 1, pDst + 2, 2 * n - 4);
  pDst[2 * n - 2] = static_cast<Zvp8u>((3 * v(n - 1) + v(n - 2) + 8) >> 4);
  pDst[2 * n - 1] = static_cast<Zvp8u>((4 * v(n - 1) + 7) >> 4);
}

// A plain loop over rows.
extern "C" ZVPJ_API ZvpStatus zvpiSampleUpH2V1_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                          Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize) {
  if (ZvpStatus st = zvp::ss::checkRegion(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize)) return st;
  for (int y = 0; y < dstRoiSize.height; ++y)
    ownpj_SampleUpH2V1_JPEG_8u_C1(rowPtr(pSrc, srcStep, y), rowPtr(pDst, dstStep, y), dstRoiSize.width);
  return zvpStatusOk;
}

// Output row r: near source row r / 2, far the row after it (odd r) or
// before it (even r); row 0 reads the row before the first.
extern "C" ZVPJ_API ZvpStatus zvpiSampleUpH2V2_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                          Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize) {
  if (ZvpStatus st = zvp::ss::checkRegion(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize)) return st;
  zvp::parallelRows(dstRoiSize, [&](int r) {
    const int nearRow = r >> 1, farRow = (r & 1) ? nearRow + 1 : nearRow - 1;
    ownpj_SampleUpH2V2_JPEG_8u_C1(rowPtr(pSrc, srcStep, nearRow), rowPtr(pSrc, srcStep, farRow),
                                  rowPtr(pDst, dstStep, r), dstRoiSize.width);
  });
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst) {
  if (ZvpStatus st = zvp::checkRows({pSrc, pDst}, srcWidth)) return st;
  ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(pSrc, srcWidth, pDst);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2,
                                                                     int srcWidth, Zvp8u* pDst) {
  if (ZvpStatus st = zvp::checkRows({pSrc1, pSrc2, pDst}, srcWidth)) return st;
  ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(pSrc1, pSrc2, srcWidth, pDst);
  return zvpStatusOk;
}
