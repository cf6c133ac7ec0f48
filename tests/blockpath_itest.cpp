// Internal side of the block path: the primitives (copies, widening, and with
// a constant, reverse division with its two-thread region, scaled
// multiplication, 32-bit fill), the zig-zag tables, and every vector kernel
// of the transforms against its scalar twin.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "core/cpu.h"
#include "core/memory.h"
#include "core/primitives.h"
#include "ref/blockpath_ref.h"
#include "sample/dct.h"
#include "sample/dctfloat.h"
#include "sample/zigzag.h"
#include "support/testutil.h"

namespace {

namespace R = ref::bp;
using Block = std::array<int16_t, 64>;

uint16_t getU16(const uint8_t* p) { uint16_t v; std::memcpy(&v, p, 2); return v; }
int16_t get16(const uint8_t* p) { int16_t v; std::memcpy(&v, p, 2); return v; }

// ============================================================================
// Zig-zag tables
// ============================================================================
TEST(ZigzagTables, MatchTheScanAndCarryEightGuards) {
  int scan[64];
  R::zigzagScan(scan);
  for (int k = 0; k < 64; ++k) {
    EXPECT_EQ(own_pj_izigzag_index[k], scan[k]);
    EXPECT_EQ(zigzag_index_Fwd[scan[k]], k);
  }
  for (int g = 64; g < 72; ++g) EXPECT_EQ(own_pj_izigzag_index[g], 63);
}

// ============================================================================
// Reverse division
// ============================================================================
uint16_t exactNearest(unsigned v, unsigned x) { return static_cast<uint16_t>((2 * v + x) / (2 * x)); }

TEST(DivCRev, WorkedNumbers) {
  for (int off = 0; off < 16; off += 2) {
    // 16 elements: lead, one group of 8 where aligned, tail.
    zt::Guarded s(32, 0), d(32, static_cast<size_t>(off));
    uint16_t xs[16] = {1, 65535, 0, 1, 65535, 2, 3, 1, 0, 65535, 1, 7, 2, 1, 65535, 0};
    std::memcpy(s.data(), xs, 32);
    ASSERT_EQ(zvpsDivCRev_16u(s.as<Zvp16u>(), 32768, d.as<Zvp16u>(), 16), zvpStatusDivideByZero);
    for (int i = 0; i < 16; ++i) {
      const uint16_t want = xs[i] == 0 ? 0xFFFF : exactNearest(32768, xs[i]);
      EXPECT_EQ(getU16(d.data() + 2 * i), want) << off << " " << i;
    }
    EXPECT_TRUE(d.intact());
  }
  uint16_t one = 1, big = 65535, r = 0;
  EXPECT_EQ(zvpsDivCRev_16u(&one, 32768, &r, 1), zvpStatusOk);
  EXPECT_EQ(r, 32768);
  EXPECT_EQ(zvpsDivCRev_16u(&big, 32768, &r, 1), zvpStatusOk);
  EXPECT_EQ(r, 1);
}

TEST(DivCRev, Value32768AgreesWithExactDivisionForEveryDivisor) {
  for (int threads : {1, 2, 8}) {
    zt::Threads t(threads);
    for (size_t off : {0, 2, 6}) {
      const int len = 65535;
      zt::Guarded s(2 * len, off);
      for (int i = 0; i < len; ++i) {
        const uint16_t x = static_cast<uint16_t>(i + 1);
        std::memcpy(s.data() + 2 * i, &x, 2);
      }
      ASSERT_EQ(zvpsDivCRev_16u_I(32768, s.as<Zvp16u>(), len), zvpStatusOk);  // in place
      for (int i = 0; i < len; ++i) ASSERT_EQ(getU16(s.data() + 2 * i), exactNearest(32768, i + 1)) << i;
      ASSERT_TRUE(s.intact());
    }
  }
}

TEST(DivCRev, ValueZeroFillsZerosAndReportsZeroDivisors) {
  std::vector<uint16_t> x(100, 5), d(100, 9);
  EXPECT_EQ(zvpsDivCRev_16u(x.data(), 0, d.data(), 100), zvpStatusOk);
  for (uint16_t v : d) EXPECT_EQ(v, 0);
  x[77] = 0;
  d.assign(100, 9);
  EXPECT_EQ(zvpsDivCRev_16u(x.data(), 0, d.data(), 100), zvpStatusDivideByZero);
  for (uint16_t v : d) EXPECT_EQ(v, 0);
}

TEST(DivCRev, ArgumentChecks) {
  uint16_t a[4] = {1, 2, 3, 4}, b[4] = {7, 7, 7, 7};
  EXPECT_EQ(zvpsDivCRev_16u(nullptr, 1, b, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpsDivCRev_16u(a, 1, nullptr, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpsDivCRev_16u(a, 1, b, 0), zvpStatusBadSize);
  EXPECT_EQ(zvpsDivCRev_16u_I(1, nullptr, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpsDivCRev_16u_I(1, a, -1), zvpStatusBadSize);
  for (uint16_t v : b) EXPECT_EQ(v, 7);
}

TEST(DivCRev, ZeroDivisorIsReportedFromEitherThreadOfTheRegion) {
  zt::Threads t(4);
  for (int len : {2048, 2049, 5000}) {
    for (int pos : {0, len / 2 - 1, len / 2, len - 1}) {
      std::vector<uint16_t> x(static_cast<size_t>(len), 3), d(static_cast<size_t>(len));
      x[static_cast<size_t>(pos)] = 0;
      ASSERT_EQ(zvpsDivCRev_16u(x.data(), 32768, d.data(), len), zvpStatusDivideByZero) << len << " " << pos;
      for (int i = 0; i < len; ++i) ASSERT_EQ(d[i], i == pos ? 0xFFFF : 10923);
    }
  }
}

TEST(DivCRev, VectorKernelMatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  zt::Rng rng(601);
  for (int len = 1; len <= 70; ++len)
    for (size_t off = 0; off < 18; off += 2)
      for (Zvp16u value : {Zvp16u{32768}, Zvp16u{65535}, Zvp16u{1}, Zvp16u{1000}, Zvp16u{40000}, static_cast<Zvp16u>(rng.uniform(1, 65535))}) {
        zt::Guarded s(2 * len, (off * 7) % 16), a(2 * len, off), b(2 * len, off);
        for (int i = 0; i < len; ++i) {
          const uint16_t x = static_cast<uint16_t>(rng.uniform(0, 4) == 0 ? rng.uniform(0, 3) : rng.uniform(0, 65535));
          std::memcpy(s.data() + 2 * i, &x, 2);
        }
        const int za = zvp::prim::divRevScalar(s.as<Zvp16u>(), value, a.as<Zvp16u>(), len);
        const int zb = zvp::prim::divRevSSE41(s.as<Zvp16u>(), value, b.as<Zvp16u>(), len);
        ASSERT_EQ(za != 0, zb != 0);
        ASSERT_EQ(std::memcmp(a.data(), b.data(), 2 * static_cast<size_t>(len)), 0) << len << " " << off << " " << value;
        ASSERT_TRUE(b.intact());
      }
}

TEST(DivCRev, LaneAndLoneAgreeWithExactDivisionAwayFromHalves) {
  zt::Rng rng(602);
  for (int n = 0; n < 200000; ++n) {
    const unsigned v = static_cast<unsigned>(rng.uniform(1, 65535)), x = static_cast<unsigned>(rng.uniform(1, 65535));
    const double q = static_cast<double>(v) / x;
    if (std::abs(q - std::floor(q) - 0.5) < 1e-3) continue;
    const uint16_t e = exactNearest(v, x);
    ASSERT_EQ(zvp::prim::divLone(static_cast<Zvp16u>(v), static_cast<Zvp16u>(x)), e) << v << "/" << x;
    ASSERT_EQ(zvp::prim::divLane(static_cast<Zvp16u>(v), static_cast<Zvp16u>(x)), e > 32767 && x != 1 ? 32767 : e)
        << v << "/" << x;
  }
  // Above 0x7FFF the group lanes saturate to 16-bit signed, except a divisor
  // of 1, which is patched to the value itself.
  EXPECT_EQ(zvp::prim::divLane(65535, 1), 65535);
  EXPECT_EQ(zvp::prim::divLane(65535, 2), 32767);
  EXPECT_EQ(zvp::prim::divLone(65535, 2), 32768);  // 32767.5, ties to even
  EXPECT_EQ(zvp::prim::divLone(5, 2), 2);
  EXPECT_EQ(zvp::prim::divLone(7, 2), 4);
}

// ============================================================================
// Scaled multiplication
// ============================================================================
TEST(MulSfs, HalfWayRoundsToEvenAndLargeProductsSaturate) {
  const uint16_t a[] = {3, 1, 5, 3, 1, 5, 65535, 65535, 7, 2};
  const int16_t b[] = {16384, 16384, 16384, -16384, -16384, -16384, 32767, -32768, 0, 16384};
  const int16_t want[] = {2, 0, 2, -2, 0, -2, 32767, -32768, 0, 1};
  int16_t out[10];
  ownsMul_16u16s_PosSfs(a, b, out, 10, 15);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(out[i], want[i]) << i;
  for (int i = 0; i < 10; ++i) EXPECT_EQ(R::mulSfs(a[i], b[i], 15), want[i]);
}

TEST(MulSfs, EveryPathMatchesReference) {
  zt::Rng rng(603);
  std::vector<zvp::prim::MulSfsFn> fns = {zvp::prim::mulSfsScalar};
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) fns.push_back(zvp::prim::mulSfsSSE41);
  for (auto fn : fns)
    for (int len = 0; len <= 80; ++len)
      for (size_t off = 0; off < 8; ++off)
        for (int s : {1, 2, 8, 15, 16, 20}) {
          zt::Guarded a(2 * static_cast<size_t>(len), off), b(2 * static_cast<size_t>(len), (off * 3) % 8),
              d(2 * static_cast<size_t>(len), (off * 5) % 8);
          rng.fill(a.data(), a.size());
          rng.fill(b.data(), b.size());
          fn(a.as<Zvp16u>(), b.as<Zvp16s>(), d.as<Zvp16s>(), len, s);
          for (int i = 0; i < len; ++i)
            ASSERT_EQ(get16(d.data() + 2 * i), R::mulSfs(getU16(a.data() + 2 * i), get16(b.data() + 2 * i), s))
                << len << " " << s;
          ASSERT_TRUE(d.intact());
          // In place on the signed operand.
          std::vector<uint8_t> keep = b.snapshot();
          fn(a.as<Zvp16u>(), b.as<Zvp16s>(), b.as<Zvp16s>(), len, s);
          for (int i = 0; i < len; ++i) ASSERT_EQ(get16(b.data() + 2 * i), get16(d.data() + 2 * i));
          (void)keep;
        }
}

// ============================================================================
// Widening, and with a constant, copies, fill
// ============================================================================
TEST(Convert8u16u, ContiguousAndStridedRegions) {
  zt::Rng rng(604);
  for (int w : {1, 7, 8, 15, 16, 17, 31, 32, 33, 64, 100})
    for (int h : {1, 3, 8})
      for (int extra : {0, 5})
        for (size_t off : {0, 1, 2, 6}) {
          const int srcStep = w + extra, dstStep = 2 * w + 2 * extra + (extra ? 3 : 0);
          zt::Guarded s(static_cast<size_t>(srcStep) * h, 3), d(static_cast<size_t>(dstStep) * (h - 1) + 2 * w, off);
          rng.fill(s.data(), s.size());
          std::vector<uint8_t> before = d.snapshot();
          ASSERT_EQ(zvpiConvert_8u16u_C1R(s.data(), srcStep, d.as<Zvp16u>(), dstStep, {w, h}), zvpStatusOk);
          for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) ASSERT_EQ(getU16(d.data() + y * dstStep + 2 * x), s.data()[y * srcStep + x]);
          for (int y = 0; y + 1 < h; ++y)
            for (int x = 2 * w; x < dstStep; ++x) ASSERT_EQ(d.data()[y * dstStep + x], before[y * dstStep + x]);
          ASSERT_TRUE(d.intact());
        }
}

TEST(Convert8u16u, LargeRegionTakesTheCacheDecisionWithEqualResult) {
  const int w = 1024, h = 400;  // 3 * w * h above 1 MiB
  std::vector<uint8_t> s(static_cast<size_t>(w) * h);
  for (size_t i = 0; i < s.size(); ++i) s[i] = static_cast<uint8_t>(i * 31);
  std::vector<uint16_t> d(s.size());
  ASSERT_EQ(zvpiConvert_8u16u_C1R(s.data(), w, d.data(), 2 * w, {w, h}), zvpStatusOk);
  for (size_t i = 0; i < s.size(); ++i) ASSERT_EQ(d[i], s[i]);
  ASSERT_EQ(zvpiConvert_8u16u_C1R(s.data(), w, d.data() + 1, 2 * w + 2, {w - 1, h - 1}), zvpStatusOk);
}

TEST(Convert8u16u, ArgumentOrder) {
  uint8_t s[4] = {};
  uint16_t d[4] = {9, 9, 9, 9};
  EXPECT_EQ(zvpiConvert_8u16u_C1R(nullptr, 0, d, 0, {0, 0}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiConvert_8u16u_C1R(s, 0, nullptr, 0, {0, 0}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiConvert_8u16u_C1R(s, 0, d, 0, {0, 1}), zvpStatusBadSize);
  EXPECT_EQ(zvpiConvert_8u16u_C1R(s, 0, d, 0, {1, 0}), zvpStatusBadSize);
  EXPECT_EQ(zvpiConvert_8u16u_C1R(s, 0, d, 8, {1, 1}), zvpStatusBadStep);
  EXPECT_EQ(zvpiConvert_8u16u_C1R(s, 4, d, 0, {1, 1}), zvpStatusBadStep);
  for (uint16_t v : d) EXPECT_EQ(v, 9);
}

TEST(AndC32s, RegionsInPlaceAndArgumentOrder) {
  zt::Rng rng(605);
  const int w = 13, h = 5, srcStep = 4 * w + 8, dstStep = 4 * w + 4;
  zt::Guarded s(static_cast<size_t>(srcStep) * h, 4), d(static_cast<size_t>(dstStep) * (h - 1) + 4 * w, 2);
  rng.fill(s.data(), s.size());
  const Zvp32s value = 0x0F0F00FF;
  ASSERT_EQ(zvpiAndC_32s_C1R(s.as<Zvp32s>(), srcStep, value, d.as<Zvp32s>(), dstStep, {w, h}), zvpStatusOk);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      Zvp32s a, b;
      std::memcpy(&a, s.data() + y * srcStep + 4 * x, 4);
      std::memcpy(&b, d.data() + y * dstStep + 4 * x, 4);
      ASSERT_EQ(b, a & value);
    }
  ASSERT_TRUE(d.intact());
  ASSERT_EQ(zvpiAndC_32s_C1IR(value, s.as<Zvp32s>(), srcStep, {w, h}), zvpStatusOk);
  for (int y = 0; y < h; ++y) ASSERT_EQ(std::memcmp(s.data() + y * srcStep, d.data() + y * dstStep, 4 * w), 0);
  Zvp32s a[2] = {1, 2};
  EXPECT_EQ(zvpiAndC_32s_C1R(nullptr, 0, 1, a, 0, {0, 0}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiAndC_32s_C1R(a, 4, 1, nullptr, 4, {1, 1}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiAndC_32s_C1R(a, 0, 1, a, 4, {0, 0}), zvpStatusBadStep);
  EXPECT_EQ(zvpiAndC_32s_C1R(a, 4, 1, a, 0, {0, 0}), zvpStatusBadStep);
  EXPECT_EQ(zvpiAndC_32s_C1R(a, 4, 1, a, 4, {0, 1}), zvpStatusBadSize);
  EXPECT_EQ(zvpiAndC_32s_C1IR(1, nullptr, 4, {1, 1}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiAndC_32s_C1IR(1, a, 0, {1, 1}), zvpStatusBadStep);
  EXPECT_EQ(a[0], 1);
  EXPECT_EQ(a[1], 2);
}

struct CacheSize {
  explicit CacheSize(int bytes) { zvp::setCacheSizeOverride(bytes); }
  ~CacheSize() { zvp::setCacheSizeOverride(-1); }
};

TEST(Copy16s32f, RegionsShortLongContiguousAndNonTemporal) {
  zt::Rng rng(606);
  for (int cache : {0, 1 << 20})
    for (int w : {1, 3, 16, 31, 32, 33, 100})
      for (int h : {1, 4})
        for (int extra : {0, 6}) {
          CacheSize cs(cache);
          const int srcStep = 2 * w + extra, dstStep = 2 * w + 2 * extra;
          zt::Guarded s(static_cast<size_t>(srcStep) * h, 2), d(static_cast<size_t>(dstStep) * (h - 1) + 2 * w, 6);
          rng.fill(s.data(), s.size());
          ASSERT_EQ(zvpiCopy_16s_C1R(s.as<Zvp16s>(), srcStep, d.as<Zvp16s>(), dstStep, {w, h}), zvpStatusOk);
          for (int y = 0; y < h; ++y) ASSERT_EQ(std::memcmp(s.data() + y * srcStep, d.data() + y * dstStep, 2 * w), 0);
          ASSERT_TRUE(d.intact());
          zt::Guarded s4(static_cast<size_t>(2 * srcStep) * h, 4), d4(static_cast<size_t>(2 * dstStep) * (h - 1) + 4 * w, 8);
          rng.fill(s4.data(), s4.size());
          ASSERT_EQ(zvpiCopy_32f_C1R(s4.as<Zvp32f>(), 2 * srcStep, d4.as<Zvp32f>(), 2 * dstStep, {w, h}), zvpStatusOk);
          for (int y = 0; y < h; ++y)
            ASSERT_EQ(std::memcmp(s4.data() + y * 2 * srcStep, d4.data() + y * 2 * dstStep, 4 * w), 0);
          ASSERT_TRUE(d4.intact());
        }
  // A region above 1 MiB with a small cache: non-temporal stores, same bytes.
  CacheSize cs(1 << 20);
  const int w = 600, h = 600;
  std::vector<Zvp32f> s(static_cast<size_t>(w) * h), d(s.size());
  rng.fill(s.data(), s.size());
  ASSERT_EQ(zvpiCopy_32f_C1R(s.data(), 4 * w, d.data(), 4 * w, {w, h}), zvpStatusOk);
  ASSERT_EQ(std::memcmp(s.data(), d.data(), 4 * s.size()), 0);
}

TEST(Copy16s32f, ArgumentChecksDoNotTestSteps) {
  Zvp16s a[2] = {1, 2}, b[2] = {0, 0};
  EXPECT_EQ(zvpiCopy_16s_C1R(nullptr, 4, b, 4, {0, 0}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiCopy_16s_C1R(a, 4, nullptr, 4, {0, 0}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiCopy_16s_C1R(a, 4, b, 4, {0, 1}), zvpStatusBadSize);
  EXPECT_EQ(zvpiCopy_16s_C1R(a, 0, b, 0, {2, 1}), zvpStatusOk);
  EXPECT_EQ(b[1], 2);
  Zvp32f c[1] = {1.5f}, e[1] = {0};
  EXPECT_EQ(zvpiCopy_32f_C1R(nullptr, 4, e, 4, {1, 1}), zvpStatusNullPointer);
  EXPECT_EQ(zvpiCopy_32f_C1R(c, 4, e, 4, {1, -1}), zvpStatusBadSize);
  EXPECT_EQ(zvpiCopy_32f_C1R(c, -4, e, 0, {1, 1}), zvpStatusOk);
  EXPECT_EQ(e[0], 1.5f);
}

TEST(Set32s, FillsExactlyLen) {
  zt::Guarded g(4 * 37, 2);
  ownsSet_32s(-123456, g.as<Zvp32s>(), 37);
  for (int i = 0; i < 37; ++i) {
    Zvp32s v;
    std::memcpy(&v, g.data() + 4 * i, 4);
    EXPECT_EQ(v, -123456);
  }
  EXPECT_TRUE(g.intact());
}

// ============================================================================
// Transform kernels: vector against scalar twin, internal transforms
// ============================================================================
Block randomBlock(zt::Rng& rng, int kind) {
  Block b{};
  const int16_t pick[] = {-32768, -32767, 32767, 32766, 0, -1, 1, 4096, -4096, 8191, -8192};
  for (auto& v : b) {
    switch (kind) {
      case 0: v = static_cast<int16_t>(rng.uniform(-256, 255)); break;
      case 1: v = rng.uniform(0, 8) == 0 ? static_cast<int16_t>(rng.uniform(-2048, 2047)) : 0; break;
      case 2: v = pick[rng.uniform(0, 10)]; break;
      default: v = rng.s16(); break;
    }
  }
  return b;
}

TEST(DctKernels, VectorTransformsMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  zt::Rng rng(607);
  using zvp::dct::BlockFn;
  const std::pair<BlockFn, BlockFn> pairs[] = {{zvp::dct::invScalar, zvp::dct::invSSE41},
                                               {zvp::dct::fwdScalar, zvp::dct::fwdSSE41}};
  for (auto [scalar, vec] : pairs)
    for (int n = 0; n < 4000; ++n) {
      const Block b = randomBlock(rng, n % 4);
      const size_t so = static_cast<size_t>(n % 9) * 2, dof = static_cast<size_t>(n % 7) * 2;
      zt::Guarded s(128, so), d1(128, dof), d2(128, dof), inplace(128, so);
      std::memcpy(s.data(), b.data(), 128);
      std::memcpy(inplace.data(), b.data(), 128);
      scalar(s.as<Zvp16s>(), d1.as<Zvp16s>());
      vec(s.as<Zvp16s>(), d2.as<Zvp16s>());
      vec(inplace.as<Zvp16s>(), inplace.as<Zvp16s>());
      ASSERT_EQ(std::memcmp(d1.data(), d2.data(), 128), 0) << n;
      ASSERT_EQ(std::memcmp(d1.data(), inplace.data(), 128), 0) << n;
      ASSERT_TRUE(d2.intact());
      // And both against the model.
      Block e;
      if (scalar == zvp::dct::invScalar) R::inv(b.data(), e.data());
      else R::fwd(b.data(), e.data());
      ASSERT_EQ(std::memcmp(d1.data(), e.data(), 128), 0) << n;
    }
}

TEST(DctKernels, VectorQuantisersAndClipMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  zt::Rng rng(608);
  for (int n = 0; n < 3000; ++n) {
    const Block b = randomBlock(rng, 3);
    std::array<uint16_t, 64> t;
    rng.fill(t.data(), 64);
    const size_t off = static_cast<size_t>(n % 16);
    zt::Guarded s(128, off), a(128, off), c(128, off), tb(128, static_cast<size_t>(n % 5));
    std::memcpy(s.data(), b.data(), 128);
    std::memcpy(tb.data(), t.data(), 128);
    zvp::dct::quantFwdScalar(s.as<Zvp16s>(), a.as<Zvp16s>(), tb.as<Zvp16u>());
    zvp::dct::quantFwdSSE41(s.as<Zvp16s>(), c.as<Zvp16s>(), tb.as<Zvp16u>());
    ASSERT_EQ(std::memcmp(a.data(), c.data(), 128), 0);
    zvp::dct::quantInvScalar(s.as<Zvp16s>(), a.as<Zvp16s>(), tb.as<Zvp16u>());
    zvp::dct::quantInvSSE41(s.as<Zvp16s>(), c.as<Zvp16s>(), tb.as<Zvp16u>());
    ASSERT_EQ(std::memcmp(a.data(), c.data(), 128), 0);
    const int16_t level = n % 2 ? rng.s16() : static_cast<int16_t>(128);
    const uint8_t lo = n % 3 ? rng.byte() : 0, hi = n % 3 ? rng.byte() : 255;
    const int step = 8 + n % 11;
    zt::Guarded o1(static_cast<size_t>(step) * 7 + 8, off), o2(static_cast<size_t>(step) * 7 + 8, off);
    zvp::dct::lsClipScalar(s.as<Zvp16s>(), o1.data(), step, level, lo, hi);
    zvp::dct::lsClipSSE41(s.as<Zvp16s>(), o2.data(), step, level, lo, hi);
    ASSERT_EQ(std::memcmp(o1.data(), o2.data(), o1.size()), 0);
    ASSERT_TRUE(o2.intact());
  }
}

TEST(DctKernels, ReducedTransformsEqualTheFullOneOnTheMaskedBlockEvenWhenSaturating) {
  zt::Rng rng(609);
  for (int n = 0; n < 4000; ++n) {
    const Block b = randomBlock(rng, n % 4);
    for (int k : {2, 4}) {
      Block o, s, e;
      (k == 2 ? dct_8x8_inv_2x2_16s : dct_8x8_inv_4x4_16s)(b.data(), o.data());
      (k == 2 ? zvp::dct::inv2x2Scalar : zvp::dct::inv4x4Scalar)(b.data(), s.data());
      R::invCorner(b.data(), e.data(), k);
      ASSERT_EQ(o, e) << n << " " << k;
      ASSERT_EQ(s, e) << n << " " << k;
    }
    int16_t o4[16], e4[16], o2[4], e2[4];
    dct_8x8To4x4_inv_16s(b.data(), o4);
    R::invTo4x4(b.data(), e4);
    ASSERT_EQ(std::memcmp(o4, e4, 32), 0);
    dct_8x8To2x2_inv_16s(b.data(), o2);
    R::invTo2x2(b.data(), e2);
    ASSERT_EQ(std::memcmp(o2, e2, 8), 0);
    // The scalar twins as well.
    zvp::dct::to4x4Scalar(b.data(), o4);
    ASSERT_EQ(std::memcmp(o4, e4, 32), 0);
    zvp::dct::to2x2Scalar(b.data(), o2);
    ASSERT_EQ(std::memcmp(o2, e2, 8), 0);
#if !defined(ZVP_NO_X86)
    if (zvp::cpuIsa() >= zvp::Isa::SSE41) {
      // Unaligned source, exact output size.
      zt::Guarded src(128, static_cast<size_t>(n % 8) * 2), d4(32, static_cast<size_t>(n % 5) * 2), d2(8, 6);
      std::memcpy(src.data(), b.data(), 128);
      zvp::dct::to4x4SSE41(src.as<Zvp16s>(), d4.as<Zvp16s>());
      zvp::dct::to2x2SSE41(src.as<Zvp16s>(), d2.as<Zvp16s>());
      ASSERT_EQ(std::memcmp(d4.data(), e4, 32), 0) << n;
      ASSERT_EQ(std::memcmp(d2.data(), e2, 8), 0) << n;
      ASSERT_TRUE(d4.intact());
      ASSERT_TRUE(d2.intact());
    }
#endif
  }
}

TEST(DctKernels, FloatTransformsFollowTheOrderOfOperations) {
  zt::Rng rng(610);
  for (int n = 0; n < 2000; ++n) {
    float in[64], o[64], e[64];
    for (float& v : in) v = static_cast<float>(rng.uniform(-40000, 40000)) / static_cast<float>(rng.uniform(1, 64));
    dct_8x8_fwd_32f(in, o);
    R::fwd32(in, e);
    ASSERT_EQ(std::memcmp(o, e, sizeof o), 0) << n;
    dct_8x8_inv_32f(in, o);
    R::inv32(in, e);
    ASSERT_EQ(std::memcmp(o, e, sizeof o), 0) << n;
    std::memcpy(o, in, sizeof o);
    dct_8x8_inv_32f(o, o);  // in place
    ASSERT_EQ(std::memcmp(o, e, sizeof o), 0) << n;
    // Every path, against the model.
    float f[64], g[64];
    R::fwd32(in, f);
    zvp::dct::fwd32Scalar(in, o);
    ASSERT_EQ(std::memcmp(o, f, sizeof o), 0) << n;
    zvp::dct::inv32Scalar(in, o);
    ASSERT_EQ(std::memcmp(o, e, sizeof o), 0) << n;
#if !defined(ZVP_NO_X86)
    if (zvp::cpuIsa() >= zvp::Isa::SSE41) {
      zt::Guarded src(256, static_cast<size_t>(n % 4) * 4), dst(256, static_cast<size_t>(n % 3) * 4);
      std::memcpy(src.data(), in, 256);
      zvp::dct::fwd32SSE41(src.as<Zvp32f>(), dst.as<Zvp32f>());
      std::memcpy(g, dst.data(), 256);
      ASSERT_EQ(std::memcmp(g, f, sizeof g), 0) << n;
      zvp::dct::inv32SSE41(src.as<Zvp32f>(), dst.as<Zvp32f>());
      std::memcpy(g, dst.data(), 256);
      ASSERT_EQ(std::memcmp(g, e, sizeof g), 0) << n;
      ASSERT_TRUE(dst.intact());
    }
#endif
  }
  // The normalisation tables are the float products of the scale factors.
  for (int u = 0; u < 8; ++u)
    for (int v = 0; v < 8; ++v) {
      EXPECT_EQ(_t_norm_frw[8 * u + v], R::floatTables().frw[8 * u + v]);
      EXPECT_EQ(_t_norm_inv[8 * u + v], R::floatTables().inv[8 * u + v]);
    }
  EXPECT_EQ(_t_norm_frw[0], 0.125f);
  EXPECT_EQ(_t_norm_inv[0], 0.125f);
}

TEST(DctKernels, FloatMembersVectorMatchesScalarTwin) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  zt::Rng rng(612);
  for (int n = 0; n < 3000; ++n) {
    std::array<Zvp16u, 8 * 12> img;
    for (auto& v : img) v = static_cast<Zvp16u>(n % 3 ? rng.uniform(0, 4095) : rng.uniform(0, 65535));
    std::array<Zvp32f, 64> t;
    for (auto& v : t) v = n % 5 == 4 ? static_cast<float>(rng.uniform(-2000000, 2000000)) * 1000.0f
                                     : 1.0f / static_cast<float>(rng.uniform(1, 255));
    if (n % 97 == 0) t[static_cast<size_t>(n % 64)] = std::numeric_limits<float>::quiet_NaN();
    Block a{}, b{};
    zvp::dct::qntFwdLsScalar(img.data(), 24, a.data(), t.data());
    zvp::dct::qntFwdLsSSE41(img.data(), 24, b.data(), t.data());
    ASSERT_EQ(a, b) << n;
    const Block c = randomBlock(rng, n % 4);
    for (auto& v : t) v = n % 5 == 4 ? static_cast<float>(rng.uniform(-2000000, 2000000)) : static_cast<float>(rng.uniform(1, 64)) * 0.25f;
    if (n % 97 == 0) t[static_cast<size_t>(n % 64)] = std::numeric_limits<float>::quiet_NaN();
    std::array<Zvp16u, 8 * 10> o1{}, o2{};
    zvp::dct::qntInvLsScalar(c.data(), o1.data(), 20, t.data());
    zvp::dct::qntInvLsSSE41(c.data(), o2.data(), 20, t.data());
    ASSERT_EQ(o1, o2) << n;
  }
}

TEST(DctKernels, ScalarCapGivesTheSameMembers) {
  using Fn = ZvpStatus (*)(const Zvp16s*, Zvp8u*, int, const Zvp16u*);
  const Fn fns[] = {zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R,
                    zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R,
                    zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R};
  zt::Rng rng(611);
  for (int n = 0; n < 2000; ++n) {
    const Block b = randomBlock(rng, n % 4);
    std::array<uint16_t, 64> t;
    for (auto& v : t) v = static_cast<uint16_t>(n % 4 == 3 ? rng.uniform(0, 65535) : rng.uniform(1, 40));
    for (Fn f : fns) {
      std::array<uint8_t, 64> o1{}, o2{};
      const zvp::Isa prev = zvp::setIsaCap(zvp::Isa::Scalar);
      ASSERT_EQ(f(b.data(), o1.data(), 8, t.data()), zvpStatusOk);
      zvp::setIsaCap(prev);
      ASSERT_EQ(f(b.data(), o2.data(), 8, t.data()), zvpStatusOk);
      ASSERT_EQ(o1, o2) << n;
    }
    Block f1{}, f2{}, i1{}, i2{};
    std::array<uint8_t, 64> c1{}, c2{};
    Zvp8u img[64];
    for (auto& v : img) v = rng.byte();
    std::array<Zvp16s, 64> l1{}, l2{};
    const zvp::Isa prev = zvp::setIsaCap(zvp::Isa::Scalar);
    zvpiDCTQuantFwd8x8_JPEG_16s_C1(b.data(), f1.data(), t.data());
    zvpiDCTQuantInv8x8_JPEG_16s_C1(b.data(), i1.data(), t.data());
    zvpiDCT8x8InvLSClip_16s8u_C1R(b.data(), c1.data(), 8, static_cast<Zvp16s>(n), 30, 220);
    zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(img, 8, l1.data(), t.data());
    zvp::setIsaCap(prev);
    zvpiDCTQuantFwd8x8_JPEG_16s_C1(b.data(), f2.data(), t.data());
    zvpiDCTQuantInv8x8_JPEG_16s_C1(b.data(), i2.data(), t.data());
    zvpiDCT8x8InvLSClip_16s8u_C1R(b.data(), c2.data(), 8, static_cast<Zvp16s>(n), 30, 220);
    zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(img, 8, l2.data(), t.data());
    ASSERT_EQ(f1, f2);
    ASSERT_EQ(i1, i2);
    ASSERT_EQ(c1, c2);
    ASSERT_EQ(l1, l2);
  }
}

}  // namespace
