// Colour conversion, decoding direction: AVX2 kernels, 16 pixels per step
// (two groups of 8, same arithmetic), the rest of the fast columns (a group
// of 8 and/or of 4) through the SSE4.1 kernel.
#include "sample/colour_avx2.h"
#include "sample/colour_sse41.h"

namespace zvp::cc {

namespace {

using avx2::Rgb16;

void yccToRgbP3(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* r, Zvp8u* g, Zvp8u* b, int n) {
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const Rgb16 p = avx2::setA(y + x, cb + x, cr + x);
    avx2::store16(r + x, p.r), avx2::store16(g + x, p.g), avx2::store16(b + x, p.b);
  }
  if (x < n) kDecSSE41.yccToRgbP3(y + x, cb + x, cr + x, r + x, g + x, b + x, n - x);
}

template <bool Bgr>
void yccToC3(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* d, int n) {
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const Rgb16 p = avx2::setB(y + x, cb + x, cr + x);
    const __m256i c0 = Bgr ? p.b : p.r, c2 = Bgr ? p.r : p.b;
    sse::store3<8>(d + 3 * x, _mm256_castsi256_si128(c0), _mm256_castsi256_si128(p.g), _mm256_castsi256_si128(c2));
    sse::store3<8>(d + 3 * x + 24, _mm256_extracti128_si256(c0, 1), _mm256_extracti128_si256(p.g, 1),
                   _mm256_extracti128_si256(c2, 1));
  }
  if (x < n) (Bgr ? kDecSSE41.yccToBgrC3 : kDecSSE41.yccToRgbC3)(y + x, cb + x, cr + x, d + 3 * x, n - x);
}

template <Packed F>
void yccToPacked(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp16u* d, int n) {
  constexpr bool g6 = F == Packed::RGB565 || F == Packed::BGR565;
  constexpr bool rLow = F == Packed::RGB555 || F == Packed::RGB565;
  const __m256i z = _mm256_setzero_si256(), ff = _mm256_set1_epi16(255);
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const Rgb16 p = avx2::setA(y + x, cb + x, cr + x);
    const __m256i r = _mm256_min_epi16(_mm256_max_epi16(p.r, z), ff), g = _mm256_min_epi16(_mm256_max_epi16(p.g, z), ff),
                  b = _mm256_min_epi16(_mm256_max_epi16(p.b, z), ff);
    const __m256i lo = rLow ? r : b, hi = rLow ? b : r;
    const __m256i gf = g6 ? _mm256_srli_epi16(g, 2) : _mm256_srli_epi16(g, 3);
    const __m256i v = _mm256_or_si256(_mm256_or_si256(_mm256_srli_epi16(lo, 3), _mm256_slli_epi16(gf, 5)),
                                      _mm256_slli_epi16(_mm256_srli_epi16(hi, 3), g6 ? 11 : 10));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + x), v);
  }
  if (x < n) kDecSSE41.yccToPacked[static_cast<int>(F)](y + x, cb + x, cr + x, d + x, n - x);
}

void ycckToCmykP4(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* c, Zvp8u* m, Zvp8u* ye,
                  Zvp8u* ko, int n) {
  const __m128i inv = _mm_set1_epi8(-1);
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const Rgb16 p = avx2::setA(y + x, cb + x, cr + x);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(c + x), _mm_xor_si128(avx2::bytes(p.r), inv));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(m + x), _mm_xor_si128(avx2::bytes(p.g), inv));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(ye + x), _mm_xor_si128(avx2::bytes(p.b), inv));
    std::memcpy(ko + x, k + x, 16);
  }
  if (x < n) kDecSSE41.ycckToCmykP4(y + x, cb + x, cr + x, k + x, c + x, m + x, ye + x, ko + x, n - x);
}

void ycckToCmykC4(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* d, int n) {
  const __m128i inv = _mm_set1_epi8(-1);
  int x = 0;
  for (; x + 16 <= n; x += 16) {
    const Rgb16 p = avx2::setA(y + x, cb + x, cr + x);
    const __m128i c = _mm_xor_si128(avx2::bytes(p.r), inv), m = _mm_xor_si128(avx2::bytes(p.g), inv),
                  ye = _mm_xor_si128(avx2::bytes(p.b), inv),
                  kk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(k + x));
    const __m128i cmLo = _mm_unpacklo_epi8(c, m), cmHi = _mm_unpackhi_epi8(c, m);
    const __m128i ykLo = _mm_unpacklo_epi8(ye, kk), ykHi = _mm_unpackhi_epi8(ye, kk);
    __m128i* o = reinterpret_cast<__m128i*>(d + 4 * x);
    _mm_storeu_si128(o, _mm_unpacklo_epi16(cmLo, ykLo));
    _mm_storeu_si128(o + 1, _mm_unpackhi_epi16(cmLo, ykLo));
    _mm_storeu_si128(o + 2, _mm_unpacklo_epi16(cmHi, ykHi));
    _mm_storeu_si128(o + 3, _mm_unpackhi_epi16(cmHi, ykHi));
  }
  if (x < n) kDecSSE41.ycckToCmykC4(y + x, cb + x, cr + x, k + x, d + 4 * x, n - x);
}

}  // namespace

// The 4:2:2 kernel keeps its SSE4.1 form.
const DecKernels kDecAVX2 = ZVP_CC_DEC_KERNELS(, kDecSSE41.ycc422ToRgb);

}  // namespace zvp::cc
