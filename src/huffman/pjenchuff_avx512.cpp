// The sequential Huffman encoder's block coder for AVX-512 processors: one
// vector pass puts the block in zig-zag order (two word permutes), takes the
// nonzero mask from it, and prepares per position the category and the value
// bits, so that the coding loop does one load per nonzero coefficient.
#include <immintrin.h>

// GCC 12 reports the deliberately undefined pass-through operand inside the
// unmasked AVX-512 intrinsics as uninitialised; nothing here reads it.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "huffman/pjenchuff_block.h"
#include "huffman/pjenchuff_kernels.h"

namespace zvp::huff {

namespace {

// Word permute indices: output k takes natural index own_pj_izigzag_index[k]
// (bit 5 selects the second 32 values). Built on first use, as the table is
// filled at start-up in another file.
struct ZigzagPermute {
  alignas(64) uint16_t idx[64];
  ZigzagPermute() {
    for (int k = 0; k < 64; ++k) idx[k] = static_cast<uint16_t>(own_pj_izigzag_index[k]);
  }
};

}  // namespace

uint64_t prepareBlockAVX512(const Zvp16s* pSrc, uint32_t* prep) {
  static const ZigzagPermute t;
  const __m512i a = _mm512_loadu_si512(pSrc);
  const __m512i b = _mm512_loadu_si512(pSrc + 32);
  const __m512i z[2] = {_mm512_permutex2var_epi16(a, _mm512_load_si512(t.idx), b),
                        _mm512_permutex2var_epi16(a, _mm512_load_si512(t.idx + 32), b)};
  const uint64_t mask = static_cast<uint64_t>(_mm512_test_epi16_mask(z[0], z[0])) |
                        (static_cast<uint64_t>(_mm512_test_epi16_mask(z[1], z[1])) << 32);
  const __m512i one = _mm512_set1_epi32(1);
  const __m512i bias = _mm512_set1_epi32(126);
  const __m512i zero = _mm512_setzero_si512();
  auto quarter = [&](__m256i half, uint32_t* out) {
    const __m512i v = _mm512_cvtepi16_epi32(half);
    // Bit length of the magnitude (at most 32768, exact as a float): the
    // float's exponent less 126, and 0 for 0.
    const __m512i f = _mm512_castps_si512(_mm512_cvtepi32_ps(_mm512_abs_epi32(v)));
    const __m512i cat = _mm512_max_epi32(_mm512_sub_epi32(_mm512_srli_epi32(f, 23), bias), zero);
    // The low `cat` bits of the value, less 1 when negative.
    const __m512i bits = _mm512_and_si512(_mm512_add_epi32(v, _mm512_srai_epi32(v, 31)),
                                          _mm512_sub_epi32(_mm512_sllv_epi32(one, cat), one));
    _mm512_storeu_si512(out, _mm512_or_si512(_mm512_slli_epi32(cat, 16), bits));
  };
  quarter(_mm512_castsi512_si256(z[0]), prep);
  quarter(_mm512_extracti64x4_epi64(z[0], 1), prep + 16);
  quarter(_mm512_castsi512_si256(z[1]), prep + 32);
  quarter(_mm512_extracti64x4_epi64(z[1], 1), prep + 48);
  return mask;
}

int encodeBlockFastAVX512(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos, Zvp16s* pLastDC,
                          const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable,
                          ZvpiEncodeHuffmanState* s) {
  alignas(64) uint32_t prep[64];
  const uint64_t mask = prepareBlockAVX512(pSrc, prep);
  return encblk::fastPath<true>(pSrc, mask, prep, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable, s);
}

void encodeBlockDirectAVX512(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen, Zvp16s* pLastDC,
                             const ZvpiEncodeHuffmanSpec* pDcTable, const ZvpiEncodeHuffmanSpec* pAcTable) {
  alignas(64) uint32_t prep[64];
  const uint64_t mask = prepareBlockAVX512(pSrc, prep);
  encblk::directPath<true>(pSrc, mask, prep, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}

}  // namespace zvp::huff
