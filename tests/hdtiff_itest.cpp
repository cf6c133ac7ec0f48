// Photo core transform and TIFF row kernels: every vector kernel against its
// scalar twin and the reference, at every count, length and alignment that
// matters.
#include <gtest/gtest.h>

#include <vector>

#include "core/cpu.h"
#include "hdphoto/pjxrpct.h"
#include "ref/hdtiff_ref.h"
#include "sample/pjrle.h"
#include "support/testutil.h"

namespace {

using zvp::Isa;

struct PctKernels {
  const char* name;
  zvp::pct::BlocksFn fwd, inv;
  Isa needs;
};

std::vector<PctKernels> pctKernels() {
  std::vector<PctKernels> k = {{"scalar", zvp::pct::fwdBlocksScalar, zvp::pct::invBlocksScalar, Isa::Scalar}};
#if !defined(ZVP_NO_X86)
  k.push_back({"sse41", zvp::pct::fwdBlocksSSE41, zvp::pct::invBlocksSSE41, Isa::SSE41});
  k.push_back({"avx2", zvp::pct::fwdBlocksAVX2, zvp::pct::invBlocksAVX2, Isa::AVX2});
#endif
  return k;
}

TEST(PctKernels, EveryBlockCountMatchesReference) {
  zt::Rng rng(7101);
  for (const PctKernels& k : pctKernels()) {
    if (zvp::cpuIsa() < k.needs) continue;
    for (int count = 1; count <= 21; ++count)
      for (size_t off : {0, 4, 1}) {
        // Blocks side by side in one band, with some columns skipped.
        const int step = 16 * 32 + 12;
        zt::Guarded g(static_cast<size_t>(step) * 4, off), want(g.size(), off);
        rng.fill(g.data(), g.size());
        for (size_t i = 0; i + 4 <= g.size(); i += 4 * rng.uniform(1, 5)) {
          const int32_t v = rng.uniform(0, 1) ? INT32_MAX - rng.uniform(0, 9) : INT32_MIN + rng.uniform(0, 9);
          std::memcpy(g.data() + i, &v, 4);
        }
        std::memcpy(want.data(), g.data(), g.size());
        std::vector<Zvp32s*> blocks;
        int col = 0;
        for (int b = 0; b < count; ++b) {
          blocks.push_back(reinterpret_cast<Zvp32s*>(g.data() + 16 * col));
          col += (b % 3 == 1) ? 2 : 1;
        }
        for (bool fwd : {true, false}) {
          for (Zvp32s* b : blocks) {
            const size_t at = static_cast<size_t>(reinterpret_cast<uint8_t*>(b) - g.data());
            ref::pctRegion(want.data() + at, step, 4, 4, fwd);
          }
          (fwd ? k.fwd : k.inv)(blocks.data(), count, step);
          ASSERT_EQ(g.snapshot(), want.snapshot()) << k.name << " count " << count << " fwd " << fwd;
          ASSERT_TRUE(g.intact());
        }
      }
  }
}

TEST(PctKernels, RegionsAtEveryCapMatchReference) {
  zt::Rng rng(7102);
  for (Isa cap : {Isa::Scalar, Isa::SSE41, Isa::AVX2, Isa::AVX512}) {
    const Isa saved = zvp::setIsaCap(cap);
    for (int w : {4, 8, 12, 16, 28, 32, 36, 68})
      for (int h : {4, 8, 16, 20, 36}) {
        const int step = 4 * w + 4 * rng.uniform(0, 3);
        zt::Guarded g(static_cast<size_t>(step) * h, 8), want(g.size(), 8);
        rng.fill(g.data(), g.size());
        std::memcpy(want.data(), g.data(), g.size());
        for (bool fwd : {true, false}) {
          ref::pctRegion(want.data(), step, w, h, fwd);
          (fwd ? owniPCTFwd_HDP_32s_C1IR : owniPCTInv_HDP_32s_C1IR)(g.as<Zvp32s>(), step, {w, h});
          ASSERT_EQ(g.snapshot(), want.snapshot()) << int(cap) << " " << w << "x" << h;
        }
      }
    zvp::setIsaCap(saved);
  }
}

// A negative step of fewer bytes than the row passes the unsigned step test;
// the rows overlap, and the blocks are then taken strictly one after the
// other in ascending order, on every path.
TEST(PctKernels, OverlappingRowsKeepTheAscendingOrder) {
  zt::Rng rng(7103);
  for (Isa cap : {Isa::Scalar, Isa::SSE41, Isa::AVX2}) {
    const Isa saved = zvp::setIsaCap(cap);
    for (int step : {-4, -16, -60, 16, 20}) {
      const int w = 16, h = 16;
      const size_t span = 4 * static_cast<size_t>(w) + static_cast<size_t>(std::abs(step)) * h;
      zt::Guarded g(2 * span, 0), want(g.size(), 0);
      rng.fill(g.data(), g.size());
      for (size_t i = 0; i < g.size(); ++i) g.data()[i] &= 0x3F;
      std::memcpy(want.data(), g.data(), g.size());
      const size_t base = span;
      ref::pctRegion(want.data() + base, step, w, h, true);
      ASSERT_EQ(zvpiPCTFwd_HDP_32s_C1IR(reinterpret_cast<Zvp32s*>(g.data() + base), step, {w, h}),
                step < 0 ? zvpStatusOk : zvpStatusBadStep);
      if (step < 0) {
        ASSERT_EQ(g.snapshot(), want.snapshot()) << int(cap) << " step " << step;
      }
    }
    zvp::setIsaCap(saved);
  }
}

TEST(PackBitsKernels, ScannersAgreeWithTheScalarTwin) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() < Isa::SSE41) GTEST_SKIP();
  zt::Rng rng(3611);
  for (int rep = 0; rep < 4000; ++rep) {
    const int rem = rng.uniform(1, 200);
    zt::Guarded buf(static_cast<size_t>(rem), static_cast<size_t>(rep % 16));
    const int alphabet = rng.uniform(1, 4) == 1 ? 256 : rng.uniform(1, 4);
    for (size_t i = 0; i < buf.size(); ++i) buf.data()[i] = static_cast<uint8_t>(rng.uniform(0, alphabet - 1));
    if (rep % 5 == 0)  // a long literal with an equal tail
      for (int i = 0; i < rem; ++i) buf.data()[i] = static_cast<uint8_t>(i < rem - 3 ? i : 200);
    ASSERT_EQ(zvp::rle::runLengthSSE41(buf.data(), rem), zvp::rle::runLengthScalar(buf.data(), rem)) << rep;
    ASSERT_EQ(zvp::rle::literalLengthSSE41(buf.data(), rem), zvp::rle::literalLengthScalar(buf.data(), rem)) << rep;
  }
#else
  GTEST_SKIP();
#endif
}

TEST(PackBitsKernels, BothScannerSetsGiveTheReferenceTokens) {
  zt::Rng rng(3612);
  std::vector<zvp::rle::Scanners> sets = {{zvp::rle::runLengthScalar, zvp::rle::literalLengthScalar}};
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= Isa::SSE41) sets.push_back({zvp::rle::runLengthSSE41, zvp::rle::literalLengthSSE41});
#endif
  for (int rep = 0; rep < 600; ++rep) {
    std::vector<uint8_t> src(static_cast<size_t>(rng.uniform(1, 700)));
    const int mode = rep % 4;
    for (size_t i = 0; i < src.size(); ++i)
      src[i] = mode == 0 ? rng.byte() : mode == 1 ? static_cast<uint8_t>(rng.uniform(0, 1)) : mode == 2 ? static_cast<uint8_t>(i / rng.uniform(1, 4)) : static_cast<uint8_t>(rng.uniform(0, 9) ? i : 0);
    const std::vector<uint8_t> want = ref::packBits(src.data(), src.size());
    for (const auto& sc : sets) {
      for (int room : {static_cast<int>(want.size()), static_cast<int>(want.size()) - 1, rng.uniform(1, static_cast<int>(want.size()))}) {
        if (room < 1) continue;
        const ref::PackResult r = ref::packBitsInto(src.data(), src.size(), static_cast<size_t>(room));
        std::vector<uint8_t> dst(static_cast<size_t>(room));
        int pos = 0;
        ASSERT_EQ(zvp::rle::packBitsRow(sc, src.data(), static_cast<int>(src.size()), dst.data(), &pos, room),
                  r.status == 0 ? zvpStatusOk : zvpStatusUnderRun);
        ASSERT_EQ(pos, static_cast<int>(r.written));
        ASSERT_TRUE(std::equal(dst.begin(), dst.begin() + pos, want.begin()));
      }
    }
  }
}

TEST(PlaneKernels, JoinAndSplitAgreeWithTheScalarTwin) {
  struct K {
    const char* name;
    zvp::rle::JoinFn join;
    zvp::rle::SplitFn split;
    Isa needs;
  };
  std::vector<K> ks = {{"scalar", zvp::rle::joinScalar, zvp::rle::splitScalar, Isa::Scalar}};
#if !defined(ZVP_NO_X86)
  ks.push_back({"sse41", zvp::rle::joinSSE41, zvp::rle::splitSSE41, Isa::SSE41});
  ks.push_back({"avx2", zvp::rle::joinAVX2, zvp::rle::splitAVX2, Isa::AVX2});
#endif
  zt::Rng rng(3613);
  for (const K& k : ks) {
    if (zvp::cpuIsa() < k.needs) continue;
    for (int len = 1; len <= 140; ++len)
      for (size_t off = 0; off < 4; ++off) {
        zt::Guarded lo(static_cast<size_t>(len), off), hi(static_cast<size_t>(len), off + 9), j(2 * static_cast<size_t>(len), off * 5);
        rng.fill(lo.data(), lo.size());
        rng.fill(hi.data(), hi.size());
        k.join(lo.data(), hi.data(), j.data(), len);
        for (int i = 0; i < len; ++i) {
          ASSERT_EQ(j.data()[2 * i], lo.data()[i]) << k.name << len;
          ASSERT_EQ(j.data()[2 * i + 1], hi.data()[i]) << k.name << len;
        }
        ASSERT_TRUE(j.intact());
        rng.fill(j.data(), j.size());
        k.split(j.data(), lo.data(), hi.data(), len);
        for (int i = 0; i < len; ++i) {
          ASSERT_EQ(lo.data()[i], j.data()[2 * i]) << k.name << len;
          ASSERT_EQ(hi.data()[i], j.data()[2 * i + 1]) << k.name << len;
        }
        ASSERT_TRUE(lo.intact());
        ASSERT_TRUE(hi.intact());
      }
  }
}

TEST(HdTiffDispatch, FollowsTheCap) {
  const Isa saved = zvp::setIsaCap(Isa::Scalar);
  EXPECT_EQ(zvp::pct::fwdBlocks(), &zvp::pct::fwdBlocksScalar);
  EXPECT_EQ(zvp::pct::invBlocks(), &zvp::pct::invBlocksScalar);
  EXPECT_EQ(zvp::rle::scanners().run, &zvp::rle::runLengthScalar);
  EXPECT_EQ(zvp::rle::joinRow(), &zvp::rle::joinScalar);
  EXPECT_EQ(zvp::rle::splitRow(), &zvp::rle::splitScalar);
  zvp::setIsaCap(saved);
}

}  // namespace
