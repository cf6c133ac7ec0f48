// Chroma sampling through the shared object: region members against the
// reference (with valid samples kept beyond the row ends and rows beyond the
// region, as callers must), Row members with their own ends, edge cases,
// argument checks and thread independence.
#include <gtest/gtest.h>

#include <functional>

#include "ref/colour_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

enum Kind { DownH2V1, DownH2V2, UpH2V1, UpH2V2 };
const char* kNames[] = {"DownH2V1", "DownH2V2", "UpH2V1", "UpH2V2"};

ZvpStatus callRegion(Kind k, const Zvp8u* s, int ss, ZvpiSize sr, Zvp8u* d, int ds, ZvpiSize dr) {
  switch (k) {
    case DownH2V1: return zvpiSampleDownH2V1_JPEG_8u_C1R(s, ss, sr, d, ds, dr);
    case DownH2V2: return zvpiSampleDownH2V2_JPEG_8u_C1R(s, ss, sr, d, ds, dr);
    case UpH2V1: return zvpiSampleUpH2V1_JPEG_8u_C1R(s, ss, sr, d, ds, dr);
    default: return zvpiSampleUpH2V2_JPEG_8u_C1R(s, ss, sr, d, ds, dr);
  }
}

ZvpiSize srcSizeFor(Kind k, int w, int h) {
  switch (k) {
    case DownH2V1: return {2 * w, h};
    case DownH2V2: return {2 * w, 2 * h};
    case UpH2V1: return {(w + 1) / 2, h};
    default: return {(w + 1) / 2, (h + 1) / 2};
  }
}

// A source plane with one valid row above and below the region and one
// valid sample before and after each row; a guarded destination.
struct RegionRun {
  std::vector<uint8_t> got, want;
  bool intact = true;
};

RegionRun runRegion(Kind k, int w, int h, int extraS, int extraD, size_t offS, size_t offD, uint64_t seed) {
  zt::Rng rng(seed);
  const ZvpiSize sr = srcSizeFor(k, w, h);
  const int sStep = sr.width + 2 + extraS;
  zt::Guarded src(static_cast<size_t>(sStep) * (sr.height + 2), offS);
  rng.fill(src.data(), src.size());
  const uint8_t* s0 = src.data() + sStep + 1;  // the region's first sample
  const int dStep = w + extraD;
  zt::Guarded dst(static_cast<size_t>(dStep) * (h - 1) + w, offD);
  rng.fill(dst.data(), dst.size());
  RegionRun r;
  r.want = dst.snapshot();
  for (int y = 0; y < h; ++y) {
    uint8_t* d = r.want.data() + static_cast<ptrdiff_t>(y) * dStep;
    switch (k) {
      case DownH2V1: ref::downH2V1Row(s0 + static_cast<ptrdiff_t>(y) * sStep, d, w); break;
      case DownH2V2:
        ref::downH2V2Row(s0 + static_cast<ptrdiff_t>(2 * y) * sStep, s0 + static_cast<ptrdiff_t>(2 * y + 1) * sStep, d,
                         w);
        break;
      case UpH2V1: ref::upH2V1Row(s0 + static_cast<ptrdiff_t>(y) * sStep, d, w); break;
      default: {
        const int nearRow = y / 2, farRow = y % 2 ? nearRow + 1 : nearRow - 1;
        ref::upH2V2Row(s0 + static_cast<ptrdiff_t>(nearRow) * sStep, s0 + static_cast<ptrdiff_t>(farRow) * sStep, d, w);
      }
    }
  }
  EXPECT_EQ(callRegion(k, s0, sStep, sr, dst.data(), dStep, {w, h}), zvpStatusOk);
  r.got = dst.snapshot();
  r.intact = dst.intact();
  return r;
}

TEST(Sampling, RegionMembersMatchReference) {
  for (Kind k : {DownH2V1, DownH2V2, UpH2V1, UpH2V2}) {
    uint64_t seed = 1;
    for (int w : zt::interestingWidths()) {
      for (int h : {1, 2, 3}) {
        const RegionRun a = runRegion(k, w, h, 0, 0, 0, 0, seed++);
        ASSERT_EQ(a.got, a.want) << kNames[k] << " w " << w << " h " << h;
        ASSERT_TRUE(a.intact);
      }
      const RegionRun b = runRegion(k, w, 3, 3, 5, 1, 3, seed++);
      ASSERT_EQ(b.got, b.want) << kNames[k] << " odd w " << w;
      ASSERT_TRUE(b.intact);
    }
    const RegionRun big = runRegion(k, 8193, 2, 1, 1, 1, 1, seed++);
    ASSERT_EQ(big.got, big.want) << kNames[k];
  }
}

TEST(Sampling, RegionThreadsGiveEqualBytes) {
  for (Kind k : {DownH2V1, DownH2V2, UpH2V1, UpH2V2}) {
    std::vector<uint8_t> first;
    for (int t : {1, 2, 8}) {
      zt::Threads threads(t);
      for (ZvpiSize sz : {ZvpiSize{64, 128}, ZvpiSize{8193, 1}, ZvpiSize{131, 67}}) {
        const RegionRun r = runRegion(k, sz.width, sz.height, 3, 1, 1, 0, 42);
        ASSERT_EQ(r.got, r.want) << kNames[k] << " threads " << t;
        ASSERT_TRUE(r.intact);
      }
      const RegionRun r = runRegion(k, 203, 61, 1, 2, 0, 1, 43);
      if (first.empty()) first = r.got;
      ASSERT_EQ(r.got, first) << kNames[k] << " threads " << t;
    }
  }
}

TEST(Sampling, RowMembersMatchReference) {
  zt::Rng rng(5);
  for (int n = 1; n <= 300; ++n) {
    for (size_t off = 0; off < 3; ++off) {
      zt::Guarded s1(n, off), s2(n, off + 1);
      rng.fill(s1.data(), n), rng.fill(s2.data(), n);
      const int outDown = n / 2;
      zt::Guarded d(outDown, 2 * off + 1);
      std::vector<uint8_t> want(outDown);
      ASSERT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(s1.data(), n, d.data()), zvpStatusOk);
      ref::boxH2V1Row(s1.data(), want.data(), n);
      ASSERT_EQ(d.snapshot(), want) << "box h2v1 " << n;
      ASSERT_TRUE(d.intact()) << n;
      ASSERT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s1.data(), s2.data(), n, d.data()), zvpStatusOk);
      ref::boxH2V2Row(s1.data(), s2.data(), want.data(), n);
      ASSERT_EQ(d.snapshot(), want) << "box h2v2 " << n;
      ASSERT_TRUE(d.intact()) << n;
      if (n < 2) continue;
      zt::Guarded u(2 * static_cast<size_t>(n), off + 3);
      std::vector<uint8_t> wantUp(2 * n);
      ASSERT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s1.data(), n, u.data()), zvpStatusOk);
      ref::triH2V1Row(s1.data(), wantUp.data(), n);
      ASSERT_EQ(u.snapshot(), wantUp) << "tri h2v1 " << n;
      ASSERT_TRUE(u.intact()) << n;
      ASSERT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s1.data(), s2.data(), n, u.data()), zvpStatusOk);
      ref::triH2V2Row(s1.data(), s2.data(), wantUp.data(), n);
      ASSERT_EQ(u.snapshot(), wantUp) << "tri h2v2 " << n;
      ASSERT_TRUE(u.intact()) << n;
    }
  }
}

// ---- edge cases ----

TEST(SamplingEdge, FlatRowStaysFlatThroughAllEightMembers) {
  std::vector<uint8_t> plane(40 * 10, 200), out(64 * 8, 0);
  const uint8_t* s = plane.data() + 40 * 2 + 4;
  for (Kind k : {DownH2V1, DownH2V2, UpH2V1, UpH2V2}) {
    std::fill(out.begin(), out.end(), 0);
    ASSERT_EQ(callRegion(k, s, 40, srcSizeFor(k, 16, 4), out.data(), 16, {16, 4}), zvpStatusOk);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(out[i], 200) << kNames[k] << " " << i;
  }
  std::vector<uint8_t> row(64, 200), d(128, 0);
  ASSERT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(row.data(), 64, d.data()), zvpStatusOk);
  for (int i = 0; i < 32; ++i) EXPECT_EQ(d[i], 200);
  ASSERT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(row.data(), row.data(), 64, d.data()), zvpStatusOk);
  for (int i = 0; i < 32; ++i) EXPECT_EQ(d[i], 200);
  ASSERT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(row.data(), 64, d.data()), zvpStatusOk);
  for (int i = 0; i < 128; ++i) EXPECT_EQ(d[i], 200);
  ASSERT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(row.data(), row.data(), 64, d.data()), zvpStatusOk);
  for (int i = 0; i < 128; ++i) EXPECT_EQ(d[i], 200);
}

TEST(SamplingEdge, BoxRowBiasAlternates) {
  const uint8_t s[4] = {0, 1, 0, 1};
  uint8_t d[2] = {9, 9};
  ASSERT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(s, 4, d), zvpStatusOk);
  EXPECT_EQ(d[0], 0);  // (0 + 1 + 0) >> 1: down
  EXPECT_EQ(d[1], 1);  // (0 + 1 + 1) >> 1: up
  // H2V2 box: bias 1 then 2: sums of 2 give 0 then 1.
  const uint8_t t[4] = {1, 0, 1, 0};
  ASSERT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s, t, 4, d), zvpStatusOk);
  EXPECT_EQ(d[0], 0);
  EXPECT_EQ(d[1], 1);
}

TEST(SamplingEdge, DownH2V2BiasOfThree) {
  const uint8_t one[4] = {1, 0, 0, 0}, zero[4] = {0, 0, 0, 0};
  uint8_t d = 9;
  ASSERT_EQ(zvpiSampleDownH2V2_JPEG_8u_C1R(one, 2, {2, 2}, &d, 1, {1, 1}), zvpStatusOk);
  EXPECT_EQ(d, 1);
  ASSERT_EQ(zvpiSampleDownH2V2_JPEG_8u_C1R(zero, 2, {2, 2}, &d, 1, {1, 1}), zvpStatusOk);
  EXPECT_EQ(d, 0);
}

TEST(SamplingEdge, TriangleRowOfTwo) {
  const uint8_t s[2] = {10, 200};
  uint8_t d[4];
  ASSERT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s, 2, d), zvpStatusOk);
  EXPECT_EQ(d[0], 10);
  EXPECT_EQ(d[1], (3 * 10 + 200 + 2) >> 2);
  EXPECT_EQ(d[2], (3 * 200 + 10 + 1) >> 2);
  EXPECT_EQ(d[3], 200);
}

TEST(SamplingEdge, TriangleRowOfOnePassesTheCheckAndStaysInBounds) {
  // Outside the interface (n must be at least 2), but accepted: both outputs
  // come from the one sample, and nothing beyond it is read.
  zt::Guarded s(1), s2(1), d(2);
  s.data()[0] = 77, s2.data()[0] = 33;
  ASSERT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s.data(), 1, d.data()), zvpStatusOk);
  EXPECT_EQ(d.data()[0], 77);
  EXPECT_EQ(d.data()[1], 77);
  ASSERT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s.data(), s2.data(), 1, d.data()), zvpStatusOk);
  EXPECT_EQ(d.data()[0], (4 * (3 * 77 + 33) + 8) >> 4);
  EXPECT_EQ(d.data()[1], (4 * (3 * 77 + 33) + 7) >> 4);
  EXPECT_TRUE(d.intact());
}

TEST(SamplingEdge, UpH2V1WidthOneReadsTheSampleBefore) {
  const uint8_t s[3] = {100, 20, 250};  // s[-1] = 100, s[0] = 20, s[1] = 250
  uint8_t d[2] = {9, 9};
  ASSERT_EQ(zvpiSampleUpH2V1_JPEG_8u_C1R(s + 1, 3, {1, 1}, d, 1, {1, 1}), zvpStatusOk);
  EXPECT_EQ(d[0], (3 * 20 + 100 + 1) >> 2);
  EXPECT_EQ(d[1], 9);
}

TEST(SamplingEdge, OddSourceWidthOfBoxRowsLeavesLastSampleUnread) {
  zt::Guarded s(5), t(5), d(2);
  const uint8_t v[5] = {1, 3, 5, 7, 9};
  std::memcpy(s.data(), v, 5), std::memcpy(t.data(), v, 5);
  ASSERT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(s.data(), 5, d.data()), zvpStatusOk);
  EXPECT_EQ(d.data()[0], 2);
  EXPECT_EQ(d.data()[1], 6);
  ASSERT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s.data(), t.data(), 5, d.data()), zvpStatusOk);
  EXPECT_EQ(d.data()[0], (1 + 3 + 1 + 3 + 1) >> 2);
  EXPECT_EQ(d.data()[1], (5 + 7 + 5 + 7 + 2) >> 2);
  EXPECT_TRUE(d.intact());
}

// ---- argument checks ----

TEST(SamplingArgs, RegionOrderSourceThenDestination) {
  std::vector<uint8_t> s(64, 1), d(64, 9);
  const ZvpiSize ok{2, 2}, bad{0, 2};
  for (Kind k : {DownH2V1, DownH2V2, UpH2V1, UpH2V2}) {
    std::fill(d.begin(), d.end(), 9);
    auto c = [&](const uint8_t* ps, int ss, ZvpiSize sr, uint8_t* pd, int ds, ZvpiSize dr) {
      return callRegion(k, ps, ss, sr, pd, ds, dr);
    };
    EXPECT_EQ(c(nullptr, 0, bad, nullptr, 0, bad), zvpStatusNullPointer);
    EXPECT_EQ(c(s.data() + 9, 0, bad, nullptr, 0, bad), zvpStatusBadStep);
    EXPECT_EQ(c(s.data() + 9, 8, bad, nullptr, 0, bad), zvpStatusBadSize);
    EXPECT_EQ(c(s.data() + 9, 8, {2, 0}, nullptr, 0, bad), zvpStatusBadSize);
    EXPECT_EQ(c(s.data() + 9, 8, ok, nullptr, 0, bad), zvpStatusNullPointer);
    EXPECT_EQ(c(s.data() + 9, 8, ok, d.data(), 0, bad), zvpStatusBadStep);
    EXPECT_EQ(c(s.data() + 9, 8, ok, d.data(), -1, ok), zvpStatusBadStep);
    EXPECT_EQ(c(s.data() + 9, 8, ok, d.data(), 8, bad), zvpStatusBadSize);
    EXPECT_EQ(c(s.data() + 9, 8, ok, d.data(), 8, {2, -1}), zvpStatusBadSize);
    for (uint8_t v : d) EXPECT_EQ(v, 9);
    // Source size only needs to be positive; a mismatch is not found.
    EXPECT_EQ(c(s.data() + 9, 8, {1, 1}, d.data(), 8, {2, 2}), zvpStatusOk) << kNames[k];
  }
}

TEST(SamplingArgs, RowMembers) {
  uint8_t s[8] = {}, d[16];
  std::memset(d, 9, sizeof d);
  EXPECT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(nullptr, 0, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(s, 4, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(s, 0, d), zvpStatusBadSize);
  EXPECT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(nullptr, s, 4, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s, nullptr, 4, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s, s, 4, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(s, s, -2, d), zvpStatusBadSize);
  EXPECT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(nullptr, 0, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s, 4, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s, 0, d), zvpStatusBadSize);
  EXPECT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(nullptr, s, 4, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s, nullptr, 4, d), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s, s, 4, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(s, s, -1, d), zvpStatusBadSize);
  for (uint8_t v : d) EXPECT_EQ(v, 9);
}

}  // namespace
