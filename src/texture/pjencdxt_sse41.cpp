// SSE4.1 kernel of the wide DXT5 path: one block per turn, 4 rows of 16
// bytes. Minimum and maximum by byte lanes, channel sums by multiply-add, the
// position by one signed high multiply per pixel, indices by byte shuffle
// and multiply-add packing. Gives the bytes of wideRowScalar.
#if !defined(ZVP_NO_X86)
#include <smmintrin.h>

#include <algorithm>

#include "core/parallel.h"
#include "texture/texture.h"

namespace zvp::tex {
namespace {

// Dividers, low 16 bits as used: 32768 / (i + 1) for the colour range sum,
// 65536 / (i + 1) for the alpha range.
struct Dividers {
  int16_t colour[766];
  int16_t alpha[256];
};
constexpr Dividers makeDividers() {
  Dividers d{};
  for (int i = 0; i < 766; ++i) d.colour[i] = static_cast<int16_t>(static_cast<uint16_t>(32768 / (i + 1)));
  for (int i = 0; i < 256; ++i) d.alpha[i] = static_cast<int16_t>(static_cast<uint16_t>(65536 / (i + 1)));
  return d;
}
constexpr Dividers kDividers = makeDividers();

inline void store16(Zvp8u* p, uint32_t v) {
  p[0] = static_cast<Zvp8u>(v);
  p[1] = static_cast<Zvp8u>(v >> 8);
}

void wideBlock(const Zvp8u* pSrc, int srcStep, Zvp8u* pOut) {
  const __m128i r0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc));
  const __m128i r1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 1)));
  const __m128i r2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 2)));
  const __m128i r3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 3)));
  __m128i mn = _mm_min_epu8(_mm_min_epu8(r0, r1), _mm_min_epu8(r2, r3));
  __m128i mx = _mm_max_epu8(_mm_max_epu8(r0, r1), _mm_max_epu8(r2, r3));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0x4E));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0x4E));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0xB1));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0xB1));
  const uint32_t mnw = static_cast<uint32_t>(_mm_cvtsi128_si32(mn));
  const uint32_t mxw = static_cast<uint32_t>(_mm_cvtsi128_si32(mx));
  int lo[4], hi[4], range[4];
  for (int ch = 0; ch < 4; ++ch) {
    const int a = (mnw >> (8 * ch)) & 0xFF, b = (mxw >> (8 * ch)) & 0xFF;
    range[ch] = b - a;
    hi[ch] = b - (range[ch] >> 4);
    lo[ch] = a + (range[ch] >> 4);
  }
  const __m128i dc = _mm_set1_epi16(kDividers.colour[range[0] + range[1] + range[2]]);
  const __m128i da = _mm_set1_epi16(kDividers.alpha[range[3]]);

  const __m128i wc = _mm_set1_epi32(0x00080808);
  const __m128i wa = _mm_set1_epi32(0x08000000);
  const __m128i d0 = _mm_sub_epi8(r0, mn), d1 = _mm_sub_epi8(r1, mn);
  const __m128i d2 = _mm_sub_epi8(r2, mn), d3 = _mm_sub_epi8(r3, mn);
  const __m128i s01 = _mm_hadd_epi16(_mm_maddubs_epi16(d0, wc), _mm_maddubs_epi16(d1, wc));
  const __m128i s23 = _mm_hadd_epi16(_mm_maddubs_epi16(d2, wc), _mm_maddubs_epi16(d3, wc));
  const __m128i t01 = _mm_hadd_epi16(_mm_maddubs_epi16(d0, wa), _mm_maddubs_epi16(d1, wa));
  const __m128i t23 = _mm_hadd_epi16(_mm_maddubs_epi16(d2, wa), _mm_maddubs_epi16(d3, wa));
  // Saturated to 0..255 by the unsigned pack.
  const __m128i rawC = _mm_packus_epi16(_mm_mulhi_epi16(s01, dc), _mm_mulhi_epi16(s23, dc));
  const __m128i rawA = _mm_packus_epi16(_mm_mulhi_epi16(t01, da), _mm_mulhi_epi16(t23, da));
  const __m128i cIdx = _mm_shuffle_epi8(_mm_setr_epi8(1, 3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0), rawC);
  const __m128i aIdx = _mm_shuffle_epi8(_mm_setr_epi8(1, 7, 6, 5, 4, 3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0), rawA);
  // Colour: four 2-bit indices per byte.
  __m128i c = _mm_madd_epi16(_mm_maddubs_epi16(cIdx, _mm_set1_epi16(0x0401)), _mm_set1_epi32(0x00100001));
  c = _mm_packus_epi16(_mm_packus_epi32(c, c), c);
  const uint32_t cw = static_cast<uint32_t>(_mm_cvtsi128_si32(c));
  // Alpha: four 3-bit indices in 12 bits per lane, joined to 48 bits.
  const __m128i a = _mm_madd_epi16(_mm_maddubs_epi16(aIdx, _mm_set1_epi16(0x0801)), _mm_set1_epi32(0x00400001));
  const uint64_t aw = static_cast<uint64_t>(static_cast<uint32_t>(_mm_cvtsi128_si32(a))) |
                      (static_cast<uint64_t>(static_cast<uint32_t>(_mm_extract_epi32(a, 1))) << 12) |
                      (static_cast<uint64_t>(static_cast<uint32_t>(_mm_extract_epi32(a, 2))) << 24) |
                      (static_cast<uint64_t>(static_cast<uint32_t>(_mm_extract_epi32(a, 3))) << 36);
  pOut[0] = static_cast<Zvp8u>(hi[3]);
  pOut[1] = static_cast<Zvp8u>(lo[3]);
  for (int i = 0; i < 6; ++i) pOut[2 + i] = static_cast<Zvp8u>(aw >> (8 * i));
  store16(pOut + 8, static_cast<uint32_t>(((hi[0] >> 3) << 11) | ((hi[1] >> 2) << 5) | (hi[2] >> 3)));
  store16(pOut + 10, static_cast<uint32_t>(((lo[0] >> 3) << 11) | ((lo[1] >> 2) << 5) | (lo[2] >> 3)));
  for (int i = 0; i < 4; ++i) pOut[12 + i] = static_cast<Zvp8u>(cw >> (8 * i));
}

}  // namespace

void wideRowSSE41(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  for (int b = 0; b < numBlocks; ++b) wideBlock(pSrc + 16 * b, srcStep, pDst + 16 * b);
}

}  // namespace zvp::tex
#endif
