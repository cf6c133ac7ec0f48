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
#include "huffman/pjenchuff_block.h"
#include "huffman/pjenchuff_kernels.h"
#include "sample/zigzag.h"

using zvp::huff::category;
using zvp::huff::lowBits;
using encblk::acEntry;

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
// Fast path and Direct encoder: the block coder of pjenchuff_block.h, in its
// plain twin here and its BMI2/LZCNT build in pjenchuff_avx2.cpp.

namespace zvp::huff {

int encodeBlockFastScalar(const Zvp16s* pSrc, uint64_t mask, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                          Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                          const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* s) {
  return encblk::fastPath<false>(pSrc, mask, nullptr, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable, s);
}

void encodeBlockDirectScalar(const Zvp16s* pSrc, uint64_t mask, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                             const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable) {
  encblk::directPath<false>(pSrc, mask, nullptr, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}

}  // namespace zvp::huff

int ownpj_EncodeHuffman8x8_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                         Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                                         const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* s) {
#if !defined(ZVP_NO_X86)
  const zvp::Isa isa = zvp::cpuIsa();
  if (isa >= zvp::Isa::AVX512)
    return zvp::huff::encodeBlockFastAVX512(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable, s);
  if (isa >= zvp::Isa::AVX2)
    return zvp::huff::encodeBlockFastAVX2(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable, s);
#endif
  return zvp::huff::encodeBlockFastScalar(pSrc, zvp::huff::zigzagMask()(pSrc), pDst, dstLenBytes, pDstCurrPos,
                                          pLastDC, pDcTable, pAcTable, s);
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
#if !defined(ZVP_NO_X86)
  const zvp::Isa isa = zvp::cpuIsa();
  if (isa >= zvp::Isa::AVX512)
    return zvp::huff::encodeBlockDirectAVX512(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
  if (isa >= zvp::Isa::AVX2)
    return zvp::huff::encodeBlockDirectAVX2(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
#endif
  zvp::huff::encodeBlockDirectScalar(pSrc, zvp::huff::zigzagMask()(pSrc), pDst, pDstBitsLen, pLastDC, pDcTable,
                                     pAcTable);
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
