// The four Huffman records of the JPEG coders, completed here with their exact
// byte layouts (the public header declares them opaque), and the internal
// functions that the sequential, progressive and lossless coders share.
#pragma once

#include <cstddef>
#include <array>
#include <cstdint>

#include "zvpj.h"

// Decode table: the symbol list, the 8-bit look-ahead and the canonical code
// walk. 512 + 1024 + 3 * 36 = 1644 bytes.
struct ZvpiDecodeHuffmanSpec {
  uint16_t symbols[256];
  uint32_t lookAhead[256];  // high 16 bits: code length (0: none), low 16 bits: symbol
  uint16_t minCode[18];
  uint16_t maxCode[18];     // 0xFFFF: no code of this length (compares as -1)
  uint16_t valPtr[18];
};
static_assert(sizeof(ZvpiDecodeHuffmanSpec) == ZVPJ_DECODE_HUFFMAN_SPEC_SIZE, "decode table is 1644 bytes");
static_assert(offsetof(ZvpiDecodeHuffmanSpec, lookAhead) == 512);
static_assert(offsetof(ZvpiDecodeHuffmanSpec, minCode) == 1536);
static_assert(offsetof(ZvpiDecodeHuffmanSpec, maxCode) == 1572);
static_assert(offsetof(ZvpiDecodeHuffmanSpec, valPtr) == 1608);

// Encode table: per symbol, code length in the high 16 bits and the code,
// right-justified, in the low 16 bits; 0 means no code.
struct ZvpiEncodeHuffmanSpec {
  uint32_t code[256];
};
static_assert(sizeof(ZvpiEncodeHuffmanSpec) == ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE, "encode table is 1024 bytes");

// The 64-bit bit buffers are kept as two 32-bit halves (low half first, the
// byte order of a little-endian 64-bit field) so that the records keep their
// exact sizes of 20 and 1044 bytes with 4-byte alignment.
struct ZvpiDecodeHuffmanState {
  uint32_t bitBufferLo;
  uint32_t bitBufferHi;
  int32_t bitCount;
  int32_t eobRun;
  int32_t blockEnd;
};
static_assert(sizeof(ZvpiDecodeHuffmanState) == ZVPJ_DECODE_HUFFMAN_STATE_SIZE, "decoder state is 20 bytes");

struct ZvpiEncodeHuffmanState {
  uint32_t bitBufferLo;
  uint32_t bitBufferHi;
  int32_t bitCount;
  int32_t eobRun;
  int32_t correctionCount;
  uint8_t correctionBits[1024];
};
static_assert(sizeof(ZvpiEncodeHuffmanState) == ZVPJ_ENCODE_HUFFMAN_STATE_SIZE, "encoder state is 1044 bytes");

namespace zvp::huff {

inline uint64_t bitBuffer64(const ZvpiDecodeHuffmanState* s) {
  return (static_cast<uint64_t>(s->bitBufferHi) << 32) | s->bitBufferLo;
}
inline void setBitBuffer64(ZvpiDecodeHuffmanState* s, uint64_t v) {
  s->bitBufferLo = static_cast<uint32_t>(v);
  s->bitBufferHi = static_cast<uint32_t>(v >> 32);
}
inline uint64_t bitBuffer64(const ZvpiEncodeHuffmanState* s) {
  return (static_cast<uint64_t>(s->bitBufferHi) << 32) | s->bitBufferLo;
}
inline void setBitBuffer64(ZvpiEncodeHuffmanState* s, uint64_t v) {
  s->bitBufferLo = static_cast<uint32_t>(v);
  s->bitBufferHi = static_cast<uint32_t>(v >> 32);
}

// maxCode test of the code walk: 0xFFFF compares as -1 (no code of this
// length), any other value unsigned.
inline bool codeFits(int32_t code, uint16_t maxCode) {
  return maxCode != 0xFFFF && code <= static_cast<int32_t>(maxCode);
}

// Symbol of a code found by the walk at `length`; -1 when the table's
// indices lead outside the symbol list (possible with an over-full table).
inline int32_t walkSymbol(const ZvpiDecodeHuffmanSpec* t, int length, int32_t code) {
  int32_t i = static_cast<int32_t>(t->valPtr[length]) - static_cast<int32_t>(t->minCode[length]) + code;
  if (i < 0 || i > 255) return -1;
  return t->symbols[i];
}

// Low n bits (n from 0 to 32).
inline uint32_t lowBits(uint32_t v, int n) { return n >= 32 ? v : (v & ((1u << n) - 1u)); }

// Value of s raw bits (s from 0 to 16), sign-extended the JPEG way: with the
// top bit clear, v - 2^s + 1. Branch-free (the branch would be a coin toss).
inline int32_t extendValue(uint32_t v, int s) {
  int32_t x = static_cast<int32_t>(v);
  int32_t half = static_cast<int32_t>((1u << s) >> 1);
  return x + (((x - half) >> 31) & static_cast<int32_t>(1u - (1u << s)));
}

// Bit category of a 32-bit difference or coefficient: the bit length of |v|.
int category(int32_t v);

}  // namespace zvp::huff

// Shared constant tables, filled by rule.
extern const std::array<int32_t, 256> own_pj_csize;
extern const std::array<int32_t, 512> own_pj_eobsize;
extern const std::array<int32_t, 16> own_pj_lowest_coef;
extern const std::array<int32_t, 16> own_pj_extend_offset;
extern const std::array<int32_t, 16> own_pj_extend_test;
extern const std::array<int32_t, 16> own_pj_twoexpnminusone;

// Table builders (no argument tests).
ZvpStatus ownpj_DecodeHuffmanSpecInit(const Zvp8u* pListBits, const Zvp8u* pListVals, ZvpiDecodeHuffmanSpec* pSpec);
ZvpStatus ownpj_EncodeHuffmanSpecInit(const Zvp8u* pListBits, const Zvp8u* pListVals, ZvpiEncodeHuffmanSpec* pSpec);
ZvpStatus ownpj_EncodeHuffmanRawTableInit(const Zvp32s* pStatistics, Zvp8u* pListBits, Zvp8u* pListVals);

// Bit-stream state: reading (careful path) and writing (24-bit span form).
ZvpStatus ownpj_FillBitBuffer(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int nBitsNeeded,
                              ZvpiDecodeHuffmanState* pDecHuffState);
ZvpStatus ownpj_DecodeHuffSymbol(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int* pSymbol,
                                 const ZvpiDecodeHuffmanSpec* pDecHuffSpec, ZvpiDecodeHuffmanState* pDecHuffState);

// Cursor of the Direct decoder: the caller's variables, no length.
struct OwnpjDirectCursor {
  const Zvp8u* pSrc;
  int* pPos;       // byte index
  Zvp32u* pBits;   // read-ahead bits, right-justified
  int* pCount;     // number of valid bits (may go negative at a marker)
  int* pMarker;
};
// Reads bytes into the cursor until 25 bits are held or a marker is met,
// passing over fill bytes; reads nothing when *pMarker is above 0.
void ownpj_DirectReadBytes(const OwnpjDirectCursor& c);
// Code walk from `startLength`: the symbol, -256 when the bits end at a
// marker, -1 when no code of up to 16 bits matches.
int ownpj_DecodeLongBits(int startLength, const ZvpiDecodeHuffmanSpec* pDecHuffSpec, const OwnpjDirectCursor& c);

ZvpStatus ownpj_write_bits_jpeg(Zvp32u code, int nBits, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                ZvpiEncodeHuffmanState* pEncHuffState);
void ownpj_EncodeHuffmanStateInit(ZvpiEncodeHuffmanState* pEncHuffState);
// The flush of the span-form encoders: pads with 1 bits, writes, resets.
ZvpStatus ownpj_EncodeHuffmanFlush(Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                   ZvpiEncodeHuffmanState* pEncHuffState);

// Sequential block coders: fast paths return 0 when the block is done, 1
// when they gave up (nothing the caller sees has changed then).
int ownpj_DecodeHuffman8x8_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Zvp16s* pDst,
                                         Zvp16s* pLastDC, int* pMarker, const ZvpiDecodeHuffmanSpec* pDcTable,
                                         const ZvpiDecodeHuffmanSpec* pAcTable, ZvpiDecodeHuffmanState* pDecHuffState);
ZvpStatus ownpj_DecodeHuffman8x8_Careful_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      Zvp16s* pDst, Zvp16s* pLastDC, int* pMarker,
                                                      const ZvpiDecodeHuffmanSpec* pDcTable,
                                                      const ZvpiDecodeHuffmanSpec* pAcTable,
                                                      ZvpiDecodeHuffmanState* pDecHuffState);
int ownpj_DecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen, Zvp16s* pDst, Zvp16s* pLastDC,
                                                int* pMarker, Zvp32u* pPrefetchedBits, int* pNumValidPrefetchedBits,
                                                const ZvpiDecodeHuffmanSpec* pDcTable,
                                                const ZvpiDecodeHuffmanSpec* pAcTable);
ZvpStatus ownpj_DecodeHuffman8x8_DirectCareful_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen, Zvp16s* pDst,
                                                            Zvp16s* pLastDC, int* pMarker, Zvp32u* pPrefetchedBits,
                                                            int* pNumValidPrefetchedBits,
                                                            const ZvpiDecodeHuffmanSpec* pDcTable,
                                                            const ZvpiDecodeHuffmanSpec* pAcTable);
int ownpj_EncodeHuffman8x8_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                         Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                                         const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* pEncHuffState);
ZvpStatus ownpj_EncodeHuffman8x8_Careful_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, Zvp16s* pLastDC,
                                                      const ZvpiEncodeHuffmanSpec* pDcTable,
                                                      const ZvpiEncodeHuffmanSpec* pAcTable,
                                                      ZvpiEncodeHuffmanState* pEncHuffState);
void ownpj_EncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                                                 const ZvpiEncodeHuffmanSpec* pDcTable,
                                                 const ZvpiEncodeHuffmanSpec* pAcTable);
