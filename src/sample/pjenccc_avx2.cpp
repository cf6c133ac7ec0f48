// Colour conversion, encoding direction: AVX2 kernels for the planar
// sources, 16 pixels per step; the rest of the fast columns through the
// SSE4.1 kernel. The interleaved and packed sources keep their SSE4.1 forms.
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

}  // namespace

const EncKernels kEncAVX2 = {
    rgbToYP3,
    kEncSSE41.rgbToYC3,
    kEncSSE41.bgrToYC3,
    rgbToYccP3,
    kEncSSE41.rgbToYccC3,
    kEncSSE41.bgrToYccC3,
    cmykToYcckP4,
    kEncSSE41.cmykToYcckC4,
    {kEncSSE41.packedToYcc[0], kEncSSE41.packedToYcc[1], kEncSSE41.packedToYcc[2], kEncSSE41.packedToYcc[3]},
};

}  // namespace zvp::cc
