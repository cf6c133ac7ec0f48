// Vector form of the photo core transform: one block per 32-bit lane. Four
// blocks (SSE4.1) or eight (AVX2) are loaded row by row, transposed so that
// each register holds one coefficient position of all its blocks, run
// through the same lifting template as the scalar twin, and transposed back.
// Included only by the _sse41 and _avx2 kernel files; everything here has
// internal linkage so that each file keeps its own instruction encoding.
#pragma once

#include <immintrin.h>

#include "hdphoto/pjxrpct.h"

namespace zvp::pct {
namespace {

// Lane arithmetic of both widths, written once in the compiler's vector
// types: U (unsigned lanes) wraps, S (signed lanes) shifts arithmetically.
template <class VT, class U, class S>
struct LaneOps {
  using V = VT;
  static V add(V a, V b) { return V((U)a + (U)b); }
  static V sub(V a, V b) { return V((U)a - (U)b); }
  static V neg(V a) { return V(-(U)a); }
  template <int K>
  static V sra(V a) { return V((S)a >> K); }
  static V one() { return V(U{} + 1u); }
  static V three() { return V(U{} + 3u); }
  static V four() { return V(U{} + 4u); }
};

// 4x4 transpose of 32-bit lanes (within each 128-bit half), over the
// unpack instructions of the width.
template <class Ops, class V>
inline void transpose4(V& r0, V& r1, V& r2, V& r3) {
  const V t0 = Ops::lo32(r0, r1), t1 = Ops::hi32(r0, r1);
  const V t2 = Ops::lo32(r2, r3), t3 = Ops::hi32(r2, r3);
  r0 = Ops::lo64(t0, t2);
  r1 = Ops::hi64(t0, t2);
  r2 = Ops::lo64(t1, t3);
  r3 = Ops::hi64(t1, t3);
}

// The register types without the may_alias attribute of __m128i/__m256i
// (values only, never reached through a pointer), so they can be template
// arguments; they convert to and from the intrinsic types freely.
typedef long long I64x2 __attribute__((vector_size(16)));
typedef uint32_t U32x4 __attribute__((vector_size(16)));
typedef int32_t S32x4 __attribute__((vector_size(16)));

struct SseOps : LaneOps<I64x2, U32x4, S32x4> {
  static constexpr int kBlocks = 4;
  static V loadRow(Zvp32s* const* b, int step, int r, int k) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at(b[k], step, r, 0)));
  }
  static void storeRow(Zvp32s* const* b, int step, int r, int k, V v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at(b[k], step, r, 0)), v);
  }
  static V lo32(V a, V b) { return _mm_unpacklo_epi32(a, b); }
  static V hi32(V a, V b) { return _mm_unpackhi_epi32(a, b); }
  static V lo64(V a, V b) { return _mm_unpacklo_epi64(a, b); }
  static V hi64(V a, V b) { return _mm_unpackhi_epi64(a, b); }
};

#if defined(__AVX2__)
typedef long long I64x4 __attribute__((vector_size(32)));
typedef uint32_t U32x8 __attribute__((vector_size(32)));
typedef int32_t S32x8 __attribute__((vector_size(32)));

// Lanes 0..3 of each 128-bit half: blocks k (low half) and k + 4 (high half).
struct AvxOps : LaneOps<I64x4, U32x8, S32x8> {
  static constexpr int kBlocks = 8;
  static V loadRow(Zvp32s* const* b, int step, int r, int k) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at(b[k], step, r, 0)));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at(b[k + 4], step, r, 0)));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
  }
  static void storeRow(Zvp32s* const* b, int step, int r, int k, V v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at(b[k], step, r, 0)), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at(b[k + 4], step, r, 0)), _mm256_extracti128_si256(v, 1));
  }
  static V lo32(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
  static V hi32(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
  static V lo64(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
  static V hi64(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
};
#endif

// One pass over Ops::kBlocks blocks.
template <class Ops, bool Forward>
inline void blocksPass(Zvp32s* const* b, int step) {
  using V = typename Ops::V;
  V x[16];
  for (int r = 0; r < 4; ++r) {
    V q0 = Ops::loadRow(b, step, r, 0), q1 = Ops::loadRow(b, step, r, 1);
    V q2 = Ops::loadRow(b, step, r, 2), q3 = Ops::loadRow(b, step, r, 3);
    transpose4<Ops>(q0, q1, q2, q3);
    x[4 * r + 0] = q0;
    x[4 * r + 1] = q1;
    x[4 * r + 2] = q2;
    x[4 * r + 3] = q3;
  }
  if (Forward)
    Lift<Ops>::forward(x);
  else
    Lift<Ops>::inverse(x);
  for (int r = 0; r < 4; ++r) {
    V q0 = x[4 * r + 0], q1 = x[4 * r + 1], q2 = x[4 * r + 2], q3 = x[4 * r + 3];
    transpose4<Ops>(q0, q1, q2, q3);
    Ops::storeRow(b, step, r, 0, q0);
    Ops::storeRow(b, step, r, 1, q1);
    Ops::storeRow(b, step, r, 2, q2);
    Ops::storeRow(b, step, r, 3, q3);
  }
}

// Whole passes in vectors; fewer blocks than a pass go to the next smaller
// form, and the last 1..3 to the scalar twin.
template <class Ops, bool Forward>
inline int blocksVector(Zvp32s* const* b, int count, int step) {
  int k = 0;
  for (; k + Ops::kBlocks <= count; k += Ops::kBlocks) blocksPass<Ops, Forward>(b + k, step);
  return k;
}

}  // namespace
}  // namespace zvp::pct
