// AVX2 kernel of the wide DXT5 path: a pair of blocks per turn, one block in
// each 128-bit lane (4 rows of 32 bytes). The same steps as the SSE4.1
// kernel, all of them lane-local; gives the bytes of wideRowScalar.
#if !defined(ZVP_NO_X86)
#include <immintrin.h>

#include "core/parallel.h"
#include "texture/dxtenc.h"
#include "texture/texture.h"

namespace zvp::tex {
namespace {

using namespace enc;

inline __m256i loadRow(const Zvp8u* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// A 16-byte table in both lanes.
inline __m256i broadcastTable(const Zvp8u* t) {
  return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(t)));
}

void widePair(const Zvp8u* pSrc, int srcStep, Zvp8u* pOut) {
  const __m256i r0 = loadRow(pSrc), r1 = loadRow(zvp::rowPtr(pSrc, srcStep, 1));
  const __m256i r2 = loadRow(zvp::rowPtr(pSrc, srcStep, 2)), r3 = loadRow(zvp::rowPtr(pSrc, srcStep, 3));
  __m256i mn = _mm256_min_epu8(_mm256_min_epu8(r0, r1), _mm256_min_epu8(r2, r3));
  __m256i mx = _mm256_max_epu8(_mm256_max_epu8(r0, r1), _mm256_max_epu8(r2, r3));
  mn = _mm256_min_epu8(mn, _mm256_shuffle_epi32(mn, 0x4E));
  mx = _mm256_max_epu8(mx, _mm256_shuffle_epi32(mx, 0x4E));
  mn = _mm256_min_epu8(mn, _mm256_shuffle_epi32(mn, 0xB1));
  mx = _mm256_max_epu8(mx, _mm256_shuffle_epi32(mx, 0xB1));
  const WideRange range0{static_cast<uint32_t>(_mm256_extract_epi32(mn, 0)),
                         static_cast<uint32_t>(_mm256_extract_epi32(mx, 0))};
  const WideRange range1{static_cast<uint32_t>(_mm256_extract_epi32(mn, 4)),
                         static_cast<uint32_t>(_mm256_extract_epi32(mx, 4))};
  const __m256i dc = _mm256_set_m128i(_mm_set1_epi16(static_cast<int16_t>(range1.colourDivider())),
                                      _mm_set1_epi16(static_cast<int16_t>(range0.colourDivider())));
  const __m256i da = _mm256_set_m128i(_mm_set1_epi16(static_cast<int16_t>(range1.alphaDivider())),
                                      _mm_set1_epi16(static_cast<int16_t>(range0.alphaDivider())));
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
  const __m256i cIdx = _mm256_shuffle_epi8(broadcastTable(kColourRawToIndex), rawC);
  const __m256i aIdx = _mm256_shuffle_epi8(broadcastTable(kAlphaRawToIndex), rawA);
  __m256i c = _mm256_madd_epi16(_mm256_maddubs_epi16(cIdx, _mm256_set1_epi16(0x0401)), _mm256_set1_epi32(0x00100001));
  c = _mm256_packus_epi16(_mm256_packus_epi32(c, c), c);
  const __m256i a =
      _mm256_madd_epi16(_mm256_maddubs_epi16(aIdx, _mm256_set1_epi16(0x0801)), _mm256_set1_epi32(0x00400001));
  alignas(32) uint32_t av[8];
  _mm256_store_si256(reinterpret_cast<__m256i*>(av), a);
  storeWideBlock(pOut, range0, static_cast<uint32_t>(_mm256_extract_epi32(c, 0)), join12(av[0], av[1], av[2], av[3]));
  storeWideBlock(pOut + 16, range1, static_cast<uint32_t>(_mm256_extract_epi32(c, 4)),
                 join12(av[4], av[5], av[6], av[7]));
}

}  // namespace

void wideRowAVX2(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  for (int b = 0; b + 1 < numBlocks; b += 2) widePair(pSrc + 16 * b, srcStep, pDst + 16 * b);
}

}  // namespace zvp::tex
#endif
