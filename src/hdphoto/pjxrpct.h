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

  // The two mixed quadrants (a3 a2 b3 b2, and d0 c0 d1 c1) take the same
  // rotation: p, q on the first row of the pair, r, s on the second.
  static void fwdQuad(V& p, V& q, V& r, V& s) {
    p = Ops::sub(p, s);
    q = Ops::add(q, r);
    s = Ops::add(s, halfUp(p));
    r = Ops::sub(halfUp(q), r);
    rot(p, q);
    rot(r, s);
    r = Ops::add(r, half(p));
    s = Ops::sub(s, halfUp(q));
    p = Ops::sub(p, r);
    q = Ops::add(q, s);
  }

  // Undoes fwdQuad. Kept a body of its own on purpose: the lifting steps run
  // in the opposite order with the opposite signs, so the roundings differ.
  static void invQuad(V& p, V& q, V& r, V& s) {
    p = Ops::add(p, r);
    q = Ops::sub(q, s);
    r = Ops::sub(r, half(p));
    s = Ops::add(s, halfUp(q));
    rot(q, p);
    rot(s, r);
    s = Ops::sub(s, halfUp(p));
    r = Ops::sub(halfUp(q), r);
    p = Ops::add(p, s);
    q = Ops::sub(q, r);
  }

  // (3v + bias) >> k, the step of the odd-odd lifting pair.
  template <int K>
  static V lift3(V v, V bias) { return Ops::template sra<K>(Ops::add(times3(v), bias)); }

  // Fourth quadrant (c2 c3 d2 d3): one frame around the one non-symmetric
  // lifting pair. Its biases differ between the directions on purpose
  // (forward 4, 3, 3 with signs + - +; inverse 3, 3, 4 with - + -), so the
  // middle three steps stay written out per direction.
  template <bool Forward>
  static void oddQuad(V& c2, V& c3, V& d2, V& d3) {
    d3 = Ops::add(c2, d3);
    d2 = Ops::sub(d2, c3);
    const V h = half(d3);
    c2 = Ops::sub(c2, h);
    const V g = half(d2);
    V e = Ops::add(c3, g);
    V f;
    if (Forward) {
      f = Ops::add(c2, lift3<3>(e, Ops::four()));
      e = Ops::sub(e, lift3<2>(f, Ops::three()));
    } else {
      f = Ops::sub(c2, lift3<3>(e, Ops::three()));
      e = Ops::add(e, lift3<2>(f, Ops::three()));
    }
    c3 = Ops::sub(e, g);
    c2 = Ops::add(Forward ? Ops::add(f, lift3<3>(e, Ops::three())) : Ops::sub(f, lift3<3>(e, Ops::four())), h);
    d2 = Ops::add(d2, c3);
    d3 = Ops::sub(d3, c2);
  }

  static void forward(V* x) {
    bfly<false>(x[A0], x[A3], x[D0], x[D3]);
    bfly<false>(x[A1], x[A2], x[D1], x[D2]);
    bfly<false>(x[B0], x[B3], x[C0], x[C3]);
    bfly<false>(x[B1], x[B2], x[C1], x[C2]);

    bfly<true>(x[A0], x[A1], x[B0], x[B1]);

    fwdQuad(x[A3], x[A2], x[B3], x[B2]);
    fwdQuad(x[D0], x[C0], x[D1], x[C1]);

    x[C3] = Ops::neg(x[C3]);

    x[D2] = Ops::neg(x[D2]);
    oddQuad<true>(x[C2], x[C3], x[D2], x[D3]);
  }

  static void inverse(V* x) {
    invQuad(x[A3], x[A2], x[B3], x[B2]);
    invQuad(x[D0], x[C0], x[D1], x[C1]);

    oddQuad<false>(x[C2], x[C3], x[D2], x[D3]);
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

// The exported members of either direction, over its region worker: a
// fixed-size block, or any multiple of 4 in both directions.
template <ZvpStatus (*Region)(Zvp32s*, int, ZvpiSize)>
inline ZvpStatus fixedMember(Zvp32s* p, int step, int width, int height) {
  if (ZvpStatus st = checkFixed(p, step, width)) return st;
  return Region(p, step, ZvpiSize{width, height});
}

template <ZvpStatus (*Region)(Zvp32s*, int, ZvpiSize)>
inline ZvpStatus genericMember(Zvp32s* p, int step, ZvpiSize roi) {
  if (ZvpStatus st = checkGeneric(p, step, roi)) return st;
  return Region(p, step, roi);
}

}  // namespace zvp::pct
