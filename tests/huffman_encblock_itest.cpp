// The sequential Huffman encoder's block coders: every build (plain, and
// BMI2/LZCNT for AVX2-class processors) against its plain twin, on the same
// blocks, tables, states and buffers: return value, every byte of the
// destination (also bytes a path that gave up left beyond the position),
// position, DC predictor and state. Then the exported functions under every
// instruction-set cap against the plain cap.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "core/cpu.h"
#include "huffman/huffkernels.h"
#include "huffman/huffrecords.h"
#include "huffman/pjenchuff_kernels.h"
#include "huffman_common.h"

namespace {

// Tables with some codes taken out, so that symbols meet a length of 0.
void holes(zt::Rng& rng, ht::Tables& t) {
  int n = rng.uniform(0, 3);
  if (n == 0) return;
  uint32_t* dc = reinterpret_cast<uint32_t*>(t.dcE.b);
  uint32_t* ac = reinterpret_cast<uint32_t*>(t.acE.b);
  for (int i = 0; i < n; ++i) {
    dc[rng.uniform(0, 16)] = 0;
    ac[rng.uniform(0, 255)] = 0;
  }
  if (rng.uniform(0, 3) == 0) ac[0] = 0;
  if (rng.uniform(0, 3) == 0) ac[0xF0] = 0;
}

void block(zt::Rng& rng, int16_t* b) {
  ht::randomBlock(rng, rng.uniform(0, 5), b);
  int extra = rng.uniform(0, 4);
  if (extra == 0) b[rng.uniform(0, 63)] = -32768;
  if (extra == 1) b[0] = static_cast<int16_t>(rng.uniform(0, 1) ? 32767 : -32768);
  if (extra == 2)  // many 0xFF bytes: all-ones value bits
    for (int k = 1; k < 64; ++k)
      if (rng.uniform(0, 1)) b[k] = static_cast<int16_t>(rng.uniform(0, 1) ? 255 : -256);
}

using FastFn = int (*)(const Zvp16s*, Zvp8u*, int, int*, Zvp16s*, const ZvpiEncodeHuffmanSpec*,
                       const ZvpiEncodeHuffmanSpec*, ZvpiEncodeHuffmanState*);
using DirectFn = void (*)(const Zvp16s*, Zvp8u*, int*, Zvp16s*, const ZvpiEncodeHuffmanSpec*,
                          const ZvpiEncodeHuffmanSpec*);

int fastScalarPlainMask(const Zvp16s* p, Zvp8u* d, int l, int* pos, Zvp16s* dc, const ZvpiEncodeHuffmanSpec* a,
                        const ZvpiEncodeHuffmanSpec* b, ZvpiEncodeHuffmanState* s) {
  return zvp::huff::encodeBlockFastScalar(p, zvp::huff::zigzagMaskScalar(p), d, l, pos, dc, a, b, s);
}
void directScalarPlainMask(const Zvp16s* p, Zvp8u* d, int* bits, Zvp16s* dc, const ZvpiEncodeHuffmanSpec* a,
                           const ZvpiEncodeHuffmanSpec* b) {
  zvp::huff::encodeBlockDirectScalar(p, zvp::huff::zigzagMaskScalar(p), d, bits, dc, a, b);
}

std::vector<FastFn> fastKernels() {
  std::vector<FastFn> v;
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41)
    v.push_back([](const Zvp16s* p, Zvp8u* d, int l, int* pos, Zvp16s* dc, const ZvpiEncodeHuffmanSpec* a,
                   const ZvpiEncodeHuffmanSpec* b, ZvpiEncodeHuffmanState* s) {
      return zvp::huff::encodeBlockFastScalar(p, zvp::huff::zigzagMaskSSE41(p), d, l, pos, dc, a, b, s);
    });
  if (zvp::cpuIsa() >= zvp::Isa::AVX2) v.push_back(zvp::huff::encodeBlockFastAVX2);
  if (zvp::cpuIsa() >= zvp::Isa::AVX512) v.push_back(zvp::huff::encodeBlockFastAVX512);
#endif
  return v;
}

std::vector<DirectFn> directKernels() {
  std::vector<DirectFn> v;
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::AVX2) v.push_back(zvp::huff::encodeBlockDirectAVX2);
  if (zvp::cpuIsa() >= zvp::Isa::AVX512) v.push_back(zvp::huff::encodeBlockDirectAVX512);
#endif
  return v;
}

TEST(HuffmanEncodeBlock, MaskKernelsEqualPlainTwin) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() < zvp::Isa::AVX2) GTEST_SKIP() << "no AVX2";
  zt::Rng rng(813);
  for (int it = 0; it < 3000; ++it) {
    zt::Guarded g(128, static_cast<size_t>(2 * (it % 32)));
    int16_t* b = g.as<int16_t>();
    int density = it % 4;
    for (int i = 0; i < 64; ++i) b[i] = static_cast<int16_t>(rng.uniform(0, density) ? 0 : rng.s16());
    if (it % 7 == 0) b[rng.uniform(0, 63)] = -32768;
    if (it % 11 == 0) b[rng.uniform(0, 63)] = 1;
    ASSERT_EQ(zvp::huff::zigzagMaskAVX2(b), zvp::huff::zigzagMaskScalar(b)) << it;
  }
#else
  GTEST_SKIP();
#endif
}

// The AVX-512 preparation against a plain model of it: mask, category and
// value bits at every position, every 2-byte alignment, every extreme value.
TEST(HuffmanEncodeBlock, PrepareKernelEqualsPlainModel) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() < zvp::Isa::AVX512) GTEST_SKIP() << "no AVX-512";
  static const auto zz = href::zigzag();
  zt::Rng rng(814);
  for (int it = 0; it < 4000; ++it) {
    zt::Guarded g(128, static_cast<size_t>(2 * (it % 32)));
    int16_t* b = g.as<int16_t>();
    int density = it % 4;
    for (int i = 0; i < 64; ++i) {
      int kind = rng.uniform(0, 5);
      b[i] = density && rng.uniform(0, density) ? 0
             : kind == 0                        ? static_cast<int16_t>(rng.uniform(0, 1) ? -32768 : 32767)
             : kind == 1                        ? static_cast<int16_t>(1 << rng.uniform(0, 14)) * (rng.uniform(0, 1) ? 1 : -1)
             : kind == 2                        ? static_cast<int16_t>((1 << rng.uniform(0, 15)) - 1)
                                                : rng.s16();
    }
    alignas(64) uint32_t prep[64];
    uint64_t mask = zvp::huff::prepareBlockAVX512(b, prep);
    ASSERT_EQ(mask, zvp::huff::zigzagMaskScalar(b)) << it;
    for (int k = 1; k < 64; ++k) {
      int32_t v = b[zz[k]];
      uint32_t mag = static_cast<uint32_t>(v < 0 ? -v : v);
      uint32_t c = 0;
      while (mag >> c) ++c;
      uint32_t bits = static_cast<uint32_t>(v < 0 ? v - 1 : v) & ((1u << c) - 1);
      ASSERT_EQ(prep[k], (c << 16) | bits) << it << " " << k << " " << v;
    }
  }
#else
  GTEST_SKIP();
#endif
}

TEST(HuffmanEncodeBlock, FastKernelsEqualPlainTwin) {
  const std::vector<FastFn> kernels = fastKernels();
  if (kernels.empty()) GTEST_SKIP() << "no vector build on this processor";
  zt::Rng rng(811);
  int done = 0, gaveUp = 0;
  for (int it = 0; it < 40; ++it) {
    ht::Tables t = ht::Tables::random(rng);
    holes(rng, t);
    auto* dcT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.dcE.b);
    auto* acT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.acE.b);
    for (int n = 0; n < 150; ++n) {
      // Source at every 2-byte alignment within 32 bytes.
      zt::Guarded src(128, static_cast<size_t>(2 * rng.uniform(0, 15)));
      int16_t* b = src.as<int16_t>();
      block(rng, b);
      // Room from none to plenty, so that bursts give up on room too.
      const int cap = 160;
      int len = rng.uniform(0, 3) ? rng.uniform(1, 90) : cap;
      int pos0 = rng.uniform(0, 3) ? rng.uniform(0, len) : rng.uniform(-2, len + 2);
      std::vector<uint8_t> init(cap);
      for (auto& x : init) x = static_cast<uint8_t>(rng.uniform(0, 3) ? rng.uniform(0, 255) : 0xFF);
      ZvpiEncodeHuffmanState s0{};
      s0.bitCount = rng.uniform(0, 9) ? rng.uniform(0, 7) : rng.uniform(-1, 9);
      s0.bitBufferLo = rng.u32();
      s0.bitBufferHi = rng.u32();
      int16_t dc0 = static_cast<int16_t>(rng.uniform(0, 3) ? rng.uniform(-2000, 2000) : rng.s16());

      std::vector<uint8_t> wantDst = init;
      int wantPos = pos0;
      int16_t wantDc = dc0;
      ZvpiEncodeHuffmanState wantS = s0;
      int want = fastScalarPlainMask(b, wantDst.data(), len, &wantPos, &wantDc, dcT, acT, &wantS);
      (want == 0 ? done : gaveUp)++;
      if (want == 1) {  // nothing the caller sees changed
        ASSERT_EQ(wantPos, pos0);
        ASSERT_EQ(wantDc, dc0);
        ASSERT_EQ(0, std::memcmp(&wantS, &s0, sizeof s0));
      }
      for (FastFn k : kernels) {
        std::vector<uint8_t> dst = init;
        int p = pos0;
        int16_t dc = dc0;
        ZvpiEncodeHuffmanState s = s0;
        ASSERT_EQ(k(b, dst.data(), len, &p, &dc, dcT, acT, &s), want) << it << " " << n;
        ASSERT_EQ(p, wantPos);
        ASSERT_EQ(dc, wantDc);
        ASSERT_EQ(0, std::memcmp(&s, &wantS, sizeof s));
        ASSERT_EQ(dst, wantDst) << it << " " << n;
      }
      ASSERT_TRUE(src.intact());
    }
  }
  EXPECT_GT(done, 1000);
  EXPECT_GT(gaveUp, 200);
}

TEST(HuffmanEncodeBlock, DirectKernelsEqualPlainTwin) {
  const std::vector<DirectFn> kernels = directKernels();
  if (kernels.empty()) GTEST_SKIP() << "no vector build on this processor";
  zt::Rng rng(812);
  for (int it = 0; it < 30; ++it) {
    ht::Tables t = ht::Tables::random(rng);
    holes(rng, t);
    auto* dcT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.dcE.b);
    auto* acT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.acE.b);
    for (int n = 0; n < 150; ++n) {
      zt::Guarded src(128, static_cast<size_t>(2 * rng.uniform(0, 15)));
      int16_t* b = src.as<int16_t>();
      block(rng, b);
      std::vector<uint8_t> init(400);
      for (auto& x : init) x = static_cast<uint8_t>(rng.uniform(0, 255));
      int bits0 = rng.uniform(0, 8 * 40);
      int16_t dc0 = rng.s16();

      std::vector<uint8_t> wantDst = init;
      int wantBits = bits0;
      int16_t wantDc = dc0;
      directScalarPlainMask(b, wantDst.data(), &wantBits, &wantDc, dcT, acT);
      for (DirectFn k : kernels) {
        std::vector<uint8_t> dst = init;
        int bits = bits0;
        int16_t dc = dc0;
        k(b, dst.data(), &bits, &dc, dcT, acT);
        ASSERT_EQ(bits, wantBits);
        ASSERT_EQ(dc, wantDc);
        ASSERT_EQ(dst, wantDst) << it << " " << n;
      }
    }
  }
}

// A run of blocks through the exported encoder (fast path, and careful path
// after give-ups on room and on missing codes) under every cap.
struct EncRun {
  std::vector<uint8_t> dst;
  std::vector<int> pos, status;
  std::vector<int16_t> dc;
  std::vector<uint8_t> state;
  bool operator==(const EncRun&) const = default;
};

EncRun encodeRun(uint64_t seed, zvp::Isa cap) {
  zvp::Isa old = zvp::setIsaCap(cap);
  zt::Rng rng(seed);
  ht::Tables t = ht::Tables::random(rng);
  if (seed % 3 == 0) holes(rng, t);
  auto* dcT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.dcE.b);
  auto* acT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.acE.b);
  EncRun r;
  r.dst.assign(3000, 0x5A);
  ht::EncState st;
  zvpiEncodeHuffmanStateInit_JPEG_8u(st.p());
  int pos = 0;
  int16_t dc = 0;
  for (int n = 0; n < 300; ++n) {
    int16_t b[64];
    block(rng, b);
    int len = std::min<int>(3000, pos + rng.uniform(0, 60));
    int status = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(b, r.dst.data(), len, &pos, &dc, dcT, acT, st.p(), 0);
    r.pos.push_back(pos);
    r.status.push_back(status);
    r.dc.push_back(dc);
    r.state.insert(r.state.end(), st.b, st.b + 20);
    if (status) {  // start afresh after a failure
      zvpiEncodeHuffmanStateInit_JPEG_8u(st.p());
      if (pos > 2900) pos = 0;
    }
  }
  zvp::setIsaCap(old);
  return r;
}

TEST(HuffmanEncodeBlock, ExportedEqualUnderEveryCap) {
  for (uint64_t seed = 900; seed < 912; ++seed) {
    EncRun plain = encodeRun(seed, zvp::Isa::Scalar);
    int failures = 0;
    for (int s : plain.status) failures += s != 0;
    if (seed % 3 == 0) {
      EXPECT_GT(failures, 0);
    }
    for (zvp::Isa cap : {zvp::Isa::SSE41, zvp::Isa::AVX2, zvp::Isa::AVX512})
      ASSERT_TRUE(encodeRun(seed, cap) == plain) << seed << " " << static_cast<int>(cap);
  }
}

}  // namespace
