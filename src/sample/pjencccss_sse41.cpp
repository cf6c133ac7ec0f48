// MCU functions, encoding side: SSE4.1 fast bodies. Eight pixels of one row
// per step in 16-bit lanes; chroma sums by horizontal adds (and the row pair
// for 411); one template over colour model and sampling.
#include "sample/mcu_simd.h"

namespace zvp::mcu {

namespace {

inline __m128i gather(const GatherBytes& g, __m128i lo, __m128i hi) {
  return _mm_or_si128(_mm_shuffle_epi8(lo, load128(g.lo)), _mm_shuffle_epi8(hi, load128(g.hi)));
}

struct Px8 {
  __m128i a, b, c, k;  // R G B (K), or Y Cb Cr for the sampling members
};

template <Enc E>
inline Px8 read8(const uint8_t* p) {
  if constexpr (E == Enc::RGB || E == Enc::BGR || E == Enc::Down) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i hi = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));
    const int ra = E == Enc::BGR ? 2 : 0;
    return {gather(kGather3[ra], lo, hi), gather(kGather3[1], lo, hi), gather(kGather3[2 - ra], lo, hi), _mm_setzero_si128()};
  } else if constexpr (E == Enc::CMYK) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
    const __m128i full = _mm_set1_epi16(255);
    return {_mm_sub_epi16(full, gather(kGather4[0], lo, hi)), _mm_sub_epi16(full, gather(kGather4[1], lo, hi)),
            _mm_sub_epi16(full, gather(kGather4[2], lo, hi)), gather(kGather4[3], lo, hi)};
  } else if constexpr (E == Enc::Split422) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return {gather(kGather422[0], v, v), gather(kGather422[1], v, v), gather(kGather422[2], v, v), _mm_setzero_si128()};
  } else {
    Px8 px{};
    unpackBgr<E>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), px.a, px.b, px.c);
    return px;
  }
}

inline void store8(Zvp16s* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

template <Enc E, Samp S>
void encodeSSE41(const void* src, int srcStep, Zvp16s* const* mcu) {
  constexpr int W = mcuWidth(S), H = mcuHeight(S), M = chromaLog(S), BPP = bytesPerPixel<E>();
  constexpr bool kSampling = E == Enc::Down || E == Enc::Split422;
  const auto k = encCoefs<E, S>(_mm_setzero_si128());
  const __m128i k255 = _mm_set1_epi16(255);
  const __m128i k128 = _mm_set1_epi16(128);

  auto chroma = [&](__m128i sa, __m128i sb, __m128i sc, int cy) {
    __m128i cb, cr;
    if constexpr (kSampling) {
      cb = _mm_sub_epi16(_mm_srai_epi16(sb, M), k128);
      cr = _mm_sub_epi16(_mm_srai_epi16(sc, M), k128);
    } else {
      cb = dot(sa, sb, sc, k.nLanes, k.cbAB, k.cbCD, 14 + M);
      cr = dot(sa, sb, sc, k.nLanes, k.crAB, k.crCD, 14 + M);
    }
    store8(mcu[1] + 8 * cy, cb);
    store8(mcu[2] + 8 * cy, cr);
  };

  Px8 acc[2] = {};
  for (int y = 0; y < H; ++y) {
    const uint8_t* row = static_cast<const uint8_t*>(src) + static_cast<std::ptrdiff_t>(y) * srcStep;
    Px8 px[2];
    for (int g = 0; g < W / 8; ++g) {
      const Px8 p = read8<E>(row + 8 * BPP * g);
      px[g] = p;
      const int li = lumaIndex(8 * g, y);
      if constexpr (kSampling)
        store8(mcu[0] + li, _mm_sub_epi16(p.a, k128));
      else
        store8(mcu[0] + li, dot(p.a, p.b, p.c, k255, k.yAB, k.yCD, 14));
      if constexpr (E == Enc::CMYK) store8(mcu[3] + li, _mm_sub_epi16(p.k, k128));
    }
    if constexpr (S == Samp::S444) {
      chroma(px[0].a, px[0].b, px[0].c, y);
    } else if constexpr (S == Samp::S422) {
      chroma(_mm_hadd_epi16(px[0].a, px[1].a), _mm_hadd_epi16(px[0].b, px[1].b), _mm_hadd_epi16(px[0].c, px[1].c),
             y);
    } else if (y % 2 == 0) {
      acc[0] = px[0];
      acc[1] = px[1];
    } else {
      __m128i s[3];
      for (int ch = 0; ch < 3; ++ch) {
        auto get = [&](const Px8& p) { return ch == 0 ? p.a : (ch == 1 ? p.b : p.c); };
        s[ch] = _mm_hadd_epi16(_mm_add_epi16(get(acc[0]), get(px[0])), _mm_add_epi16(get(acc[1]), get(px[1])));
      }
      chroma(s[0], s[1], s[2], y / 2);
    }
  }
}

}  // namespace

constinit const EncTable kEncFastSSE41 = {
    {encodeSSE41<Enc::RGB, Samp::S444>, encodeSSE41<Enc::RGB, Samp::S422>, encodeSSE41<Enc::RGB, Samp::S411>},
    {encodeSSE41<Enc::BGR, Samp::S444>, encodeSSE41<Enc::BGR, Samp::S422>, encodeSSE41<Enc::BGR, Samp::S411>},
    {encodeSSE41<Enc::CMYK, Samp::S444>, encodeSSE41<Enc::CMYK, Samp::S422>, encodeSSE41<Enc::CMYK, Samp::S411>},
    {encodeSSE41<Enc::BGR555, Samp::S444>, encodeSSE41<Enc::BGR555, Samp::S422>,
     encodeSSE41<Enc::BGR555, Samp::S411>},
    {encodeSSE41<Enc::BGR565, Samp::S444>, encodeSSE41<Enc::BGR565, Samp::S422>,
     encodeSSE41<Enc::BGR565, Samp::S411>},
    {encodeSSE41<Enc::Down, Samp::S444>, encodeSSE41<Enc::Down, Samp::S422>, encodeSSE41<Enc::Down, Samp::S411>},
    {nullptr, encodeSSE41<Enc::Split422, Samp::S422>, nullptr},
};

}  // namespace zvp::mcu
