// The photo core transform through the exported interface: every member
// against the reference model, the round trips, the edge cases and the
// argument checks.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "ref/hdtiff_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

using Fixed = ZvpStatus (*)(Zvp32s*, int);
using Generic = ZvpStatus (*)(Zvp32s*, int, ZvpiSize);

struct FixedMember {
  const char* name;
  Fixed fn;
  int w, h;
  bool forward;
};

const FixedMember kFixed[] = {
    {"Fwd16x16", zvpiPCTFwd16x16_HDP_32s_C1IR, 16, 16, true},
    {"Fwd8x16", zvpiPCTFwd8x16_HDP_32s_C1IR, 8, 16, true},
    {"Fwd8x8", zvpiPCTFwd8x8_HDP_32s_C1IR, 8, 8, true},
    {"Inv16x16", zvpiPCTInv16x16_HDP_32s_C1IR, 16, 16, false},
    {"Inv8x16", zvpiPCTInv8x16_HDP_32s_C1IR, 8, 16, false},
    {"Inv8x8", zvpiPCTInv8x8_HDP_32s_C1IR, 8, 8, false},
};

// Random 32-bit values of a chosen kind: full range, small, or near the limits.
int32_t value(zt::Rng& rng, int kind) {
  switch (kind) {
    case 0: return static_cast<int32_t>(rng.u32());
    case 1: return rng.uniform(-4096, 4096);
    case 2: return rng.uniform(-(1 << 24), 1 << 24);
    default: {
      const int32_t d = rng.uniform(0, 64);
      return rng.uniform(0, 1) ? INT32_MAX - d : INT32_MIN + d;
    }
  }
}

void fillRegion(zt::Guarded& g, int step, int w, int h, zt::Rng& rng, int kind) {
  rng.fill(g.data(), g.size());  // the bytes between rows too
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const int32_t v = value(rng, kind);
      std::memcpy(g.data() + static_cast<size_t>(y) * step + 4 * x, &v, 4);
    }
}

size_t regionBytes(int step, int w, int h) { return static_cast<size_t>(step) * (h - 1) + 4 * static_cast<size_t>(w); }

TEST(PCT, FixedMembersMatchReference) {
  zt::Rng rng(701);
  for (const FixedMember& m : kFixed)
    for (int extra : {0, 4, 12, 100, 1024})
      for (size_t off : {0, 4, 8, 12, 2})
        for (int kind = 0; kind < 4; ++kind) {
          const int step = 4 * m.w + extra;
          zt::Guarded g(regionBytes(step, m.w, m.h), off), want(g.size(), off);
          fillRegion(g, step, m.w, m.h, rng, kind);
          std::memcpy(want.data(), g.data(), g.size());
          ref::pctRegion(want.data(), step, m.w, m.h, m.forward);
          ASSERT_EQ(m.fn(g.as<Zvp32s>(), step), zvpStatusOk);
          ASSERT_EQ(g.snapshot(), want.snapshot()) << m.name << " step " << step << " off " << off;
          ASSERT_TRUE(g.intact());
        }
}

TEST(PCT, GenericMembersMatchReference) {
  zt::Rng rng(702);
  const std::pair<int, int> sizes[] = {{4, 4}, {8, 4}, {4, 8}, {12, 20}, {16, 16}, {20, 4},
                                       {36, 12}, {4, 64}, {64, 64}, {132, 8}};
  for (bool fwd : {true, false})
    for (auto [w, h] : sizes)
      for (int extra : {0, 8, 36})
        for (size_t off : {0, 4, 6}) {
          const int step = 4 * w + extra;
          zt::Guarded g(regionBytes(step, w, h), off), want(g.size(), off);
          fillRegion(g, step, w, h, rng, static_cast<int>(off + extra) % 4);
          std::memcpy(want.data(), g.data(), g.size());
          ref::pctRegion(want.data(), step, w, h, fwd);
          Generic fn = fwd ? zvpiPCTFwd_HDP_32s_C1IR : zvpiPCTInv_HDP_32s_C1IR;
          ASSERT_EQ(fn(g.as<Zvp32s>(), step, {w, h}), zvpStatusOk);
          ASSERT_EQ(g.snapshot(), want.snapshot()) << fwd << " " << w << "x" << h << " step " << step;
          ASSERT_TRUE(g.intact());
        }
}

TEST(PCT, ZeroBlockStaysZero) {
  for (const FixedMember& m : kFixed) {
    std::vector<Zvp32s> buf(16 * 16, 0);
    ASSERT_EQ(m.fn(buf.data(), 64), zvpStatusOk);
    for (Zvp32s v : buf) ASSERT_EQ(v, 0) << m.name;
  }
  for (Generic fn : {zvpiPCTFwd_HDP_32s_C1IR, zvpiPCTInv_HDP_32s_C1IR}) {
    std::vector<Zvp32s> buf(32 * 12, 0);
    ASSERT_EQ(fn(buf.data(), 128, {32, 12}), zvpStatusOk);
    for (Zvp32s v : buf) ASSERT_EQ(v, 0);
  }
}

TEST(PCT, GenericOn4x4IsOneBlockStep) {
  zt::Rng rng(703);
  for (int kind = 0; kind < 4; ++kind)
    for (bool fwd : {true, false}) {
      int32_t blk[16], want[16];
      for (int32_t& v : blk) v = value(rng, kind);
      std::memcpy(want, blk, sizeof blk);
      if (fwd)
        ref::pctFwdBlock(want);
      else
        ref::pctInvBlock(want);
      ASSERT_EQ((fwd ? zvpiPCTFwd_HDP_32s_C1IR : zvpiPCTInv_HDP_32s_C1IR)(blk, 16, {4, 4}), zvpStatusOk);
      for (int i = 0; i < 16; ++i) ASSERT_EQ(blk[i], want[i]) << i;
    }
}

// Each single impulse, forward against the reference, and back to itself.
TEST(PCT, SingleImpulseRoundTrips) {
  for (int pos = 0; pos < 16; ++pos)
    for (int32_t amp : {1, -1, 8, 1000, -77777}) {
      int32_t blk[16] = {}, want[16] = {};
      blk[pos] = want[pos] = amp;
      ref::pctFwdBlock(want);
      ASSERT_EQ(zvpiPCTFwd_HDP_32s_C1IR(blk, 16, {4, 4}), zvpStatusOk);
      for (int i = 0; i < 16; ++i) ASSERT_EQ(blk[i], want[i]) << pos << " " << amp << " " << i;
      ASSERT_EQ(zvpiPCTInv_HDP_32s_C1IR(blk, 16, {4, 4}), zvpStatusOk);
      for (int i = 0; i < 16; ++i) ASSERT_EQ(blk[i], i == pos ? amp : 0) << pos << " " << amp << " " << i;
    }
}

TEST(PCT, RoundTripsBothWays) {
  zt::Rng rng(704);
  for (int kind = 0; kind < 4; ++kind)
    for (int rep = 0; rep < 50; ++rep) {
      std::vector<Zvp32s> orig(16 * 16), buf;
      for (Zvp32s& v : orig) v = value(rng, kind);
      // Fwd then Inv.
      buf = orig;
      ASSERT_EQ(zvpiPCTFwd16x16_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(zvpiPCTInv16x16_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(buf, orig) << "kind " << kind;
      // Inv then Fwd.
      ASSERT_EQ(zvpiPCTInv_HDP_32s_C1IR(buf.data(), 64, {16, 16}), zvpStatusOk);
      ASSERT_EQ(zvpiPCTFwd_HDP_32s_C1IR(buf.data(), 64, {16, 16}), zvpStatusOk);
      ASSERT_EQ(buf, orig) << "kind " << kind;
      // The smaller members on the same data.
      ASSERT_EQ(zvpiPCTFwd8x16_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(zvpiPCTInv8x16_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(zvpiPCTInv8x8_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(zvpiPCTFwd8x8_HDP_32s_C1IR(buf.data(), 64), zvpStatusOk);
      ASSERT_EQ(buf, orig) << "kind " << kind;
    }
}

TEST(PCT, ValuesNearTheLimitsWrap) {
  // All a0..d3 at INT32_MAX: the first butterfly adds d3 to a0, which wraps
  // to -2; the reference wraps after every operation.
  int32_t blk[16], want[16];
  for (int i = 0; i < 16; ++i) blk[i] = want[i] = INT32_MAX;
  ref::pctFwdBlock(want);
  ASSERT_EQ(zvpiPCTFwd_HDP_32s_C1IR(blk, 16, {4, 4}), zvpStatusOk);
  for (int i = 0; i < 16; ++i) ASSERT_EQ(blk[i], want[i]) << i;
  // a0 = d3 = INT32_MAX, the rest 0: bfly(a0, a3, d0, d3) gives p = a0 + d3 = -2 (wrapped).
  int32_t one[16] = {};
  one[0] = INT32_MAX;
  one[15] = INT32_MAX;
  int32_t w2[16];
  std::memcpy(w2, one, sizeof one);
  ref::pctFwdBlock(w2);
  ASSERT_EQ(zvpiPCTFwd_HDP_32s_C1IR(one, 16, {4, 4}), zvpStatusOk);
  for (int i = 0; i < 16; ++i) ASSERT_EQ(one[i], w2[i]) << i;
  ASSERT_EQ(zvpiPCTInv_HDP_32s_C1IR(one, 16, {4, 4}), zvpStatusOk);
  EXPECT_EQ(one[0], INT32_MAX);
  EXPECT_EQ(one[15], INT32_MAX);
}

TEST(PCT, LargeAndNegativeSteps) {
  zt::Rng rng(705);
  // A step much larger than the row.
  {
    const int step = 4 * 16 + 40000;
    zt::Guarded g(regionBytes(step, 16, 16), 0), want(g.size(), 0);
    fillRegion(g, step, 16, 16, rng, 0);
    std::memcpy(want.data(), g.data(), g.size());
    ref::pctRegion(want.data(), step, 16, 16, true);
    ASSERT_EQ(zvpiPCTFwd16x16_HDP_32s_C1IR(g.as<Zvp32s>(), step), zvpStatusOk);
    ASSERT_EQ(g.snapshot(), want.snapshot());
  }
  // A negative step is large when compared as unsigned: the region runs
  // upwards from the pointer.
  for (bool fwd : {true, false}) {
    const int step = 80;
    zt::Guarded g(regionBytes(step, 16, 16), 0), want(g.size(), 0);
    fillRegion(g, step, 16, 16, rng, 1);
    std::memcpy(want.data(), g.data(), g.size());
    ref::pctRegion(want.data() + 15 * step, -step, 16, 16, fwd);
    Zvp32s* last = reinterpret_cast<Zvp32s*>(g.data() + 15 * step);
    ASSERT_EQ((fwd ? zvpiPCTFwd16x16_HDP_32s_C1IR : zvpiPCTInv16x16_HDP_32s_C1IR)(last, -step), zvpStatusOk);
    ASSERT_EQ(g.snapshot(), want.snapshot());
    fillRegion(g, step, 16, 16, rng, 1);
    std::memcpy(want.data(), g.data(), g.size());
    ref::pctRegion(want.data() + 15 * step, -step, 12, 16, fwd);
    ASSERT_EQ((fwd ? zvpiPCTFwd_HDP_32s_C1IR : zvpiPCTInv_HDP_32s_C1IR)(last, -step, {12, 16}), zvpStatusOk);
    ASSERT_EQ(g.snapshot(), want.snapshot());
  }
}

TEST(PCT, FixedMemberChecks) {
  std::vector<Zvp32s> buf(16 * 16, 7);
  const std::vector<Zvp32s> orig = buf;
  for (const FixedMember& m : kFixed) {
    EXPECT_EQ(m.fn(nullptr, 4 * m.w), zvpStatusNullPointer) << m.name;
    EXPECT_EQ(m.fn(nullptr, 0), zvpStatusNullPointer) << m.name;
    EXPECT_EQ(m.fn(buf.data(), 4 * m.w - 1), zvpStatusBadStep) << m.name;
    EXPECT_EQ(m.fn(buf.data(), 0), zvpStatusBadStep) << m.name;
    EXPECT_EQ(m.fn(buf.data(), 1), zvpStatusBadStep) << m.name;
    EXPECT_EQ(buf, orig) << m.name;
  }
  // Exactly 4 bytes per column is enough.
  EXPECT_EQ(zvpiPCTFwd8x8_HDP_32s_C1IR(buf.data(), 32), zvpStatusOk);
  EXPECT_EQ(zvpiPCTInv8x8_HDP_32s_C1IR(buf.data(), 32), zvpStatusOk);
  EXPECT_EQ(buf, orig);
}

TEST(PCT, GenericMemberChecksInOrder) {
  std::vector<Zvp32s> buf(64 * 64, 3);
  const std::vector<Zvp32s> orig = buf;
  for (Generic fn : {zvpiPCTFwd_HDP_32s_C1IR, zvpiPCTInv_HDP_32s_C1IR}) {
    // Null first, whatever else is wrong.
    EXPECT_EQ(fn(nullptr, 0, {0, 0}), zvpStatusNullPointer);
    EXPECT_EQ(fn(nullptr, 64, {16, 16}), zvpStatusNullPointer);
    // Size below 1 before the step.
    EXPECT_EQ(fn(buf.data(), 0, {0, 4}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 0, {4, 0}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 64, {-4, 4}), zvpStatusBadSize);
    // The step before the multiple-of-4 rule.
    EXPECT_EQ(fn(buf.data(), 23, {6, 4}), zvpStatusBadStep);
    EXPECT_EQ(fn(buf.data(), 24, {6, 4}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 64, {6, 4}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 64, {8, 6}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 64, {8, 1}), zvpStatusBadSize);
    EXPECT_EQ(fn(buf.data(), 31, {8, 8}), zvpStatusBadStep);
    EXPECT_EQ(fn(buf.data(), 0, {8, 8}), zvpStatusBadStep);
    // A negative step is a large unsigned one, but four bytes per column
    // are counted without wrap: 2^30 columns need more than any step.
    EXPECT_EQ(fn(buf.data(), 64, {1 << 30, 4}), zvpStatusBadStep);
    EXPECT_EQ(fn(buf.data(), -1, {1 << 30, 4}), zvpStatusBadStep);
    EXPECT_EQ(fn(buf.data(), -1, {INT32_MAX, 4}), zvpStatusBadStep);
    EXPECT_EQ(buf, orig);
  }
}

}  // namespace
