// JPEG block path through the public interface: quantisation tables,
// quantisers, zig-zag unfolding and the fourteen block-transform members,
// each against the reference model on seeded random blocks, with the
// argument checks and the worked numbers of the arithmetic.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "ref/blockpath_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

using Block = std::array<int16_t, 64>;

int16_t get16(const uint8_t* p) { int16_t v; std::memcpy(&v, p, 2); return v; }
uint16_t getU16(const uint8_t* p) { uint16_t v; std::memcpy(&v, p, 2); return v; }

// ---- block generators --------------------------------------------------------
std::array<uint16_t, 64> randomTable(zt::Rng& rng, bool wide) {
  std::array<uint16_t, 64> t{};
  for (auto& v : t) v = static_cast<uint16_t>(wide ? rng.uniform(0, 65535) : rng.uniform(1, 255));
  return t;
}

// A block of 128 bytes at a chosen offset from a 64-byte boundary.
zt::Guarded blockBuf(const Block& b, size_t off) {
  zt::Guarded g(128, off);
  std::memcpy(g.data(), b.data(), 128);
  return g;
}

// ============================================================================
// Zig-zag
// ============================================================================
TEST(Zigzag, UnfoldsIntoNaturalOrderAndIsABijection) {
  int scan[64];
  ref::bp::zigzagScan(scan);
  Block src, dst;
  for (int i = 0; i < 64; ++i) src[i] = static_cast<int16_t>(i);
  ASSERT_EQ(zvpiZigzagInv8x8_16s_C1(src.data(), dst.data()), zvpStatusOk);
  // Unfolding 0..63 yields the forward index: natural position -> zig-zag position.
  for (int k = 0; k < 64; ++k) EXPECT_EQ(dst[scan[k]], k);
  const int16_t firstRow[8] = {0, 1, 5, 6, 14, 15, 27, 28};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(dst[i], firstRow[i]);
  std::array<bool, 64> seen{};
  for (int16_t v : dst) seen[v] = true;
  for (bool s : seen) EXPECT_TRUE(s);
}

TEST(Zigzag, RandomBlocksUnalignedMatchReference) {
  zt::Rng rng(301);
  int scan[64];
  ref::bp::zigzagScan(scan);
  for (size_t off = 0; off < 18; off += 2) {
    Block b;
    rng.fill(b.data(), 64);
    zt::Guarded s = blockBuf(b, off), d(128, (off * 3) % 16);
    ASSERT_EQ(zvpiZigzagInv8x8_16s_C1(s.as<Zvp16s>(), d.as<Zvp16s>()), zvpStatusOk);
    for (int k = 0; k < 64; ++k) EXPECT_EQ(get16(d.data() + 2 * scan[k]), b[k]);
    EXPECT_TRUE(d.intact());
  }
}

TEST(Zigzag, NullPointers) {
  Block b{};
  EXPECT_EQ(zvpiZigzagInv8x8_16s_C1(nullptr, b.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiZigzagInv8x8_16s_C1(b.data(), nullptr), zvpStatusNullPointer);
}

// ============================================================================
// Quality scaling
// ============================================================================
std::array<uint8_t, 64> baseTable() {
  std::array<uint8_t, 64> t{};
  for (int i = 0; i < 64; ++i) t[i] = static_cast<uint8_t>(1 + (i * 37) % 255);
  t[5] = 255;
  t[6] = 1;
  return t;
}

TEST(QuantRaw, FiftyLeavesTheTableUnchanged) {
  auto t = baseTable();
  const auto before = t;
  ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), 50), zvpStatusOk);
  EXPECT_EQ(t, before);
}

TEST(QuantRaw, OneSaturatesAlmostEverything) {
  auto t = baseTable();
  ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), 1), zvpStatusOk);
  auto e = baseTable();
  ref::bp::scaleRaw(e.data(), 1);
  EXPECT_EQ(t, e);
  int n255 = 0;
  for (uint8_t v : t) n255 += v == 255;
  EXPECT_GE(n255, 60);
  std::array<uint8_t, 64> small{};
  small.fill(5);
  small[0] = 6;
  ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(small.data(), 1), zvpStatusOk);
  EXPECT_EQ(small[0], 255);  // 6 * 5000 / 100 = 300, clamped
  EXPECT_EQ(small[1], 250);  // 5 * 5000 / 100
}

TEST(QuantRaw, FortyNineUsesIntegerScale102) {
  std::array<uint8_t, 64> t{};
  for (int i = 0; i < 64; ++i) t[i] = static_cast<uint8_t>(i * 4 + 1);
  auto e = t;
  ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), 49), zvpStatusOk);
  for (int i = 0; i < 64; ++i) {
    long v = (long{e[i]} * 102 + 50) / 100;
    EXPECT_EQ(t[i], v > 255 ? 255 : v) << i;
  }
}

TEST(QuantRaw, HundredAndAboveGiveAllOnes) {
  for (int q : {100, 101, 150, 1000, 1 << 20, 1073741824, INT_MAX}) {
    auto t = baseTable();
    ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), q), zvpStatusOk);
    for (uint8_t v : t) EXPECT_EQ(v, 1) << q;
  }
}

TEST(QuantRaw, EveryFactorMatchesReference) {
  for (int q = 1; q <= 120; ++q) {
    auto t = baseTable(), e = baseTable();
    ASSERT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), q), zvpStatusOk);
    ref::bp::scaleRaw(e.data(), q);
    EXPECT_EQ(t, e) << q;
  }
}

TEST(QuantRaw, RefusesZeroAndNegativeLeavingTheTable) {
  auto t = baseTable();
  const auto before = t;
  EXPECT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), 0), zvpStatusBadArgument);
  EXPECT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), -5), zvpStatusBadArgument);
  EXPECT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(t.data(), INT_MIN), zvpStatusBadArgument);
  EXPECT_EQ(t, before);
  EXPECT_EQ(zvpiQuantFwdRawTableInit_JPEG_8u(nullptr, 0), zvpStatusNullPointer);
}

// ============================================================================
// Table initialisers
// ============================================================================
TEST(QuantTables, ForwardEntriesOfTheWorkedExamples) {
  const int qs[] = {1, 2, 3, 5, 7, 16, 100, 255};
  const int want[] = {32768, 16384, 10923, 6554, 4681, 2048, 328, 129};
  for (int k = 0; k < 8; ++k) {
    std::array<uint8_t, 64> raw{};
    raw.fill(static_cast<uint8_t>(qs[k]));
    std::array<uint16_t, 64> t{};
    ASSERT_EQ(zvpiQuantFwdTableInit_JPEG_8u16u(raw.data(), t.data()), zvpStatusOk);
    for (uint16_t v : t) EXPECT_EQ(v, want[k]);
  }
}

TEST(QuantTables, EveryRawValueInZigzagPositionsMatchesReference) {
  int scan[64];
  ref::bp::zigzagScan(scan);
  for (int start = 1; start <= 255; start += 64) {
    std::array<uint8_t, 64> raw{};
    for (int k = 0; k < 64; ++k) raw[k] = static_cast<uint8_t>(std::min(255, start + k));
    zt::Guarded f(128, 2), inv(128, 6);
    ASSERT_EQ(zvpiQuantFwdTableInit_JPEG_8u16u(raw.data(), f.as<Zvp16u>()), zvpStatusOk);
    ASSERT_EQ(zvpiQuantInvTableInit_JPEG_8u16u(raw.data(), inv.as<Zvp16u>()), zvpStatusOk);
    for (int k = 0; k < 64; ++k) {
      EXPECT_EQ(getU16(f.data() + 2 * scan[k]), ref::bp::fwdEntry(raw[k])) << k;
      EXPECT_EQ(getU16(inv.data() + 2 * scan[k]), raw[k]) << k;
    }
    EXPECT_TRUE(f.intact());
    EXPECT_TRUE(inv.intact());
  }
}

TEST(QuantTables, ZeroEntry) {
  std::array<uint8_t, 64> raw{};
  raw.fill(10);
  raw[2] = 0;  // zig-zag position 2 is natural position 8
  std::array<uint16_t, 64> f{}, inv{};
  f.fill(0x1234);
  EXPECT_EQ(zvpiQuantFwdTableInit_JPEG_8u16u(raw.data(), f.data()), zvpStatusDivideByZero);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(f[i], i == 8 ? 65535 : 3277) << i;
  EXPECT_EQ(zvpiQuantInvTableInit_JPEG_8u16u(raw.data(), inv.data()), zvpStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(inv[i], i == 8 ? 0 : 10);
}

TEST(QuantTables, NullPointersRawFirst) {
  std::array<uint8_t, 64> raw{};
  std::array<uint16_t, 64> t{};
  EXPECT_EQ(zvpiQuantFwdTableInit_JPEG_8u16u(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantFwdTableInit_JPEG_8u16u(raw.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantInvTableInit_JPEG_8u16u(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantInvTableInit_JPEG_8u16u(raw.data(), nullptr), zvpStatusNullPointer);
  for (uint16_t v : t) EXPECT_EQ(v, 0);
}

// ============================================================================
// Quantisers
// ============================================================================
TEST(QuantFwd, WorkedNumbers) {
  Block b{};
  std::array<uint16_t, 64> t{};
  t.fill(2048);
  b[0] = 1000;
  t[1] = 32768;
  b[1] = 4096;
  t[2] = 32768;
  b[2] = 4095;
  t[3] = 32768;
  b[3] = -4096;
  t[4] = 32768;
  b[4] = -1234;
  t[5] = 2049;  // lowest bit discarded
  b[5] = 1000;
  ASSERT_EQ(zvpiQuantFwd8x8_JPEG_16s_C1I(b.data(), t.data()), zvpStatusOk);
  EXPECT_EQ(b[0], 63);
  EXPECT_EQ(b[1], -4096);  // the shift wraps
  EXPECT_EQ(b[2], 4095);   // q = 1 keeps |x| below 4096
  EXPECT_EQ(b[3], -4096);
  EXPECT_EQ(b[4], -1234);
  EXPECT_EQ(b[5], 63);
}

TEST(QuantFwd, RandomBlocksUnalignedMatchReference) {
  zt::Rng rng(302);
  for (int n = 0; n < 300; ++n) {
    Block b;
    rng.fill(b.data(), 64);
    const auto t = randomTable(rng, true);
    zt::Guarded g = blockBuf(b, static_cast<size_t>(n % 9) * 2);
    zt::Guarded tg(128, static_cast<size_t>(n % 5) * 2);
    std::memcpy(tg.data(), t.data(), 128);
    ASSERT_EQ(zvpiQuantFwd8x8_JPEG_16s_C1I(g.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(get16(g.data() + 2 * i), ref::bp::quantFwd(b[i], t[i]));
    EXPECT_TRUE(g.intact());
  }
}

TEST(QuantInv, RandomBlocksAnyAlignmentMatchReference) {
  zt::Rng rng(303);
  for (int n = 0; n < 300; ++n) {
    Block b;
    rng.fill(b.data(), 64);
    const auto t = randomTable(rng, true);
    zt::Guarded g = blockBuf(b, static_cast<size_t>(n % 17));  // odd addresses too
    zt::Guarded tg(128, static_cast<size_t>(n % 7));
    std::memcpy(tg.data(), t.data(), 128);
    ASSERT_EQ(zvpiQuantInv8x8_JPEG_16s_C1I(g.as<Zvp16s>(), tg.as<Zvp16u>()), zvpStatusOk);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(get16(g.data() + 2 * i), ref::bp::quantInv(b[i], t[i]));
    EXPECT_TRUE(g.intact());
  }
}

TEST(Quantisers, NullPointers) {
  Block b{};
  std::array<uint16_t, 64> t{};
  EXPECT_EQ(zvpiQuantFwd8x8_JPEG_16s_C1I(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantFwd8x8_JPEG_16s_C1I(b.data(), nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantInv8x8_JPEG_16s_C1I(nullptr, t.data()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiQuantInv8x8_JPEG_16s_C1I(b.data(), nullptr), zvpStatusNullPointer);
}

}  // namespace
