// Level-shift kernels: every vector kernel against its scalar twin, and the
// 8x8 block forms against the reference.
#include <gtest/gtest.h>

#include "core/cpu.h"
#include "core/pjls.h"
#include "ref/levelshift_ref.h"
#include "support/testutil.h"

namespace {

using namespace zvp::ls;

struct Kernels {
  const char* name;
  Sub128RowFn sub;
  Add128RowFn add;
  zvp::Isa needs;
};

std::vector<Kernels> kernels() {
  std::vector<Kernels> k = {{"scalar", sub128RowScalar, add128RowScalar, zvp::Isa::Scalar}};
#if !defined(ZVP_NO_X86)
  k.push_back({"sse41", sub128RowSSE41, add128RowSSE41, zvp::Isa::SSE41});
  k.push_back({"avx2", sub128RowAVX2, add128RowAVX2, zvp::Isa::AVX2});
#endif
  return k;
}

TEST(LevelShiftKernels, RowsMatchReferenceAtEveryLengthAndAlignment) {
  zt::Rng rng(11);
  for (const Kernels& k : kernels()) {
    if (zvp::cpuIsa() < k.needs) continue;
    for (int len = 0; len <= 140; ++len) {
      for (size_t off16 = 0; off16 < 18; ++off16) {
        const size_t off8 = (off16 * 5) % 16;
        zt::Guarded s8(static_cast<size_t>(len), off8), d16(2 * static_cast<size_t>(len), off16);
        rng.fill(s8.data(), s8.size());
        k.sub(s8.data(), d16.as<Zvp16s>(), len);
        for (int i = 0; i < len; ++i) {
          int16_t v;
          std::memcpy(&v, d16.data() + 2 * i, 2);
          ASSERT_EQ(v, ref::sub128(s8.data()[i])) << k.name << " len " << len << " off " << off16;
        }
        ASSERT_TRUE(d16.intact());

        zt::Guarded s16(2 * static_cast<size_t>(len), off16), d8(static_cast<size_t>(len), off8);
        rng.fill(s16.data(), s16.size());
        k.add(s16.as<Zvp16s>(), d8.data(), len);
        for (int i = 0; i < len; ++i) {
          int16_t v;
          std::memcpy(&v, s16.data() + 2 * i, 2);
          ASSERT_EQ(d8.data()[i], ref::add128(v)) << k.name << " len " << len << " off " << off16;
        }
        ASSERT_TRUE(d8.intact());
      }
    }
  }
}

TEST(LevelShiftKernels, DispatchFollowsTheCap) {
  const zvp::Isa saved = zvp::setIsaCap(zvp::Isa::Scalar);
  EXPECT_EQ(sub128Row(), &sub128RowScalar);
  EXPECT_EQ(add128Row(), &add128RowScalar);
  EXPECT_EQ(sub128Block(), &sub128BlockScalar);
  zvp::setIsaCap(saved);
}

TEST(LevelShiftKernels, BlocksMatchReference) {
  zt::Rng rng(12);
  for (zvp::Isa cap : {zvp::Isa::Scalar, zvp::Isa::SSE41, zvp::Isa::AVX512}) {
    const zvp::Isa saved = zvp::setIsaCap(cap);
    for (int step : {8, 9, 13, 64}) {
      zt::Guarded src(static_cast<size_t>(step) * 7 + 8, 1), blk(128, 2);
      rng.fill(src.data(), src.size());
      ownpj_Sub128_8x8_8u16s(src.data(), step, blk.as<Zvp16s>());
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
          int16_t v;
          std::memcpy(&v, blk.data() + 2 * (8 * y + x), 2);
          ASSERT_EQ(v, ref::sub128(src.data()[y * step + x]));
        }
      ASSERT_TRUE(blk.intact());
      zt::Guarded in(128, 6), out(static_cast<size_t>(step) * 7 + 8, 3);
      rng.fill(in.data(), in.size());
      std::vector<uint8_t> want = out.snapshot();
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
          int16_t v;
          std::memcpy(&v, in.data() + 2 * (8 * y + x), 2);
          want[static_cast<size_t>(y) * step + x] = ref::add128(v);
        }
      ownpj_Add128_8x8_16s8u(in.as<Zvp16s>(), out.data(), step);
      ASSERT_EQ(out.snapshot(), want);
      ASSERT_TRUE(out.intact());
    }
    zvp::setIsaCap(saved);
  }
}

}  // namespace
