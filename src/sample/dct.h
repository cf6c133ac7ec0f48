// The JPEG block path: quantisers and the 8x8 block transforms (internal).
#pragma once

#include <cstdint>

#include "zvpj.h"

// Quantisers on one block of 64 values in natural order.
void ownpj_QuantFwd_8x8_Sfs15_16s(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantFwdTable);
void ownpj_QuantInv_8x8_16s(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantInvTable);
void ownpj_QuantInv_8x8_16s_I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable);

// Unfolds 64 values from zig-zag order into natural order (no overlap).
void ownpi_ZigzagInv8x8_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst);

// The internal transforms; pDst may equal pSrc.
void dct_8x8_fwd_16s(const Zvp16s* pSrc, Zvp16s* pDst);
void dct_8x8_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst);
void dct_8x8_inv_2x2_16s(const Zvp16s* pSrc, Zvp16s* pDst);
void dct_8x8_inv_4x4_16s(const Zvp16s* pSrc, Zvp16s* pDst);
void dct_8x8To2x2_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst);  // 4 values out
void dct_8x8To4x4_inv_16s(const Zvp16s* pSrc, Zvp16s* pDst);  // 16 values out
void dct_8x8_fwd_32f(const Zvp32f* pSrc, Zvp32f* pDst);
void dct_8x8_inv_32f(const Zvp32f* pSrc, Zvp32f* pDst);

// Adds level (wrapping), saturates to 0..255 and, unless the limits are 0
// and 255, limits to clipMin..clipMax; 8 rows of 8 bytes at dstStep.
void own_8x8_LSClip_16s8u(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin, Zvp8u clipMax);

// The float constants and normalisation tables of the 12-bit pair.
extern const float CONST_TABLE[6];
extern const float* const _t_norm_frw;  // 64 entries, [u][v]
extern const float* const _t_norm_inv;

namespace zvp::dct {

// Constant sets of the integer transforms.
inline constexpr int16_t _tg_1_16 = 13036;
inline constexpr int16_t _tg_2_16 = 27146;
inline constexpr int16_t _tg_3_16 = -21746;
inline constexpr int16_t _cos_4_16 = -19195;
inline constexpr int16_t _ocos_4_16 = 23170;
// Row coefficient sets (c, m1, m2, o1, o2, o3, o4) and the set of each row.
inline constexpr int16_t kRowSets[4][7] = {{16384, 21407, 8867, 22725, 19266, 12873, 4520},
                                           {22725, 29692, 12299, 31521, 26722, 17855, 6270},
                                           {21407, 27969, 11585, 29692, 25172, 16819, 5906},
                                           {19266, 25172, 10426, 26722, 22654, 15137, 5315}};
inline constexpr int kSetOfRow[8] = {0, 1, 2, 3, 0, 3, 2, 1};
inline constexpr int32_t _round_i[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
inline constexpr int32_t _round_frw_row = 524288;

// 16-bit helpers of the integer passes.
inline int16_t sat16(int32_t v) { return static_cast<int16_t>(v < -32768 ? -32768 : (v > 32767 ? 32767 : v)); }
inline int16_t sadd(int16_t a, int16_t b) { return sat16(int32_t{a} + b); }
inline int16_t ssub(int16_t a, int16_t b) { return sat16(int32_t{a} - b); }
inline int16_t mulhi(int16_t a, int16_t b) { return static_cast<int16_t>((int32_t{a} * b) >> 16); }
inline int16_t shl(int16_t x, int n) { return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint16_t>(x) << n)); }
inline int32_t wadd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int16_t ld(const Zvp16s* p) {
  Zvp16s v;
  __builtin_memcpy(&v, p, 2);
  return v;
}
inline void st(Zvp16s* p, Zvp16s v) { __builtin_memcpy(p, &v, 2); }

using BlockFn = void (*)(const Zvp16s* pSrc, Zvp16s* pDst);
using QuantFn = void (*)(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable);
using LSClipFn = void (*)(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin,
                          Zvp8u clipMax);

// Scalar twins.
void invScalar(const Zvp16s* pSrc, Zvp16s* pDst);
void fwdScalar(const Zvp16s* pSrc, Zvp16s* pDst);
void quantFwdScalar(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable);
void quantInvScalar(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable);
void inv2x2Scalar(const Zvp16s* pSrc, Zvp16s* pDst);
void inv4x4Scalar(const Zvp16s* pSrc, Zvp16s* pDst);
void to4x4Scalar(const Zvp16s* pSrc, Zvp16s* pDst);
void to2x2Scalar(const Zvp16s* pSrc, Zvp16s* pDst);
void lsClipScalar(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin, Zvp8u clipMax);
#if !defined(ZVP_NO_X86)
void invSSE41(const Zvp16s* pSrc, Zvp16s* pDst);
void fwdSSE41(const Zvp16s* pSrc, Zvp16s* pDst);
void quantFwdSSE41(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable);
void quantInvSSE41(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pTable);
template <int N>
void invCornerQuantSSE41(const Zvp16s* pSrc, const Zvp16u* pTable, Zvp16s* pDst);
void to4x4SSE41(const Zvp16s* pSrc, Zvp16s* pDst);
void to2x2SSE41(const Zvp16s* pSrc, Zvp16s* pDst);
void lsClipSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level, Zvp8u clipMin, Zvp8u clipMax);
#endif

// The one dispatch point of the family.
struct Kernels {
  BlockFn inv, fwd;
  QuantFn quantFwd, quantInv;
  LSClipFn lsClip;
};
Kernels kernels();

}  // namespace zvp::dct
