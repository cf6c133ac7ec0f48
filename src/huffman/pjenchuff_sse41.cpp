// SSE4.1 kernel of the Huffman encoder: the nonzero mask of a block in
// zig-zag order, by byte shuffles of the packed zero flags.
#include <smmintrin.h>

#include <cstring>

#include "huffman/huffkernels.h"
#include "sample/zigzag.h"

namespace zvp::huff {

namespace {

// shuf[j][s]: for output bytes 16j..16j+15 (zig-zag positions), the byte of
// source chunk s (natural positions 16s..16s+15) or 0x80 when elsewhere.
struct Shuffles {
  alignas(16) uint8_t shuf[4][4][16];
  Shuffles() {
    std::memset(shuf, 0x80, sizeof shuf);
    for (int k = 0; k < 64; ++k) {
      int n = own_pj_izigzag_index[k];
      shuf[k / 16][n / 16][k % 16] = static_cast<uint8_t>(n % 16);
    }
  }
};

}  // namespace

uint64_t zigzagMaskSSE41(const Zvp16s* pSrc) {
  static const Shuffles s;
  const __m128i zero = _mm_setzero_si128();
  __m128i z[4];
  for (int i = 0; i < 4; ++i) {
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i + 8));
    z[i] = _mm_packs_epi16(_mm_cmpeq_epi16(a, zero), _mm_cmpeq_epi16(b, zero));  // 0xFF: zero
  }
  uint64_t zeroMask = 0;
  for (int j = 0; j < 4; ++j) {
    __m128i o = _mm_shuffle_epi8(z[0], _mm_load_si128(reinterpret_cast<const __m128i*>(s.shuf[j][0])));
    for (int c = 1; c < 4; ++c)
      o = _mm_or_si128(o, _mm_shuffle_epi8(z[c], _mm_load_si128(reinterpret_cast<const __m128i*>(s.shuf[j][c]))));
    zeroMask |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(o))) << (16 * j);
  }
  return ~zeroMask;
}

}  // namespace zvp::huff
