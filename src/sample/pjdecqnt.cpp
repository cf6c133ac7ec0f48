// Inverse quantisation: the inverse table and the multiply of one block.
#include "core/checks.h"
#include "core/primitives.h"
#include "sample/dct.h"

namespace zvp::dct {

void quantInvScalar(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable) {
  for (int i = 0; i < 64; ++i) {
    Zvp16u q;
    __builtin_memcpy(&q, pTable + i, 2);
    st(pDst + i, static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(ld(pSrc + i)) * q)));
  }
}

}  // namespace zvp::dct

void ownpj_QuantInv_8x8_16s(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantInvTable) {
  zvp::dct::kernels().quantInv(pSrc, pDst, pQuantInvTable);
}

void ownpj_QuantInv_8x8_16s_I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable) {
  zvp::dct::kernels().quantInv(pSrcDst, pSrcDst, pQuantInvTable);
}

extern "C" ZVPJ_API ZvpStatus zvpiQuantInvTableInit_JPEG_8u16u(const Zvp8u* pQuantRawTable, Zvp16u* pQuantInvTable) {
  if (ZvpStatus st = zvp::checkTables({pQuantRawTable, pQuantInvTable})) return st;
  alignas(16) Zvp16u wide[64];
  if (ZvpStatus st = zvpiConvert_8u16u_C1R(pQuantRawTable, 8, wide, 16, {8, 8})) return st;
  return zvpiZigzagInv8x8_16s_C1(reinterpret_cast<const Zvp16s*>(wide), reinterpret_cast<Zvp16s*>(pQuantInvTable));
}

extern "C" ZVPJ_API ZvpStatus zvpiQuantInv8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable) {
  if (ZvpStatus st = zvp::checkTables({pSrcDst, pQuantInvTable})) return st;
  ownpj_QuantInv_8x8_16s_I(pSrcDst, pQuantInvTable);
  return zvpStatusOk;
}
