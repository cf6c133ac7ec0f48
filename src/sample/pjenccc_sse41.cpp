// Colour conversion, encoding direction: SSE4.1 kernels (8 pixels in 16-bit
// lanes). Same arithmetic as the scalar twins, set by set.
#include "sample/colour_sse41.h"

namespace zvp::cc {

namespace {

using namespace sse;

struct Ycc16 {
  __m128i y, cb, cr;
};

inline Ycc16 set15(__m128i r, __m128i g, __m128i b) {
  return {lin3<15>(r, g, b, 9798, 19235, 3736, 16266), lin3<15>(r, g, b, -5529, -10855, 16384, 4210688),
          lin3<15>(r, g, b, 16384, -13720, -2664, 4210704)};
}
inline Ycc16 set14(__m128i r, __m128i g, __m128i b) {
  return {lin3<14>(r, g, b, 4899, 9617, 1868, 8192), lin3<14>(r, g, b, -2764, -5428, 8192, 2105344),
          lin3<14>(r, g, b, 8192, -6860, -1332, 2105344)};
}
template <int N>
inline void storeYcc(Zvp8u* y, Zvp8u* cb, Zvp8u* cr, const Ycc16& v) {
  store16as8<N>(y, v.y), store16as8<N>(cb, v.cb), store16as8<N>(cr, v.cr);
}

// 32-bit float lanes of the float set; rounding to nearest even.
inline __m128i greyFloat4(__m128i r, __m128i g, __m128i b) {
  const __m128 v = _mm_add_ps(_mm_add_ps(_mm_mul_ps(_mm_cvtepi32_ps(r), _mm_set1_ps(0.299f)),
                                         _mm_mul_ps(_mm_cvtepi32_ps(g), _mm_set1_ps(0.587f))),
                              _mm_mul_ps(_mm_cvtepi32_ps(b), _mm_set1_ps(0.114f)));
  return _mm_cvtps_epi32(v);
}

void rgbToYP3(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* d, int n) {
  groups(n, [&]<int N>(int x) {
    const __m128i r16 = load8u<N>(r + x), g16 = load8u<N>(g + x), b16 = load8u<N>(b + x);
    const __m128i lo = greyFloat4(_mm_cvtepu16_epi32(r16), _mm_cvtepu16_epi32(g16), _mm_cvtepu16_epi32(b16));
    const __m128i hi = greyFloat4(_mm_cvtepu16_epi32(_mm_srli_si128(r16, 8)), _mm_cvtepu16_epi32(_mm_srli_si128(g16, 8)),
                                  _mm_cvtepu16_epi32(_mm_srli_si128(b16, 8)));
    store16as8<N>(d + x, _mm_packs_epi32(lo, hi));
  });
}

// Grey Y15: single pixels until the destination is 16-byte aligned, then
// groups of 16, 8 and 4, then single pixels; one formula throughout.
template <bool Bgr>
void toYC3(const Zvp8u* s, Zvp8u* d, int width) {
  constexpr int R = Bgr ? 2 : 0, B = Bgr ? 0 : 2;
  auto one = [&](int x) { d[x] = grey15(s[3 * x + R], s[3 * x + 1], s[3 * x + B]); };
  auto group = [&]<int N>(int x) {
    __m128i v0, v1;
    loadSpan<N, 3>(s + 3 * x, v0, v1);
    const __m128i r = gather<3, R>(v0, v1), g = gather<3, 1>(v0, v1), b = gather<3, B>(v0, v1);
    store16as8<N>(d + x, lin3<15>(r, g, b, 9798, 19235, 3736, 16266));
  };
  int x = 0;
  int lead = static_cast<int>((16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15);
  if (lead > width) lead = width;
  for (; x < lead; ++x) one(x);
  for (; x + 16 <= width; x += 16) group.template operator()<8>(x), group.template operator()<8>(x + 8);
  if (x + 8 <= width) group.template operator()<8>(x), x += 8;
  if (x + 4 <= width) group.template operator()<4>(x), x += 4;
  for (; x < width; ++x) one(x);
}

// Difference set. 38470 G does not fit a 16-bit factor: it enters as
// 19235 G twice, paired once with R and once with B.
inline Ycc16 diffSet(__m128i r, __m128i g, __m128i b) {
  const __m128i crg = _mm_set1_epi32(static_cast<int32_t>((19235u << 16) | 19595u));
  const __m128i cgb = _mm_set1_epi32(static_cast<int32_t>((7471u << 16) | 19235u));
  const __m128i k = _mm_set1_epi32(32768);
  const __m128i lo = _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(r, g), crg),
                                                                _mm_madd_epi16(_mm_unpacklo_epi16(g, b), cgb)), k), 16);
  const __m128i hi = _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(r, g), crg),
                                                                _mm_madd_epi16(_mm_unpackhi_epi16(g, b), cgb)), k), 16);
  const __m128i y0 = _mm_packs_epi32(lo, hi), z = _mm_setzero_si128();
  return {y0, lin3<15>(_mm_sub_epi16(b, y0), z, z, 18491, 0, 0, 4210688),
          lin3<15>(_mm_sub_epi16(r, y0), z, z, 23373, 0, 0, 4210688)};
}

void rgbToYccP3(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  groups(n, [&]<int N>(int x) {
    storeYcc<N>(y + x, cb + x, cr + x, diffSet(load8u<N>(r + x), load8u<N>(g + x), load8u<N>(b + x)));
  });
}

void cmykToYcckP4(const Zvp8u* c, const Zvp8u* m, const Zvp8u* ye, const Zvp8u* k, Zvp8u* y, Zvp8u* cb, Zvp8u* cr,
                  Zvp8u* ko, int n) {
  const __m128i ff = _mm_set1_epi16(255);
  groups(n, [&]<int N>(int x) {
    storeYcc<N>(y + x, cb + x, cr + x,
                diffSet(_mm_sub_epi16(ff, load8u<N>(c + x)), _mm_sub_epi16(ff, load8u<N>(m + x)),
                        _mm_sub_epi16(ff, load8u<N>(ye + x))));
    std::memcpy(ko + x, k + x, N);
  });
}

template <bool Bgr>
void toYccC3(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  constexpr int R = Bgr ? 2 : 0, B = Bgr ? 0 : 2;
  groups(n, [&]<int N>(int x) {
    __m128i v0, v1;
    loadSpan<N, 3>(s + 3 * x, v0, v1);
    const __m128i r = gather<3, R>(v0, v1), g = gather<3, 1>(v0, v1), b = gather<3, B>(v0, v1);
    storeYcc<N>(y + x, cb + x, cr + x, N == 8 ? set15(r, g, b) : set14(r, g, b));
  });
}

void cmykToYcckC4(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, Zvp8u* k, int n) {
  const __m128i ff = _mm_set1_epi16(255);
  groups(n, [&]<int N>(int x) {
    __m128i v0, v1;
    loadSpan<N, 4>(s + 4 * x, v0, v1);
    const __m128i r = _mm_sub_epi16(ff, gather<4, 0>(v0, v1)), g = _mm_sub_epi16(ff, gather<4, 1>(v0, v1)),
                  b = _mm_sub_epi16(ff, gather<4, 2>(v0, v1));
    storeYcc<N>(y + x, cb + x, cr + x, N == 8 ? set15(r, g, b) : set14(r, g, b));
    store16as8<N>(k + x, gather<4, 3>(v0, v1));
  });
}

template <Packed F>
void packedToYcc(const Zvp16u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int width) {
  constexpr bool g6 = F == Packed::RGB565 || F == Packed::BGR565;
  constexpr bool rLow = F == Packed::RGB555 || F == Packed::RGB565;
  const __m128i m5 = _mm_set1_epi16(31), mg = _mm_set1_epi16(g6 ? 63 : 31);
  int x = 0;
  for (; x + 8 <= width; x += 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + x));
    const __m128i lo = _mm_slli_epi16(_mm_and_si128(v, m5), 3);
    const __m128i g = _mm_slli_epi16(_mm_and_si128(_mm_srli_epi16(v, 5), mg), g6 ? 2 : 3);
    const __m128i hi = _mm_slli_epi16(_mm_and_si128(_mm_srli_epi16(v, g6 ? 11 : 10), m5), 3);
    storeYcc<8>(y + x, cb + x, cr + x, rLow ? set14(lo, g, hi) : set14(hi, g, lo));
  }
  for (; x < width; ++x) {
    const Rgb p = unpack(F, load16u(s + x));
    const Ycc v = encode14(p.r, p.g, p.b);
    y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr;
  }
}

}  // namespace

const EncKernels kEncSSE41 = {
    rgbToYP3,
    toYC3<false>,
    toYC3<true>,
    rgbToYccP3,
    toYccC3<false>,
    toYccC3<true>,
    cmykToYcckP4,
    cmykToYcckC4,
    {packedToYcc<Packed::RGB555>, packedToYcc<Packed::BGR555>, packedToYcc<Packed::RGB565>,
     packedToYcc<Packed::BGR565>},
};

}  // namespace zvp::cc
