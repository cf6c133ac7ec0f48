// The nonzero mask of a block in zig-zag order, by byte shuffles of the
// packed zero flags. Included by each vector build of the encoder; the
// anonymous namespace gives every build its own copy, compiled with that
// file's instruction set (an SSE4.1 file must never run a VEX-encoded copy).
#pragma once

#include <smmintrin.h>

#include <cstdint>

#include "sample/zigzag.h"
#include "zvpj.h"

namespace zvp::huff {
namespace {

// shuf[j][s]: for output bytes 16j..16j+15 (zig-zag positions), the byte of
// source chunk s (natural positions 16s..16s+15) or 0x80 when elsewhere.
// Built from the zig-zag table on first use.
struct MaskShuffles {
  alignas(16) uint8_t shuf[4][4][16];
  MaskShuffles() {
    for (auto& a : shuf)
      for (auto& b : a)
        for (auto& c : b) c = 0x80;
    for (int k = 0; k < 64; ++k) {
      const int n = own_pj_izigzag_index[k];
      shuf[k / 16][n / 16][k % 16] = static_cast<uint8_t>(n % 16);
    }
  }
};

inline uint64_t zigzagNonzeroMask(const Zvp16s* pSrc) {
  static const MaskShuffles kShuffles;
  const __m128i zero = _mm_setzero_si128();
  __m128i z[4];
  for (int i = 0; i < 4; ++i) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + 16 * i + 8));
    z[i] = _mm_packs_epi16(_mm_cmpeq_epi16(a, zero), _mm_cmpeq_epi16(b, zero));  // 0xFF: zero
  }
  uint64_t zeroMask = 0;
  for (int j = 0; j < 4; ++j) {
    const auto& sh = kShuffles.shuf[j];
    __m128i o = _mm_shuffle_epi8(z[0], _mm_load_si128(reinterpret_cast<const __m128i*>(sh[0])));
    for (int c = 1; c < 4; ++c)
      o = _mm_or_si128(o, _mm_shuffle_epi8(z[c], _mm_load_si128(reinterpret_cast<const __m128i*>(sh[c]))));
    zeroMask |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(o))) << (16 * j);
  }
  return ~zeroMask;
}

}  // namespace
}  // namespace zvp::huff
