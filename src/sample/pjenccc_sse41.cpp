// Colour conversion, encoding direction: SSE4.1 kernels (8 pixels in 16-bit
// lanes). Same arithmetic as the scalar twins, set by set.
#include "sample/colour_sse41.h"

namespace zvp::cc {

namespace {

using namespace sse;

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

const EncKernels kEncSSE41 = ZVP_CC_ENC_KERNELS(, {packedToYcc<Packed::RGB555>, packedToYcc<Packed::BGR555>,
                                                     packedToYcc<Packed::RGB565>, packedToYcc<Packed::BGR565>});

}  // namespace zvp::cc
