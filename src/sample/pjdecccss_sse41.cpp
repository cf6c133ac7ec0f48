// MCU functions, decoding side: SSE4.1 fast bodies. Eight pixels of one row
// per step in 16-bit lanes; one template over colour model and sampling.
#include "sample/mcu_simd.h"

namespace zvp::mcu {

namespace {

inline __m128i load8(const Zvp16s* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline __m128i load4(const Zvp16s* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }

struct Rgb16 {
  __m128i r, g, b;  // y + d, wrapped at 16 bits, not yet limited
};

struct Interleave3 {
  __m128i a0, b0, a1, b1;  // bytes 0..15 and 16..23
};
inline Interleave3 interleave3Masks(bool swap02) {
  const MaskBytes& m = kMasks[swap02 ? 1 : 0];
  return {load128(m.a), load128(m.b), load128(m.a + 16), load128(m.b + 16)};
}

inline void store24(uint8_t* d, const Interleave3& m, __m128i first, __m128i second) {
  const __m128i o0 = _mm_or_si128(_mm_shuffle_epi8(first, m.a0), _mm_shuffle_epi8(second, m.b0));
  const __m128i o1 = _mm_or_si128(_mm_shuffle_epi8(first, m.a1), _mm_shuffle_epi8(second, m.b1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(d), o0);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 16), o1);
}

template <Dec D, Samp S>
void decodeSSE41(const Zvp16s* const* mcu, void* dst, int dstStep) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S), SY = chromaSy(S);
  const Interleave3 m3 = interleave3Masks(D == Dec::BGR);
  const __m128i k128 = _mm_set1_epi16(128);
  for (int y = 0; y < H; ++y) {
    uint8_t* row = static_cast<uint8_t*>(dst) + static_cast<std::ptrdiff_t>(y) * dstStep;
    const Zvp16s* cbRow = mcu[1] + 8 * (y / SY);
    const Zvp16s* crRow = mcu[2] + 8 * (y / SY);
    for (int g = 0; g < W / 8; ++g) {
      const int li = lumaIndex(8 * g, y);
      const __m128i yv = load8(mcu[0] + li);
      if constexpr (D == Dec::Join422) {
        // Y0 Cb Y1 Cr: chroma pairs interleaved, then Y interleaved with them.
        const __m128i c = _mm_unpacklo_epi16(load4(cbRow + 4 * g), load4(crRow + 4 * g));
        const __m128i yb = _mm_packus_epi16(_mm_adds_epi16(yv, k128), _mm_setzero_si128());
        const __m128i cb = _mm_packus_epi16(_mm_adds_epi16(c, k128), _mm_setzero_si128());
        _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * g), _mm_unpacklo_epi8(yb, cb));
        continue;
      }
      __m128i cb, cr;
      if constexpr (S == Samp::S444) {
        cb = load8(cbRow);
        cr = load8(crRow);
      } else {
        const __m128i b4 = load4(cbRow + 4 * g), r4 = load4(crRow + 4 * g);
        cb = _mm_unpacklo_epi16(b4, b4);
        cr = _mm_unpacklo_epi16(r4, r4);
      }
      if constexpr (D == Dec::Up) {
        const __m128i first = _mm_packus_epi16(_mm_adds_epi16(yv, k128), _mm_adds_epi16(cb, k128));
        const __m128i second = _mm_packus_epi16(_mm_adds_epi16(cr, k128), _mm_setzero_si128());
        store24(row + 24 * g, m3, first, second);
      } else {
        Rgb16 c;
        colour(yv, cb, cr, c.r, c.g, c.b);
        if constexpr (D == Dec::RGB || D == Dec::BGR) {
          store24(row + 24 * g, m3, _mm_packus_epi16(c.r, c.g), _mm_packus_epi16(c.b, c.b));
        } else if constexpr (D == Dec::CMYK) {
          const __m128i k = _mm_adds_epi16(load8(mcu[3] + li), k128);
          const __m128i ones = _mm_set1_epi8(-1);
          const __m128i cm = _mm_xor_si128(_mm_packus_epi16(c.r, c.g), ones);               // C x8, M x8
          const __m128i yk = _mm_xor_si128(_mm_packus_epi16(c.b, k), _mm_set_epi64x(0, -1));  // Y x8, K x8
          const __m128i cmI = _mm_unpacklo_epi8(cm, _mm_srli_si128(cm, 8));
          const __m128i ykI = _mm_unpacklo_epi8(yk, _mm_srli_si128(yk, 8));
          _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 32 * g), _mm_unpacklo_epi16(cmI, ykI));
          _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 32 * g + 16), _mm_unpackhi_epi16(cmI, ykI));
        } else {
          const __m128i p = packBgr<D>(c.r, c.g, c.b);
          _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * g), p);
        }
      }
    }
  }
}

}  // namespace

constinit const DecTable kDecFastSSE41 = {
    {decodeSSE41<Dec::RGB, Samp::S444>, decodeSSE41<Dec::RGB, Samp::S422>, decodeSSE41<Dec::RGB, Samp::S411>},
    {decodeSSE41<Dec::BGR, Samp::S444>, decodeSSE41<Dec::BGR, Samp::S422>, decodeSSE41<Dec::BGR, Samp::S411>},
    {decodeSSE41<Dec::CMYK, Samp::S444>, decodeSSE41<Dec::CMYK, Samp::S422>, decodeSSE41<Dec::CMYK, Samp::S411>},
    {decodeSSE41<Dec::BGR555, Samp::S444>, decodeSSE41<Dec::BGR555, Samp::S422>,
     decodeSSE41<Dec::BGR555, Samp::S411>},
    {decodeSSE41<Dec::BGR565, Samp::S444>, decodeSSE41<Dec::BGR565, Samp::S422>,
     decodeSSE41<Dec::BGR565, Samp::S411>},
    {decodeSSE41<Dec::Up, Samp::S444>, decodeSSE41<Dec::Up, Samp::S422>, decodeSSE41<Dec::Up, Samp::S411>},
    {nullptr, decodeSSE41<Dec::Join422, Samp::S422>, nullptr},
};

}  // namespace zvp::mcu
