// JPEG level shift: samples minus 128 into 16-bit values, and 16-bit values
// plus 128 clipped back to samples. Internal twins and kernels.
#pragma once

#include "zvpj.h"

// Row-parallel frames (no argument tests).
ZvpStatus ownpj_Sub128_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst, int dstStep, ZvpiSize roiSize);
ZvpStatus ownpj_Add128_JPEG_16s8u_C1R(const Zvp16s* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roiSize);

// One row of len elements.
void ownpj_Sub128_JPEG_8u16s_C1(const Zvp8u* pSrc, Zvp16s* pDst, int len);
void ownpj_Add128_JPEG_16s8u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int len);

// One 8x8 block: source with its step into 64 contiguous values, and back.
void ownpj_Sub128_8x8_8u16s(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst);
void ownpj_Add128_8x8_16s8u(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep);

namespace zvp::ls {

using Sub128RowFn = void (*)(const Zvp8u* pSrc, Zvp16s* pDst, int len);
using Add128RowFn = void (*)(const Zvp16s* pSrc, Zvp8u* pDst, int len);
using Sub128BlockFn = void (*)(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst);
using Add128BlockFn = void (*)(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep);

// Scalar twins: the plain formulas, any platform.
void sub128RowScalar(const Zvp8u* pSrc, Zvp16s* pDst, int len);
void add128RowScalar(const Zvp16s* pSrc, Zvp8u* pDst, int len);
void sub128BlockScalar(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst);
void add128BlockScalar(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep);

#if !defined(ZVP_NO_X86)
void sub128RowSSE41(const Zvp8u* pSrc, Zvp16s* pDst, int len);
void add128RowSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int len);
void sub128BlockSSE41(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst);
void add128BlockSSE41(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep);
void sub128RowAVX2(const Zvp8u* pSrc, Zvp16s* pDst, int len);
void add128RowAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int len);
#endif

// The dispatch points: the best kernel for this processor.
Sub128RowFn sub128Row();
Add128RowFn add128Row();
Sub128BlockFn sub128Block();
Add128BlockFn add128Block();

// Element access that tolerates the odd addresses the row workers accept.
inline Zvp16s load16s(const Zvp16s* p) {
  Zvp16s v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
inline void store16s(Zvp16s* p, Zvp16s v) { __builtin_memcpy(p, &v, sizeof v); }

inline Zvp16s sub128(Zvp8u s) { return static_cast<Zvp16s>(s - 128); }
inline Zvp8u add128(Zvp16s s) {
  const int v = s + 128;  // no wrap: int holds the sum
  return static_cast<Zvp8u>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

}  // namespace zvp::ls
