// TIFF row coding: PackBits rows and the 16-bit byte-plane split and join.
// Internal workers (no argument tests) and the kernels behind them.
#pragma once

#include <cstdint>
#include <cstring>

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

// A token holds 1 to 128 bytes: it is moved inline in 16-byte pieces, the
// last piece overlapping the one before (8 and 4 bytes for short tokens), so
// that not a byte beyond the token is written. Calls of the general copy and
// fill services cost more than the token itself on photo-like rows.
// n bytes (sizeof(T) to 2 * sizeof(T)) as a first and a last piece of T,
// both read before either is written.
template <class T>
inline void copyEnds(const Zvp8u* s, Zvp8u* d, int n) {
  T a, b;
  std::memcpy(&a, s, sizeof a);
  std::memcpy(&b, s + n - sizeof b, sizeof b);
  std::memcpy(d, &a, sizeof a);
  std::memcpy(d + n - sizeof b, &b, sizeof b);
}

inline void copyToken(const Zvp8u* s, Zvp8u* d, int n) {
  if (n > 16) {
    unsigned char a[16], b[16];
    for (int i = 0; i + 16 < n; i += 16) {
      std::memcpy(a, s + i, 16);
      std::memcpy(d + i, a, 16);
    }
    std::memcpy(b, s + n - 16, 16);
    std::memcpy(d + n - 16, b, 16);
  } else if (n >= 8) {
    copyEnds<uint64_t>(s, d, n);
  } else if (n >= 4) {
    copyEnds<uint32_t>(s, d, n);
  } else {
    for (int i = 0; i < n; ++i) d[i] = s[i];
  }
}

inline void fillToken(Zvp8u v, Zvp8u* d, int n) {
  const uint64_t w = 0x0101010101010101ull * v;
  if (n > 16) {
    const uint64_t w2[2] = {w, w};
    for (int i = 0; i + 16 < n; i += 16) std::memcpy(d + i, w2, 16);
    std::memcpy(d + n - 16, w2, 16);
  } else if (n >= 8) {
    std::memcpy(d, &w, 8);
    std::memcpy(d + n - 8, &w, 8);
  } else if (n >= 4) {
    std::memcpy(d, &w, 4);
    std::memcpy(d + n - 4, &w, 4);
  } else {
    for (int i = 0; i < n; ++i) d[i] = v;
  }
}


}  // namespace zvp::rle
