// Photo core transform, inverse direction: the four exported members. The
// block kernels, the region loop and the dispatch point are shared with the
// forward direction.
#include "hdphoto/pjxrpct.h"

ZvpStatus owniPCTInv_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize) {
  zvp::pct::regionLoop(pSrcDst, srcDstStep, roiSize, zvp::pct::invBlocks(), zvp::pct::invBlocksScalar);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTInv16x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTInv_HDP_32s_C1IR>(pSrcDst, srcDstStep, 16, 16);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTInv8x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTInv_HDP_32s_C1IR>(pSrcDst, srcDstStep, 8, 16);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTInv8x8_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTInv_HDP_32s_C1IR>(pSrcDst, srcDstStep, 8, 8);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTInv_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize) {
  return zvp::pct::genericMember<owniPCTInv_HDP_32s_C1IR>(pSrcDst, srcDstStep, roiSize);
}
