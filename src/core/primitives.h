// Internal primitives with public-looking names: region copies, widening,
// and with a constant, reverse division, scaled multiplication and a 32-bit
// fill. None of them leaves the shared library.
#pragma once

#include "zvpj.h"

// Region copies of 16-bit and 32-bit elements (the width in elements is what
// counts). Null pointers, then the size; steps are not tested.
ZvpStatus zvpiCopy_16s_C1R(const Zvp16s* pSrc, int srcStep, Zvp16s* pDst, int dstStep, ZvpiSize roiSize);
ZvpStatus zvpiCopy_32f_C1R(const Zvp32f* pSrc, int srcStep, Zvp32f* pDst, int dstStep, ZvpiSize roiSize);

// Zero-extends bytes into 16-bit values. Null pointers, size, then steps.
ZvpStatus zvpiConvert_8u16u_C1R(const Zvp8u* pSrc, int srcStep, Zvp16u* pDst, int dstStep, ZvpiSize roiSize);
// The row worker: zero-extends len bytes; nonTemporal chooses streaming stores.
void owniConvert_8u16u_W7(const Zvp8u* pSrc, Zvp16u* pDst, int len, bool nonTemporal);

// pDst = pSrc & value over a region of 32-bit elements. Null pointers, steps, size.
ZvpStatus zvpiAndC_32s_C1R(const Zvp32s* pSrc, int srcStep, Zvp32s value, Zvp32s* pDst, int dstStep,
                           ZvpiSize roiSize);
ZvpStatus zvpiAndC_32s_C1IR(Zvp32s value, Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize);

// pDst[i] = value / pSrc[i], rounded to nearest; a zero divisor gives 0xFFFF
// and the warning zvpStatusDivideByZero. From 2048 elements on the work is
// split over at most two threads.
ZvpStatus zvpsDivCRev_16u(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);
ZvpStatus zvpsDivCRev_16u_I(Zvp16u value, Zvp16u* pSrcDst, int len);
// The worker (tests nothing, len >= 1, value != 0): nonzero if some divisor was 0.
int ownzvpsDivCRev_16u(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);
// The two-thread form of the worker, used from 2048 elements on.
int ownzvpsDivCRev_16u_omp(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);

// pDst[i] = sat16(round-half-even(pSrc1[i] * pSrc2[i] / 2^scaleFactor)),
// scaleFactor >= 1. pDst may equal pSrc2.
void ownsMul_16u16s_PosSfs(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor);

// Fills len 32-bit elements with value.
void ownsSet_32s(Zvp32s value, Zvp32s* pDst, int len);

namespace zvp::prim {

// One element of the scaled multiplication, the reference computation that
// stays within 32 bits.
inline Zvp16s mulPosSfs(Zvp16u a, Zvp16s b, int s) {
  const int32_t p = static_cast<int32_t>(a) * static_cast<int32_t>(b);
  const int32_t h = p >> 1;
  const int32_t t = (((h >> (s - 1)) & 1) + (p & 1) + (1 << (s - 1)) - 1) >> 1;
  const int32_t r = (h + t) >> (s - 1);
  return static_cast<Zvp16s>(r < -32768 ? -32768 : (r > 32767 ? 32767 : r));
}

using MulSfsFn = void (*)(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor);
void mulSfsScalar(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor);
#if !defined(ZVP_NO_X86)
void mulSfsSSE41(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor);
#endif
MulSfsFn mulSfs();

using DivRevFn = int (*)(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);
// The scalar twin: the same lead/group/tail structure, the group formula lane by lane.
int divRevScalar(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);
#if !defined(ZVP_NO_X86)
int divRevSSE41(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len);
#endif
DivRevFn divRev();

// The two ways of one quotient: a lone element (exact float division,
// rounded to nearest even) and one lane of a group of 8 (reciprocal estimate
// refined, rounded to nearest even, saturated to 16-bit signed and patched).
Zvp16u divLone(Zvp16u value, Zvp16u x);
Zvp16u divLane(Zvp16u value, Zvp16u x);
// The reciprocal estimate of one lane, the same instruction as the group path.
float rcpEstimate(float x);

}  // namespace zvp::prim
