// Colour conversion, decoding direction: SSE4.1 group kernels (8 pixels in
// 16-bit lanes, then one group of 4). Same arithmetic as the scalar twins.
#include "sample/colour_sse41.h"

namespace zvp::cc {

namespace {

using namespace sse;

void yccToRgbP3(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* r, Zvp8u* g, Zvp8u* b, int n) {
  groups(n, [&]<int N>(int x) {
    const Rgb16 p = setA<N>(y + x, cb + x, cr + x);
    store16as8<N>(r + x, p.r), store16as8<N>(g + x, p.g), store16as8<N>(b + x, p.b);
  });
}

template <bool Bgr>
void yccToC3(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* d, int n) {
  groups(n, [&]<int N>(int x) {
    const Rgb16 p = setB<N>(y + x, cb + x, cr + x);
    if constexpr (Bgr)
      store3<N>(d + 3 * x, p.b, p.g, p.r);
    else
      store3<N>(d + 3 * x, p.r, p.g, p.b);
  });
}

template <Packed F>
void yccToPacked(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp16u* d, int n) {
  constexpr bool g6 = F == Packed::RGB565 || F == Packed::BGR565;
  constexpr bool rLow = F == Packed::RGB555 || F == Packed::RGB565;
  groups(n, [&]<int N>(int x) {
    const Rgb16 p = setA<N>(y + x, cb + x, cr + x);
    const __m128i r = clip16(p.r), g = clip16(p.g), b = clip16(p.b);
    const __m128i lo = rLow ? r : b, hi = rLow ? b : r;
    const __m128i gf = g6 ? _mm_srli_epi16(g, 2) : _mm_srli_epi16(g, 3);
    const __m128i v = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(lo, 3), _mm_slli_epi16(gf, 5)),
                                   _mm_slli_epi16(_mm_srli_epi16(hi, 3), g6 ? 11 : 10));
    if constexpr (N == 8)
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + x), v);
    else
      _mm_storel_epi64(reinterpret_cast<__m128i*>(d + x), v);
  });
}

// C = 255 - R etc.: the bytes inverted.
template <int N>
inline __m128i inverted(__m128i v16) {
  return _mm_xor_si128(_mm_packus_epi16(v16, v16), _mm_set1_epi8(-1));
}

void ycckToCmykP4(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* c, Zvp8u* m, Zvp8u* ye,
                  Zvp8u* ko, int n) {
  groups(n, [&]<int N>(int x) {
    const Rgb16 p = setA<N>(y + x, cb + x, cr + x);
    storeBytes<N>(c + x, inverted<N>(p.r)), storeBytes<N>(m + x, inverted<N>(p.g));
    storeBytes<N>(ye + x, inverted<N>(p.b));
    std::memcpy(ko + x, k + x, N);
  });
}

void ycckToCmykC4(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* d, int n) {
  groups(n, [&]<int N>(int x) {
    const Rgb16 p = setA<N>(y + x, cb + x, cr + x);
    const __m128i kk = _mm_packus_epi16(load8u<N>(k + x), _mm_setzero_si128());
    store4<N>(d + 4 * x, inverted<N>(p.r), inverted<N>(p.g), inverted<N>(p.b), kk);
  });
}

// 4:2:2, 8 pixels (16 source bytes) per step, all in 16-bit lanes.
void ycc422ToRgb(const Zvp8u* s, Zvp8u* d, int n) {
  const __m128i cbIdx = _mm_setr_epi8(1, -128, 1, -128, 5, -128, 5, -128, 9, -128, 9, -128, 13, -128, 13, -128);
  const __m128i crIdx = _mm_setr_epi8(3, -128, 3, -128, 7, -128, 7, -128, 11, -128, 11, -128, 15, -128, 15, -128);
  for (int x = 0; x < n; x += 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x));
    const __m128i y = _mm_and_si128(v, _mm_set1_epi16(0x00FF));
    const __m128i cb7 = _mm_slli_epi16(_mm_shuffle_epi8(v, cbIdx), 7);
    const __m128i cr7 = _mm_slli_epi16(_mm_shuffle_epi8(v, crIdx), 7);
    const __m128i pR = _mm_mulhi_epi16(cr7, _mm_set1_epi16(22970));
    const __m128i pGr = _mm_mulhi_epi16(cr7, _mm_set1_epi16(-11700));
    const __m128i pB = _mm_mulhi_epi16(cb7, _mm_set1_epi16(29032));
    const __m128i pGb = _mm_mulhi_epi16(cb7, _mm_set1_epi16(-5638));
    const __m128i dR = _mm_subs_epi16(_mm_srai_epi16(pR, 5), _mm_set1_epi16(179));
    const __m128i dG = _mm_adds_epi16(_mm_srai_epi16(_mm_adds_epi16(pGr, pGb), 5), _mm_set1_epi16(135));
    const __m128i dB = _mm_subs_epi16(_mm_srai_epi16(pB, 5), _mm_set1_epi16(226));
    store3<8>(d + 3 * x, _mm_adds_epi16(y, dR), _mm_adds_epi16(y, dG), _mm_adds_epi16(y, dB));
  }
}

}  // namespace

const DecKernels kDecSSE41 = ZVP_CC_DEC_KERNELS(, ycc422ToRgb);

}  // namespace zvp::cc
