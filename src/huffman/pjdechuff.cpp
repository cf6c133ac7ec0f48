// Sequential Huffman decoding: the decoder's bit-stream state, the careful
// byte reader and symbol decoder, and the block decoders with their fast and
// careful paths.
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/memory.h"
#include "huffman/huffbits.h"
#include "huffman/huffrecords.h"
#include "sample/zigzag.h"

using zvp::huff::codeFits;
using zvp::huff::extendValue;
using zvp::huff::lowBits;
using zvp::huff::walkSymbol;

// ---------------------------------------------------------------------------
// Careful reading through the state record.

ZvpStatus ownpj_FillBitBuffer(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int nBitsNeeded,
                              ZvpiDecodeHuffmanState* pDecHuffState) {
  if (*pMarker != 0) return nBitsNeeded > pDecHuffState->bitCount ? zvpStatusJpegRange : zvpStatusOk;
  int pos = *pSrcCurrPos;
  uint32_t buf = pDecHuffState->bitBufferLo;
  int cnt = pDecHuffState->bitCount;
  ZvpStatus st = zvpStatusOk;
  while (cnt < 25) {
    if (pos >= srcLenBytes) {
      st = nBitsNeeded > cnt ? zvpStatusOutOfBuffer : zvpStatusOk;
      break;
    }
    uint32_t b = pSrc[pos++];
    if (b == 0xFF) {
      uint32_t next;
      do {
        if (pos >= srcLenBytes) {
          *pSrcCurrPos = pos;  // the 0xFF stays consumed
          return zvpStatusOutOfBuffer;
        }
        next = pSrc[pos++];
      } while (next == 0xFF);
      if (next != 0) {
        *pMarker = static_cast<int>(next);
        *pSrcCurrPos = pos;
        return zvpStatusOk;
      }
    }
    buf = (buf << 8) | b;
    pDecHuffState->bitBufferLo = buf;
    pDecHuffState->bitBufferHi = 0;
    cnt += 8;
    pDecHuffState->bitCount = cnt;
  }
  *pSrcCurrPos = pos;
  return st;
}

ZvpStatus ownpj_DecodeHuffSymbol(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int* pSymbol,
                                 const ZvpiDecodeHuffmanSpec* t, ZvpiDecodeHuffmanState* s) {
  int start = 9;
  if (s->bitCount < 8) {
    if (ZvpStatus st = ownpj_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, 0, s)) return st;
    if (s->bitCount < 8) start = 1;
  }
  if (start == 9) {
    uint32_t i = (s->bitBufferLo >> ((s->bitCount - 8) & 31)) & 255;
    uint32_t la = t->lookAhead[i];
    if (la >> 16) {
      s->bitCount -= static_cast<int>(la >> 16);
      *pSymbol = static_cast<int>(la & 0xFFFF);
      return zvpStatusOk;
    }
  }
  if (s->bitCount < start)
    if (ZvpStatus st = ownpj_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, start, s)) return st;
  s->bitCount -= start;
  int32_t code = static_cast<int32_t>(lowBits(s->bitBufferLo >> (s->bitCount & 31), start));
  int length = start;
  for (; length <= 16; ++length) {
    if (codeFits(code, t->maxCode[length])) break;
    if (s->bitCount < 1)
      if (ZvpStatus st = ownpj_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, 1, s)) return st;
    s->bitCount -= 1;
    code = code * 2 + static_cast<int32_t>((s->bitBufferLo >> (s->bitCount & 31)) & 1);
  }
  int32_t sym = length > 16 ? -1 : walkSymbol(t, length, code);
  if (sym < 0) {
    *pSymbol = 0;
    return zvpStatusJpegRange;
  }
  *pSymbol = sym;
  return zvpStatusOk;
}

// ---------------------------------------------------------------------------
// Reading of the Direct decoder: the caller's variables, no length.

void ownpj_DirectReadBytes(const OwnpjDirectCursor& c) {
  int pos = *c.pPos;
  uint32_t bits = *c.pBits;
  int cnt = *c.pCount;
  while (cnt < 25) {
    uint32_t b = c.pSrc[pos++];
    if (b == 0xFF) {
      uint32_t next;
      do next = c.pSrc[pos++];
      while (next == 0xFF);
      if (next != 0) {
        *c.pMarker = static_cast<int>(next);
        break;
      }
    }
    bits = (bits << 8) | b;
    cnt += 8;
  }
  *c.pPos = pos;
  *c.pBits = bits;
  *c.pCount = cnt;
}

int ownpj_DecodeLongBits(int startLength, const ZvpiDecodeHuffmanSpec* t, const OwnpjDirectCursor& c) {
  if (*c.pCount < startLength) {
    if (!(*c.pMarker > 0)) ownpj_DirectReadBytes(c);
    if (*c.pCount < startLength) return -256;
  }
  *c.pCount -= startLength;
  int32_t code = static_cast<int32_t>(lowBits(*c.pBits >> (*c.pCount & 31), startLength));
  for (int length = startLength; length <= 16; ++length) {
    if (codeFits(code, t->maxCode[length])) return walkSymbol(t, length, code);
    if (*c.pCount < 1) {
      if (!(*c.pMarker > 0)) ownpj_DirectReadBytes(c);
      if (*c.pCount < 1) return -256;
    }
    *c.pCount -= 1;
    code = code * 2 + static_cast<int32_t>((*c.pBits >> (*c.pCount & 31)) & 1);
  }
  return -1;
}

// ---------------------------------------------------------------------------
// Fast paths. The bits sit left-justified in a 64-bit word; nothing the
// caller sees changes until the block is done.

namespace {

inline void clearBlock(Zvp16s* pDst) { std::memset(pDst, 0, 64 * sizeof(Zvp16s)); }

// Byte-by-byte refill, shared by both readers: until more than 24 bits are
// held; a 0xFF not followed by a stuffed 0 (a marker) gives up.
template <class Reader>
inline bool refillBytes(Reader& r) {
  while (r.n <= 24) {
    uint64_t b = r.src[r.pos++];
    if (b == 0xFF) {
      if (r.src[r.pos] != 0) return false;
      ++r.pos;
    }
    r.acc |= b << (56 - r.n);
    r.n += 8;
  }
  return true;
}

// Bulk refill of the stateful decoder: false means give up.
struct StreamReader {
  const uint8_t* src;
  int64_t pos;
  int64_t len;
  uint64_t acc;
  int n;

  bool refill() {
    if (len - pos < 8) return false;
    const uint8_t* p = src + pos;
    uint64_t w = zvp::huff::load64(p);
    if (!zvp::huff::hasFF(w)) {
      int k = (64 - n) >> 3;
      if (k == 0) return true;
      w = __builtin_bswap64(w);
      if (k < 8) w = (w >> (64 - 8 * k)) << (64 - 8 * k);
      acc |= w >> n;
      n += 8 * k;
      pos += k;
      return true;
    }
    return refillBytes(*this);
  }
};

// Refill of the Direct decoder: 4 bytes at once when they lie in one
// 16-byte block of memory and hold no 0xFF, else byte by byte.
struct DirectReader {
  const uint8_t* src;
  int64_t pos;
  int64_t len;  // unused: no length
  uint64_t acc;
  int n;

  bool refill() {
    const uint8_t* p = src + pos;
    if ((reinterpret_cast<uintptr_t>(p) & 15) <= 12) {
      // Bytes are looked at one by one so that nothing past a final marker
      // is read; the choice of path is the same as a 4-byte load's.
      if (p[0] != 0xFF && p[1] != 0xFF && p[2] != 0xFF && p[3] != 0xFF) {
        uint64_t w = (uint64_t{p[0]} << 24) | (uint64_t{p[1]} << 16) | (uint64_t{p[2]} << 8) | p[3];
        acc |= w << (32 - n);
        n += 32;
        pos += 4;
        return true;
      }
    }
    return refillBytes(*this);
  }
};

// Decodes one symbol; -1 means give up.
template <class Reader>
inline int fastSymbol(Reader& r, const ZvpiDecodeHuffmanSpec* t) {
  if (r.n < 8 && !r.refill()) return -1;
  uint32_t la = t->lookAhead[r.acc >> 56];
  int len = static_cast<int>(la >> 16);
  if (__builtin_expect(len != 0, 1)) {
    r.acc <<= len;
    r.n -= len;
    return static_cast<int>(la & 0xFFFF);
  }
  if (r.n < 16 && !r.refill()) return -1;
  for (int length = 9; length <= 16; ++length) {
    int32_t code = static_cast<int32_t>(r.acc >> (64 - length));
    if (codeFits(code, t->maxCode[length])) {
      int32_t sym = walkSymbol(t, length, code);
      if (sym < 0) return -1;
      r.acc <<= length;
      r.n -= length;
      return sym;
    }
  }
  return -1;
}

// Takes s raw bits (0 to 15); false means give up.
template <class Reader>
inline bool fastBits(Reader& r, int s, uint32_t* v) {
  if (r.n < s && !r.refill()) return false;
  *v = s ? static_cast<uint32_t>(r.acc >> (64 - s)) : 0;
  r.acc <<= s;
  r.n -= s;
  return true;
}

// The block body shared by both fast decoders; false means give up.
template <class Reader>
inline bool fastBlock(Reader& r, Zvp16s* pDst, Zvp16s* pDc, const ZvpiDecodeHuffmanSpec* dc,
                      const ZvpiDecodeHuffmanSpec* ac, int* pK) {
  int sym = fastSymbol(r, dc);
  if (sym < 0) return false;
  if (sym != 0) {
    int s = sym & 15;
    uint32_t v;
    if (!fastBits(r, s, &v)) return false;
    *pDc = static_cast<Zvp16s>(static_cast<uint16_t>(*pDc + extendValue(v, s)));
  }
  pDst[0] = *pDc;
  const int32_t* zz = own_pj_izigzag_index.data();
  int k = 1;
  while (k < 64) {
    sym = fastSymbol(r, ac);
    if (sym < 0) return false;
    int run = sym >> 4;
    int s = sym & 15;
    if (s == 0) {
      if (run != 15) break;
      if (k + 16 > 63) return false;
      k += 16;
      continue;
    }
    k += run;
    if (k > 63) return false;
    uint32_t v;
    if (!fastBits(r, s, &v)) return false;
    pDst[zz[k]] = static_cast<Zvp16s>(static_cast<uint16_t>(extendValue(v, s)));
    ++k;
  }
  *pK = k;
  return true;
}

// Right-justifies the held bits and hands back whole bytes above 32 bits.
template <class Reader>
inline uint32_t finishBits(Reader& r) {
  uint64_t v = r.n ? r.acc >> (64 - r.n) : 0;
  if (r.n >= 33) {
    int c = ((r.n + 7) & ~7) - 32;
    v >>= c;
    r.n -= c;
    r.pos -= c / 8;
  }
  return static_cast<uint32_t>(v);
}

inline uint64_t leftJustify(uint32_t bits, int n) { return n ? static_cast<uint64_t>(lowBits(bits, n)) << (64 - n) : 0; }

}  // namespace

int ownpj_DecodeHuffman8x8_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Zvp16s* pDst,
                                         Zvp16s* pLastDC, int* pMarker, const ZvpiDecodeHuffmanSpec* pDcTable,
                                         const ZvpiDecodeHuffmanSpec* pAcTable,
                                         ZvpiDecodeHuffmanState* pDecHuffState) {
  if (*pMarker != 0) return 1;
  clearBlock(pDst);
  pDecHuffState->blockEnd = 0;
  StreamReader r{pSrc, *pSrcCurrPos, srcLenBytes, 0, pDecHuffState->bitCount};
  if (r.len - r.pos < 24 || r.pos < 0) return 1;
  if (r.n < 0 || r.n > 32) return 1;
  r.acc = leftJustify(pDecHuffState->bitBufferLo, r.n);
  Zvp16s dc = *pLastDC;
  int k = 0;
  if (!fastBlock(r, pDst, &dc, pDcTable, pAcTable, &k)) return 1;
  uint32_t bits = finishBits(r);
  *pLastDC = dc;
  pDecHuffState->blockEnd = k;
  *pSrcCurrPos = static_cast<int>(r.pos);
  pDecHuffState->bitBufferLo = bits;
  pDecHuffState->bitBufferHi = 0;
  pDecHuffState->bitCount = r.n;
  return 0;
}

int ownpj_DecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen, Zvp16s* pDst, Zvp16s* pLastDC,
                                                int* pMarker, Zvp32u* pPrefetchedBits, int* pNumValidPrefetchedBits,
                                                const ZvpiDecodeHuffmanSpec* pDcTable,
                                                const ZvpiDecodeHuffmanSpec* pAcTable) {
  if (*pMarker != 0) return 1;
  clearBlock(pDst);
  DirectReader r{pSrc, *pSrcBitsLen >> 3, 0, 0, *pNumValidPrefetchedBits};
  if (r.n < 0 || r.n > 32) return 1;
  r.acc = leftJustify(*pPrefetchedBits, r.n);
  Zvp16s dc = *pLastDC;
  int k = 0;
  if (!fastBlock(r, pDst, &dc, pDcTable, pAcTable, &k)) return 1;
  uint32_t bits = finishBits(r);
  *pLastDC = dc;
  *pSrcBitsLen = static_cast<int>(static_cast<uint32_t>(r.pos) << 3);
  *pPrefetchedBits = bits;
  *pNumValidPrefetchedBits = r.n;
  return 0;
}

// ---------------------------------------------------------------------------
// Careful paths: they redo the block from the unchanged position and state.

ZvpStatus ownpj_DecodeHuffman8x8_Careful_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      Zvp16s* pDst, Zvp16s* pLastDC, int* pMarker,
                                                      const ZvpiDecodeHuffmanSpec* pDcTable,
                                                      const ZvpiDecodeHuffmanSpec* pAcTable,
                                                      ZvpiDecodeHuffmanState* s) {
  clearBlock(pDst);
  int sym = 0;
  if (ZvpStatus st = ownpj_DecodeHuffSymbol(pSrc, srcLenBytes, pSrcCurrPos, pMarker, &sym, pDcTable, s)) {
    s->blockEnd = 0;
    return st;
  }
  if (sym != 0) {
    int size = sym & 15;
    if (s->bitCount < size)
      if (ZvpStatus st = ownpj_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, size, s)) {
        s->blockEnd = 0;
        return st;
      }
    s->bitCount -= size;
    uint32_t v = lowBits(s->bitBufferLo >> (s->bitCount & 31), size);
    *pLastDC = static_cast<Zvp16s>(static_cast<uint16_t>(*pLastDC + extendValue(v, size)));
  }
  pDst[0] = *pLastDC;

  ZvpStatus st = zvpStatusOk;
  int k = 1;
  do {
    st = ownpj_DecodeHuffSymbol(pSrc, srcLenBytes, pSrcCurrPos, pMarker, &sym, pAcTable, s);
    if (st) break;
    int run = sym >> 4;
    int size = sym & 15;
    if (size == 0) {
      if (run != 15) break;
      k += 16;
      continue;
    }
    k += run;
    if (s->bitCount < size) {
      st = ownpj_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, size, s);
      if (st) break;
    }
    s->bitCount -= size;
    uint32_t v = lowBits(s->bitBufferLo >> (s->bitCount & 31), size);
    // Positions past the index table (damaged data) count as out of range.
    int32_t idx = k < static_cast<int>(own_pj_izigzag_index.size()) ? own_pj_izigzag_index[k] : 64;
    if (idx > 63 || idx < 0) return zvpStatusError;
    pDst[idx] = static_cast<Zvp16s>(static_cast<uint16_t>(extendValue(v, size)));
    ++k;
  } while (k < 64);
  s->blockEnd = k;
  return st;
}

namespace {

// Symbol of the Direct careful path: >= 0 the symbol, -256 the bits ended at a
// marker (or none are left), -1 no code of up to 16 bits.
int directSymbol(const ZvpiDecodeHuffmanSpec* t, const OwnpjDirectCursor& c) {
  uint32_t i;
  if (*c.pCount >= 8) {
    i = (*c.pBits >> ((*c.pCount - 8) & 31)) & 255;
  } else {
    if (!(*c.pMarker > 0)) ownpj_DirectReadBytes(c);
    int cnt = *c.pCount;
    if (cnt <= 0) return -256;
    i = cnt >= 8 ? (*c.pBits >> ((cnt - 8) & 31)) & 255 : (*c.pBits << (8 - cnt)) & 255;
  }
  uint32_t la = t->lookAhead[i];
  if (la >> 16) {
    *c.pCount -= static_cast<int>(la >> 16);
    return static_cast<int>(la & 0xFFFF);
  }
  return ownpj_DecodeLongBits(9, t, c);
}

// Raw bits of the Direct careful path; false when no bits are left.
bool directBits(const OwnpjDirectCursor& c, int s, uint32_t* v) {
  if (*c.pCount < s) {
    if (!(*c.pMarker > 0) && *c.pCount < 25) ownpj_DirectReadBytes(c);
    if (*c.pCount <= 0) return false;
  }
  *c.pCount -= s;
  *v = lowBits(*c.pBits >> (*c.pCount & 31), s);
  return true;
}

}  // namespace

// Alike in shape to fastBlock, kept apart on purpose: here every failure has
// its own status and a marker ends the block with the state kept, where the
// fast body only gives up and leaves the block to this decoder.
ZvpStatus ownpj_DecodeHuffman8x8_DirectCareful_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen, Zvp16s* pDst,
                                                            Zvp16s* pLastDC, int* pMarker, Zvp32u* pPrefetchedBits,
                                                            int* pNumValidPrefetchedBits,
                                                            const ZvpiDecodeHuffmanSpec* pDcTable,
                                                            const ZvpiDecodeHuffmanSpec* pAcTable) {
  clearBlock(pDst);
  int pos = *pSrcBitsLen >> 3;
  const OwnpjDirectCursor c{pSrc, &pos, pPrefetchedBits, pNumValidPrefetchedBits, pMarker};
  int sym = directSymbol(pDcTable, c);
  if (sym == -256) return zvpStatusOk;  // a marker before the block: the position stays
  if (sym < 0) return zvpStatusJpegRange;
  if (sym != 0) {
    int size = sym & 15;
    uint32_t v;
    if (!directBits(c, size, &v)) return zvpStatusOutOfBuffer;
    *pLastDC = static_cast<Zvp16s>(static_cast<uint16_t>(*pLastDC + extendValue(v, size)));
  }
  pDst[0] = *pLastDC;
  int k = 1;
  while (k < 64) {
    sym = directSymbol(pAcTable, c);
    if (sym == -256) {
      *pNumValidPrefetchedBits = 0;
      break;
    }
    if (sym < 0) return zvpStatusJpegRange;
    int run = sym >> 4;
    int size = sym & 15;
    if (size == 0) {
      if (run != 15) break;
      k += 16;
      continue;
    }
    k += run;
    uint32_t v;
    if (!directBits(c, size, &v)) return zvpStatusOutOfBuffer;
    // No range test here; positions past the table's guards are held on the
    // last coefficient so that damaged data never stores outside the block.
    pDst[own_pj_izigzag_index[std::min(k, 71)]] = static_cast<Zvp16s>(static_cast<uint16_t>(extendValue(v, size)));
    ++k;
  }
  *pSrcBitsLen = static_cast<int>(static_cast<uint32_t>(pos) << 3);
  return zvpStatusOk;
}

// ---------------------------------------------------------------------------
// Exported functions.

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) {
  if (!pSize) return zvpStatusNullPointer;
  *pSize = ZVPJ_DECODE_HUFFMAN_STATE_SIZE;
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateInit_JPEG_8u(ZvpiDecodeHuffmanState* pDecHuffState) {
  if (!pDecHuffState) return zvpStatusNullPointer;
  std::memset(static_cast<void*>(pDecHuffState), 0, sizeof *pDecHuffState);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateInitAlloc_JPEG_8u(ZvpiDecodeHuffmanState** ppDecHuffState) {
  if (!ppDecHuffState) return zvpStatusNullPointer;
  auto* s = reinterpret_cast<ZvpiDecodeHuffmanState*>(zvpsMalloc_8u(ZVPJ_DECODE_HUFFMAN_STATE_SIZE));
  if (!s) return zvpStatusNullPointer;
  std::memset(static_cast<void*>(s), 0, sizeof *s);
  *ppDecHuffState = s;
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateFree_JPEG_8u(ZvpiDecodeHuffmanState* pDecHuffState) {
  if (!pDecHuffState) return zvpStatusNullPointer;
  zvpsFree(pDecHuffState);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                                 Zvp16s* pDst, Zvp16s* pLastDC, int* pMarker,
                                                                 const ZvpiDecodeHuffmanSpec* pDcTable,
                                                                 const ZvpiDecodeHuffmanSpec* pAcTable,
                                                                 ZvpiDecodeHuffmanState* pDecHuffState) {
  if (!pSrc) return zvpStatusNullPointer;
  if (srcLenBytes < 0) return zvpStatusBadArgument;
  if (ZvpStatus st = zvp::checkTables({pSrcCurrPos, pDst, pLastDC, pMarker, pDcTable, pAcTable, pDecHuffState}))
    return st;
  if (ownpj_DecodeHuffman8x8_JPEG_1u16s_C1(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, pDcTable, pAcTable,
                                           pDecHuffState) == 0)
    return zvpStatusOk;
  return ownpj_DecodeHuffman8x8_Careful_JPEG_1u16s_C1(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker,
                                                      pDcTable, pAcTable, pDecHuffState);
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen,
                                                                        Zvp16s* pDst, Zvp16s* pLastDC, int* pMarker,
                                                                        Zvp32u* pPrefetchedBits,
                                                                        int* pNumValidPrefetchedBits,
                                                                        const ZvpiDecodeHuffmanSpec* pDcTable,
                                                                        const ZvpiDecodeHuffmanSpec* pAcTable) {
  if (!pSrc || !pSrcBitsLen) return zvpStatusNullPointer;
  if (*pSrcBitsLen < 0) return zvpStatusBadArgument;
  if (ZvpStatus st = zvp::checkTables({pDst, pLastDC, pMarker, pPrefetchedBits, pNumValidPrefetchedBits})) return st;
  if (*pNumValidPrefetchedBits < 0) return zvpStatusBadArgument;
  if (!pDcTable || !pAcTable) return zvpStatusNullPointer;
  if (ownpj_DecodeHuffman8x8_Direct_JPEG_1u16s_C1(pSrc, pSrcBitsLen, pDst, pLastDC, pMarker, pPrefetchedBits,
                                                  pNumValidPrefetchedBits, pDcTable, pAcTable) == 0)
    return zvpStatusOk;
  return ownpj_DecodeHuffman8x8_DirectCareful_JPEG_1u16s_C1(pSrc, pSrcBitsLen, pDst, pLastDC, pMarker,
                                                            pPrefetchedBits, pNumValidPrefetchedBits, pDcTable,
                                                            pAcTable);
}
