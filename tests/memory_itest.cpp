// Memory services: allocation, checked copies and fills, the cache-size
// descriptor walk, and the non-temporal paths against the ordinary ones.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/memory.h"
#include "support/testutil.h"

// This test program supplies its own zvpMalloc, so that it can count the
// calls the library makes (the library's archive is linked in statically).
static std::atomic<int> g_mallocCalls{0};
extern "C" void* zvpMalloc(int len) {
  g_mallocCalls.fetch_add(1);
  if (len < 1) return nullptr;
  void* p = nullptr;
  return posix_memalign(&p, 64, static_cast<size_t>(len)) == 0 ? p : nullptr;
}

namespace {

// Forces the descriptor routine's answer for a scope.
struct CacheSize {
  explicit CacheSize(int bytes) { zvp::setCacheSizeOverride(bytes); }
  ~CacheSize() { zvp::setCacheSizeOverride(-1); }
};

TEST(Memory, MallocOfZeroNeverReachesCore) {
  g_mallocCalls = 0;
  EXPECT_EQ(zvpsMalloc_8u(0), nullptr);
  EXPECT_EQ(zvpsMalloc_8u(-7), nullptr);
  EXPECT_EQ(g_mallocCalls.load(), 0);
  Zvp8u* p = zvpsMalloc_8u(100);
  EXPECT_EQ(g_mallocCalls.load(), 1);
  ASSERT_NE(p, nullptr);
  zvpsFree(p);
  zvpsFree(nullptr);  // passed on untested; the core ignores null
}

TEST(Memory, CheckedServicesTestPointerThenLength) {
  Zvp8u a[8] = {1, 2, 3, 4, 5, 6, 7, 8}, b[8] = {};
  EXPECT_EQ(zvpsCopy_8u(nullptr, b, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpsCopy_8u(a, nullptr, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpsCopy_8u(a, b, 0), zvpStatusBadSize);
  EXPECT_EQ(zvpsCopy_8u(a, b, -1), zvpStatusBadSize);
  for (auto v : b) EXPECT_EQ(v, 0);
  EXPECT_EQ(zvpsSet_8u(3, nullptr, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpsSet_8u(3, b, 0), zvpStatusBadSize);
  EXPECT_EQ(zvpsZero_8u(nullptr, -1), zvpStatusNullPointer);
  EXPECT_EQ(zvpsZero_8u(a, 0), zvpStatusBadSize);
  EXPECT_EQ(zvpsZero_16s(nullptr, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpsZero_16s(reinterpret_cast<Zvp16s*>(a), 0), zvpStatusBadSize);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(a[i], i + 1);
  EXPECT_EQ(zvpsCopy_8u(a, b, 8), zvpStatusOk);
  EXPECT_EQ(std::memcmp(a, b, 8), 0);
  EXPECT_EQ(zvpsSet_8u(9, b, 3), zvpStatusOk);
  EXPECT_EQ(b[2], 9);
  EXPECT_EQ(b[3], 4);
  Zvp16s z[4] = {1, 2, 3, 4};
  EXPECT_EQ(zvpsZero_16s(z, 3), zvpStatusOk);  // twice len bytes
  EXPECT_EQ(z[2], 0);
  EXPECT_EQ(z[3], 4);
}

TEST(CacheDescriptors, TableWalk) {
  const char intel[12] = {'G', 'e', 'n', 'u', 'i', 'n', 'e', 'I', 'n', 't', 'e', 'l'};
  const char other[12] = {'A', 'u', 't', 'h', 'e', 'n', 't', 'i', 'c', 'A', 'M', 'D'};
  auto size = [&](uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    const uint32_t r[4] = {a, b, c, d};
    return zvp::cacheSizeFromDescriptors(intel, r);
  };
  EXPECT_EQ(size(0x00EC0001, 0, 0, 0), 24 << 20);
  EXPECT_EQ(size(0x00000001, 0x000000EB, 0, 0), 18 << 20);
  EXPECT_EQ(size(0x00000001, 0, 0x4D000000, 0), 16 << 20);
  EXPECT_EQ(size(0x00000001, 0, 0, 0x0000004C), 12 << 20);
  EXPECT_EQ(size(0x00000001, 0, 0, 0x00470000), 8 << 20);
  EXPECT_EQ(size(0x00000001, 0x4A, 0, 0), 6 << 20);
  EXPECT_EQ(size(0x00000001, 0x29, 0, 0), 4 << 20);
  EXPECT_EQ(size(0x00000001, 0x48, 0, 0), 3 << 20);
  EXPECT_EQ(size(0x00000001, 0x7D, 0, 0), 2 << 20);
  EXPECT_EQ(size(0x00000001, 0x87, 0, 0), 1 << 20);
  EXPECT_EQ(size(0x00000001, 0x43, 0, 0), 512 << 10);
  // The largest cache named wins, wherever its byte stands.
  EXPECT_EQ(size(0x43290001, 0x00D80022, 0x4D, 0x7D), 16 << 20);
  // The low byte of the first register is the count, not a descriptor.
  EXPECT_EQ(size(0x000000EC, 0, 0, 0), 0);
  EXPECT_EQ(size(0x00EC0001 | 0, 0, 0, 0), 24 << 20);
  // A count other than 1 means unknown.
  EXPECT_EQ(size(0x00EC0002, 0, 0, 0), 0);
  // Registers with bit 31 set are ignored.
  EXPECT_EQ(size(0x00000001, 0x800000EC, 0x49, 0), 4 << 20);
  EXPECT_EQ(size(0x80EC0001, 0, 0, 0), 0);
  // Unknown descriptors only.
  EXPECT_EQ(size(0x00000001, 0x01020304, 0x05060708, 0), 0);
  // Another vendor: unknown.
  const uint32_t r[4] = {0x00EC0001, 0, 0, 0};
  EXPECT_EQ(zvp::cacheSizeFromDescriptors(other, r), 0);
}

// Copies of every kind agree with a byte loop, whichever path runs.
void checkCopy(int64_t len, size_t srcOff, size_t dstOff) {
  zt::Guarded src(static_cast<size_t>(len), srcOff), dst(static_cast<size_t>(len), dstOff);
  zt::Rng rng(static_cast<uint64_t>(len) * 131 + srcOff * 7 + dstOff);
  rng.fill(src.data(), src.size());
  ownsCopy_8u(src.data(), dst.data(), static_cast<int>(len));
  ASSERT_EQ(std::memcmp(src.data(), dst.data(), static_cast<size_t>(len)), 0)
      << "len=" << len << " srcOff=" << srcOff << " dstOff=" << dstOff;
  ASSERT_TRUE(dst.intact());
}

TEST(Memory, OrdinaryCopyAllLengthsAndAlignments) {
  zt::Threads t(1);
  CacheSize none(0);
  for (int len = 1; len <= 300; ++len)
    for (size_t so : {0, 1, 4, 8, 12, 15})
      for (size_t d : {0, 3, 16}) checkCopy(len, so, d);
}

TEST(Memory, CopyDirectionCases) {
  // Low 12 address bits of source minus destination decide the block order:
  // cover both sides of 160 and -3936 with an aligned source.
  for (int diff : {16, 160, 176, -16, -160, -3936, -3952, 3936, 2048}) {
    const size_t len = 5000;
    std::vector<uint8_t> store(len * 2 + 16384);
    uintptr_t base = (reinterpret_cast<uintptr_t>(store.data()) + 4095) & ~uintptr_t{4095};
    uint8_t* dst = reinterpret_cast<uint8_t*>(base) + 4096;
    uint8_t* src = dst + len + 4096 + diff;  // same page offset as dst + diff
    if (diff < 0) src += 4096;
    zt::Rng rng(diff + 100000);
    rng.fill(src, len);
    ownsCopy_8u(src, dst, static_cast<int>(len));
    ASSERT_EQ(std::memcmp(src, dst, len), 0) << diff;
    std::memset(dst, 0, len);
    owniCopy8uas(src, static_cast<int>(len), dst, static_cast<int>(len), static_cast<int>(len), 1);
    ASSERT_EQ(std::memcmp(src, dst, len), 0) << diff;
  }
}

TEST(Memory, NonTemporalCopyMatchesOrdinary) {
  for (int64_t len : {1048576, 1048577, 1048576 + 262144 + 13, 3 * 262144 + 7}) {
    for (size_t off : {0, 5}) {
      {
        CacheSize small(1 << 20);  // known, and the length is at least half of it
        checkCopy(len, off, 3 * off);
      }
      {
        CacheSize none(0);  // unknown: ordinary stores
        checkCopy(len, off, 3 * off);
      }
    }
  }
}

TEST(Memory, NonTemporalKernelsDirectly) {
  for (int64_t len : {1, 15, 16, 17, 262144, 262144 + 15, 262160, 600000}) {
    zt::Guarded src(static_cast<size_t>(len), 3), dst(static_cast<size_t>(len), 9);
    zt::Rng rng(len);
    rng.fill(src.data(), src.size());
    zvp::copyNonTemporal(src.data(), dst.data(), len);
    ASSERT_EQ(std::memcmp(src.data(), dst.data(), static_cast<size_t>(len)), 0) << len;
    ASSERT_TRUE(dst.intact());
    zvp::setNonTemporal(0x3C, dst.data(), len);
    for (int64_t i = 0; i < len; ++i) ASSERT_EQ(dst.data()[i], 0x3C);
    ASSERT_TRUE(dst.intact());
  }
}

void checkFill(int len, size_t off, Zvp8u val) {
  zt::Guarded dst(static_cast<size_t>(len), off);
  ownsSet_8u(val, dst.data(), len);
  for (int i = 0; i < len; ++i) ASSERT_EQ(dst.data()[i], val) << "len=" << len << " i=" << i;
  ASSERT_TRUE(dst.intact());
  ownsZero_8u(dst.data(), len);
  for (int i = 0; i < len; ++i) ASSERT_EQ(dst.data()[i], 0) << "len=" << len;
  ASSERT_TRUE(dst.intact());
}

TEST(Memory, FillPathsAgree) {
  {
    CacheSize none(0);
    for (int len = 1; len <= 200; ++len)
      for (size_t off : {0, 1, 7, 15}) checkFill(len, off, static_cast<Zvp8u>(len));
  }
  for (int len : {524288, 524289, 1048576, 1048577 + 64}) {
    CacheSize known(524288);  // a fill above 512 KiB and at least the cache streams
    checkFill(len, 3, 0xC3);
    CacheSize big(1 << 30);  // never at least the whole cache: ordinary
    checkFill(len, 3, 0x3C);
  }
}

TEST(Memory, RegionCopyPaths) {
  zt::Rng rng(99);
  // Short rows, long rows, contiguous regions merged into one row.
  for (int rowBytes : {1, 2, 3, 31, 63, 64, 65, 200, 4096}) {
    for (int height : {1, 3, 17}) {
      for (int pad : {0, 5}) {
        const int srcStep = rowBytes + pad, dstStep = rowBytes + 2 * pad;
        zt::Guarded src(static_cast<size_t>(srcStep) * height, 1), dst(static_cast<size_t>(dstStep) * height, 2);
        rng.fill(src.data(), src.size());
        std::vector<uint8_t> want = dst.snapshot();
        for (int y = 0; y < height; ++y)
          std::memcpy(want.data() + static_cast<size_t>(y) * dstStep, src.data() + static_cast<size_t>(y) * srcStep,
                      static_cast<size_t>(rowBytes));
        owniCopy8uas(src.data(), srcStep, dst.data(), dstStep, rowBytes, height);
        ASSERT_EQ(dst.snapshot(), want) << rowBytes << "x" << height << " pad " << pad;
        ASSERT_TRUE(dst.intact());
      }
    }
  }
  // Large regions with the cache decision forced both ways.
  for (int cache : {0, 1 << 20}) {
    CacheSize cs(cache);
    const int rowBytes = 4096, height = 300;
    zt::Guarded src(static_cast<size_t>(rowBytes) * height, 0), dst(static_cast<size_t>(rowBytes) * height, 0);
    rng.fill(src.data(), src.size());
    owniCopy8uas(src.data(), rowBytes, dst.data(), rowBytes, rowBytes, height);
    ASSERT_EQ(dst.snapshot(), src.snapshot());
    ASSERT_TRUE(dst.intact());
  }
}

}  // namespace
