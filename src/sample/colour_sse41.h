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

}  // namespace zvp::cc::sse
