// Unfolding of a block from zig-zag order into natural order.
#include "core/checks.h"
#include "sample/dct.h"
#include "sample/zigzag.h"

void ownpi_ZigzagInv8x8_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst) {
  for (int i = 0; i < 64; ++i) zvp::dct::st(pDst + i, zvp::dct::ld(pSrc + zigzag_index_Fwd[i]));
}

extern "C" ZVPJ_API ZvpStatus zvpiZigzagInv8x8_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst) {
  if (ZvpStatus st = zvp::checkTables({pSrc, pDst})) return st;
  ownpi_ZigzagInv8x8_16s_C1(pSrc, pDst);
  return zvpStatusOk;
}
