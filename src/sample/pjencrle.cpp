// PackBits encoder of one TIFF row.
//
// Tokens: a pair of equal bytes at the start of a token is a run (up to 128
// bytes); otherwise a literal grows until it holds 128 bytes, the data ends,
// three equal bytes follow, or an equal pair ends the data. Each token is
// written only when it fits whole in the room left; when it does not, the
// call ends with zvpStatusUnderRun and the position after the last whole
// token. The scanners that find token ends have a vector form; token
// boundaries never depend on it.
#include "core/cpu.h"
#include "sample/pjrle.h"

namespace zvp::rle {

int runLengthScalar(const Zvp8u* s, int rem) {
  const int limit = rem < 128 ? rem : 128;
  int n = 1;
  while (n < limit && s[n] == s[0]) ++n;
  return n;
}

int literalLengthScalar(const Zvp8u* s, int rem) {
  const int limit = rem < 128 ? rem : 128;
  int j = 1;
  for (; j < limit; ++j) {
    if (j + 1 < rem && s[j] == s[j + 1]) {
      if (j + 2 == rem) break;                 // a pair that ends the data
      if (s[j + 1] == s[j + 2]) break;         // three in a row
    }
  }
  return j;
}

Scanners scanners() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return {runLengthSSE41, literalLengthSSE41};
#endif
  return {runLengthScalar, literalLengthScalar};
}

ZvpStatus packBitsRow(const Scanners& sc, const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst, int* pDstCurrPos,
                      int dstLenBytes) {
  const long long start = *pDstCurrPos;
  const long long end = start + dstLenBytes;
  long long pos = start;
  int i = 0;
  while (i < srcLenBytes) {
    const int rem = srcLenBytes - i;
    if (rem >= 2 && pSrc[i] == pSrc[i + 1]) {
      const int n = sc.run(pSrc + i, rem);
      if (end - pos < 2) {
        *pDstCurrPos = static_cast<int>(pos);
        return zvpStatusUnderRun;
      }
      pDst[pos] = static_cast<Zvp8u>(257 - n);
      pDst[pos + 1] = pSrc[i];
      pos += 2;
      i += n;
    } else {
      const int n = sc.literal(pSrc + i, rem);
      if (end - pos < n + 1) {
        *pDstCurrPos = static_cast<int>(pos);
        return zvpStatusUnderRun;
      }
      pDst[pos] = static_cast<Zvp8u>(n - 1);
      copyToken(pSrc + i, pDst + pos + 1, n);
      pos += n + 1;
      i += n;
    }
  }
  *pDstCurrPos = static_cast<int>(pos);
  return zvpStatusOk;
}

}  // namespace zvp::rle

ZvpStatus owniPackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst, int* pDstCurrPos,
                                     int dstLenBytes) {
  return zvp::rle::packBitsRow(zvp::rle::scanners(), pSrc, srcLenBytes, pDst, pDstCurrPos, dstLenBytes);
}

extern "C" ZVPJ_API ZvpStatus zvpiPackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst,
                                                         int* pDstCurrPos, int dstLenBytes) {
  if (!pSrc || !pDstCurrPos || !pDst) return zvpStatusNullPointer;
  if (srcLenBytes < 1 || dstLenBytes < 1) return zvpStatusBadSize;
  return owniPackBitsRow_TIFF_8u_C1(pSrc, srcLenBytes, pDst, pDstCurrPos, dstLenBytes);
}
