// The sequential Huffman encoder's block coder built for AVX2-class
// processors: the same source as the plain twin (pjenchuff_block.h), with
// shlx, bzhi, tzcnt and lzcnt available to the compiler.
#include <immintrin.h>

#include <array>

#include "huffman/pjenchuff_block.h"
#include "huffman/pjenchuff_kernels.h"

namespace zvp::huff {

namespace {

// shuf[j][s]: for output bytes 16j..16j+15 (zig-zag positions), the byte of
// source chunk s (natural positions 16s..16s+15) or 0x80 when elsewhere.
// Built from the library's zig-zag table on first use (a function-local
// static: the table itself is filled at start-up in another file).
struct MaskShuffles {
  alignas(32) uint8_t shuf[4][4][16];
  MaskShuffles() {
    for (auto& a : shuf)
      for (auto& b : a)
        for (auto& c : b) c = 0x80;
    for (int k = 0; k < 64; ++k) {
      int n = own_pj_izigzag_index[k];
      shuf[k / 16][n / 16][k % 16] = static_cast<uint8_t>(n % 16);
    }
  }
};

}  // namespace

// The SSE4.1 method in VEX encoding, so that it mixes with the block coder
// of this file without transition costs.
uint64_t zigzagMaskAVX2(const Zvp16s* pSrc) {
  static const MaskShuffles kMaskShuffles;
  const __m128i zero = _mm_setzero_si128();
  __m128i z[4];
  for (int i = 0; i < 4; ++i) {
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i + 8));
    z[i] = _mm_packs_epi16(_mm_cmpeq_epi16(a, zero), _mm_cmpeq_epi16(b, zero));  // 0xFF: zero
  }
  uint64_t zeroMask = 0;
  for (int j = 0; j < 4; ++j) {
    const auto& sh = kMaskShuffles.shuf[j];
    __m128i o = _mm_shuffle_epi8(z[0], _mm_load_si128(reinterpret_cast<const __m128i*>(sh[0])));
    for (int c = 1; c < 4; ++c)
      o = _mm_or_si128(o, _mm_shuffle_epi8(z[c], _mm_load_si128(reinterpret_cast<const __m128i*>(sh[c]))));
    zeroMask |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(o))) << (16 * j);
  }
  return ~zeroMask;
}

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
