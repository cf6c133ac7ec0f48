// Photo core transform, forward direction: the four exported members, the
// shared region loop and the dispatch point of the block kernels.
#include <cstdlib>

#include "core/cpu.h"
#include "hdphoto/pjxrpct.h"

namespace zvp::pct {

namespace {

template <bool Forward>
void blocksScalar(Zvp32s* const* blocks, int count, int step) {
  for (int k = 0; k < count; ++k) {
    uint32_t x[16];
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) x[4 * r + c] = load32(at(blocks[k], step, r, c));
    if (Forward)
      Lift<ScalarOps>::forward(x);
    else
      Lift<ScalarOps>::inverse(x);
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) store32(at(blocks[k], step, r, c), x[4 * r + c]);
  }
}

}  // namespace

void fwdBlocksScalar(Zvp32s* const* blocks, int count, int step) { blocksScalar<true>(blocks, count, step); }
void invBlocksScalar(Zvp32s* const* blocks, int count, int step) { blocksScalar<false>(blocks, count, step); }

BlocksFn fwdBlocks() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return fwdBlocksAVX2;
    case Isa::SSE41: return fwdBlocksSSE41;
#endif
    default: return fwdBlocksScalar;
  }
}

BlocksFn invBlocks() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return invBlocksAVX2;
    case Isa::SSE41: return invBlocksSSE41;
#endif
    default: return invBlocksScalar;
  }
}

void regionLoop(Zvp32s* pSrcDst, int step, ZvpiSize roi, BlocksFn fn, BlocksFn scalar) {
  // Disjoint rows make disjoint blocks; otherwise keep the plain order.
  const long long rowBytes = 4LL * roi.width;
  if (std::llabs(static_cast<long long>(step)) < rowBytes) fn = scalar;
  constexpr int kBatch = 64;
  Zvp32s* batch[kBatch];
  int n = 0;
  for (int y = 0; y + 4 <= roi.height; y += 4) {
    for (int x = 0; x + 4 <= roi.width; x += 4) {
      batch[n++] = at(pSrcDst, step, y, x);
      if (n == kBatch) {
        fn(batch, n, step);
        n = 0;
      }
    }
  }
  if (n) fn(batch, n, step);
}

}  // namespace zvp::pct

ZvpStatus owniPCTFwd_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize) {
  zvp::pct::regionLoop(pSrcDst, srcDstStep, roiSize, zvp::pct::fwdBlocks(), zvp::pct::fwdBlocksScalar);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTFwd16x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTFwd_HDP_32s_C1IR>(pSrcDst, srcDstStep, 16, 16);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTFwd8x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTFwd_HDP_32s_C1IR>(pSrcDst, srcDstStep, 8, 16);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTFwd8x8_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep) {
  return zvp::pct::fixedMember<owniPCTFwd_HDP_32s_C1IR>(pSrcDst, srcDstStep, 8, 8);
}

extern "C" ZVPJ_API ZvpStatus zvpiPCTFwd_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize) {
  return zvp::pct::genericMember<owniPCTFwd_HDP_32s_C1IR>(pSrcDst, srcDstStep, roiSize);
}
