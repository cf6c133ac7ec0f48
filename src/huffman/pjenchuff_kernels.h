// Block coders of the sequential Huffman encoders, one per instruction
// class, chosen at the family's dispatch point (pjenchuff.cpp). The plain
// twins take the zig-zag nonzero mask from the caller; the AVX2 builds
// (BMI1/BMI2/LZCNT) find it themselves.
#pragma once

#include <cstdint>

#include "huffman/huffrecords.h"

namespace zvp::huff {

int encodeBlockFastScalar(const Zvp16s* pSrc, uint64_t mask, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                          Zvp16s* pLastDC, const ZvpiEncodeHuffmanSpec* pDcTable,
                          const ZvpiEncodeHuffmanSpec* pAcTable, ZvpiEncodeHuffmanState* s);
void encodeBlockDirectScalar(const Zvp16s* pSrc, uint64_t mask, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                             const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable);
#if !defined(ZVP_NO_X86)
int encodeBlockFastAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos, Zvp16s* pLastDC,
                        const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable,
                        ZvpiEncodeHuffmanState* s);
void encodeBlockDirectAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                           const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable);
// The zig-zag nonzero mask (as zigzagMaskScalar) in the AVX2 build.
uint64_t zigzagMaskAVX2(const Zvp16s* pSrc);
// AVX-512 build: the block in zig-zag order with its nonzero mask (returned)
// and per position k, (category << 16) | value bits in prep[k].
uint64_t prepareBlockAVX512(const Zvp16s* pSrc, uint32_t* prep);
int encodeBlockFastAVX512(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos, Zvp16s* pLastDC,
                          const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable,
                          ZvpiEncodeHuffmanState* s);
void encodeBlockDirectAVX512(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                             const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable);
#endif
}  // namespace zvp::huff
