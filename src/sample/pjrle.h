// TIFF row coding: PackBits rows and the 16-bit byte-plane split and join.
// Internal workers (no argument tests) and the kernels behind them.
#pragma once

#include "zvpj.h"

// Encoder worker with the arguments of zvpiPackBitsRow_TIFF_8u_C1.
ZvpStatus owniPackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst, int* pDstCurrPos,
                                     int dstLenBytes);
// Decoder worker with the arguments of zvpiUnpackBitsRow_TIFF_8u_C1.
ZvpStatus owniUnpackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int* pSrcCurrPos, int srcLenBytes, Zvp8u* pDst,
                                       int dstLenBytes);

namespace zvp::rle {

// Token scanners of the encoder. Both read s[0 .. rem - 1] only (rem >= 1).
//  runLength: how many bytes from s[0] on equal s[0], at most 128.
//  literalLength: the length of a literal that starts at s[0], 1 to 128: it
//   stops before position j (j >= 1) where s[j], s[j + 1], s[j + 2] are equal,
//   or where s[j] == s[j + 1] is the last pair of the data.
using RunLengthFn = int (*)(const Zvp8u* s, int rem);
using LiteralLengthFn = int (*)(const Zvp8u* s, int rem);

int runLengthScalar(const Zvp8u* s, int rem);
int literalLengthScalar(const Zvp8u* s, int rem);
#if !defined(ZVP_NO_X86)
int runLengthSSE41(const Zvp8u* s, int rem);
int literalLengthSSE41(const Zvp8u* s, int rem);
#endif

struct Scanners {
  RunLengthFn run;
  LiteralLengthFn literal;
};
// The dispatch point of the encoder.
Scanners scanners();

// The encoder on given scanners (tests run it on each set).
ZvpStatus packBitsRow(const Scanners& sc, const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst, int* pDstCurrPos,
                      int dstLenBytes);

// Byte planes: join (pDst[2i] = lo[i], pDst[2i + 1] = hi[i]) and split.
using JoinFn = void (*)(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len);
using SplitFn = void (*)(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len);
void joinScalar(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len);
void splitScalar(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len);
#if !defined(ZVP_NO_X86)
void joinSSE41(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len);
void splitSSE41(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len);
void joinAVX2(const Zvp8u* lo, const Zvp8u* hi, Zvp8u* dst, int len);
void splitAVX2(const Zvp8u* src, Zvp8u* lo, Zvp8u* hi, int len);
#endif
JoinFn joinRow();
SplitFn splitRow();

}  // namespace zvp::rle
