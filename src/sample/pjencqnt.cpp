// Forward quantisation: quality scaling of a raw table, the reciprocal table,
// and the truncating forward quantiser of one block.
#include <cstdint>

#include "core/checks.h"
#include "core/primitives.h"
#include "sample/dct.h"

namespace zvp::dct {

void quantFwdScalar(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable) {
  for (int i = 0; i < 64; ++i) {
    Zvp16u t;
    __builtin_memcpy(&t, pTable + i, 2);
    const int16_t a = shl(ld(pSrc + i), 3);                 // wraps
    const int16_t b = static_cast<int16_t>(t >> 1);          // logical, always fits
    const int16_t h = static_cast<int16_t>((int32_t{a} * b) >> 16);
    const int16_t r = static_cast<int16_t>(static_cast<int16_t>(static_cast<uint16_t>(h + 1)) >> 1);
    st(pDst + i, r);
  }
}

}  // namespace zvp::dct

void ownpj_QuantFwd_8x8_Sfs15_16s(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantFwdTable) {
  zvp::dct::kernels().quantFwd(pSrc, pDst, pQuantFwdTable);
}

extern "C" ZVPJ_API ZvpStatus zvpiQuantFwdRawTableInit_JPEG_8u(Zvp8u* pQuantRawTable, int qualityFactor) {
  if (!pQuantRawTable) return zvpStatusNullPointer;
  if (qualityFactor < 1) return zvpStatusBadArgument;
  // Kept in 64 bits so that every factor from 100 up gives the all-ones
  // table (it is the same as 32-bit arithmetic wherever that does not overflow).
  const int64_t s = qualityFactor < 50 ? 5000 / qualityFactor : 200 - 2 * static_cast<int64_t>(qualityFactor);
  for (int i = 0; i < 64; ++i) {
    int64_t v = (static_cast<int64_t>(pQuantRawTable[i]) * s + 50) / 100;
    if (v > 255) v = 255;
    if (v < 1) v = 1;
    pQuantRawTable[i] = static_cast<Zvp8u>(v);
  }
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiQuantFwdTableInit_JPEG_8u16u(const Zvp8u* pQuantRawTable, Zvp16u* pQuantFwdTable) {
  if (ZvpStatus st = zvp::checkTables({pQuantRawTable, pQuantFwdTable})) return st;
  alignas(16) Zvp16u wide[64];
  if (ZvpStatus st = zvpiConvert_8u16u_C1R(pQuantRawTable, 8, wide, 16, {8, 8})) return st;
  if (ZvpStatus st = zvpiZigzagInv8x8_16s_C1(reinterpret_cast<const Zvp16s*>(wide),
                                             reinterpret_cast<Zvp16s*>(pQuantFwdTable)))
    return st;
  return zvpsDivCRev_16u_I(32768, pQuantFwdTable, 64);
}

extern "C" ZVPJ_API ZvpStatus zvpiQuantFwd8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantFwdTable) {
  if (ZvpStatus st = zvp::checkTables({pSrcDst, pQuantFwdTable})) return st;
  ownpj_QuantFwd_8x8_Sfs15_16s(pSrcDst, pSrcDst, pQuantFwdTable);
  return zvpStatusOk;
}
