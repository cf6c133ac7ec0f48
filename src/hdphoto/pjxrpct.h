// Photo core transform: the lossless 4x4 lifting transform of HD Photo,
// applied in place to every 4x4 block of a region of 32-bit values.
//
// The block step is written once, as a template over the lane type, so that
// the scalar twin and the vector kernels (which transform several blocks at
// once, one block per lane) run the very same branch-free sequence. All
// additions and subtractions wrap at 32 bits; right shifts are arithmetic.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zvpj.h"

// Region workers (no argument tests): every 4x4 block of roiSize, left to
// right, top to bottom.
ZvpStatus owniPCTFwd_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize);
ZvpStatus owniPCTInv_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize);

namespace zvp::pct {

// The 16 values of a block: a0..a3 (row 0), b0..b3, c0..c3, d0..d3.
enum : int { A0, A1, A2, A3, B0, B1, B2, B3, C0, C1, C2, C3, D0, D1, D2, D3 };

// Lane operations required of Ops: the lane type V, add, sub, neg, sra<k> (arithmetic shift
// right by k), and one(), three(), four() constants of the lane type.
template <class Ops>
struct Lift {
  using V = typename Ops::V;
  static V half(V v) { return Ops::template sra<1>(v); }
  static V halfUp(V v) { return Ops::template sra<1>(Ops::add(v, Ops::one())); }
  static V times3(V v) { return Ops::add(Ops::add(v, v), v); }
  static V m3over8(V v) { return Ops::template sra<3>(Ops::add(times3(v), Ops::four())); }

  static void rot(V& p, V& q) {
    p = Ops::sub(p, m3over8(q));
    q = Ops::add(q, m3over8(p));
  }

  template <bool Up>
  static void bfly(V& p, V& q, V& r, V& s) {
    p = Ops::add(p, s);
    q = Ops::sub(q, r);
    const V d = Ops::sub(p, q);
    const V t = Ops::sub(Up ? halfUp(d) : half(d), s);
    q = Ops::add(q, t);
    s = Ops::add(Ops::sub(s, r), t);
    p = Ops::sub(p, s);
    r = t;
  }

  static void forward(V* x) {
    bfly<false>(x[A0], x[A3], x[D0], x[D3]);
    bfly<false>(x[A1], x[A2], x[D1], x[D2]);
    bfly<false>(x[B0], x[B3], x[C0], x[C3]);
    bfly<false>(x[B1], x[B2], x[C1], x[C2]);

    bfly<true>(x[A0], x[A1], x[B0], x[B1]);

    x[A3] = Ops::sub(x[A3], x[B2]);
    x[A2] = Ops::add(x[A2], x[B3]);
    x[B2] = Ops::add(x[B2], halfUp(x[A3]));
    x[B3] = Ops::sub(halfUp(x[A2]), x[B3]);
    rot(x[A3], x[A2]);
    rot(x[B3], x[B2]);
    x[B3] = Ops::add(x[B3], half(x[A3]));
    x[B2] = Ops::sub(x[B2], halfUp(x[A2]));
    x[A3] = Ops::sub(x[A3], x[B3]);
    x[A2] = Ops::add(x[A2], x[B2]);

    x[D0] = Ops::sub(x[D0], x[C1]);
    x[C0] = Ops::add(x[C0], x[D1]);
    x[C1] = Ops::add(x[C1], halfUp(x[D0]));
    x[D1] = Ops::sub(halfUp(x[C0]), x[D1]);
    rot(x[D0], x[C0]);
    rot(x[D1], x[C1]);
    x[D1] = Ops::add(x[D1], half(x[D0]));
    x[C1] = Ops::sub(x[C1], halfUp(x[C0]));
    x[D0] = Ops::sub(x[D0], x[D1]);
    x[C0] = Ops::add(x[C0], x[C1]);

    x[C3] = Ops::neg(x[C3]);

    // Fourth quadrant: the one non-symmetric lifting pair (biases 4, 3, 3
    // with shifts 3, 2, 3).
    x[D2] = Ops::neg(x[D2]);
    x[D3] = Ops::add(x[C2], x[D3]);
    x[D2] = Ops::sub(x[D2], x[C3]);
    const V h = half(x[D3]);
    x[C2] = Ops::sub(x[C2], h);
    const V g = half(x[D2]);
    V e = Ops::add(x[C3], g);
    const V f = Ops::add(x[C2], Ops::template sra<3>(Ops::add(times3(e), Ops::four())));
    e = Ops::sub(e, Ops::template sra<2>(Ops::add(times3(f), Ops::three())));
    x[C3] = Ops::sub(e, g);
    x[C2] = Ops::add(Ops::add(f, Ops::template sra<3>(Ops::add(times3(e), Ops::three()))), h);
    x[D2] = Ops::add(x[D2], x[C3]);
    x[D3] = Ops::sub(x[D3], x[C2]);
  }

  static void inverse(V* x) {
    x[A3] = Ops::add(x[A3], x[B3]);
    x[A2] = Ops::sub(x[A2], x[B2]);
    x[B3] = Ops::sub(x[B3], half(x[A3]));
    x[B2] = Ops::add(x[B2], halfUp(x[A2]));
    x[A2] = Ops::sub(x[A2], m3over8(x[A3]));
    x[A3] = Ops::add(x[A3], m3over8(x[A2]));
    x[B2] = Ops::sub(x[B2], m3over8(x[B3]));
    x[B3] = Ops::add(x[B3], m3over8(x[B2]));
    x[B2] = Ops::sub(x[B2], halfUp(x[A3]));
    x[B3] = Ops::sub(halfUp(x[A2]), x[B3]);
    x[A3] = Ops::add(x[A3], x[B2]);
    x[A2] = Ops::sub(x[A2], x[B3]);

    x[D0] = Ops::add(x[D0], x[D1]);
    x[C0] = Ops::sub(x[C0], x[C1]);
    x[D1] = Ops::sub(x[D1], half(x[D0]));
    x[C1] = Ops::add(x[C1], halfUp(x[C0]));
    x[C0] = Ops::sub(x[C0], m3over8(x[D0]));
    x[D0] = Ops::add(x[D0], m3over8(x[C0]));
    x[C1] = Ops::sub(x[C1], m3over8(x[D1]));
    x[D1] = Ops::add(x[D1], m3over8(x[C1]));
    x[C1] = Ops::sub(x[C1], halfUp(x[D0]));
    x[D1] = Ops::sub(halfUp(x[C0]), x[D1]);
    x[D0] = Ops::add(x[D0], x[C1]);
    x[C0] = Ops::sub(x[C0], x[D1]);

    x[D3] = Ops::add(x[C2], x[D3]);
    x[D2] = Ops::sub(x[D2], x[C3]);
    const V h = half(x[D3]);
    x[C2] = Ops::sub(x[C2], h);
    const V g = half(x[D2]);
    V e = Ops::add(x[C3], g);
    const V f = Ops::sub(x[C2], Ops::template sra<3>(Ops::add(times3(e), Ops::three())));
    e = Ops::add(e, Ops::template sra<2>(Ops::add(times3(f), Ops::three())));
    x[C3] = Ops::sub(e, g);
    x[C2] = Ops::add(Ops::sub(f, Ops::template sra<3>(Ops::add(times3(e), Ops::four()))), h);
    x[D2] = Ops::add(x[D2], x[C3]);
    x[D3] = Ops::sub(x[D3], x[C2]);
    x[C3] = Ops::neg(x[C3]);
    x[D2] = Ops::neg(x[D2]);

    bfly<true>(x[A0], x[A1], x[B0], x[B1]);

    bfly<false>(x[A0], x[A3], x[D0], x[D3]);
    bfly<false>(x[A1], x[A2], x[D1], x[D2]);
    bfly<false>(x[B0], x[B3], x[C0], x[C3]);
    bfly<false>(x[B1], x[B2], x[C1], x[C2]);
  }
};

// Scalar lanes: 32-bit unsigned arithmetic (wraps without undefined
// behaviour); the shift goes through the signed value, which is arithmetic.
struct ScalarOps {
  using V = uint32_t;
  static uint32_t add(uint32_t a, uint32_t b) { return a + b; }
  static uint32_t sub(uint32_t a, uint32_t b) { return a - b; }
  static uint32_t neg(uint32_t a) { return 0u - a; }
  template <int K>
  static uint32_t sra(uint32_t a) { return static_cast<uint32_t>(static_cast<int32_t>(a) >> K); }
  static uint32_t one() { return 1u; }
  static uint32_t three() { return 3u; }
  static uint32_t four() { return 4u; }
};

// Transforms `count` blocks, each given by the address of its a0; rows of a
// block lie `step` bytes apart.
using BlocksFn = void (*)(Zvp32s* const* blocks, int count, int step);

// Scalar twins: one block at a time.
void fwdBlocksScalar(Zvp32s* const* blocks, int count, int step);
void invBlocksScalar(Zvp32s* const* blocks, int count, int step);

#if !defined(ZVP_NO_X86)
// Vector kernels: four blocks per pass (SSE4.1), eight (AVX2); a rest of
// fewer blocks goes to the scalar twin. Blocks must not overlap.
void fwdBlocksSSE41(Zvp32s* const* blocks, int count, int step);
void invBlocksSSE41(Zvp32s* const* blocks, int count, int step);
void fwdBlocksAVX2(Zvp32s* const* blocks, int count, int step);
void invBlocksAVX2(Zvp32s* const* blocks, int count, int step);
#endif

// The dispatch points.
BlocksFn fwdBlocks();
BlocksFn invBlocks();

// The region loop shared by every member: blocks in ascending order, handed
// to `fn` in batches. Rows that overlap (a step of fewer bytes than the
// row in either direction) go block by block through `scalar`, so that the
// ascending order alone decides the result.
void regionLoop(Zvp32s* pSrcDst, int step, ZvpiSize roi, BlocksFn fn, BlocksFn scalar);

// Element access through memcpy: the region may sit on any address.
inline uint32_t load32(const Zvp32s* p) {
  uint32_t v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
inline void store32(Zvp32s* p, uint32_t v) { __builtin_memcpy(p, &v, sizeof v); }

inline Zvp32s* at(Zvp32s* base, int step, int y, int x) {
  return reinterpret_cast<Zvp32s*>(reinterpret_cast<unsigned char*>(base) + static_cast<std::ptrdiff_t>(y) * step) + x;
}

// Fixed-size members: a null region, then a step below 4 bytes per column
// compared as unsigned (so a negative step passes).
inline ZvpStatus checkFixed(const Zvp32s* p, int step, int width) {
  if (!p) return zvpStatusNullPointer;
  if (static_cast<uint32_t>(step) < 4u * static_cast<uint32_t>(width)) return zvpStatusBadStep;
  return zvpStatusOk;
}

// Generic members: null, size below 1, step (unsigned), size not a multiple
// of 4. Four bytes per column are counted without wrap, so a width of 2^30
// or more needs more than any step can give.
inline ZvpStatus checkGeneric(const Zvp32s* p, int step, ZvpiSize roi) {
  if (!p) return zvpStatusNullPointer;
  if (roi.width < 1 || roi.height < 1) return zvpStatusBadSize;
  if (static_cast<uint64_t>(static_cast<uint32_t>(step)) < 4u * static_cast<uint64_t>(roi.width))
    return zvpStatusBadStep;
  if ((roi.width & 3) || (roi.height & 3)) return zvpStatusBadSize;
  return zvpStatusOk;
}

}  // namespace zvp::pct
