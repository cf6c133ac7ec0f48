// The JPEG level shift through the exported interface.
#include <gtest/gtest.h>

#include <vector>

#include "ref/levelshift_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

struct Region {
  int w, h, srcStep, dstStep, srcOff, dstOff;
};

// Runs Sub128 on a random region and compares with the reference, guards included.
void checkSub128(const Region& r, zt::Rng& rng) {
  zt::Guarded src(static_cast<size_t>(r.srcStep) * (r.h - 1) + r.w, r.srcOff);
  zt::Guarded dst(static_cast<size_t>(r.dstStep) * (r.h - 1) + 2 * r.w, r.dstOff);
  zt::Guarded want(dst.size(), r.dstOff);
  rng.fill(src.data(), src.size());
  rng.fill(dst.data(), dst.size());
  std::memcpy(want.data(), dst.data(), dst.size());
  ref::sub128Region(src.data(), r.srcStep, want.data(), r.dstStep, r.w, r.h);
  ASSERT_EQ(zvpiSub128_JPEG_8u16s_C1R(src.data(), r.srcStep, dst.as<Zvp16s>(), r.dstStep, {r.w, r.h}), zvpStatusOk);
  ASSERT_EQ(dst.snapshot(), want.snapshot()) << "w=" << r.w << " h=" << r.h << " dstOff=" << r.dstOff;
  ASSERT_TRUE(dst.intact());
}

void checkAdd128(const Region& r, zt::Rng& rng) {
  zt::Guarded src(static_cast<size_t>(r.srcStep) * (r.h - 1) + 2 * r.w, r.srcOff);
  zt::Guarded dst(static_cast<size_t>(r.dstStep) * (r.h - 1) + r.w, r.dstOff);
  zt::Guarded want(dst.size(), r.dstOff);
  // Mix values in and out of range so that both clips are exercised.
  for (size_t i = 0; i + 1 < src.size(); i += 2) {
    int16_t v = (rng.uniform(0, 3) == 0) ? rng.s16() : static_cast<int16_t>(rng.uniform(-300, 300));
    std::memcpy(src.data() + i, &v, 2);
  }
  rng.fill(dst.data(), dst.size());
  std::memcpy(want.data(), dst.data(), dst.size());
  ref::add128Region(src.data(), r.srcStep, want.data(), r.dstStep, r.w, r.h);
  ASSERT_EQ(zvpiAdd128_JPEG_16s8u_C1R(src.as<Zvp16s>(), r.srcStep, dst.data(), r.dstStep, {r.w, r.h}), zvpStatusOk);
  ASSERT_EQ(dst.snapshot(), want.snapshot()) << "w=" << r.w << " h=" << r.h << " srcOff=" << r.srcOff;
  ASSERT_TRUE(dst.intact());
}

TEST(LevelShift, Add128ClipsWithoutWrap) {
  const Zvp16s src[8] = {32767, -32768, 127, -128, 0, 128, -129, 126};
  const Zvp8u want[8] = {255, 0, 255, 0, 128, 255, 0, 254};
  Zvp8u dst[8] = {};
  ASSERT_EQ(zvpiAdd128_JPEG_16s8u_C1R(src, 16, dst, 8, {8, 1}), zvpStatusOk);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(dst[i], want[i]) << i;
}

TEST(LevelShift, Sub128CoversFullRange) {
  Zvp8u src[256];
  for (int i = 0; i < 256; ++i) src[i] = static_cast<Zvp8u>(i);
  Zvp16s dst[256];
  ASSERT_EQ(zvpiSub128_JPEG_8u16s_C1R(src, 256, dst, 512, {256, 1}), zvpStatusOk);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(dst[i], i - 128);
  EXPECT_EQ(dst[0], -128);
  EXPECT_EQ(dst[255], 127);
}

TEST(LevelShift, ArgumentOrderSub128) {
  Zvp8u s[16] = {};
  Zvp16s d[16];
  for (auto& v : d) v = 0x1234;
  const ZvpiSize ok{4, 2}, bad{0, 2};
  // Each pointer is followed at once by its step, then the size.
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(nullptr, 0, nullptr, 0, bad), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 0, nullptr, 8, ok), zvpStatusBadStep);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, nullptr, 0, bad), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, d, 0, bad), zvpStatusBadStep);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, d, -5, ok), zvpStatusBadStep);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, d, 16, bad), zvpStatusBadSize);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, d, 16, {4, 0}), zvpStatusBadSize);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, 8, d, 16, {-1, 2}), zvpStatusBadSize);
  EXPECT_EQ(zvpiSub128_JPEG_8u16s_C1R(s, -1, d, 16, ok), zvpStatusBadStep);
  for (auto v : d) EXPECT_EQ(v, 0x1234);  // output untouched on failure
}

TEST(LevelShift, ArgumentOrderAdd128) {
  Zvp16s s[16] = {};
  Zvp8u d[16];
  for (auto& v : d) v = 0x5A;
  const ZvpiSize ok{4, 2}, bad{2, -3};
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(nullptr, 0, nullptr, 0, bad), zvpStatusNullPointer);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 0, nullptr, 0, bad), zvpStatusBadStep);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 16, nullptr, 0, bad), zvpStatusNullPointer);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 16, d, 0, bad), zvpStatusBadStep);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 16, d, 8, bad), zvpStatusBadSize);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 16, d, 8, {0, 0}), zvpStatusBadSize);
  EXPECT_EQ(zvpiAdd128_JPEG_16s8u_C1R(s, 16, d, 8, ok), zvpStatusOk);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(d[i], (i % 8) < 4 ? 128 : 0x5A) << i;
}

TEST(LevelShift, RandomRegionsAgainstReference) {
  zt::Rng rng(20261122);
  for (int w : zt::interestingWidths()) {
    for (int off : {0, 1, 2, 6, 14}) {
      const int h = 1 + (w % 3);
      const int extra = rng.uniform(0, 40);
      checkSub128({w, h, w + extra, 2 * w + extra + (off & 1), off, off}, rng);
      checkAdd128({w, h, 2 * w + extra + (off & 1), w + extra, off, off}, rng);
    }
  }
}

TEST(LevelShift, ThreadCountsGiveEqualBytes) {
  zt::Rng rng(7);
  const std::vector<Region> regions = {
      {128, 64, 131, 262, 0, 0},     // 8192 pixels: serial
      {8193, 1, 8200, 16400, 3, 2},  // 8193 pixels: may use the team
      {1, 10000, 3, 5, 1, 1},        // tiny rows, parallel all the same
      {333, 77, 400, 700, 5, 1},     // odd 16-bit side: element by element
      {1920, 9, 1920, 3840, 0, 0},
  };
  for (int threads : {1, 2, 8}) {
    zt::Threads t(threads);
    for (const Region& r : regions) {
      checkSub128(r, rng);
      checkAdd128({r.w, r.h, r.dstStep, r.srcStep, r.dstOff, r.srcOff}, rng);
    }
  }
}

}  // namespace
