// Library frame: version record, status values, record sizes, core services.
#include <gtest/gtest.h>
#include <omp.h>

#include <cpuid.h>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/testutil.h"
#include "zvpj.h"

namespace {

// AVX2 with the YMM state enabled by the OS, read here independently of the
// core library: CPUID leaf 1 (OSXSAVE, AVX), XGETBV, leaf 7 (AVX2).
bool processorHasAvx2() {
  unsigned a, b, c, d;
  if (!__get_cpuid(1, &a, &b, &c, &d)) return false;
  if (!(c & (1u << 27)) || !(c & (1u << 28))) return false;
  unsigned lo, hi;
  __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
  if ((lo & 6) != 6) return false;
  if (__get_cpuid_max(0, nullptr) < 7) return false;
  __cpuid_count(7, 0, a, b, c, d);
  return (b & (1u << 5)) != 0;
}

TEST(Version, RecordIsExact) {
  const ZvpLibraryVersion* v = zvpjGetLibVersion();
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->major, 6);
  EXPECT_EQ(v->minor, 1);
  EXPECT_EQ(v->majorBuild, 137);
  EXPECT_EQ(v->build, 823);
  EXPECT_EQ(std::memcmp(v->targetCpu, "p8\0\0", 4), 0);
  EXPECT_STREQ(v->version, "6.1 build 137.56");
  EXPECT_STREQ(v->buildDate, "Mar 17 2010");
}

TEST(Version, NameFollowsFeatureBit0x80) {
  const ZvpLibraryVersion* v = zvpjGetLibVersion();
  const bool plus = ownGetFeature(0x80) != 0;
  EXPECT_EQ(plus, processorHasAvx2());
  EXPECT_STREQ(v->name, plus ? "libzvpjp8.so.6.1+" : "libzvpjp8.so.6.1");
  EXPECT_EQ(ZVP_FEATURE_AVX2, 0x80u);
}

TEST(Version, SameRecordOnEveryCall) {
  const ZvpLibraryVersion* a = zvpjGetLibVersion();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(zvpjGetLibVersion(), a);
}

TEST(Status, TableValues) {
  EXPECT_EQ(zvpStatusOk, 0);
  EXPECT_EQ(zvpStatusDivideByZero, 6);
  EXPECT_EQ(zvpStatusError, -2);
  EXPECT_EQ(zvpStatusBadArgument, -5);
  EXPECT_EQ(zvpStatusBadSize, -6);
  EXPECT_EQ(zvpStatusRange, -7);
  EXPECT_EQ(zvpStatusNullPointer, -8);
  EXPECT_EQ(zvpStatusOutOfMemory, -9);
  EXPECT_EQ(zvpStatusBadStep, -14);
  EXPECT_EQ(zvpStatusContextMismatch, -17);
  EXPECT_EQ(zvpStatusOutOfBuffer, -62);
  EXPECT_EQ(zvpStatusJpegRange, -63);
  EXPECT_EQ(zvpStatusHuffmanTable, -64);
  EXPECT_EQ(zvpStatusDamagedCodeBlock, -112);
  EXPECT_EQ(zvpStatusBadPassNumber, -113);
  EXPECT_EQ(zvpStatusUnderRun, -124);
  EXPECT_EQ(zvpStatusNotAttached, -180);
}

TEST(Records, Sizes) {
  EXPECT_EQ(sizeof(ZvpiSize), 8u);
  EXPECT_EQ(sizeof(ZvpiRect), 16u);
  EXPECT_EQ(offsetof(ZvpiSize, width), 0u);
  EXPECT_EQ(offsetof(ZvpiSize, height), 4u);
  EXPECT_EQ(offsetof(ZvpiRect, x), 0u);
  EXPECT_EQ(offsetof(ZvpiRect, y), 4u);
  EXPECT_EQ(offsetof(ZvpiRect, width), 8u);
  EXPECT_EQ(offsetof(ZvpiRect, height), 12u);
  EXPECT_EQ(offsetof(ZvpLibraryVersion, targetCpu), 16u);
}

TEST(Core, MallocIsAlignedAndRejectsEmpty) {
  EXPECT_EQ(zvpMalloc(0), nullptr);
  EXPECT_EQ(zvpMalloc(-1), nullptr);
  for (int len : {1, 3, 64, 1000, 1 << 20}) {
    void* p = zvpMalloc(len);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
    std::memset(p, 0xEE, static_cast<size_t>(len));
    zvpFree(p);
  }
  zvpFree(nullptr);
}

TEST(Core, MaxCacheSize) {
  EXPECT_EQ(zvpGetMaxCacheSizeB(nullptr), zvpStatusNullPointer);
  int size = -1;
  const ZvpStatus st = zvpGetMaxCacheSizeB(&size);
  if (st == zvpStatusOk) {
    EXPECT_GT(size, 0);
  } else {
    EXPECT_EQ(size, 0);
  }
}

TEST(Core, ThreadCount) {
  const char* env = std::getenv("OMP_NUM_THREADS");
  if (env == nullptr) {
    EXPECT_EQ(ownGetNumThreads(), omp_get_max_threads());
  }
  const int saved = zvpGetNumThreads();
  EXPECT_EQ(zvpSetNumThreads(0), zvpStatusBadSize);
  EXPECT_EQ(zvpSetNumThreads(-3), zvpStatusBadSize);
  EXPECT_EQ(zvpGetNumThreads(), saved);
  EXPECT_EQ(zvpSetNumThreads(5), zvpStatusOk);
  EXPECT_EQ(ownGetNumThreads(), 5);
  EXPECT_EQ(zvpGetNumThreads(), 5);
  EXPECT_EQ(zvpSetNumThreads(saved), zvpStatusOk);
}

// Run by CTest with OMP_NUM_THREADS=3 in the environment.
TEST(CoreEnv, HonoursOmpNumThreads) {
  const char* env = std::getenv("OMP_NUM_THREADS");
  if (env == nullptr || std::string(env) != "3") GTEST_SKIP() << "needs OMP_NUM_THREADS=3";
  EXPECT_EQ(ownGetNumThreads(), 3);
}

}  // namespace
