// The fourteen block-transform members through the public interface, each
// against the reference model on realistic, sparse and extreme blocks, at
// aligned and unaligned addresses and with destination steps wider than 8;
// the worked edge cases; the argument checks; and the IEEE 1180-1990
// accuracy test of the 8-bit inverse.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "ref/blockpath_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

using Block = std::array<int16_t, 64>;
using Table = std::array<uint16_t, 64>;
namespace R = ref::bp;

int16_t get16(const uint8_t* p) { int16_t v; std::memcpy(&v, p, 2); return v; }
uint16_t getU16(const uint8_t* p) { uint16_t v; std::memcpy(&v, p, 2); return v; }

enum class Kind { Realistic, Sparse, Extreme };
const Kind kKinds[] = {Kind::Realistic, Kind::Sparse, Kind::Extreme};

std::array<uint8_t, 64> randomImage(zt::Rng& rng) {
  std::array<uint8_t, 64> img{};
  const int base = rng.uniform(0, 255), gx = rng.uniform(-20, 20), gy = rng.uniform(-20, 20);
  const int noise = rng.uniform(0, 60);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) img[8 * y + x] = R::satU8(base + gx * (x - 4) + gy * (y - 4) + rng.uniform(-noise, noise));
  return img;
}

// Coefficients (before dequantisation) of the three kinds.
Block coefficients(zt::Rng& rng, Kind kind) {
  Block b{};
  if (kind == Kind::Realistic) {
    const auto img = randomImage(rng);
    Block s{}, f{};
    for (int i = 0; i < 64; ++i) s[i] = static_cast<int16_t>(img[i] - 128);
    R::fwd(s.data(), f.data());
    const int step = rng.uniform(1, 16);
    for (int i = 0; i < 64; ++i) b[i] = static_cast<int16_t>(std::lround(f[i] / static_cast<double>(step + i / 8)));
  } else if (kind == Kind::Sparse) {
    b[0] = static_cast<int16_t>(rng.uniform(-1024, 1023));
    const int n = rng.uniform(0, 3);
    for (int k = 0; k < n; ++k) b[rng.uniform(1, 63)] = static_cast<int16_t>(rng.uniform(-300, 300));
  } else {
    const int16_t pick[] = {-32768, -32767, -32766, 32767, 32766, 32765, 0, -1, 1, 16384, -16384, 4096, -4096};
    for (int i = 0; i < 64; ++i) b[i] = rng.uniform(0, 3) == 0 ? rng.s16() : pick[rng.uniform(0, 12)];
  }
  return b;
}

// A table to go with a kind: the step that made a realistic block, unit
// steps for sparse ones, anything for extremes.
Table tableFor(zt::Rng& rng, Kind kind) {
  Table t{};
  for (int i = 0; i < 64; ++i)
    t[i] = static_cast<uint16_t>(kind == Kind::Realistic ? rng.uniform(1, 16 + i / 8)
                                 : kind == Kind::Sparse  ? rng.uniform(1, 4)
                                                         : rng.uniform(0, 65535));
  return t;
}

struct Placement {
  size_t srcOff, dstOff, tabOff;
  int step;  // destination (or source) step in elements beyond the block width
};
std::vector<Placement> placements() {
  return {{0, 0, 0, 0}, {2, 6, 2, 0}, {16, 32, 0, 3}, {6, 1, 4, 9}, {14, 10, 6, 24}};
}

zt::Guarded put(const void* p, size_t bytes, size_t off) {
  zt::Guarded g(bytes, off);
  std::memcpy(g.data(), p, bytes);
  return g;
}

// ============================================================================
// Forward members
// ============================================================================
TEST(DctFwd, LevelShifting8uMatchesReference) {
  zt::Rng rng(401);
  for (int n = 0; n < 400; ++n) {
    for (const Placement& pl : placements()) {
      const int srcStep = 8 + pl.step;
      std::vector<uint8_t> img(static_cast<size_t>(srcStep) * 8);
      if (n % 4 == 0) rng.fill(img.data(), img.size());
      else {
        const auto b = randomImage(rng);
        for (int y = 0; y < 8; ++y) std::memcpy(img.data() + y * srcStep, b.data() + 8 * y, 8);
      }
      Table t{};
      for (auto& v : t) v = static_cast<uint16_t>(n % 3 == 0 ? rng.uniform(0, 65535) : R::fwdEntry(rng.uniform(1, 255)));
      zt::Guarded s = put(img.data(), img.size(), pl.srcOff), d(128, pl.dstOff), tg = put(t.data(), 128, pl.tabOff);
      ASSERT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(s.data(), srcStep, d.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
      Block in{}, f{};
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) in[8 * y + x] = static_cast<int16_t>(img[y * srcStep + x] - 128);
      R::fwd(in.data(), f.data());
      for (int i = 0; i < 64; ++i) ASSERT_EQ(get16(d.data() + 2 * i), R::mulSfs(t[i], f[i], 15)) << n << " " << i;
      ASSERT_TRUE(d.intact());
    }
  }
}

TEST(DctFwd, SixteenBitOutOfPlaceAndInPlaceMatchReference) {
  zt::Rng rng(402);
  for (int n = 0; n < 600; ++n) {
    const Kind kind = kKinds[n % 3];
    Block in = coefficients(rng, kind);
    if (kind == Kind::Realistic) {
      const auto img = randomImage(rng);
      for (int i = 0; i < 64; ++i) in[i] = static_cast<int16_t>(img[i] - 128);
    }
    Table t{};
    for (auto& v : t) v = static_cast<uint16_t>(rng.uniform(0, 65535));
    Block f{};
    R::fwd(in.data(), f.data());
    const Placement pl = placements()[n % 5];
    zt::Guarded s = put(in.data(), 128, pl.srcOff), d(128, pl.dstOff), tg = put(t.data(), 128, pl.tabOff);
    ASSERT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1(s.as<Zvp16s>(), d.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1I(s.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) {
      ASSERT_EQ(get16(d.data() + 2 * i), R::mulSfs(t[i], f[i], 15)) << n << " " << i;
      ASSERT_EQ(get16(s.data() + 2 * i), R::mulSfs(t[i], f[i], 15)) << n << " " << i;
    }
    ASSERT_TRUE(d.intact());
    ASSERT_TRUE(s.intact());
  }
}

TEST(DctFwd, PreShiftsWrapOnLargeInput) {
  // A column of 32767 over -32768: the 3-bit pre-shift wraps; compared with
  // the model, which wraps by arithmetic modulo 2^16.
  Block in{};
  for (int x = 0; x < 8; ++x) {
    in[x] = 32767;
    in[56 + x] = -32768;
    in[8 + x] = 4096;
  }
  Table t{};
  t.fill(32768);
  Block d{}, f{};
  ASSERT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1(in.data(), d.data(), t.data()), zvpStatusOk);
  R::fwd(in.data(), f.data());
  for (int i = 0; i < 64; ++i) EXPECT_EQ(d[i], R::mulSfs(32768, f[i], 15));
}

TEST(DctFwd, Float12BitMatchesReference) {
  zt::Rng rng(403);
  for (int n = 0; n < 400; ++n) {
    const Placement pl = placements()[n % 5];
    const int srcStep = 2 * (8 + pl.step);
    std::vector<uint16_t> img(static_cast<size_t>(8 + pl.step) * 8);
    for (auto& v : img) v = static_cast<uint16_t>(n % 5 == 4 ? rng.uniform(0, 65535) : rng.uniform(0, 4095));
    std::array<float, 64> t{};
    for (auto& v : t) v = n % 7 == 6 ? 1e6f * static_cast<float>(rng.uniform(1, 1000)) : 1.0f / static_cast<float>(rng.uniform(1, 255));
    if (n == 13) t[5] = std::numeric_limits<float>::quiet_NaN();
    zt::Guarded s = put(img.data(), img.size() * 2, pl.srcOff), d(128, pl.dstOff), tg = put(t.data(), 256, pl.tabOff);
    ASSERT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(s.as<Zvp16u>(), srcStep, d.as<Zvp16s>(), tg.as<Zvp32f>()), zvpStatusOk);
    float in[64], f[64];
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 8; ++x) in[8 * y + x] = static_cast<float>(static_cast<int16_t>(img[y * (8 + pl.step) + x])) - 2048.0f;
    R::fwd32(in, f);
    for (int i = 0; i < 64; ++i) ASSERT_EQ(get16(d.data() + 2 * i), R::sat(R::toIntRound(f[i] * t[i]))) << n << " " << i;
    ASSERT_TRUE(d.intact());
  }
}

TEST(DctFwd, FloatRoundsTiesToEven) {
  // A flat block of 2048 + 1: only DC, 64 * 1 * 0.125 = 8 before the table.
  std::array<uint16_t, 64> img{};
  img.fill(2049);
  std::array<float, 64> t{};
  t.fill(1.0f);
  t[0] = 0.3125f;  // 8 * 0.3125 = 2.5 -> 2
  Block d{};
  ASSERT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(img.data(), 16, d.data(), t.data()), zvpStatusOk);
  EXPECT_EQ(d[0], 2);
  t[0] = 0.4375f;  // 3.5 -> 4
  ASSERT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(img.data(), 16, d.data(), t.data()), zvpStatusOk);
  EXPECT_EQ(d[0], 4);
  for (int i = 1; i < 64; ++i) EXPECT_EQ(d[i], 0);
}

// ============================================================================
// Inverse members
// ============================================================================
template <class Expect, class Call>
void inverseLS(uint64_t seed, int count, Expect expect, Call call, int outW) {
  zt::Rng rng(seed);
  for (int n = 0; n < count; ++n) {
    const Kind kind = kKinds[n % 3];
    const Block c = coefficients(rng, kind);
    const Table t = tableFor(rng, kind);
    const Placement pl = placements()[n % 5];
    const int dstStep = outW + pl.step;
    zt::Guarded s = put(c.data(), 128, pl.srcOff), tg = put(t.data(), 128, pl.tabOff);
    zt::Guarded d(static_cast<size_t>(dstStep) * (outW - 1) + outW, pl.dstOff);
    std::memset(d.data(), 0x5A, d.size());
    ASSERT_EQ(call(s.as<Zvp16s>(), d.data(), dstStep, tg.as<Zvp16u>()), zvpStatusOk);
    std::vector<uint8_t> e(static_cast<size_t>(outW) * outW);
    expect(c, t, e.data());
    for (int y = 0; y < outW; ++y)
      for (int x = 0; x < outW; ++x) ASSERT_EQ(d.data()[y * dstStep + x], e[outW * y + x]) << n << " " << y << "," << x;
    // The bytes between rows are the caller's.
    for (int y = 0; y + 1 < outW; ++y)
      for (int x = outW; x < dstStep; ++x) ASSERT_EQ(d.data()[y * dstStep + x], 0x5A);
    ASSERT_TRUE(d.intact());
    // The source is read only.
    ASSERT_EQ(std::memcmp(s.data(), c.data(), 128), 0);
  }
}

Block dequant(const Block& c, const Table& t) {
  Block q;
  for (int i = 0; i < 64; ++i) q[i] = R::quantInv(c[i], t[i]);
  return q;
}

TEST(DctInv, LevelShifting8uMatchesReference) {
  inverseLS(
      501, 900,
      [](const Block& c, const Table& t, uint8_t* e) {
        Block o;
        R::inv(dequant(c, t).data(), o.data());
        for (int i = 0; i < 64; ++i) e[i] = R::lsClip(o[i], 128, 0, 255);
      },
      zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R, 8);
}

TEST(DctInv, SixteenBitOutOfPlaceAndInPlaceMatchReference) {
  zt::Rng rng(502);
  for (int n = 0; n < 900; ++n) {
    const Kind kind = kKinds[n % 3];
    const Block c = coefficients(rng, kind);
    const Table t = tableFor(rng, kind);
    const Placement pl = placements()[n % 5];
    Block e;
    R::inv(dequant(c, t).data(), e.data());
    zt::Guarded s = put(c.data(), 128, pl.srcOff), d(128, pl.dstOff), tg = put(t.data(), 128, pl.tabOff);
    ASSERT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(s.as<Zvp16s>(), d.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1I(s.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) {
      ASSERT_EQ(get16(d.data() + 2 * i), e[i]) << n << " " << i;
      ASSERT_EQ(get16(s.data() + 2 * i), e[i]) << n << " " << i;
    }
    ASSERT_TRUE(d.intact());
    ASSERT_TRUE(s.intact());
  }
}

TEST(DctInv, ClipMemberMatchesReference) {
  zt::Rng rng(503);
  for (int n = 0; n < 900; ++n) {
    const Kind kind = kKinds[n % 3];
    const Block c = coefficients(rng, kind);
    const Table t = tableFor(rng, kind);
    const Block q = dequant(c, t);
    const int16_t level = n % 4 == 0 ? rng.s16() : static_cast<int16_t>(128);
    uint8_t lo = 0, hi = 255;
    if (n % 3 == 1) { lo = rng.byte(); hi = rng.byte(); }
    if (n % 3 == 2) { lo = 100; hi = 200; }
    const Placement pl = placements()[n % 5];
    const int dstStep = 8 + pl.step;
    zt::Guarded s = put(q.data(), 128, pl.srcOff), d(static_cast<size_t>(dstStep) * 7 + 8, pl.dstOff);
    ASSERT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(s.as<Zvp16s>(), d.data(), dstStep, level, lo, hi), zvpStatusOk);
    Block o;
    R::inv(q.data(), o.data());
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 8; ++x) ASSERT_EQ(d.data()[y * dstStep + x], R::lsClip(o[8 * y + x], level, lo, hi)) << n;
    ASSERT_TRUE(d.intact());
  }
}

TEST(DctInv, OneByOneMatchesReference) {
  inverseLS(
      504, 600,
      [](const Block& c, const Table& t, uint8_t* e) { std::memset(e, R::dcOnly(c[0], t[0]), 64); },
      zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, 8);
}

TEST(DctInv, ReducedMembersMatchTheFullInverseOfTheMaskedBlock) {
  for (int n : {2, 4}) {
    inverseLS(
        505 + n, 900,
        [n](const Block& c, const Table& t, uint8_t* e) {
          Block o;
          R::invCorner(dequant(c, t).data(), o.data(), n);
          for (int i = 0; i < 64; ++i) e[i] = R::satU8(R::sadd(o[i], 128));
        },
        n == 2 ? zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R : zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, 8);
  }
}

TEST(DctInv, DownscalingMembersMatchReference) {
  inverseLS(
      510, 900,
      [](const Block& c, const Table& t, uint8_t* e) {
        int16_t o[16];
        R::invTo4x4(dequant(c, t).data(), o);
        for (int i = 0; i < 16; ++i) e[i] = R::satU8(R::sadd(o[i], 128));
      },
      zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, 4);
  inverseLS(
      511, 900,
      [](const Block& c, const Table& t, uint8_t* e) {
        int16_t o[4];
        R::invTo2x2(dequant(c, t).data(), o);
        for (int i = 0; i < 4; ++i) e[i] = R::satU8(R::sadd(o[i], 128));
      },
      zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, 2);
}

TEST(DctInv, Float12BitMatchesReference) {
  zt::Rng rng(512);
  for (int n = 0; n < 600; ++n) {
    const Kind kind = kKinds[n % 3];
    const Block c = coefficients(rng, kind);
    std::array<float, 64> t{};
    for (auto& v : t) v = kind == Kind::Extreme ? static_cast<float>(rng.uniform(-100000, 100000)) : static_cast<float>(rng.uniform(1, 16)) * 0.5f;
    const Placement pl = placements()[n % 5];
    const int dstStep = 2 * (8 + pl.step);
    zt::Guarded s = put(c.data(), 128, pl.srcOff), tg = put(t.data(), 256, pl.tabOff);
    zt::Guarded d(static_cast<size_t>(dstStep) * 7 + 16, pl.dstOff);
    ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(s.as<Zvp16s>(), d.as<Zvp16u>(), dstStep, tg.as<Zvp32f>()), zvpStatusOk);
    float in[64], o[64];
    for (int i = 0; i < 64; ++i) in[i] = static_cast<float>(c[i]) * t[i];
    R::inv32(in, o);
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 8; ++x) {
        int v = R::sat(R::toIntTrunc(o[8 * y + x] + 2048.0f));
        v = v < 0 ? 0 : (v > 4095 ? 4095 : v);
        ASSERT_EQ(getU16(d.data() + y * dstStep + 2 * x), v) << n;
      }
    ASSERT_TRUE(d.intact());
  }
}

// ============================================================================
// Edge cases of the arithmetic
// ============================================================================
TEST(DctEdge, AllZeroAndDcOfEight) {
  Block z{}, o{};
  Table one{};
  one.fill(1);
  ASSERT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(z.data(), o.data(), one.data()), zvpStatusOk);
  for (int16_t v : o) EXPECT_EQ(v, 0);
  z[0] = 8;
  ASSERT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1I(z.data(), one.data()), zvpStatusOk);
  for (int16_t v : z) EXPECT_EQ(v, 1);
}

TEST(DctEdge, DcOnlyFloorDivision) {
  Table one{};
  one.fill(1);
  const int16_t dc[] = {-1024, 1016, 0, -1, -8, -9, 7, 8, 2000, -2000};
  const int want[] = {0, 255, 128, 127, 127, 126, 128, 129, 255, 0};
  for (int k = 0; k < 10; ++k) {
    Block b{};
    b[0] = dc[k];
    b[9] = 500;  // ignored
    std::array<uint8_t, 8 * 11> out{};
    ASSERT_EQ(zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(b.data(), out.data(), 11, one.data()), zvpStatusOk);
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 8; ++x) EXPECT_EQ(out[y * 11 + x], want[k]) << dc[k];
  }
  // The product wraps into bits 3..18: 4096 * 64 = 2^18 gives -32768 + 128 wrapping.
  Block b{};
  b[0] = 4096;
  Table t{};
  t[0] = 64;
  std::array<uint8_t, 64> out{};
  ASSERT_EQ(zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(b.data(), out.data(), 8, t.data()), zvpStatusOk);
  EXPECT_EQ(out[0], 0);
}

TEST(DctEdge, DcOnlyCanDifferFromTheGeneralMemberByOne) {
  Table one{};
  one.fill(1);
  int differ = 0;
  for (int dc = -1024; dc <= 1023; ++dc) {
    Block b{};
    b[0] = static_cast<int16_t>(dc);
    std::array<uint8_t, 64> a{}, f{};
    ASSERT_EQ(zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(b.data(), a.data(), 8, one.data()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(b.data(), f.data(), 8, one.data()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) ASSERT_LE(std::abs(a[i] - f[i]), 1) << dc;
    differ += a[0] != f[0];
  }
  EXPECT_GT(differ, 0);
}

TEST(DctEdge, ReducedMembersIgnoreGarbageOutsideTheirCorner) {
  zt::Rng rng(520);
  Table t{};
  for (auto& v : t) v = static_cast<uint16_t>(rng.uniform(1, 10));
  for (int n : {2, 4}) {
    auto call = n == 2 ? zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R : zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R;
    for (int k = 0; k < 50; ++k) {
      Block clean{}, dirty;
      rng.fill(dirty.data(), 64);
      for (int r = 0; r < n; ++r)
        for (int c = 0; c < n; ++c) clean[8 * r + c] = dirty[8 * r + c] = static_cast<int16_t>(rng.uniform(-200, 200));
      std::array<uint8_t, 64> a{}, b{}, full{};
      ASSERT_EQ(call(clean.data(), a.data(), 8, t.data()), zvpStatusOk);
      ASSERT_EQ(call(dirty.data(), b.data(), 8, t.data()), zvpStatusOk);
      EXPECT_EQ(a, b);
      // ... and with zeros there they agree with the general member.
      ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(clean.data(), full.data(), 8, t.data()), zvpStatusOk);
      EXPECT_EQ(a, full);
    }
  }
}

TEST(DctEdge, DownscalingMembersIgnoreUnreadRows) {
  zt::Rng rng(521);
  Table t{};
  for (auto& v : t) v = static_cast<uint16_t>(rng.uniform(1, 10));
  for (int k = 0; k < 50; ++k) {
    Block a;
    for (auto& v : a) v = static_cast<int16_t>(rng.uniform(-300, 300));
    Block b = a;
    for (int x = 0; x < 8; ++x) b[32 + x] = rng.s16();  // row 4
    std::array<uint8_t, 16> o1{}, o2{};
    ASSERT_EQ(zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(a.data(), o1.data(), 4, t.data()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(b.data(), o2.data(), 4, t.data()), zvpStatusOk);
    EXPECT_EQ(o1, o2);
    for (int r : {2, 6})
      for (int x = 0; x < 8; ++x) b[8 * r + x] = rng.s16();
    std::array<uint8_t, 4> p1{}, p2{};
    ASSERT_EQ(zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(a.data(), p1.data(), 2, t.data()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(b.data(), p2.data(), 2, t.data()), zvpStatusOk);
    EXPECT_EQ(p1, p2);
  }
}

TEST(DctEdge, DownscalingOfAFlatBlockIsItsMean) {
  Table one{};
  one.fill(1);
  for (int dc : {-1000, -80, 0, 80, 1000}) {
    Block b{};
    b[0] = static_cast<int16_t>(dc);
    std::array<uint8_t, 16> o4{};
    std::array<uint8_t, 4> o2{};
    ASSERT_EQ(zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(b.data(), o4.data(), 4, one.data()), zvpStatusOk);
    ASSERT_EQ(zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(b.data(), o2.data(), 2, one.data()), zvpStatusOk);
    const int mean = R::satU8(static_cast<int>(std::lround(dc / 8.0)) + 128);
    for (uint8_t v : o4) EXPECT_NEAR(v, mean, 1) << dc;
    for (uint8_t v : o2) EXPECT_NEAR(v, mean, 1) << dc;
  }
}

TEST(DctEdge, ClipLimitsAfterSaturation) {
  Block b{};
  zt::Rng rng(522);
  for (auto& v : b) v = static_cast<int16_t>(rng.uniform(-3000, 3000));
  std::array<uint8_t, 64> o{};
  ASSERT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(b.data(), o.data(), 8, 128, 100, 200), zvpStatusOk);
  for (uint8_t v : o) {
    EXPECT_GE(v, 100);
    EXPECT_LE(v, 200);
  }
  // The level add wraps: 32767 + 1 is -32768, saturated to 0.
  Block big{};
  big[0] = 32767 * 0 + 8 * 4000;  // a DC that gives 4000 everywhere
  ASSERT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(big.data(), o.data(), 8, 32767, 0, 255), zvpStatusOk);
  for (uint8_t v : o) EXPECT_EQ(v, 0);
  // Limits the wrong way round: the upper limit is applied last.
  ASSERT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(b.data(), o.data(), 8, 128, 200, 100), zvpStatusOk);
  for (uint8_t v : o) EXPECT_EQ(v, 100);
}

TEST(DctEdge, Float12BitLimitsTo4095AndTruncatesTowardZero) {
  std::array<float, 64> t{};
  t.fill(1.0f);
  Block b{};
  b[0] = 32000;  // far above 4095
  std::array<uint16_t, 64> o{};
  ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(b.data(), o.data(), 16, t.data()), zvpStatusOk);
  for (uint16_t v : o) EXPECT_EQ(v, 4095);
  // A DC giving -2048.5 per sample: -0.5 after the shift truncates to 0.
  t[0] = -2048.5f / 0.125f / 1.0f;
  b[0] = 1;
  ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(b.data(), o.data(), 16, t.data()), zvpStatusOk);
  for (uint16_t v : o) EXPECT_EQ(v, 0);
  // A DC giving 2.9 above the shift: truncation gives 2050.
  t[0] = 2.9f / 0.125f;
  ASSERT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(b.data(), o.data(), 16, t.data()), zvpStatusOk);
  float in[64] = {t[0]}, e[64];
  R::inv32(in, e);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(o[i], static_cast<int>(e[i] + 2048.0f));
  EXPECT_EQ(o[0], 2050);
}

// ============================================================================
// Argument checks: order, statuses, output untouched
// ============================================================================
TEST(DctArgs, ForwardLevelShiftingMembers) {
  std::array<uint8_t, 64> s8{};
  std::array<uint16_t, 64> s16{};
  Block d{};
  d.fill(77);
  Table t{};
  std::array<float, 64> tf{};
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(nullptr, 0, nullptr, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(s8.data(), 0, nullptr, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(s8.data(), 0, d.data(), nullptr), zvpStatusBadStep);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(s8.data(), -8, d.data(), t.data()), zvpStatusBadStep);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(s8.data(), 8, d.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(nullptr, 0, nullptr, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(s16.data(), 0, nullptr, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(s16.data(), 0, d.data(), nullptr), zvpStatusBadStep);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(s16.data(), 16, d.data(), nullptr), zvpStatusNullPointer);
  for (int16_t v : d) EXPECT_EQ(v, 77);
  EXPECT_EQ(zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(s16.data(), 1, d.data(), tf.data()), zvpStatusOk);  // a step of 1 is legal
}

TEST(DctArgs, BlockMembers) {
  Block s{}, d{};
  d.fill(77);
  Table t{};
  EXPECT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1(nullptr, d.data(), t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1(s.data(), nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1(s.data(), d.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1I(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantFwd8x8_JPEG_16s_C1I(d.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(nullptr, d.data(), t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(s.data(), nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(s.data(), d.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1I(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1I(d.data(), nullptr), zvpStatusNullPointer);
  for (int16_t v : d) EXPECT_EQ(v, 77);
}

TEST(DctArgs, InverseLevelShiftingMembers) {
  using Fn = ZvpStatus (*)(const Zvp16s*, Zvp8u*, int, const Zvp16u*);
  const Fn fns[] = {zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R,
                    zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R,
                    zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R};
  Block s{};
  Table t{};
  std::array<uint8_t, 64> d{};
  d.fill(77);
  for (Fn f : fns) {
    EXPECT_EQ(f(nullptr, nullptr, 0, nullptr), zvpStatusNullPointer);
    EXPECT_EQ(f(s.data(), nullptr, 0, nullptr), zvpStatusNullPointer);
    EXPECT_EQ(f(s.data(), d.data(), 0, nullptr), zvpStatusBadStep);
    EXPECT_EQ(f(s.data(), d.data(), -1, t.data()), zvpStatusBadStep);
    EXPECT_EQ(f(s.data(), d.data(), 8, nullptr), zvpStatusNullPointer);
  }
  for (uint8_t v : d) EXPECT_EQ(v, 77);
  std::array<uint16_t, 64> d16{};
  d16.fill(77);
  std::array<float, 64> tf{};
  EXPECT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(nullptr, nullptr, 0, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(s.data(), nullptr, 0, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(s.data(), d16.data(), 0, nullptr), zvpStatusBadStep);
  EXPECT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(s.data(), d16.data(), 16, nullptr), zvpStatusNullPointer);
  for (uint16_t v : d16) EXPECT_EQ(v, 77);
  (void)tf;
  EXPECT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(nullptr, nullptr, 0, 0, 0, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(s.data(), nullptr, 0, 0, 0, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDCT8x8InvLSClip_16s8u_C1R(s.data(), d.data(), 0, 0, 0, 0), zvpStatusBadStep);
  for (uint8_t v : d) EXPECT_EQ(v, 77);
}

TEST(DctArgs, ZeroTableEntriesAreOrdinary) {
  Block s{};
  s[0] = 100;
  Table t{};
  std::array<uint8_t, 64> d{};
  EXPECT_EQ(zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(s.data(), d.data(), 8, t.data()), zvpStatusOk);
  for (uint8_t v : d) EXPECT_EQ(v, 128);
}

// ============================================================================
// IEEE 1180-1990 accuracy of the 8-bit inverse
// ============================================================================
struct Ieee1180 {
  long randx = 1;
  long rnd(long L, long H) {  // the generator of the standard
    randx = (randx * 1103515245 + 12345) & 0xFFFFFFFFL;
    const long i = randx & 0x7FFFFFFEL;
    double x = static_cast<double>(i) / static_cast<double>(0x7FFFFFFF);
    x *= (L + H + 1);
    return static_cast<long>(x) - L;
  }
};

// Separable double-precision DCT of the standard: C[u][x] = a(u) cos((2x+1)u pi/16).
struct Basis {
  double c[8][8];
  Basis() {
    const double pi = std::acos(-1.0);
    for (int u = 0; u < 8; ++u)
      for (int x = 0; x < 8; ++x) c[u][x] = (u ? 0.5 : std::sqrt(0.125)) * std::cos((2 * x + 1) * u * pi / 16);
  }
};
const Basis& basis() { static Basis b; return b; }

// out = A in A^T in double precision, with A the basis (forward) or its
// transpose (inverse); the sums run in the same order for both.
void separableDouble(const double in[64], double out[64], bool inverse) {
  const auto& C = basis().c;
  auto a = [&](int i, int j) { return inverse ? C[j][i] : C[i][j]; };
  double t[64];
  for (int y = 0; y < 8; ++y)
    for (int v = 0; v < 8; ++v) {
      double s = 0;
      for (int x = 0; x < 8; ++x) s += a(v, x) * in[8 * y + x];
      t[8 * y + v] = s;
    }
  for (int u = 0; u < 8; ++u)
    for (int v = 0; v < 8; ++v) {
      double s = 0;
      for (int y = 0; y < 8; ++y) s += a(u, y) * t[8 * y + v];
      out[8 * u + v] = s;
    }
}
void fdctDouble(const double in[64], double out[64]) { separableDouble(in, out, false); }
void idctDouble(const double in[64], double out[64]) { separableDouble(in, out, true); }

struct Figures {
  int peak = 0;
  double worstPixelMse = 0, overallMse = 0, worstPixelMean = 0, overallMean = 0;
};

Figures run1180(long L, long H, int sign, int blocks) {
  Ieee1180 g;
  double sumErr[64] = {}, sumSq[64] = {};
  Figures f;
  Table one{};
  one.fill(1);
  for (int n = 0; n < blocks; ++n) {
    double in[64], coef[64], refOut[64];
    for (int i = 0; i < 64; ++i) in[i] = static_cast<double>(sign * g.rnd(L, H));
    fdctDouble(in, coef);
    Block c;
    for (int i = 0; i < 64; ++i) {
      double v = std::round(coef[i]);
      v = v < -2048 ? -2048 : (v > 2047 ? 2047 : v);
      coef[i] = v;
      c[i] = static_cast<int16_t>(v);
    }
    idctDouble(coef, refOut);
    Block o;
    EXPECT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(c.data(), o.data(), one.data()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) {
      double r = std::round(refOut[i]);
      r = r < -256 ? -256 : (r > 255 ? 255 : r);
      const int t = o[i] < -256 ? -256 : (o[i] > 255 ? 255 : o[i]);
      const double e = t - r;
      sumErr[i] += e;
      sumSq[i] += e * e;
      f.peak = std::max(f.peak, static_cast<int>(std::abs(e)));
    }
  }
  for (int i = 0; i < 64; ++i) {
    f.worstPixelMse = std::max(f.worstPixelMse, sumSq[i] / blocks);
    f.worstPixelMean = std::max(f.worstPixelMean, std::abs(sumErr[i]) / blocks);
    f.overallMse += sumSq[i];
    f.overallMean += sumErr[i];
  }
  f.overallMse /= 64.0 * blocks;
  f.overallMean = std::abs(f.overallMean) / (64.0 * blocks);
  return f;
}

TEST(Ieee1180, AccuracyOfTheEightBitInverse) {
  struct Range { long L, H; int sign; };
  const Range ranges[] = {{256, 255, 1}, {5, 5, 1}, {300, 300, 1}, {256, 255, -1}, {5, 5, -1}, {300, 300, -1}};
  for (const Range& r : ranges) {
    const Figures f = run1180(r.L, r.H, r.sign, 10000);
    std::printf("IEEE1180 L=%ld H=%ld sign=%+d: peak %d, worst pixel mse %.4f, overall mse %.4f, worst pixel mean %.4f, overall mean %.5f\n",
                r.L, r.H, r.sign, f.peak, f.worstPixelMse, f.overallMse, f.worstPixelMean, f.overallMean);
    RecordProperty("figures", "see stdout");
    EXPECT_LE(f.peak, 1);
    EXPECT_LE(f.worstPixelMse, 0.06);
    EXPECT_LE(f.overallMse, 0.02);
    EXPECT_LE(f.worstPixelMean, 0.015);
    EXPECT_LE(f.overallMean, 0.0015);
  }
  // All-zero input gives all-zero output.
  Block z{}, o;
  Table one{};
  one.fill(1);
  ASSERT_EQ(zvpiDCTQuantInv8x8_JPEG_16s_C1(z.data(), o.data(), one.data()), zvpStatusOk);
  for (int16_t v : o) EXPECT_EQ(v, 0);
}

}  // namespace
