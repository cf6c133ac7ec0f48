// MCU functions, encoding side: AVX2 fast bodies. Each 128-bit lane holds one
// group of 8 pixels, as in the SSE4.1 kernels: the two halves of a 16-pixel
// row, or two rows of a 444 MCU. The arithmetic is that of the SSE4.1
// kernels; chroma sums of a 16-pixel row are joined across the lanes once.
#include "sample/mcu_simd.h"

namespace zvp::mcu {

namespace {

using V = __m256i;

inline V gather(const GatherBytes& g, V lo, V hi) {
  return _mm256_or_si256(_mm256_shuffle_epi8(lo, bcast(g.lo)), _mm256_shuffle_epi8(hi, bcast(g.hi)));
}
inline V load16x2(const uint8_t* a, const uint8_t* b) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)), 1);
}
inline V load8x2(const uint8_t* a, const uint8_t* b) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a))),
                                 _mm_loadl_epi64(reinterpret_cast<const __m128i*>(b)), 1);
}

struct Px {
  V a, b, c, k;
};

template <Enc E>
inline Px read2(const uint8_t* p0, const uint8_t* p1) {
  const V zero = _mm256_setzero_si256();
  if constexpr (E == Enc::RGB || E == Enc::BGR || E == Enc::Down) {
    const V lo = load16x2(p0, p1), hi = load8x2(p0 + 16, p1 + 16);
    const int ra = E == Enc::BGR ? 2 : 0;
    return {gather(kGather3[ra], lo, hi), gather(kGather3[1], lo, hi), gather(kGather3[2 - ra], lo, hi), zero};
  } else if constexpr (E == Enc::CMYK) {
    const V lo = load16x2(p0, p1), hi = load16x2(p0 + 16, p1 + 16);
    const V full = _mm256_set1_epi16(255);
    return {_mm256_sub_epi16(full, gather(kGather4[0], lo, hi)), _mm256_sub_epi16(full, gather(kGather4[1], lo, hi)),
            _mm256_sub_epi16(full, gather(kGather4[2], lo, hi)), gather(kGather4[3], lo, hi)};
  } else if constexpr (E == Enc::Split422) {
    const V v = load16x2(p0, p1);
    return {gather(kGather422[0], v, v), gather(kGather422[1], v, v), gather(kGather422[2], v, v), zero};
  } else {
    Px px{};
    unpackBgr<E>(load16x2(p0, p1), px.a, px.b, px.c);
    return px;
  }
}

struct CbCr {
  V cb, cr;
};

inline void store8(Zvp16s* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void storeLanes(Zvp16s* p0, Zvp16s* p1, V v) {
  store8(p0, _mm256_castsi256_si128(v));
  store8(p1, _mm256_extracti128_si256(v, 1));
}
// Pair sums of lane 0 then of lane 1, as eight lanes of the low half.
inline V pairSums(V v) { return _mm256_permute4x64_epi64(_mm256_hadd_epi16(v, v), 0x08); }

template <Enc E, Samp S>
void encodeAVX2(const void* src, int srcStep, Zvp16s* const* mcu) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S), M = chromaLog(S), BPP = bytesPerPixel<E>();
  constexpr bool kSampling = E == Enc::Down || E == Enc::Split422;
  const auto k = encCoefs<E, S>(_mm256_setzero_si256());
  const V k255 = _mm256_set1_epi16(255);
  const V k128 = _mm256_set1_epi16(128);
  auto row = [&](int y) { return static_cast<const uint8_t*>(src) + static_cast<std::ptrdiff_t>(y) * srcStep; };
  auto chroma = [&](V sa, V sb, V sc) {
    if constexpr (kSampling)
      return CbCr{_mm256_sub_epi16(_mm256_srai_epi16(sb, M), k128),
                             _mm256_sub_epi16(_mm256_srai_epi16(sc, M), k128)};
    else
      return CbCr{dot(sa, sb, sc, k.nLanes, k.cbAB, k.cbCD, 14 + M), dot(sa, sb, sc, k.nLanes, k.crAB, k.crCD, 14 + M)};
  };

  Px acc{};
  for (int t = 0; t < H * W / 16; ++t) {
    const int y0 = W == 16 ? t : 2 * t, y1 = W == 16 ? t : 2 * t + 1, x1 = W == 16 ? 8 : 0;
    const Px p = read2<E>(row(y0), row(y1) + BPP * x1);
    const int li0 = lumaIndex(0, y0), li1 = lumaIndex(x1, y1);
    if constexpr (kSampling)
      storeLanes(mcu[0] + li0, mcu[0] + li1, _mm256_sub_epi16(p.a, k128));
    else
      storeLanes(mcu[0] + li0, mcu[0] + li1, dot(p.a, p.b, p.c, k255, k.yAB, k.yCD, 14));
    if constexpr (E == Enc::CMYK) storeLanes(mcu[3] + li0, mcu[3] + li1, _mm256_sub_epi16(p.k, k128));
    if constexpr (S == Samp::S444) {
      const auto [cb, cr] = chroma(p.a, p.b, p.c);
      storeLanes(mcu[1] + 8 * y0, mcu[1] + 8 * y1, cb);
      storeLanes(mcu[2] + 8 * y0, mcu[2] + 8 * y1, cr);
    } else if constexpr (S == Samp::S422) {
      const auto [cb, cr] = chroma(pairSums(p.a), pairSums(p.b), pairSums(p.c));
      store8(mcu[1] + 8 * y0, _mm256_castsi256_si128(cb));
      store8(mcu[2] + 8 * y0, _mm256_castsi256_si128(cr));
    } else if (y0 % 2 == 0) {
      acc = p;
    } else {
      const auto [cb, cr] = chroma(pairSums(_mm256_add_epi16(acc.a, p.a)), pairSums(_mm256_add_epi16(acc.b, p.b)),
                                   pairSums(_mm256_add_epi16(acc.c, p.c)));
      store8(mcu[1] + 8 * (y0 / 2), _mm256_castsi256_si128(cb));
      store8(mcu[2] + 8 * (y0 / 2), _mm256_castsi256_si128(cr));
    }
  }
}

}  // namespace

constinit const EncTable kEncFastAVX2 = {
    {encodeAVX2<Enc::RGB, Samp::S444>, encodeAVX2<Enc::RGB, Samp::S422>, encodeAVX2<Enc::RGB, Samp::S411>},
    {encodeAVX2<Enc::BGR, Samp::S444>, encodeAVX2<Enc::BGR, Samp::S422>, encodeAVX2<Enc::BGR, Samp::S411>},
    {encodeAVX2<Enc::CMYK, Samp::S444>, encodeAVX2<Enc::CMYK, Samp::S422>, encodeAVX2<Enc::CMYK, Samp::S411>},
    {encodeAVX2<Enc::BGR555, Samp::S444>, encodeAVX2<Enc::BGR555, Samp::S422>, encodeAVX2<Enc::BGR555, Samp::S411>},
    {encodeAVX2<Enc::BGR565, Samp::S444>, encodeAVX2<Enc::BGR565, Samp::S422>, encodeAVX2<Enc::BGR565, Samp::S411>},
    {encodeAVX2<Enc::Down, Samp::S444>, encodeAVX2<Enc::Down, Samp::S422>, encodeAVX2<Enc::Down, Samp::S411>},
    {nullptr, encodeAVX2<Enc::Split422, Samp::S422>, nullptr},
};

}  // namespace zvp::mcu
