// MCU kernels: every SSE4.1 fast body against its scalar twin at aligned and
// misaligned blocks and pixels, wide steps and guard bytes; the dispatch
// point follows the instruction-set cap; the fast scalar twins against the
// reference model.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "core/cpu.h"
#include "ref/mcu_ref.h"
#include "sample/mcu.h"
#include "support/testutil.h"

namespace {

using namespace zvp::mcu;

int runLength(Samp s, int i) { return i == 1 || i == 2 ? 64 : (s == Samp::S444 ? 64 : s == Samp::S422 ? 128 : 256); }
int decBpp(Dec d) { return d == Dec::CMYK ? 4 : (d == Dec::BGR555 || d == Dec::BGR565 || d == Dec::Join422) ? 2 : 3; }
int encBpp(Enc e) { return e == Enc::CMYK ? 4 : (e == Enc::BGR555 || e == Enc::BGR565 || e == Enc::Split422) ? 2 : 3; }
int runs(int model, bool dec) { return model == static_cast<int>(dec ? static_cast<int>(Dec::CMYK) : static_cast<int>(Enc::CMYK)) ? 4 : 3; }

struct BlockSet {
  std::vector<std::unique_ptr<zt::Guarded>> bufs;
  std::vector<Zvp16s*> ptrs;
  BlockSet(Samp s, int n, size_t off) {
    for (int i = 0; i < n; ++i) {
      bufs.push_back(std::make_unique<zt::Guarded>(2 * static_cast<size_t>(runLength(s, i)), (off * (i + 1)) % 16));
      ptrs.push_back(bufs.back()->as<Zvp16s>());
    }
  }
  bool same(const BlockSet& o) const {
    for (size_t i = 0; i < bufs.size(); ++i)
      if (bufs[i]->snapshot() != o.bufs[i]->snapshot() || !bufs[i]->intact() || !o.bufs[i]->intact()) return false;
    return true;
  }
};

#if !defined(ZVP_NO_X86)
void decodeMatchesScalarTwin(const DecTable& vec) {
  zt::Rng rng(41);
  for (int d = 0; d < kDecModels; ++d)
    for (int s = 0; s < kSamplings; ++s) {
      if (!kDecFastScalar[d][s]) continue;
      ASSERT_NE(vec[d][s], nullptr);
      const Samp S = static_cast<Samp>(s);
      const int rowBytes = mcuWidth(S) * decBpp(static_cast<Dec>(d));
      for (size_t off : {0u, 1u, 2u, 6u, 8u})
        for (int extra : {0, 3, 50})
          for (int mode = 0; mode < 2; ++mode) {
            BlockSet b(S, runs(d, true), off);
            for (size_t i = 0; i < b.bufs.size(); ++i)
              for (size_t k = 0; k < b.bufs[i]->size() / 2; ++k) {
                const int16_t v = mode ? rng.s16() : static_cast<int16_t>(rng.uniform(-200, 200));
                std::memcpy(b.bufs[i]->data() + 2 * k, &v, 2);
              }
            const int step = rowBytes + extra;
            const size_t area = static_cast<size_t>(step) * (mcuHeight(S) - 1) + rowBytes;
            zt::Guarded d1(area, off), d2(area, off);
            kDecFastScalar[d][s](b.ptrs.data(), d1.data(), step);
            vec[d][s](b.ptrs.data(), d2.data(), step);
            ASSERT_EQ(d1.snapshot(), d2.snapshot()) << "model " << d << " samp " << s << " off " << off;
            ASSERT_TRUE(d1.intact() && d2.intact());
          }
    }
}

TEST(McuKernels, DecodeSSE41MatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  decodeMatchesScalarTwin(kDecFastSSE41);
}

TEST(McuKernels, DecodeAVX2MatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::AVX2) GTEST_SKIP();
  decodeMatchesScalarTwin(kDecFastAVX2);
}

void encodeMatchesScalarTwin(const EncTable& vec) {
  zt::Rng rng(42);
  for (int e = 0; e < kEncModels; ++e)
    for (int s = 0; s < kSamplings; ++s) {
      if (!kEncFastScalar[e][s]) continue;
      ASSERT_NE(vec[e][s], nullptr);
      const Samp S = static_cast<Samp>(s);
      const int rowBytes = mcuWidth(S) * encBpp(static_cast<Enc>(e));
      for (size_t off : {0u, 1u, 2u, 6u, 8u})
        for (int extra : {0, 5, 64})
          for (int mode = 0; mode < 2; ++mode) {
            const int step = rowBytes + extra;
            zt::Guarded src(static_cast<size_t>(step) * (mcuHeight(S) - 1) + rowBytes, off);
            if (mode == 0)
              rng.fill(src.data(), src.size());
            else
              for (size_t i = 0; i < src.size(); ++i) src.data()[i] = rng.uniform(0, 1) ? 255 : 0;
            BlockSet b1(S, runs(e, false), off), b2(S, runs(e, false), off);
            kEncFastScalar[e][s](src.data(), step, b1.ptrs.data());
            vec[e][s](src.data(), step, b2.ptrs.data());
            ASSERT_TRUE(b1.same(b2)) << "model " << e << " samp " << s << " off " << off;
          }
    }
}

TEST(McuKernels, EncodeSSE41MatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  encodeMatchesScalarTwin(kEncFastSSE41);
}

TEST(McuKernels, EncodeAVX2MatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::AVX2) GTEST_SKIP();
  encodeMatchesScalarTwin(kEncFastAVX2);
}
#endif

TEST(McuKernels, DispatchFollowsTheCap) {
  const zvp::Isa saved = zvp::setIsaCap(zvp::Isa::Scalar);
  EXPECT_EQ(decodeFastKernel(Dec::RGB, Samp::S411), kDecFastScalar[0][2]);
  EXPECT_EQ(encodeFastKernel(Enc::CMYK, Samp::S444), kEncFastScalar[2][0]);
#if !defined(ZVP_NO_X86)
  zvp::setIsaCap(zvp::Isa::SSE41);
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) {
    EXPECT_EQ(decodeFastKernel(Dec::RGB, Samp::S411), kDecFastSSE41[0][2]);
    EXPECT_EQ(encodeFastKernel(Enc::CMYK, Samp::S444), kEncFastSSE41[2][0]);
  }
  zvp::setIsaCap(zvp::Isa::AVX2);
  if (zvp::cpuIsa() >= zvp::Isa::AVX2) {
    EXPECT_EQ(decodeFastKernel(Dec::CMYK, Samp::S422), kDecFastAVX2[2][1]);
    EXPECT_EQ(encodeFastKernel(Enc::RGB, Samp::S411), kEncFastAVX2[0][2]);
  }
#endif
  zvp::setIsaCap(saved);
}

// The exported members under the scalar cap (scalar twins of the fast
// bodies) against the reference model, aligned blocks.
TEST(McuKernels, ScalarCapMatchesReference) {
  const zvp::Isa saved = zvp::setIsaCap(zvp::Isa::Scalar);
  zt::Rng rng(43);
  for (Samp s : {Samp::S444, Samp::S422, Samp::S411}) {
    const auto rs = static_cast<ref::mcu::Samp>(static_cast<int>(s));
    ref::mcu::Blocks blk(rs);
    for (auto* v : {&blk.y, &blk.cb, &blk.cr, &blk.k})
      for (int16_t& x : *v) x = rng.s16();
    BlockSet b(s, 3, 0);
    std::memcpy(b.ptrs[0], blk.y.data(), 2 * blk.y.size());
    std::memcpy(b.ptrs[1], blk.cb.data(), 128);
    std::memcpy(b.ptrs[2], blk.cr.data(), 128);
    const int step = mcuWidth(s) * 3;
    std::vector<uint8_t> got(static_cast<size_t>(step) * mcuHeight(s)), want(got.size());
    const Zvp16s* const p[3] = {b.ptrs[0], b.ptrs[1], b.ptrs[2]};
    if (s == Samp::S444) zvpiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(p, got.data(), step);
    if (s == Samp::S422) zvpiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(p, got.data(), step);
    if (s == Samp::S411) zvpiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(p, got.data(), step);
    ref::mcu::toRGB(rs, true, false, blk, want.data(), step);
    EXPECT_EQ(got, want);

    std::vector<uint8_t> px(static_cast<size_t>(step) * mcuHeight(s));
    rng.fill(px.data(), px.size());
    if (s == Samp::S444) zvpiRGBToYCbCr444LS_MCU_8u16s_C3P3R(px.data(), step, b.ptrs.data());
    if (s == Samp::S422) zvpiRGBToYCbCr422LS_MCU_8u16s_C3P3R(px.data(), step, b.ptrs.data());
    if (s == Samp::S411) zvpiRGBToYCbCr411LS_MCU_8u16s_C3P3R(px.data(), step, b.ptrs.data());
    ref::mcu::Blocks out(rs);
    ref::mcu::fromRGB(rs, true, false, px.data(), step, out);
    EXPECT_EQ(0, std::memcmp(b.ptrs[0], out.y.data(), 2 * out.y.size()));
    EXPECT_EQ(0, std::memcmp(b.ptrs[1], out.cb.data(), 128));
    EXPECT_EQ(0, std::memcmp(b.ptrs[2], out.cr.data(), 128));
  }
  zvp::setIsaCap(saved);
}

}  // namespace
