// MCU functions, decoding side: AVX2 fast bodies. Each 128-bit lane holds one
// group of 8 pixels, as in the SSE4.1 kernels: the two halves of a 16-pixel
// row, or two rows of a 444 MCU. Every operation stays within its lane, so
// the arithmetic is that of the SSE4.1 kernels, two groups at a time.
#include "sample/mcu_simd.h"

namespace zvp::mcu {

namespace {

using V = __m256i;

inline V loadPair(const Zvp16s* a, const Zvp16s* b) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)), 1);
}
// Values 0..3 of an 8-value chroma row into lane 0, values 4..7 into lane 1
// (low halves); the high halves repeat them.
inline V chromaHalves(const Zvp16s* p) {
  return _mm256_permute4x64_epi64(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))),
                                  0x50);
}

struct Rgb16 {
  V r, g, b;
};
inline Rgb16 colour(V y, V cb, V cr) {
  Rgb16 c;
  colour(y, cb, cr, c.r, c.g, c.b);
  return c;
}

inline void store16(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void storeLanes(uint8_t* o0, uint8_t* o1, V v) {
  store16(o0, _mm256_castsi256_si128(v));
  store16(o1, _mm256_extracti128_si256(v, 1));
}

template <Dec D, Samp S>
void decodeAVX2(const Zvp16s* const* mcu, void* dst, int dstStep) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S), SY = chromaSy(S);
  constexpr int kGroupBytes = D == Dec::CMYK ? 32 : (D == Dec::RGB || D == Dec::BGR || D == Dec::Up) ? 24 : 16;
  const MaskBytes& mk = kMasks[D == Dec::BGR ? 1 : 0];
  const V a0 = bcast(mk.a), b0 = bcast(mk.b), a1 = bcast(mk.a + 16), b1 = bcast(mk.b + 16);
  const V k128 = _mm256_set1_epi16(128);
  auto row = [&](int y) { return static_cast<uint8_t*>(dst) + static_cast<std::ptrdiff_t>(y) * dstStep; };
  for (int t = 0; t < H * W / 16; ++t) {
    // Lane 0: group (x0, y0); lane 1: group (x1, y1).
    const int y0 = W == 16 ? t : 2 * t, y1 = W == 16 ? t : 2 * t + 1, x1 = W == 16 ? 8 : 0;
    uint8_t* o0 = row(y0);
    uint8_t* o1 = row(y1) + kGroupBytes * (x1 / 8);
    const int li0 = lumaIndex(0, y0), li1 = lumaIndex(x1, y1);
    const V yv = loadPair(mcu[0] + li0, mcu[0] + li1);
    if constexpr (D == Dec::Join422) {
      const V cb4 = chromaHalves(mcu[1] + 8 * y0), cr4 = chromaHalves(mcu[2] + 8 * y0);
      const V c = _mm256_unpacklo_epi16(cb4, cr4);
      const V yb = _mm256_packus_epi16(_mm256_adds_epi16(yv, k128), _mm256_setzero_si256());
      const V cc = _mm256_packus_epi16(_mm256_adds_epi16(c, k128), _mm256_setzero_si256());
      storeLanes(o0, o1, _mm256_unpacklo_epi8(yb, cc));
      continue;
    }
    V cb, cr;
    if constexpr (S == Samp::S444) {
      cb = loadPair(mcu[1] + 8 * y0, mcu[1] + 8 * y1);
      cr = loadPair(mcu[2] + 8 * y0, mcu[2] + 8 * y1);
    } else {
      const V b4 = chromaHalves(mcu[1] + 8 * (y0 / SY)), r4 = chromaHalves(mcu[2] + 8 * (y0 / SY));
      cb = _mm256_unpacklo_epi16(b4, b4);
      cr = _mm256_unpacklo_epi16(r4, r4);
    }
    if constexpr (D == Dec::RGB || D == Dec::BGR || D == Dec::Up) {
      V first, second;
      if constexpr (D == Dec::Up) {
        first = _mm256_packus_epi16(_mm256_adds_epi16(yv, k128), _mm256_adds_epi16(cb, k128));
        second = _mm256_packus_epi16(_mm256_adds_epi16(cr, k128), _mm256_setzero_si256());
      } else {
        const Rgb16 c = colour(yv, cb, cr);
        first = _mm256_packus_epi16(c.r, c.g);
        second = _mm256_packus_epi16(c.b, c.b);
      }
      const V lo = _mm256_or_si256(_mm256_shuffle_epi8(first, a0), _mm256_shuffle_epi8(second, b0));
      const V hi = _mm256_or_si256(_mm256_shuffle_epi8(first, a1), _mm256_shuffle_epi8(second, b1));
      storeLanes(o0, o1, lo);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(o0 + 16), _mm256_castsi256_si128(hi));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(o1 + 16), _mm256_extracti128_si256(hi, 1));
    } else if constexpr (D == Dec::CMYK) {
      const Rgb16 c = colour(yv, cb, cr);
      const V k = _mm256_adds_epi16(loadPair(mcu[3] + li0, mcu[3] + li1), k128);
      const V cm = _mm256_xor_si256(_mm256_packus_epi16(c.r, c.g), _mm256_set1_epi8(-1));
      const V yk = _mm256_xor_si256(_mm256_packus_epi16(c.b, k), _mm256_set_epi64x(0, -1, 0, -1));
      const V cmI = _mm256_unpacklo_epi8(cm, _mm256_srli_si256(cm, 8));
      const V ykI = _mm256_unpacklo_epi8(yk, _mm256_srli_si256(yk, 8));
      storeLanes(o0, o1, _mm256_unpacklo_epi16(cmI, ykI));
      storeLanes(o0 + 16, o1 + 16, _mm256_unpackhi_epi16(cmI, ykI));
    } else {
      const Rgb16 c = colour(yv, cb, cr);
      const V p = packBgr<D>(c.r, c.g, c.b);
      storeLanes(o0, o1, p);
    }
  }
}

}  // namespace

constinit const DecTable kDecFastAVX2 = {
    {decodeAVX2<Dec::RGB, Samp::S444>, decodeAVX2<Dec::RGB, Samp::S422>, decodeAVX2<Dec::RGB, Samp::S411>},
    {decodeAVX2<Dec::BGR, Samp::S444>, decodeAVX2<Dec::BGR, Samp::S422>, decodeAVX2<Dec::BGR, Samp::S411>},
    {decodeAVX2<Dec::CMYK, Samp::S444>, decodeAVX2<Dec::CMYK, Samp::S422>, decodeAVX2<Dec::CMYK, Samp::S411>},
    {decodeAVX2<Dec::BGR555, Samp::S444>, decodeAVX2<Dec::BGR555, Samp::S422>, decodeAVX2<Dec::BGR555, Samp::S411>},
    {decodeAVX2<Dec::BGR565, Samp::S444>, decodeAVX2<Dec::BGR565, Samp::S422>, decodeAVX2<Dec::BGR565, Samp::S411>},
    {decodeAVX2<Dec::Up, Samp::S444>, decodeAVX2<Dec::Up, Samp::S422>, decodeAVX2<Dec::Up, Samp::S411>},
    {nullptr, decodeAVX2<Dec::Join422, Samp::S422>, nullptr},
};

}  // namespace zvp::mcu
