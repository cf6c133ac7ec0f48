// The sequential Huffman encoder's block coder built for AVX2-class
// processors: the same source as the plain twin (pjenchuff_block.h), with
// shlx, bzhi, tzcnt and lzcnt available to the compiler.
#include <immintrin.h>

#include <array>

#include "huffman/pjenchuff_block.h"
#include "huffman/pjenchuff_kernels.h"
#include "huffman/zigzagmask.h"

namespace zvp::huff {

// The SSE4.1 method in VEX encoding, so that it mixes with the block coder
// of this file without transition costs.
uint64_t zigzagMaskAVX2(const Zvp16s* pSrc) { return zigzagNonzeroMask(pSrc); }

int encodeBlockFastAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos, Zvp16s* pLastDC,
                        const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable,
                        ZvpiEncodeHuffmanState* s) {
  return encblk::fastPath<false>(pSrc, zigzagMaskAVX2(pSrc), nullptr, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable,
                          s);
}

void encodeBlockDirectAVX2(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                           const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable) {
  encblk::directPath<false>(pSrc, zigzagMaskAVX2(pSrc), nullptr, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}

}  // namespace zvp::huff
