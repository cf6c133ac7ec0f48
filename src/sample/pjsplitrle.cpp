// Byte planes of 16-bit TIFF samples: joining two byte rows into 16-bit
// samples (the first row gives byte 2i, the second byte 2i + 1) and the
// split that reverses it. A length below 1 is reported as zvpStatusBadStep.
#include "core/cpu.h"
#include "sample/pjrle.h"

namespace zvp::rle {

void joinScalar(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len) {
  for (int i = 0; i < len; ++i) {
    dst[2 * i] = lo[i];
    dst[2 * i + 1] = hi[i];
  }
}

void splitScalar(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len) {
  for (int i = 0; i < len; ++i) {
    lo[i] = src[2 * i];
    hi[i] = src[2 * i + 1];
  }
}

JoinFn joinRow() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return joinAVX2;
    case Isa::SSE41: return joinSSE41;
#endif
    default: return joinScalar;
  }
}

SplitFn splitRow() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return splitAVX2;
    case Isa::SSE41: return splitSSE41;
#endif
    default: return splitScalar;
  }
}

}  // namespace zvp::rle

extern "C" ZVPJ_API ZvpStatus zvpiJoinRow_TIFF_8u16u_C1(const Zvp8u* const pSrc[2], Zvp16u* pDst, int len) {
  if (!pSrc || !pSrc[0] || !pSrc[1] || !pDst) return zvpStatusNullPointer;
  if (len < 1) return zvpStatusBadStep;
  zvp::rle::joinRow()(pSrc[0], pSrc[1], reinterpret_cast<Zvp8u*>(pDst), len);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiSplitRow_TIFF_16u8u_C1(const Zvp16u* pSrc, Zvp8u* const pDst[2], int len) {
  if (!pSrc || !pDst || !pDst[0] || !pDst[1]) return zvpStatusNullPointer;
  if (len < 1) return zvpStatusBadStep;
  zvp::rle::splitRow()(reinterpret_cast<const Zvp8u*>(pSrc), pDst[0], pDst[1], len);
  return zvpStatusOk;
}
