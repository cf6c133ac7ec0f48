// Block coder of the sequential Huffman encoders (the stateful fast path and
// the Direct encoder), written once and compiled once per instruction class:
// pjenchuff.cpp builds the plain x86-64 twin, pjenchuff_avx2.cpp the one that
// may use BMI1/BMI2/LZCNT (shlx, bzhi, tzcnt, lzcnt).
//
// Everything here has internal linkage (anonymous namespace), so that the
// copies built with different instruction sets never meet at link time.
// The small helpers are repeated here for the same reason instead of coming
// from the shared inline headers.
#pragma once

#include <cstdint>
#include <cstring>

#include "huffman/huffrecords.h"
#include "sample/zigzag.h"

namespace {
namespace encblk {

inline void storeBE64(uint8_t* p, uint64_t v) {
  v = __builtin_bswap64(v);
  std::memcpy(p, &v, 8);
}

// True when one of the 8 bytes of v is 0xFF.
inline bool hasFF(uint64_t v) {
  uint64_t x = ~v;
  return ((x - 0x0101010101010101ull) & ~x & 0x8080808080808080ull) != 0;
}

// Entry of an AC table; index 256 (run 15 with a category of 16, which no
// table can hold) reads as "no code" instead of a word behind the table.
inline uint32_t acEntry(const ZvpiEncodeHuffmanSpec* t, int idx) { return idx < 256 ? t->code[idx] : 0; }

// The `whole` top bytes of w, each 0xFF followed by 0x00; the new position.
__attribute__((noinline)) int64_t writeStuffed(uint8_t* dst, int64_t pos, uint64_t w, int whole) {
  for (int i = 0; i < whole; ++i) {
    uint8_t b = static_cast<uint8_t>(w >> 56);
    w <<= 8;
    dst[pos++] = b;
    if (b == 0xFF) dst[pos++] = 0;
  }
  return pos;
}

#define ZVP_ENC_INLINE inline __attribute__((always_inline))

// The bit sink: `acc` holds `n` bits right-justified; whole bytes go out to
// dst at pos with stuffing. Kept in the caller's locals (the functions below
// are always inlined, so the sink lives in registers for the whole block).
// `checked` selects the stateful encoder's room tests; false means give up.
template <bool checked>
ZVP_ENC_INLINE bool burst(uint8_t* dst, int64_t& pos, int64_t len, uint64_t& acc, int& n) {
  int64_t room = len - pos;
  if (checked && room < 8) return false;
  if (n == 0) return true;
  uint64_t w = acc << (64 - n);
  int whole = n >> 3;
  bool ff = hasFF(w);
  if (__builtin_expect(n >= 32 && !ff, 1)) {
    storeBE64(dst + pos, w);
    pos += whole;
  } else {
    if (checked && ff && room < 16) return false;
    pos = writeStuffed(dst, pos, w, whole);
  }
  n -= whole * 8;
  acc = n ? acc & ((uint64_t{1} << n) - 1) : 0;
  return true;
}

// Appends nb bits (0 to 32).
template <bool checked>
ZVP_ENC_INLINE bool put(uint8_t* dst, int64_t& pos, int64_t len, uint64_t& acc, int& n, uint64_t bits, int nb) {
  if (__builtin_expect(n + nb > 64, 0) && !burst<checked>(dst, pos, len, acc, n)) return false;
  acc = (acc << nb) | bits;
  n += nb;
  return true;
}

// Low n bits (n from 0 to 31).
ZVP_ENC_INLINE uint32_t low(uint32_t v, int n) { return v & ((1u << n) - 1u); }

// Codes the block into the sink; `strict`: a symbol without a code gives up
// (stateful) instead of writing only its value bits (Direct). `mask` holds
// the nonzero positions in zig-zag order, so a run of zeros costs one bit
// scan. With `prepared`, prep[k] holds (category << 16) | value bits of the
// coefficient at zig-zag position k (1 to 63), made by a vector pass.
template <bool checked, bool strict, bool prepared>
ZVP_ENC_INLINE bool codeBlock(uint8_t* dst, int64_t& posRef, int64_t len, uint64_t& accRef, int& nRef,
                              const Zvp16s* pSrc, uint64_t mask, const uint32_t* prep, int32_t diff,
                              const ZvpiEncodeHuffmanSpec* dc, const ZvpiEncodeHuffmanSpec* ac) {
  const int32_t* zz = own_pj_izigzag_index.data();
  int64_t pos = posRef;
  uint64_t acc = accRef;
  int n = nRef;
  bool ok = [&]() __attribute__((always_inline)) {
    mask &= ~uint64_t{1};
    uint32_t mag = diff < 0 ? 0u - static_cast<uint32_t>(diff) : static_cast<uint32_t>(diff);
    int c = mag ? 32 - __builtin_clz(mag) : 0;
    if (diff < 0) diff -= 1;
    uint32_t e = dc->code[c];
    int elen = static_cast<int>(e >> 16);
    if (strict && elen == 0) return false;
    // Two 16-bit values differ by at most 65535: c is at most 16.
    if (!put<checked>(dst, pos, len, acc, n, (uint64_t{e & 0xFFFF} << c) | low(static_cast<uint32_t>(diff), c),
                      elen + c))
      return false;

    int prev = 0;
    while (mask) {
      int k = __builtin_ctzll(mask);
      mask &= mask - 1;
      int r = k - prev - 1;
      prev = k;
      if (__builtin_expect(r >= 16, 0)) {
        e = ac->code[0xF0];
        elen = static_cast<int>(e >> 16);
        if (strict && elen == 0) return false;
        do {
          if (!put<checked>(dst, pos, len, acc, n, e & 0xFFFF, elen)) return false;
          r -= 16;
        } while (r >= 16);
      }
      uint32_t valueBits;
      if constexpr (prepared) {
        uint32_t pw = prep[k];
        c = static_cast<int>(pw >> 16);
        valueBits = pw & 0xFFFF;
      } else {
        int32_t v = pSrc[zz[k]];
        int32_t sgn = v >> 31;  // -1 for a negative value: its bits are v - 1
        c = 32 - __builtin_clz(static_cast<uint32_t>((v ^ sgn) - sgn));
        valueBits = low(static_cast<uint32_t>(v + sgn), c);
      }
      e = acEntry(ac, (r << 4) + c);
      elen = static_cast<int>(e >> 16);
      if (strict && elen == 0) return false;
      if (!put<checked>(dst, pos, len, acc, n, (uint64_t{e & 0xFFFF} << c) | valueBits, elen + c)) return false;
    }
    if (prev < 63) {
      e = ac->code[0];
      elen = static_cast<int>(e >> 16);
      if (strict && elen == 0) return false;
      if (!put<checked>(dst, pos, len, acc, n, e & 0xFFFF, elen)) return false;
    }
    return true;
  }();
  posRef = pos;
  accRef = acc;
  nRef = n;
  return ok;
}

// The stateful fast path: 0 when the block is done, 1 when it gave up with
// nothing the caller sees changed.
template <bool prepared>
ZVP_ENC_INLINE int fastPath(const Zvp16s* pSrc, uint64_t mask, const uint32_t* prep, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                            Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                            const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* s) {
  int64_t pos = *pDstCurrPos;
  const int64_t len = dstLenBytes;
  int n = s->bitCount;
  if (pos < 0 || len - pos < 24) return 1;
  if (n < 0 || n > 7) return 1;
  uint64_t acc = (s->bitBufferLo >> (24 - n)) & ((1u << n) - 1);
  int32_t diff = static_cast<int32_t>(pSrc[0]) - static_cast<int32_t>(*pLastDC);
  if (!codeBlock<true, true, prepared>(pDst, pos, len, acc, n, pSrc, mask, prep, diff, pDcTable, pAcTable))
    return 1;
  if (n >= 8 && !burst<true>(pDst, pos, len, acc, n)) return 1;
  *pLastDC = pSrc[0];
  s->bitBufferLo = static_cast<uint32_t>(acc << (24 - n));
  s->bitBufferHi = 0;
  s->bitCount = n;
  *pDstCurrPos = static_cast<int>(pos);
  return 0;
}

// The Direct encoder's one path.
template <bool prepared>
ZVP_ENC_INLINE void directPath(const Zvp16s* pSrc, uint64_t mask, const uint32_t* prep, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                               const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable) {
  int bitPos = *pDstBitsLen;
  int64_t pos = bitPos >> 3;
  int n = bitPos & 7;
  uint64_t acc = n ? static_cast<uint64_t>(pDst[pos] >> (8 - n)) : 0;
  int32_t diff = static_cast<int32_t>(pSrc[0]) - static_cast<int32_t>(*pLastDC);
  *pLastDC = pSrc[0];
  codeBlock<false, false, prepared>(pDst, pos, 0, acc, n, pSrc, mask, prep, diff, pDcTable, pAcTable);
  burst<false>(pDst, pos, 0, acc, n);
  pDst[pos] = static_cast<Zvp8u>(n ? (acc << (8 - n)) & 0xFF : 0);
  *pDstBitsLen = static_cast<int>((static_cast<uint32_t>(pos) << 3) + static_cast<uint32_t>(n));
}

#undef ZVP_ENC_INLINE

}  // namespace encblk
}  // namespace
