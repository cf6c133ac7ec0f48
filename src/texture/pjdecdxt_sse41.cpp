// SSE4.1 kernels of the DXT decoders: the four-entry colour table is one
// register, and each row of 4 pixels is one byte shuffle of it, its control
// taken from a table indexed by the row's index byte. Alphas are placed in
// byte 3 of each pixel by a second shuffle. Each kernel gives the bytes of
// its scalar twin.
#if !defined(ZVP_NO_X86)
#include <smmintrin.h>

#include <cstring>

#include "texture/texture.h"

namespace zvp::tex {
namespace {

// Shuffle control for a row whose 4 two-bit indices form byte b.
struct RowControl {
  alignas(16) uint8_t c[256][16];
};
constexpr RowControl makeRowControl() {
  RowControl t{};
  for (int b = 0; b < 256; ++b)
    for (int j = 0; j < 4; ++j)
      for (int k = 0; k < 4; ++k) t.c[b][4 * j + k] = static_cast<uint8_t>(4 * ((b >> (2 * j)) & 3) + k);
  return t;
}
constexpr RowControl kRowControl = makeRowControl();

// Colour rows of the block whose colour half is at pColour.
inline void colourRows(const Zvp8u* pColour, bool dxt1, __m128i rows[4]) {
  alignas(16) Zvp8u table[4][4];
  colourTable(pColour, dxt1, table);
  const __m128i t = _mm_load_si128(reinterpret_cast<const __m128i*>(table));
  for (int r = 0; r < 4; ++r)
    rows[r] = _mm_shuffle_epi8(t, _mm_load_si128(reinterpret_cast<const __m128i*>(kRowControl.c[pColour[4 + r]])));
}

// Stores the rows with the 16 alphas (pixel order) in byte 3 of each pixel.
inline void storeWithAlpha(const __m128i rows[4], __m128i alpha, Zvp8u* pTile) {
  const __m128i keep = _mm_set1_epi32(0x00FFFFFF);
  for (int r = 0; r < 4; ++r) {
    const char b = static_cast<char>(4 * r);
    const __m128i place = _mm_setr_epi8(-1, -1, -1, b, -1, -1, -1, static_cast<char>(b + 1), -1, -1, -1,
                                        static_cast<char>(b + 2), -1, -1, -1, static_cast<char>(b + 3));
    const __m128i px = _mm_or_si128(_mm_and_si128(rows[r], keep), _mm_shuffle_epi8(alpha, place));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pTile + 16 * r), px);
  }
}

}  // namespace

void dxt1BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile) {
  __m128i rows[4];
  colourRows(pBlock, true, rows);
  for (int r = 0; r < 4; ++r) _mm_storeu_si128(reinterpret_cast<__m128i*>(pTile + 16 * r), rows[r]);
}

void dxt3BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile) {
  __m128i rows[4];
  colourRows(pBlock + 8, false, rows);
  // Low nibble of byte i is pixel 2i, high nibble pixel 2i + 1; each v << 4.
  const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pBlock));
  const __m128i mask = _mm_set1_epi8(static_cast<char>(0xF0));
  const __m128i lo = _mm_and_si128(_mm_slli_epi16(b, 4), mask), hi = _mm_and_si128(b, mask);
  storeWithAlpha(rows, _mm_unpacklo_epi8(lo, hi), pTile);
}

void dxt5BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile) {
  __m128i rows[4];
  colourRows(pBlock + 8, false, rows);
  alignas(16) Zvp8u table[16] = {};
  alphaTable(pBlock[0], pBlock[1], table);
  uint64_t bits = 0;
  std::memcpy(&bits, pBlock + 2, 6);  // little-endian host
  alignas(16) Zvp8u idx[16];
  for (int p = 0; p < 16; ++p) idx[p] = static_cast<Zvp8u>((bits >> (3 * p)) & 7);
  const __m128i alpha = _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(table)),
                                         _mm_load_si128(reinterpret_cast<const __m128i*>(idx)));
  storeWithAlpha(rows, alpha, pTile);
}

}  // namespace zvp::tex
#endif
