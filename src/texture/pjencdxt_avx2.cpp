// AVX2 kernel of the wide DXT5 path: a pair of blocks per turn, one block in
// each 128-bit lane (4 rows of 32 bytes). The same steps as the SSE4.1
// kernel, all of them lane-local; gives the bytes of wideRowScalar.
#if !defined(ZVP_NO_X86)
#include <immintrin.h>

#include "core/parallel.h"
#include "texture/texture.h"

namespace zvp::tex {
namespace {

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

inline __m256i loadRow(const Zvp8u* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

void storeBlock(Zvp8u* pOut, uint32_t mnw, uint32_t mxw, uint32_t cw, uint64_t aw) {
  int lo[4], hi[4];
  for (int ch = 0; ch < 4; ++ch) {
    const int a = (mnw >> (8 * ch)) & 0xFF, b = (mxw >> (8 * ch)) & 0xFF;
    hi[ch] = b - ((b - a) >> 4);
    lo[ch] = a + ((b - a) >> 4);
  }
  const uint32_t w0 = static_cast<uint32_t>(((hi[0] >> 3) << 11) | ((hi[1] >> 2) << 5) | (hi[2] >> 3));
  const uint32_t w1 = static_cast<uint32_t>(((lo[0] >> 3) << 11) | ((lo[1] >> 2) << 5) | (lo[2] >> 3));
  pOut[0] = static_cast<Zvp8u>(hi[3]);
  pOut[1] = static_cast<Zvp8u>(lo[3]);
  for (int i = 0; i < 6; ++i) pOut[2 + i] = static_cast<Zvp8u>(aw >> (8 * i));
  pOut[8] = static_cast<Zvp8u>(w0);
  pOut[9] = static_cast<Zvp8u>(w0 >> 8);
  pOut[10] = static_cast<Zvp8u>(w1);
  pOut[11] = static_cast<Zvp8u>(w1 >> 8);
  for (int i = 0; i < 4; ++i) pOut[12 + i] = static_cast<Zvp8u>(cw >> (8 * i));
}

int colourRange(uint32_t mnw, uint32_t mxw) {
  int s = 0;
  for (int ch = 0; ch < 3; ++ch) s += static_cast<int>((mxw >> (8 * ch)) & 0xFF) - static_cast<int>((mnw >> (8 * ch)) & 0xFF);
  return s;
}
int alphaRange(uint32_t mnw, uint32_t mxw) { return static_cast<int>(mxw >> 24) - static_cast<int>(mnw >> 24); }

void widePair(const Zvp8u* pSrc, int srcStep, Zvp8u* pOut) {
  const __m256i r0 = loadRow(pSrc), r1 = loadRow(zvp::rowPtr(pSrc, srcStep, 1));
  const __m256i r2 = loadRow(zvp::rowPtr(pSrc, srcStep, 2)), r3 = loadRow(zvp::rowPtr(pSrc, srcStep, 3));
  __m256i mn = _mm256_min_epu8(_mm256_min_epu8(r0, r1), _mm256_min_epu8(r2, r3));
  __m256i mx = _mm256_max_epu8(_mm256_max_epu8(r0, r1), _mm256_max_epu8(r2, r3));
  mn = _mm256_min_epu8(mn, _mm256_shuffle_epi32(mn, 0x4E));
  mx = _mm256_max_epu8(mx, _mm256_shuffle_epi32(mx, 0x4E));
  mn = _mm256_min_epu8(mn, _mm256_shuffle_epi32(mn, 0xB1));
  mx = _mm256_max_epu8(mx, _mm256_shuffle_epi32(mx, 0xB1));
  const uint32_t mn0 = static_cast<uint32_t>(_mm256_extract_epi32(mn, 0));
  const uint32_t mn1 = static_cast<uint32_t>(_mm256_extract_epi32(mn, 4));
  const uint32_t mx0 = static_cast<uint32_t>(_mm256_extract_epi32(mx, 0));
  const uint32_t mx1 = static_cast<uint32_t>(_mm256_extract_epi32(mx, 4));
  const __m256i dc = _mm256_set_m128i(_mm_set1_epi16(kDividers.colour[colourRange(mn1, mx1)]),
                                      _mm_set1_epi16(kDividers.colour[colourRange(mn0, mx0)]));
  const __m256i da = _mm256_set_m128i(_mm_set1_epi16(kDividers.alpha[alphaRange(mn1, mx1)]),
                                      _mm_set1_epi16(kDividers.alpha[alphaRange(mn0, mx0)]));
  const __m256i wc = _mm256_set1_epi32(0x00080808);
  const __m256i wa = _mm256_set1_epi32(0x08000000);
  const __m256i d0 = _mm256_sub_epi8(r0, mn), d1 = _mm256_sub_epi8(r1, mn);
  const __m256i d2 = _mm256_sub_epi8(r2, mn), d3 = _mm256_sub_epi8(r3, mn);
  const __m256i s01 = _mm256_hadd_epi16(_mm256_maddubs_epi16(d0, wc), _mm256_maddubs_epi16(d1, wc));
  const __m256i s23 = _mm256_hadd_epi16(_mm256_maddubs_epi16(d2, wc), _mm256_maddubs_epi16(d3, wc));
  const __m256i t01 = _mm256_hadd_epi16(_mm256_maddubs_epi16(d0, wa), _mm256_maddubs_epi16(d1, wa));
  const __m256i t23 = _mm256_hadd_epi16(_mm256_maddubs_epi16(d2, wa), _mm256_maddubs_epi16(d3, wa));
  const __m256i rawC = _mm256_packus_epi16(_mm256_mulhi_epi16(s01, dc), _mm256_mulhi_epi16(s23, dc));
  const __m256i rawA = _mm256_packus_epi16(_mm256_mulhi_epi16(t01, da), _mm256_mulhi_epi16(t23, da));
  const __m256i cIdx = _mm256_shuffle_epi8(
      _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)), rawC);
  const __m256i aIdx = _mm256_shuffle_epi8(
      _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 7, 6, 5, 4, 3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0)), rawA);
  __m256i c = _mm256_madd_epi16(_mm256_maddubs_epi16(cIdx, _mm256_set1_epi16(0x0401)), _mm256_set1_epi32(0x00100001));
  c = _mm256_packus_epi16(_mm256_packus_epi32(c, c), c);
  const __m256i a =
      _mm256_madd_epi16(_mm256_maddubs_epi16(aIdx, _mm256_set1_epi16(0x0801)), _mm256_set1_epi32(0x00400001));
  alignas(32) uint32_t av[8];
  _mm256_store_si256(reinterpret_cast<__m256i*>(av), a);
  const uint64_t aw0 = av[0] | (static_cast<uint64_t>(av[1]) << 12) | (static_cast<uint64_t>(av[2]) << 24) |
                       (static_cast<uint64_t>(av[3]) << 36);
  const uint64_t aw1 = av[4] | (static_cast<uint64_t>(av[5]) << 12) | (static_cast<uint64_t>(av[6]) << 24) |
                       (static_cast<uint64_t>(av[7]) << 36);
  storeBlock(pOut, mn0, mx0, static_cast<uint32_t>(_mm256_extract_epi32(c, 0)), aw0);
  storeBlock(pOut + 16, mn1, mx1, static_cast<uint32_t>(_mm256_extract_epi32(c, 4)), aw1);
}

}  // namespace

void wideRowAVX2(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  for (int b = 0; b + 1 < numBlocks; b += 2) widePair(pSrc + 16 * b, srcStep, pDst + 16 * b);
}

}  // namespace zvp::tex
#endif
