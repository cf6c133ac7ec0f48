// SSE4.1 helpers of the colour kernels: 16-bit lanes holding 8 pixels, the
// linear forms of every set with 32-bit intermediates, and the shuffles of
// interleaved rows. Only for files compiled with -msse4.1.
#pragma once

#include <smmintrin.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "sample/colour.h"

namespace zvp::cc::sse {
// Internal linkage: the AVX2 files include these helpers too, compiled with
// other flags, and the two copies must never be merged.
namespace {

// Groups of 8 pixels, then one group of 4 if n leaves one (n a multiple of 4).
template <class F>
inline void groups(int n, F&& f) {
  int x = 0;
  for (; x + 8 <= n; x += 8) f.template operator()<8>(x);
  if (x < n) f.template operator()<4>(x);
}

// N bytes to 16-bit lanes, and the low N bytes of a register to memory.
template <int N>
inline __m128i load8u(const Zvp8u* p) {
  if constexpr (N == 8) {
    return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  } else {
    int32_t w;
    std::memcpy(&w, p, 4);
    return _mm_cvtepu8_epi16(_mm_cvtsi32_si128(w));
  }
}
template <int N>
inline void storeBytes(Zvp8u* p, __m128i v) {
  if constexpr (N == 8) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
  } else {
    const int32_t w = _mm_cvtsi128_si32(v);
    std::memcpy(p, &w, 4);
  }
}
// 16-bit lanes, saturated to bytes, stored.
template <int N>
inline void store16as8(Zvp8u* p, __m128i v) {
  storeBytes<N>(p, _mm_packus_epi16(v, v));
}

// ((ca a + cb b + cc c + add) >> shift) per 16-bit lane, the sum in 32 bits,
// the result saturated back to 16 bits (all results of the sets fit).
template <int Shift>
inline __m128i lin3(__m128i a, __m128i b, __m128i c, int ca, int cb, int cc, int add) {
  const __m128i cab = _mm_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(cb) << 16) | (ca & 0xFFFF)));
  const __m128i cc0 = _mm_set1_epi32(cc & 0xFFFF);
  const __m128i k = _mm_set1_epi32(add);
  const __m128i z = _mm_setzero_si128();
  __m128i lo = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), cab), _mm_madd_epi16(_mm_unpacklo_epi16(c, z), cc0));
  __m128i hi = _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(a, b), cab), _mm_madd_epi16(_mm_unpackhi_epi16(c, z), cc0));
  lo = _mm_srai_epi32(_mm_add_epi32(lo, k), Shift);
  hi = _mm_srai_epi32(_mm_add_epi32(hi, k), Shift);
  return _mm_packs_epi32(lo, hi);
}

// -------------------------------------------------------------- shuffles --

// Mask gathering, into 16-bit lanes (zero high bytes), the bytes S j + c of a
// 32-byte span held in two registers; Part selects the register.
constexpr std::array<int8_t, 16> gatherMask(int stride, int c, int part) {
  std::array<int8_t, 16> m{};
  for (int j = 0; j < 8; ++j) {
    const int idx = stride * j + c;
    m[2 * j] = static_cast<int8_t>((idx >> 4) == part ? (idx & 15) : -128);
    m[2 * j + 1] = -128;
  }
  return m;
}
inline __m128i mask(const std::array<int8_t, 16>& m) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(m.data())); }

template <int S, int C>
inline __m128i gather(__m128i v0, __m128i v1) {
  static constexpr auto m0 = gatherMask(S, C, 0), m1 = gatherMask(S, C, 1);
  return _mm_or_si128(_mm_shuffle_epi8(v0, mask(m0)), _mm_shuffle_epi8(v1, mask(m1)));
}

// N pixels of S bytes each into two registers (a short group goes through a
// zeroed copy, so nothing beyond the pixels is read).
template <int N, int S>
inline void loadSpan(const Zvp8u* p, __m128i& v0, __m128i& v1) {
  if constexpr (N * S == 32) {
    v0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    v1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
  } else if constexpr (N * S == 24) {
    v0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    v1 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));
  } else if constexpr (N * S == 16) {
    v0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    v1 = _mm_setzero_si128();
  } else {
    alignas(16) Zvp8u t[16] = {};
    std::memcpy(t, p, N * S);
    v0 = _mm_load_si128(reinterpret_cast<const __m128i*>(t));
    v1 = _mm_setzero_si128();
  }
}

// Channels c0, c1, c2 (16-bit lanes, clipped to bytes by saturation) to
// N interleaved 3-byte pixels.
constexpr std::array<int8_t, 16> scatter3Mask(int part, int reg) {
  // reg 0: c0 in bytes 0..7, c1 in 8..15; reg 1: c2 in bytes 0..7.
  std::array<int8_t, 16> m{};
  for (int i = 0; i < 16; ++i) {
    const int o = 16 * part + i, j = o / 3, c = o % 3;
    int8_t v = -128;
    if (o < 24) {
      if (reg == 0 && c == 0) v = static_cast<int8_t>(j);
      if (reg == 0 && c == 1) v = static_cast<int8_t>(8 + j);
      if (reg == 1 && c == 2) v = static_cast<int8_t>(j);
    }
    m[i] = v;
  }
  return m;
}
template <int N>
inline void store3(Zvp8u* p, __m128i c0, __m128i c1, __m128i c2) {
  static constexpr auto a0 = scatter3Mask(0, 0), b0 = scatter3Mask(0, 1), a1 = scatter3Mask(1, 0),
                        b1 = scatter3Mask(1, 1);
  const __m128i r01 = _mm_packus_epi16(c0, c1), r2 = _mm_packus_epi16(c2, c2);
  const __m128i o0 = _mm_or_si128(_mm_shuffle_epi8(r01, mask(a0)), _mm_shuffle_epi8(r2, mask(b0)));
  if constexpr (N == 8) {
    const __m128i o1 = _mm_or_si128(_mm_shuffle_epi8(r01, mask(a1)), _mm_shuffle_epi8(r2, mask(b1)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), o0);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), o1);
  } else {
    alignas(16) Zvp8u t[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(t), o0);
    std::memcpy(p, t, 12);
  }
}

// Bytes c0..c3 (each in the low N bytes of a register) to N 4-byte pixels.
template <int N>
inline void store4(Zvp8u* p, __m128i c0, __m128i c1, __m128i c2, __m128i c3) {
  const __m128i a = _mm_unpacklo_epi8(c0, c1), b = _mm_unpacklo_epi8(c2, c3);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_unpacklo_epi16(a, b));
  if constexpr (N == 8) _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 16), _mm_unpackhi_epi16(a, b));
}

// ------------------------------------------------------- the sets, 8 wide --

struct Rgb16 {
  __m128i r, g, b;
};

template <int N>
inline Rgb16 setA(const Zvp8u* py, const Zvp8u* pcb, const Zvp8u* pcr) {
  const __m128i y = load8u<N>(py), cb = load8u<N>(pcb), cr = load8u<N>(pcr), z = _mm_setzero_si128();
  const __m128i dR = lin3<14>(cr, z, z, 22970, 0, 0, -2932015);
  const __m128i dG = lin3<14>(cb, cr, z, 5638, 11700, 0, -2211182);
  const __m128i dB = lin3<14>(cb, z, z, 29032, 0, 0, -3708561);
  return {_mm_add_epi16(y, dR), _mm_sub_epi16(y, dG), _mm_add_epi16(y, dB)};
}

template <int N>
inline Rgb16 setB(const Zvp8u* py, const Zvp8u* pcb, const Zvp8u* pcr) {
  const __m128i y = load8u<N>(py), cb = load8u<N>(pcb), cr = load8u<N>(pcr), z = _mm_setzero_si128();
  const __m128i dR = lin3<14>(cr, z, z, 22970, 0, 0, -2932015);
  const __m128i dG = lin3<14>(cb, cr, z, -5638, -11700, 0, 2227566);
  const __m128i dB = lin3<14>(cb, z, z, 29032, 0, 0, -3707961);
  return {_mm_add_epi16(y, dR), _mm_add_epi16(y, dG), _mm_add_epi16(y, dB)};
}

// Lanes limited to 0..255 (the clip of the sets).
inline __m128i clip16(__m128i v) { return _mm_min_epi16(_mm_max_epi16(v, _mm_setzero_si128()), _mm_set1_epi16(255)); }

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

}  // namespace
}  // namespace zvp::cc::sse
