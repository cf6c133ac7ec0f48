// PackBits decoder of one TIFF row.
//
// From the source position on, tokens are expanded until exactly dstLenBytes
// bytes stand in the output. A token that needs more source or more output
// than there is ends the call with zvpStatusUnderRun and the position after
// its header; output already written stays. A repeat header that is the
// last byte of the input reads the byte at index srcLenBytes: the caller
// keeps that byte readable.
#include "sample/pjrle.h"


ZvpStatus owniUnpackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int* pSrcCurrPos, int srcLenBytes, Zvp8u* pDst,
                                       int dstLenBytes) {
  long long pos = *pSrcCurrPos;
  long long out = 0;
  for (;;) {
    if (pos >= srcLenBytes) {
      *pSrcCurrPos = static_cast<int>(pos);
      return zvpStatusUnderRun;
    }
    const int n = static_cast<signed char>(pSrc[pos]);
    ++pos;
    if (n == -128) {
      // no data
    } else if (n < 0) {
      const int count = 1 - n;
      if (pos > srcLenBytes || out + count > dstLenBytes) {
        *pSrcCurrPos = static_cast<int>(pos);
        return zvpStatusUnderRun;
      }
      zvp::rle::fillToken(pSrc[pos], pDst + out, count);
      out += count;
      ++pos;
    } else {
      const int count = n + 1;
      if (pos + count > srcLenBytes || out + count > dstLenBytes) {
        *pSrcCurrPos = static_cast<int>(pos);
        return zvpStatusUnderRun;
      }
      zvp::rle::copyToken(pSrc + pos, pDst + out, count);
      out += count;
      pos += count;
    }
    if (out == dstLenBytes) {
      *pSrcCurrPos = static_cast<int>(pos);
      return zvpStatusOk;
    }
  }
}

extern "C" ZVPJ_API ZvpStatus zvpiUnpackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int* pSrcCurrPos, int srcLenBytes,
                                                           Zvp8u* pDst, int dstLenBytes) {
  if (!pSrc || !pSrcCurrPos || !pDst) return zvpStatusNullPointer;
  if (srcLenBytes < 1 || dstLenBytes < 1) return zvpStatusBadSize;
  return owniUnpackBitsRow_TIFF_8u_C1(pSrc, pSrcCurrPos, srcLenBytes, pDst, dstLenBytes);
}
