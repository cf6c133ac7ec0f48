// SSE4.1 kernels of the DXT encoders. The block path: colour half of a
// block by byte-lane minimum and maximum, distances by absolute differences
// summed with multiply-add, the strict index tests by 16-bit compares; the
// DXT5 alpha half by counting thresholds in byte lanes. The wide DXT5 path:
// one block per turn, 4 rows of 16 bytes: minimum and maximum by byte lanes,
// channel sums by multiply-add, the position by one signed high multiply per
// pixel, indices by byte shuffle and multiply-add packing. Each kernel gives
// the bytes of its scalar twin.
#if !defined(ZVP_NO_X86)
#include <smmintrin.h>

#include <algorithm>

#include "core/parallel.h"
#include "texture/dxtenc.h"
#include "texture/texture.h"

namespace zvp::tex {
namespace {

using namespace enc;

// Per-channel minimum and maximum of 16 RGBA pixels (4 registers), in every
// pixel of the results.
inline void channelMinMax(__m128i p0, __m128i p1, __m128i p2, __m128i p3, __m128i& mn, __m128i& mx) {
  mn = _mm_min_epu8(_mm_min_epu8(p0, p1), _mm_min_epu8(p2, p3));
  mx = _mm_max_epu8(_mm_max_epu8(p0, p1), _mm_max_epu8(p2, p3));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0x4E));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0x4E));
  mn = _mm_min_epu8(mn, _mm_shuffle_epi32(mn, 0xB1));
  mx = _mm_max_epu8(mx, _mm_shuffle_epi32(mx, 0xB1));
}

// 16 2-bit values (bytes, pixel order) to one 32-bit word.
inline uint32_t pack2(__m128i v) {
  __m128i c = _mm_madd_epi16(_mm_maddubs_epi16(v, _mm_set1_epi16(0x0401)), _mm_set1_epi32(0x00100001));
  c = _mm_packus_epi16(_mm_packus_epi32(c, c), c);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(c));
}

// 16 3-bit values (bytes, pixel order) to 48 bits.
inline uint64_t pack3(__m128i v) {
  const __m128i a = _mm_madd_epi16(_mm_maddubs_epi16(v, _mm_set1_epi16(0x0801)), _mm_set1_epi32(0x00400001));
  return join12(static_cast<uint32_t>(_mm_cvtsi128_si32(a)), static_cast<uint32_t>(_mm_extract_epi32(a, 1)),
                static_cast<uint32_t>(_mm_extract_epi32(a, 2)), static_cast<uint32_t>(_mm_extract_epi32(a, 3)));
}

void wideBlock(const Zvp8u* pSrc, int srcStep, Zvp8u* pOut) {
  const __m128i r0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc));
  const __m128i r1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 1)));
  const __m128i r2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 2)));
  const __m128i r3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zvp::rowPtr(pSrc, srcStep, 3)));
  __m128i mn, mx;
  channelMinMax(r0, r1, r2, r3, mn, mx);
  const WideRange range{static_cast<uint32_t>(_mm_cvtsi128_si32(mn)), static_cast<uint32_t>(_mm_cvtsi128_si32(mx))};
  const __m128i dc = _mm_set1_epi16(static_cast<int16_t>(range.colourDivider()));
  const __m128i da = _mm_set1_epi16(static_cast<int16_t>(range.alphaDivider()));

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
  const __m128i cIdx = _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(kColourRawToIndex)), rawC);
  const __m128i aIdx = _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(kAlphaRawToIndex)), rawA);
  storeWideBlock(pOut, range, pack2(cIdx), pack3(aIdx));
}

// Absolute difference of unsigned bytes.
inline __m128i absdiff(__m128i a, __m128i b) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }

// Index of each pixel by counting the thresholds at or above its alpha.
void alphaFromThresholds(__m128i alpha, int a0, int a1, Zvp8u* pOut) {
  int t[7];
  alphaThresholds(a0, a1, t);
  __m128i count = _mm_setzero_si128();
  for (int k = 0; k < 7; ++k) {
    const __m128i tv = _mm_set1_epi8(static_cast<char>(t[k]));
    count = _mm_sub_epi8(count, _mm_cmpeq_epi8(_mm_max_epu8(tv, alpha), tv));
  }
  // (n + 1) & 7 with 0 and 1 exchanged.
  const __m128i idx = _mm_shuffle_epi8(_mm_setr_epi8(0, 2, 3, 4, 5, 6, 7, 1, 0, 0, 0, 0, 0, 0, 0, 0), count);
  storeAlphaHalf(pOut, a0, a1, pack3(idx));
}

// Shuffle controls that gather channel c of 16 packed 3-byte pixels from
// the three 16-byte loads s = 0, 1, 2.
struct Gather3 {
  alignas(16) int8_t c[3][3][16];
};
constexpr Gather3 makeGather3() {
  Gather3 g{};
  for (int c = 0; c < 3; ++c)
    for (int src = 0; src < 3; ++src)
      for (int p = 0; p < 16; ++p) {
        const int at = 3 * p + c - 16 * src;
        g.c[c][src][p] = static_cast<int8_t>(at >= 0 && at < 16 ? at : -1);
      }
  return g;
}
constexpr Gather3 kGather3 = makeGather3();

inline __m128i gather3(const __m128i v[3], int c) {
  __m128i r = _mm_setzero_si128();
  for (int src = 0; src < 3; ++src)
    r = _mm_or_si128(r, _mm_shuffle_epi8(v[src], _mm_load_si128(reinterpret_cast<const __m128i*>(kGather3.c[c][src]))));
  return r;
}

// All 16 bytes of v folded by op (a byte-lane minimum or maximum).
template <class Op>
inline int fold16(__m128i v, Op op) {
  v = op(v, _mm_srli_si128(v, 8));
  v = op(v, _mm_srli_si128(v, 4));
  v = op(v, _mm_srli_si128(v, 2));
  v = op(v, _mm_srli_si128(v, 1));
  return _mm_cvtsi128_si32(v) & 0xFF;
}
inline int hmin(__m128i v) { return fold16(v, [](__m128i a, __m128i b) { return _mm_min_epu8(a, b); }); }
inline int hmax(__m128i v) { return fold16(v, [](__m128i a, __m128i b) { return _mm_max_epu8(a, b); }); }

// x >= m per unsigned byte, as all ones.
inline __m128i geu8(__m128i x, __m128i m) { return _mm_cmpeq_epi8(_mm_max_epu8(x, m), x); }

}  // namespace

void ycocgBlockSSE41(const Zvp8u* pBlock, Zvp8u* pOut) {
  const __m128i v[3] = {_mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock)),
                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 16)),
                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 32))};
  const __m128i y = gather3(v, 0);
  __m128i co = gather3(v, 1), cg = gather3(v, 2);
  const int mnY = hmin(y), mxY = hmax(y);
  const int mnCo = hmin(co), mxCo = hmax(co), mnCg = hmin(cg), mxCg = hmax(cg);
  const YCoCgEnds e = ycocgEnds(mnCo, mxCo, mnCg, mxCg);
  // (scale (x - 128) + 128) mod 256, in byte lanes.
  const __m128i bias = _mm_set1_epi8(static_cast<char>(0x80));
  co = _mm_xor_si128(co, bias);
  cg = _mm_xor_si128(cg, bias);
  for (int s = e.scale; s > 1; s >>= 1) {
    co = _mm_add_epi8(co, co);
    cg = _mm_add_epi8(cg, cg);
  }
  co = _mm_xor_si128(co, bias);
  cg = _mm_xor_si128(cg, bias);
  const __m128i off = _mm_xor_si128(geu8(co, _mm_set1_epi8(static_cast<char>(e.midCo))),
                                    geu8(cg, _mm_set1_epi8(static_cast<char>(e.midCg))));
  int c[4][2];
  ycocgFinish(e, __builtin_popcount(static_cast<unsigned>(_mm_movemask_epi8(off))), pOut, c);
  const __m128i ones = _mm_set1_epi8(1);
  __m128i dLo[4], dHi[4];
  for (int k = 0; k < 4; ++k) {
    const __m128i aCo = absdiff(co, _mm_set1_epi8(static_cast<char>(c[k][0])));
    const __m128i aCg = absdiff(cg, _mm_set1_epi8(static_cast<char>(c[k][1])));
    dLo[k] = _mm_maddubs_epi16(_mm_unpacklo_epi8(aCo, aCg), ones);
    dHi[k] = _mm_maddubs_epi16(_mm_unpackhi_epi8(aCo, aCg), ones);
  }
  auto index = [](const __m128i* d) {
    const __m128i b0 = _mm_and_si128(_mm_cmpgt_epi16(d[0], d[3]), _mm_cmpgt_epi16(d[1], d[3]));
    const __m128i b1 = _mm_or_si128(_mm_and_si128(_mm_cmpgt_epi16(d[1], d[2]), _mm_cmpgt_epi16(d[0], d[2])), b0);
    return _mm_or_si128(_mm_and_si128(b0, _mm_set1_epi16(1)), _mm_and_si128(b1, _mm_set1_epi16(2)));
  };
  store32(pOut + 12, pack2(_mm_packus_epi16(index(dLo), index(dHi))));
  alphaFromThresholds(y, mxY, mnY, pOut);
}

void colourBlockSSE41(const Zvp8u* pBlock, Zvp8u* pOut) {
  const __m128i p0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock));
  const __m128i p1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 16));
  const __m128i p2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 32));
  const __m128i p3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 48));
  __m128i mn, mx;
  channelMinMax(p0, p1, p2, p3, mn, mx);
  const uint32_t mnw = static_cast<uint32_t>(_mm_cvtsi128_si32(mn));
  const uint32_t mxw = static_cast<uint32_t>(_mm_cvtsi128_si32(mx));
  int lo[3], hi[3];
  for (int ch = 0; ch < 3; ++ch) insetEnds(channel(mnw, ch), channel(mxw, ch), lo[ch], hi[ch]);
  int c[4][3] = {{widen5(hi[0]), widen6(hi[1]), widen5(hi[2])}, {widen5(lo[0]), widen6(lo[1]), widen5(lo[2])}};
  paletteThirds<3>(c);
  // Sum of absolute R, G, B differences per pixel, 16 bits, pixels 0-7 and 8-15.
  const __m128i ones = _mm_set1_epi32(0x00010101);
  __m128i dLo[4], dHi[4];
  for (int k = 0; k < 4; ++k) {
    const __m128i ck = _mm_set1_epi32(c[k][0] | (c[k][1] << 8) | (c[k][2] << 16));
    dLo[k] = _mm_hadd_epi16(_mm_maddubs_epi16(absdiff(p0, ck), ones), _mm_maddubs_epi16(absdiff(p1, ck), ones));
    dHi[k] = _mm_hadd_epi16(_mm_maddubs_epi16(absdiff(p2, ck), ones), _mm_maddubs_epi16(absdiff(p3, ck), ones));
  }
  auto index = [](const __m128i* d) {
    const __m128i b0 = _mm_and_si128(_mm_cmpgt_epi16(d[2], d[3]), _mm_cmpgt_epi16(d[0], d[3]));
    const __m128i b1 = _mm_or_si128(_mm_and_si128(_mm_cmpgt_epi16(d[1], d[2]), _mm_cmpgt_epi16(d[0], d[2])),
                                    _mm_and_si128(_mm_cmpgt_epi16(d[0], d[3]), _mm_cmpgt_epi16(d[1], d[3])));
    return _mm_or_si128(_mm_and_si128(b0, _mm_set1_epi16(1)), _mm_and_si128(b1, _mm_set1_epi16(2)));
  };
  storeColourHalf(pOut, pack565(hi[0], hi[1], hi[2]), pack565(lo[0], lo[1], lo[2]),
                  pack2(_mm_packus_epi16(index(dLo), index(dHi))));
}

void alphaBlockRGBASSE41(const Zvp8u* pBlock, Zvp8u* pOut) {
  const __m128i pick = _mm_setr_epi8(3, 7, 11, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  auto row = [&](int r) {
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pBlock + 16 * r)), pick);
  };
  // The 16 alpha bytes in pixel order.
  const __m128i a = _mm_or_si128(_mm_or_si128(row(0), _mm_slli_si128(row(1), 4)),
                                 _mm_or_si128(_mm_slli_si128(row(2), 8), _mm_slli_si128(row(3), 12)));
  int lo, hi;
  insetEnds(hmin(a), hmax(a), lo, hi);
  alphaFromThresholds(a, hi, lo, pOut);
}

void alphaIndicesSSE41(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut) {
  alphaFromThresholds(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pAlpha16)), a0, a1, pOut);
}

void wideRowSSE41(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  for (int b = 0; b < numBlocks; ++b) wideBlock(pSrc + 16 * b, srcStep, pDst + 16 * b);
}

}  // namespace zvp::tex
#endif
