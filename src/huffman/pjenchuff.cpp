// Sequential Huffman encoding: the encoder's bit-stream state, the span-form
// bit writer and flush, and the block encoders with their fast and careful
// paths.
#include <cstring>

#include "core/checks.h"
#include "core/cpu.h"
#include "core/memory.h"
#include "huffman/huffkernels.h"
#include "huffman/huffbits.h"
#include "huffman/huffrecords.h"
#include "sample/zigzag.h"

using zvp::huff::category;
using zvp::huff::lowBits;

// ---------------------------------------------------------------------------
// Bit-stream state of the encoder.

void ownpj_EncodeHuffmanStateInit(ZvpiEncodeHuffmanState* pEncHuffState) {
  std::memset(static_cast<void*>(pEncHuffState), 0, sizeof *pEncHuffState);
}

ZvpStatus ownpj_write_bits_jpeg(Zvp32u code, int nBits, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                ZvpiEncodeHuffmanState* s) {
  if (nBits == 0) return zvpStatusHuffmanTable;
  int total = s->bitCount + nBits;
  uint32_t span = s->bitBufferLo | (lowBits(code, nBits & 31) << ((24 - total) & 31));
  int pos = *pDstCurrPos;
  while (total >= 8) {
    if (pos >= dstLenBytes) {
      *pDstCurrPos = pos;
      return zvpStatusOutOfBuffer;
    }
    uint32_t b = (span >> 16) & 0xFF;
    pDst[pos++] = static_cast<Zvp8u>(b);
    if (b == 0xFF) {
      if (pos >= dstLenBytes) {
        *pDstCurrPos = pos;
        return zvpStatusOutOfBuffer;
      }
      pDst[pos++] = 0;
    }
    span <<= 8;
    total -= 8;
  }
  s->bitBufferLo = span;
  s->bitBufferHi = 0;
  s->bitCount = total;
  *pDstCurrPos = pos;
  return zvpStatusOk;
}

ZvpStatus ownpj_EncodeHuffmanFlush(Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos, ZvpiEncodeHuffmanState* s) {
  ZvpStatus st = ownpj_write_bits_jpeg(127, 7, pDst, dstLenBytes, pDstCurrPos, s);
  ownpj_EncodeHuffmanStateInit(s);
  return st;
}

// ---------------------------------------------------------------------------
// Kernels and the family's dispatch point.

namespace zvp::huff {

uint64_t zigzagMaskScalar(const Zvp16s* pSrc) {
  const int32_t* zz = own_pj_izigzag_index.data();
  uint64_t mask = 0;
  for (int k = 0; k < 64; ++k) mask |= static_cast<uint64_t>(pSrc[zz[k]] != 0) << k;
  return mask;
}

ZigzagMaskFn zigzagMask() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return zigzagMaskSSE41;
#endif
  return zigzagMaskScalar;
}

}  // namespace zvp::huff

// ---------------------------------------------------------------------------
// Fast paths: bits gather right-justified in a 64-bit word and leave in
// bursts of whole bytes.

namespace {

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

// Writes whole bytes with stuffing. `checked` selects the stateful encoder's
// room tests; false means give up.
template <bool checked>
struct BitSink {
  uint8_t* dst;
  int64_t pos;
  int64_t len;
  uint64_t acc;  // right-justified
  int n;

  bool burst() {
    int64_t room = len - pos;
    if (checked && room < 8) return false;
    if (n == 0) return true;
    uint64_t w = acc << (64 - n);
    int whole = n >> 3;
    bool ff = zvp::huff::hasFF(w);
    if (__builtin_expect(n >= 32 && !ff, 1)) {
      zvp::huff::storeBE64(dst + pos, w);
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
  inline bool put(uint64_t bits, int nb) {
    if (n + nb > 64 && !burst()) return false;
    acc = (acc << nb) | bits;
    n += nb;
    return true;
  }
};

// Bit length of a nonzero magnitude (the category of own_pj_csize).
inline int categoryOf(uint32_t a) { return a ? 32 - __builtin_clz(a) : 0; }

// Codes the block; `strict`: a symbol without a code gives up (stateful)
// instead of writing only its value bits (Direct). A mask of the nonzero AC
// positions in zig-zag order makes a run of zeros cost one bit scan.
template <bool strict, class Sink>
inline bool codeBlockBody(Sink& w, const Zvp16s* pSrc, int32_t diff, const ZvpiEncodeHuffmanSpec* dc,
                          const ZvpiEncodeHuffmanSpec* ac);

// The sink lives in locals (registers) for the block and goes back at the end.
template <bool strict, class Sink>
inline bool codeBlock(Sink& w, const Zvp16s* pSrc, int32_t diff, const ZvpiEncodeHuffmanSpec* dc,
                      const ZvpiEncodeHuffmanSpec* ac) {
  Sink local = w;
  bool ok = codeBlockBody<strict>(local, pSrc, diff, dc, ac);
  w = local;
  return ok;
}

template <bool strict, class Sink>
inline bool codeBlockBody(Sink& w, const Zvp16s* pSrc, int32_t diff, const ZvpiEncodeHuffmanSpec* dc,
                          const ZvpiEncodeHuffmanSpec* ac) {
  const int32_t* zz = own_pj_izigzag_index.data();
  uint64_t mask = zvp::huff::zigzagMask()(pSrc) & ~uint64_t{1};

  uint32_t mag = diff < 0 ? 0u - static_cast<uint32_t>(diff) : static_cast<uint32_t>(diff);
  int c = categoryOf(mag);
  if (diff < 0) diff -= 1;
  uint32_t e = dc->code[c];
  int len = static_cast<int>(e >> 16);
  if (strict && len == 0) return false;
  if (!w.put((uint64_t{e & 0xFFFF} << c) | lowBits(static_cast<uint32_t>(diff), c), len + c)) return false;

  int prev = 0;
  while (mask) {
    int k = __builtin_ctzll(mask);
    mask &= mask - 1;
    int r = k - prev - 1;
    prev = k;
    while (r >= 16) {
      e = ac->code[0xF0];
      len = static_cast<int>(e >> 16);
      if (strict && len == 0) return false;
      if (!w.put(e & 0xFFFF, len)) return false;
      r -= 16;
    }
    int32_t v = pSrc[zz[k]];
    int32_t sgn = v >> 31;  // -1 for a negative value: its bits are v - 1
    c = 32 - __builtin_clz(static_cast<uint32_t>((v ^ sgn) - sgn));
    uint32_t valueBits = static_cast<uint32_t>(v + sgn) & ((1u << c) - 1);
    e = acEntry(ac, (r << 4) + c);
    len = static_cast<int>(e >> 16);
    if (strict && len == 0) return false;
    if (!w.put((uint64_t{e & 0xFFFF} << c) | valueBits, len + c)) return false;
  }
  if (prev < 63) {
    e = ac->code[0];
    len = static_cast<int>(e >> 16);
    if (strict && len == 0) return false;
    if (!w.put(e & 0xFFFF, len)) return false;
  }
  return true;
}

}  // namespace

int ownpj_EncodeHuffman8x8_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                         Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                                         const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* s) {
  BitSink<true> w{pDst, *pDstCurrPos, dstLenBytes, 0, s->bitCount};
  if (w.pos < 0 || w.len - w.pos < 24) return 1;
  if (w.n < 0 || w.n > 7) return 1;
  w.acc = (s->bitBufferLo >> (24 - w.n)) & ((1u << w.n) - 1);
  int32_t diff = static_cast<int32_t>(pSrc[0]) - static_cast<int32_t>(*pLastDC);
  if (!codeBlock<true>(w, pSrc, diff, pDcTable, pAcTable)) return 1;
  if (w.n >= 8 && !w.burst()) return 1;
  *pLastDC = pSrc[0];
  s->bitBufferLo = static_cast<uint32_t>(w.acc << (24 - w.n));
  s->bitBufferHi = 0;
  s->bitCount = w.n;
  *pDstCurrPos = static_cast<int>(w.pos);
  return 0;
}

// ---------------------------------------------------------------------------
// Careful path: one ownpj_write_bits_jpeg call per code and per value.

ZvpStatus ownpj_EncodeHuffman8x8_Careful_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, Zvp16s* pLastDC,
                                                      const ZvpiEncodeHuffmanSpec* pDcTable,
                                                      const ZvpiEncodeHuffmanSpec* pAcTable,
                                                      ZvpiEncodeHuffmanState* s) {
  const int32_t* zz = own_pj_izigzag_index.data();
  auto put = [&](uint32_t entry) {
    return ownpj_write_bits_jpeg(entry & 0xFFFF, static_cast<int>(entry >> 16), pDst, dstLenBytes, pDstCurrPos, s);
  };
  int32_t d = static_cast<int32_t>(pSrc[0]) - static_cast<int32_t>(*pLastDC);
  *pLastDC = pSrc[0];
  int c = category(d);
  if (d < 0) d -= 1;
  if (ZvpStatus st = put(pDcTable->code[c])) return st;
  if (c != 0)
    if (ZvpStatus st = ownpj_write_bits_jpeg(static_cast<uint32_t>(d), c, pDst, dstLenBytes, pDstCurrPos, s))
      return st;
  int r = 0;
  for (int k = 1; k < 64; ++k) {
    int32_t v = pSrc[zz[k]];
    if (v == 0) {
      ++r;
      continue;
    }
    for (; r >= 16; r -= 16)
      if (ZvpStatus st = put(pAcTable->code[0xF0])) return st;
    c = category(v);
    if (v < 0) v -= 1;
    if (ZvpStatus st = put(acEntry(pAcTable, (r << 4) + c))) return st;
    if (ZvpStatus st = ownpj_write_bits_jpeg(static_cast<uint32_t>(v), c, pDst, dstLenBytes, pDstCurrPos, s))
      return st;
    r = 0;
  }
  if (r > 0)
    if (ZvpStatus st = put(pAcTable->code[0])) return st;
  return zvpStatusOk;
}

void ownpj_EncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                                                 const ZvpiEncodeHuffmanSpec* pDcTable,
                                                 const ZvpiEncodeHuffmanSpec* pAcTable) {
  int bitPos = *pDstBitsLen;
  BitSink<false> w{pDst, bitPos >> 3, 0, 0, bitPos & 7};
  w.acc = w.n ? static_cast<uint64_t>(pDst[w.pos] >> (8 - w.n)) : 0;
  int32_t diff = static_cast<int32_t>(pSrc[0]) - static_cast<int32_t>(*pLastDC);
  *pLastDC = pSrc[0];
  codeBlock<false>(w, pSrc, diff, pDcTable, pAcTable);
  w.burst();
  pDst[w.pos] = static_cast<Zvp8u>(w.n ? (w.acc << (8 - w.n)) & 0xFF : 0);
  *pDstBitsLen = static_cast<int>((static_cast<uint32_t>(w.pos) << 3) + static_cast<uint32_t>(w.n));
}

// ---------------------------------------------------------------------------
// Exported functions.

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) {
  if (!pSize) return zvpStatusNullPointer;
  *pSize = ZVPJ_ENCODE_HUFFMAN_STATE_SIZE;
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateInit_JPEG_8u(ZvpiEncodeHuffmanState* pEncHuffState) {
  if (!pEncHuffState) return zvpStatusNullPointer;
  ownpj_EncodeHuffmanStateInit(pEncHuffState);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateInitAlloc_JPEG_8u(ZvpiEncodeHuffmanState** ppEncHuffState) {
  if (!ppEncHuffState) return zvpStatusNullPointer;
  auto* s = reinterpret_cast<ZvpiEncodeHuffmanState*>(zvpsMalloc_8u(ZVPJ_ENCODE_HUFFMAN_STATE_SIZE));
  if (!s) return zvpStatusNullPointer;
  ownpj_EncodeHuffmanStateInit(s);
  *ppEncHuffState = s;
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateFree_JPEG_8u(ZvpiEncodeHuffmanState* pEncHuffState) {
  if (!pEncHuffState) return zvpStatusNullPointer;
  zvpsFree(pEncHuffState);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                                 int* pDstCurrPos, Zvp16s* pLastDC,
                                                                 const ZvpiEncodeHuffmanSpec* pDcTable,
                                                                 const ZvpiEncodeHuffmanSpec* pAcTable,
                                                                 ZvpiEncodeHuffmanState* pEncHuffState, int bFlush) {
  if (!pDst) return zvpStatusNullPointer;
  if (dstLenBytes < 1) return zvpStatusBadSize;
  if (!pDstCurrPos || !pEncHuffState) return zvpStatusNullPointer;
  if (bFlush) return ownpj_EncodeHuffmanFlush(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  if (ZvpStatus st = zvp::checkTables({pSrc, pLastDC, pDcTable, pAcTable})) return st;
  if (ownpj_EncodeHuffman8x8_JPEG_16s1u_C1(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable,
                                           pEncHuffState) == 0)
    return zvpStatusOk;
  return ownpj_EncodeHuffman8x8_Careful_JPEG_16s1u_C1(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable,
                                                      pAcTable, pEncHuffState);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst,
                                                                        int* pDstBitsLen, Zvp16s* pLastDC,
                                                                        const ZvpiEncodeHuffmanSpec* pDcTable,
                                                                        const ZvpiEncodeHuffmanSpec* pAcTable) {
  if (ZvpStatus st = zvp::checkTables({pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable})) return st;
  // A negative bit position would address bytes before the buffer.
  if (*pDstBitsLen < 0) return zvpStatusBadArgument;
  ownpj_EncodeHuffman8x8_Direct_JPEG_16s1u_C1(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
  return zvpStatusOk;
}
