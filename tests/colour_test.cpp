// Colour conversion through the shared object: every member against the
// column-by-column reference, the edge cases, the argument checks and the
// independence of the thread count.
#include <gtest/gtest.h>

#include "colour_cases.h"

namespace {

using cases::Member;
using cases::members;

TEST(Colour, EveryMemberMatchesReferenceColumnByColumn) { cases::checkAllMembers(); }

TEST(Colour, OneTwoAndEightThreadsGiveEqualBytes) {
  for (const Member& m : members()) {
    std::vector<std::vector<uint8_t>> first;
    for (int t : {1, 2, 8}) {
      zt::Threads threads(t);
      zt::Rng rng(77);
      const int w = 203, h = 61;
      const int wAlloc = m.pairs ? w + 1 : w;
      cases::Region src(m.src, wAlloc, h, 3, 1, rng), dst(m.dst, wAlloc, h, 2, 0, rng);
      const auto want = cases::expected(m, src, dst, w, h);
      std::vector<const uint8_t*> s(src.ptrs.begin(), src.ptrs.end());
      ASSERT_EQ(m.call(s.data(), src.step, dst.ptrs.data(), dst.step, {w, h}), zvpStatusOk);
      std::vector<uint8_t> all;
      for (auto& p : dst.planes) {
        const auto b = p->snapshot();
        all.insert(all.end(), b.begin(), b.end());
      }
      std::vector<uint8_t> wantAll;
      for (auto& p : want) wantAll.insert(wantAll.end(), p.begin(), p.end());
      ASSERT_EQ(all, wantAll) << m.name << " threads " << t;
      if (first.empty()) first.push_back(all);
      ASSERT_EQ(all, first[0]) << m.name << " threads " << t;
    }
  }
}

TEST(Colour, ThresholdRegionsOf8192And8193PixelsMatchReference) {
  for (const Member& m : members()) {
    for (int t : {1, 2, 8}) {
      zt::Threads threads(t);
      cases::checkAgainstRef(m, 64, 128, 0, 0, 0, 0, 5);  // 8192: one thread
      cases::checkAgainstRef(m, 8193, 1, 0, 0, 0, 0, 6);  // 8193, one row
      cases::checkAgainstRef(m, 1, 8193, 0, 0, 0, 0, 7);  // 8193 rows of one pixel
    }
  }
}

// A pixel whose set A result differs from its table result.
bool findSplitPixel(int& y, int& cb, int& cr) {
  for (y = 0; y < 256; y += 5)
    for (cb = 0; cb < 256; cb += 3)
      for (cr = 0; cr < 256; cr += 7) {
        const ref::RGB a = ref::setA(y, cb, cr), t = ref::decTail(y, cb, cr);
        if (a.r != t.r || a.g != t.g || a.b != t.b) return true;
      }
  return false;
}

ZvpStatus p3r(const std::vector<uint8_t>& y, const std::vector<uint8_t>& cb, const std::vector<uint8_t>& cr,
              std::vector<uint8_t>& r, std::vector<uint8_t>& g, std::vector<uint8_t>& b, int w) {
  const Zvp8u* s[3] = {y.data(), cb.data(), cr.data()};
  Zvp8u* const d[3] = {r.data(), g.data(), b.data()};
  return zvpiYCbCrToRGB_JPEG_8u_P3R(s, w, d, w, {w, 1});
}

TEST(ColourEdge, Width3IsAllTailWidth4HasNoTail) {
  int y, cb, cr;
  ASSERT_TRUE(findSplitPixel(y, cb, cr));
  const ref::RGB a = ref::setA(y, cb, cr), t = ref::decTail(y, cb, cr);
  for (int w : {3, 4}) {
    std::vector<uint8_t> Y(w, uint8_t(y)), CB(w, uint8_t(cb)), CR(w, uint8_t(cr)), R(w), G(w), B(w);
    ASSERT_EQ(p3r(Y, CB, CR, R, G, B, w), zvpStatusOk);
    const ref::RGB e = w == 3 ? t : a;
    for (int x = 0; x < w; ++x) {
      EXPECT_EQ(R[x], e.r) << w << " " << x;
      EXPECT_EQ(G[x], e.g) << w << " " << x;
      EXPECT_EQ(B[x], e.b) << w << " " << x;
    }
  }
}

TEST(ColourEdge, Width5SplitsAtColumn4AndGreyStaysGrey) {
  int y, cb, cr;
  ASSERT_TRUE(findSplitPixel(y, cb, cr));
  const ref::RGB a = ref::setA(y, cb, cr), t = ref::decTail(y, cb, cr);
  std::vector<uint8_t> Y(5, uint8_t(y)), CB(5, uint8_t(cb)), CR(5, uint8_t(cr)), R(5), G(5), B(5);
  ASSERT_EQ(p3r(Y, CB, CR, R, G, B, 5), zvpStatusOk);
  for (int x = 0; x < 4; ++x) EXPECT_TRUE(R[x] == a.r && G[x] == a.g && B[x] == a.b) << x;
  EXPECT_TRUE(R[4] == t.r && G[4] == t.g && B[4] == t.b);

  std::vector<uint8_t> grey(5, 128);
  ASSERT_EQ(p3r(grey, grey, grey, R, G, B, 5), zvpStatusOk);
  for (int x = 0; x < 5; ++x) EXPECT_TRUE(R[x] == 128 && G[x] == 128 && B[x] == 128) << x;
  // Every member with a grey pixel: decoders give 128 in every path.
  std::vector<uint8_t> rgb(15);
  const Zvp8u* s[3] = {grey.data(), grey.data(), grey.data()};
  ASSERT_EQ(zvpiYCbCrToRGB_JPEG_8u_P3C3R(s, 5, rgb.data(), 15, {5, 1}), zvpStatusOk);
  for (uint8_t v : rgb) EXPECT_EQ(v, 128);
}

TEST(ColourEdge, RgbToYCbCrWidth13UsesSet15ThenSet14) {
  // A pixel on which the two sets differ.
  int r = 0, g = 0, b = 0;
  auto find = [&] {
    for (r = 0; r < 256; ++r)
      for (g = 0; g < 256; g += 5)
        for (b = 0; b < 256; b += 7)
          if (ref::set15(r, g, b).y != ref::set14(r, g, b).y) return true;
    return false;
  };
  ASSERT_TRUE(find());
  const ref::YCC e15 = ref::set15(r, g, b), e14 = ref::set14(r, g, b);
  ASSERT_TRUE(e15.y != e14.y);
  std::vector<uint8_t> src(39), Y(13), CB(13), CR(13);
  for (int x = 0; x < 13; ++x) src[3 * x] = uint8_t(r), src[3 * x + 1] = uint8_t(g), src[3 * x + 2] = uint8_t(b);
  Zvp8u* const d[3] = {Y.data(), CB.data(), CR.data()};
  ASSERT_EQ(zvpiRGBToYCbCr_JPEG_8u_C3P3R(src.data(), 39, d, 13, {13, 1}), zvpStatusOk);
  for (int x = 0; x < 13; ++x) {
    const ref::YCC e = x < 8 ? e15 : e14;
    EXPECT_TRUE(Y[x] == e.y && CB[x] == e.cb && CR[x] == e.cr) << x;
  }
}

TEST(ColourEdge, FullWhiteBgr565EntersAs248_252_248) {
  const Zvp16u white[4] = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  uint8_t Y[4], CB[4], CR[4];
  Zvp8u* const d[3] = {Y, CB, CR};
  ASSERT_EQ(zvpiBGR565ToYCbCr_JPEG_16u8u_C3P3R(white, 8, d, 4, {4, 1}), zvpStatusOk);
  // Y = (4899*248 + 9617*252 + 1868*248 + 8192) >> 14 = 250 (not 255).
  const ref::YCC e = ref::set14(248, 252, 248);
  EXPECT_EQ(e.y, 250);
  for (int x = 0; x < 4; ++x) EXPECT_TRUE(Y[x] == e.y && CB[x] == e.cb && CR[x] == e.cr) << x;
  // Full white RGB555 enters as 248, 248, 248.
  const Zvp16u white555[1] = {0x7FFF};
  ASSERT_EQ(zvpiRGB555ToYCbCr_JPEG_16u8u_C3P3R(white555, 2, d, 1, {1, 1}), zvpStatusOk);
  EXPECT_EQ(Y[0], ref::set14(248, 248, 248).y);
}

TEST(ColourEdge, OnePixelRegionWithStepsOfOnePasses) {
  for (const Member& m : members()) {
    if (m.src.bpp != 1 || m.dst.bpp != 1 || m.pairs) continue;
    cases::checkAgainstRef(m, 1, 1, 0, 0, 0, 0, 3);
  }
  uint8_t a = 10, b = 20, c = 30, o0 = 0, o1 = 0, o2 = 0;
  const Zvp8u* s[3] = {&a, &b, &c};
  Zvp8u* const d[3] = {&o0, &o1, &o2};
  EXPECT_EQ(zvpiYCbCrToRGB_JPEG_8u_P3R(s, 1, d, 1, {1, 1}), zvpStatusOk);
  EXPECT_EQ(zvpiRGBToYCbCr_JPEG_8u_P3R(s, 1, d, 1, {1, 1}), zvpStatusOk);
}

TEST(ColourEdge, Odd422WidthWritesItsLastPairWhole) {
  // Width 9: pixels 0..7 by the 422 set, pixel 8 with pixel 9 as a pair.
  std::vector<uint8_t> src(20), dst(30, 0xEE);
  zt::Rng rng(9);
  rng.fill(src.data(), src.size());
  ASSERT_EQ(zvpiYCbCr422ToRGB_JPEG_8u_C2C3R(src.data(), 20, dst.data(), 30, {9, 1}), zvpStatusOk);
  std::vector<uint8_t> want(30);
  ref::row422(src.data(), want.data(), 9);
  EXPECT_EQ(dst, want);
}

// ---- argument checks ----

struct Bufs {
  std::vector<uint8_t> s[4], d[4];
  Bufs() {
    for (auto& v : s) v.assign(64, 7);
    for (auto& v : d) v.assign(64, 9);
  }
};

TEST(ColourArgs, StatusesInOrderAndNothingWrittenOnFailure) {
  for (const Member& m : members()) {
    Bufs b;
    const uint8_t* s[4] = {b.s[0].data(), b.s[1].data(), b.s[2].data(), b.s[3].data()};
    uint8_t* d[4] = {b.d[0].data(), b.d[1].data(), b.d[2].data(), b.d[3].data()};
    auto run = [&](int ss, int ds, ZvpiSize roi) { return m.call(s, ss, d, ds, roi); };
    auto untouched = [&] {
      for (auto& v : b.d)
        for (uint8_t x : v)
          if (x != 9) return false;
      return true;
    };
    const ZvpiSize ok{2, 2};
    // Each plane of a set, and the set pointer itself.
    for (int p = 0; p < m.src.planes; ++p) {
      const uint8_t* keep = s[p];
      s[p] = nullptr;
      EXPECT_EQ(run(0, 0, {0, 0}), zvpStatusNullPointer) << m.name << " src plane " << p;
      s[p] = keep;
    }
    for (int p = 0; p < m.dst.planes; ++p) {
      uint8_t* keep = d[p];
      d[p] = nullptr;
      EXPECT_EQ(run(0, 0, {0, 0}), zvpStatusNullPointer) << m.name << " dst plane " << p;
      d[p] = keep;
    }
    if (m.src.planes > 1) {
      EXPECT_EQ(m.call(nullptr, 8, d, 8, ok), zvpStatusNullPointer) << m.name;
    }
    if (m.dst.planes > 1) {
      EXPECT_EQ(m.call(s, 8, nullptr, 8, ok), zvpStatusNullPointer) << m.name;
    }
    // Steps before sizes; either step.
    EXPECT_EQ(run(0, 8, {0, 0}), zvpStatusBadStep) << m.name;
    EXPECT_EQ(run(8, 0, {0, 0}), zvpStatusBadStep) << m.name;
    EXPECT_EQ(run(-1, 8, ok), zvpStatusBadStep) << m.name;
    EXPECT_EQ(run(8, -5, ok), zvpStatusBadStep) << m.name;
    EXPECT_EQ(run(8, 8, {0, 2}), zvpStatusBadSize) << m.name;
    EXPECT_EQ(run(8, 8, {2, 0}), zvpStatusBadSize) << m.name;
    EXPECT_EQ(run(8, 8, {-3, 2}), zvpStatusBadSize) << m.name;
    EXPECT_TRUE(untouched()) << m.name;
  }
}

}  // namespace
