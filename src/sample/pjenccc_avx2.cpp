// Colour conversion, encoding direction: AVX2 kernels, 16 pixels per step;
// the rest of the fast columns through the SSE4.1 kernel. Interleaved
// pixels are gathered 8 at a time with the SSE4.1 shuffles. The packed
// sources keep their SSE4.1 form.
#include "sample/colour_avx2.h"
#include "sample/colour_sse41.h"

namespace zvp::cc {

namespace {

inline __m256 greyFloat8(__m256i r, __m256i g, __m256i b) {
  return _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(r), _mm256_set1_ps(0.299f)),
                                     _mm256_mul_ps(_mm256_cvtepi32_ps(g), _mm256_set1_ps(0.587f))),
                       _mm256_mul_ps(_mm256_cvtepi32_ps(b), _mm256_set1_ps(0.114f)));
}

inline __m256i ld32(const Zvp8u* p) {
  return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

void rgbToYP3(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* d, int n) {
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const __m256i lo = _mm256_cvtps_epi32(greyFloat8(ld32(r + x), ld32(g + x), ld32(b + x)));
    const __m256i hi = _mm256_cvtps_epi32(greyFloat8(ld32(r + x + 8), ld32(g + x + 8), ld32(b + x + 8)));
    // packs is in-lane: lanes come out as lo0 hi0 lo1 hi1; reorder the quarters.
    const __m256i w = _mm256_permute4x64_epi64(_mm256_packs_epi32(lo, hi), 0xD8);
    avx2::store16(d + x, w);
  }
  if (x < n) kEncSSE41.rgbToYP3(r + x, g + x, b + x, d + x, n - x);
}

void rgbToYccP3(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const avx2::Ycc16 v = avx2::diffSet(avx2::load16(r + x), avx2::load16(g + x), avx2::load16(b + x));
    avx2::store16(y + x, v.y), avx2::store16(cb + x, v.cb), avx2::store16(cr + x, v.cr);
  }
  if (x < n) kEncSSE41.rgbToYccP3(r + x, g + x, b + x, y + x, cb + x, cr + x, n - x);
}

void cmykToYcckP4(const Zvp8u* c, const Zvp8u* m, const Zvp8u* ye, const Zvp8u* k, Zvp8u* y, Zvp8u* cb, Zvp8u* cr,
                  Zvp8u* ko, int n) {
  const __m256i ff = _mm256_set1_epi16(255);
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const avx2::Ycc16 v =
        avx2::diffSet(_mm256_sub_epi16(ff, avx2::load16(c + x)), _mm256_sub_epi16(ff, avx2::load16(m + x)),
                      _mm256_sub_epi16(ff, avx2::load16(ye + x)));
    avx2::store16(y + x, v.y), avx2::store16(cb + x, v.cb), avx2::store16(cr + x, v.cr);
    std::memcpy(ko + x, k + x, 16);
  }
  if (x < n) kEncSSE41.cmykToYcckP4(c + x, m + x, ye + x, k + x, y + x, cb + x, cr + x, ko + x, n - x);
}

// 16 interleaved pixels of S bytes as three 16-lane channels (two 8-pixel
// SSE4.1 gathers side by side).
template <int S, int R, int G, int B>
inline void gather16(const Zvp8u* s, __m256i& r, __m256i& g, __m256i& b) {
  __m128i v0, v1, w0, w1;
  sse::loadSpan<8, S>(s, v0, v1);
  sse::loadSpan<8, S>(s + 8 * S, w0, w1);
  r = _mm256_set_m128i(sse::gather<S, R>(w0, w1), sse::gather<S, R>(v0, v1));
  g = _mm256_set_m128i(sse::gather<S, G>(w0, w1), sse::gather<S, G>(v0, v1));
  b = _mm256_set_m128i(sse::gather<S, B>(w0, w1), sse::gather<S, B>(v0, v1));
}

inline void storeSet15(Zvp8u* y, Zvp8u* cb, Zvp8u* cr, __m256i r, __m256i g, __m256i b) {
  avx2::store16(y, avx2::lin3<15>(r, g, b, 9798, 19235, 3736, 16266));
  avx2::store16(cb, avx2::lin3<15>(r, g, b, -5529, -10855, 16384, 4210688));
  avx2::store16(cr, avx2::lin3<15>(r, g, b, 16384, -13720, -2664, 4210704));
}

// Groups of 16 are two groups of 8 (set 15); what is left of the fast
// columns (8 and/or 4) goes through the SSE4.1 kernel, keeping set 14 for
// the last group of 4.
template <bool Bgr>
void toYccC3(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    __m256i r, g, b;
    gather16<3, Bgr ? 2 : 0, 1, Bgr ? 0 : 2>(s + 3 * x, r, g, b);
    storeSet15(y + x, cb + x, cr + x, r, g, b);
  }
  if (x < n) (Bgr ? kEncSSE41.bgrToYccC3 : kEncSSE41.rgbToYccC3)(s + 3 * x, y + x, cb + x, cr + x, n - x);
}

void cmykToYcckC4(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, Zvp8u* k, int n) {
  const __m256i ff = _mm256_set1_epi16(255);
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    __m256i c, m, ye, kk, unused;
    gather16<4, 0, 1, 2>(s + 4 * x, c, m, ye);
    gather16<4, 3, 3, 3>(s + 4 * x, kk, unused, unused);
    storeSet15(y + x, cb + x, cr + x, _mm256_sub_epi16(ff, c), _mm256_sub_epi16(ff, m), _mm256_sub_epi16(ff, ye));
    avx2::store16(k + x, kk);
  }
  if (x < n) kEncSSE41.cmykToYcckC4(s + 4 * x, y + x, cb + x, cr + x, k + x, n - x);
}

// Grey Y15: single pixels until the destination is 16-byte aligned, then
// groups of 16, then the SSE4.1 row function for the rest (groups of 8 and
// 4, single pixels); one formula throughout.
template <bool Bgr>
void toYC3(const Zvp8u* s, Zvp8u* d, int width) {
  int x = static_cast<int>((16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15);
  if (x > width) x = width;
  for (int i = 0; i < x; ++i) d[i] = grey15(s[3 * i + (Bgr ? 2 : 0)], s[3 * i + 1], s[3 * i + (Bgr ? 0 : 2)]);
  for (; x + 16 <= width; x += 16) {
    __m256i r, g, b;
    gather16<3, Bgr ? 2 : 0, 1, Bgr ? 0 : 2>(s + 3 * x, r, g, b);
    avx2::store16(d + x, avx2::lin3<15>(r, g, b, 9798, 19235, 3736, 16266));
  }
  if (x < width) (Bgr ? kEncSSE41.bgrToYC3 : kEncSSE41.rgbToYC3)(s + 3 * x, d + x, width - x);
}

}  // namespace

// The packed encoders keep their SSE4.1 form.
const EncKernels kEncAVX2 = ZVP_CC_ENC_KERNELS(, {kEncSSE41.packedToYcc[0], kEncSSE41.packedToYcc[1],
                                                   kEncSSE41.packedToYcc[2], kEncSSE41.packedToYcc[3]});

}  // namespace zvp::cc
