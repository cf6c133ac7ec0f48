// The row-parallel helper: when a team is opened, how many threads it has,
// and how rows are divided.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "core/parallel.h"
#include "support/testutil.h"

namespace {

struct RowRecord {
  int thread = -1, team = -1, level = -1;
};

std::vector<RowRecord> runRows(ZvpiSize roi) {
  std::vector<RowRecord> rec(static_cast<size_t>(roi.height));
  zvp::parallelRows(roi, [&](int y) {
    rec[y] = {omp_get_thread_num(), omp_get_num_threads(), omp_get_level()};
  });
  return rec;
}

int teamSize(const std::vector<RowRecord>& rec) {
  int t = rec.front().team;
  for (const auto& r : rec) EXPECT_EQ(r.team, t);
  return t;
}

TEST(ParallelRows, WrappedProduct) {
  EXPECT_EQ(zvp::wrappedPixels({128, 64}), 8192);
  EXPECT_EQ(zvp::wrappedPixels({65536, 32768}), INT32_MIN);
  EXPECT_EQ(zvp::wrappedPixels({46341, 46341}), -2147479015);
  EXPECT_EQ(zvp::wrappedPixels({65536, 65537}), 65536);
}

TEST(ParallelRows, ExactlyThresholdStaysSerial) {
  zt::Threads t(8);
  auto rec = runRows({128, 64});
  EXPECT_EQ(teamSize(rec), 1);
  for (const auto& r : rec) EXPECT_EQ(r.level, 1);  // still inside a (serialised) region
  rec = runRows({8192, 1});
  EXPECT_EQ(teamSize(rec), 1);
}

TEST(ParallelRows, AboveThresholdUsesTheTeam) {
  zt::Threads t(2);
  EXPECT_EQ(teamSize(runRows({8193, 2})), 2);
  EXPECT_EQ(teamSize(runRows({4097, 2})), 2);  // 8194 pixels
}

TEST(ParallelRows, NarrowTallRegionGoesParallel) {
  zt::Threads t(2);
  auto rec = runRows({1, 10000});
  EXPECT_EQ(teamSize(rec), 2);
  // Static schedule without chunk: one contiguous band per thread, in order.
  for (size_t y = 1; y < rec.size(); ++y) EXPECT_LE(rec[y - 1].thread, rec[y].thread);
  EXPECT_EQ(rec.front().thread, 0);
  EXPECT_EQ(rec.back().thread, 1);
  EXPECT_EQ(std::count_if(rec.begin(), rec.end(), [](const RowRecord& r) { return r.thread == 0; }), 5000);
}

TEST(ParallelRows, OverflowingProductRunsSerially) {
  zt::Threads t(4);
  std::atomic<int> rows{0};
  std::atomic<int> maxTeam{0};
  zvp::parallelRows({65536, 32768}, [&](int) {
    rows.fetch_add(1, std::memory_order_relaxed);
    int team = omp_get_num_threads();
    int prev = maxTeam.load();
    while (team > prev && !maxTeam.compare_exchange_weak(prev, team)) {
    }
  });
  EXPECT_EQ(rows.load(), 32768);
  EXPECT_EQ(maxTeam.load(), 1);
}

TEST(ParallelRows, TeamOfOneStillOpensTheRegion) {
  zt::Threads t(1);
  auto rec = runRows({100, 100});
  EXPECT_EQ(teamSize(rec), 1);
  for (const auto& r : rec) EXPECT_EQ(r.level, 1);
}

TEST(ParallelRows, ThreadCountIsReadOnEveryCall) {
  {
    zt::Threads t(3);
    EXPECT_EQ(teamSize(runRows({200, 100})), 3);
  }
  {
    zt::Threads t(2);
    EXPECT_EQ(teamSize(runRows({200, 100})), 2);
  }
}

}  // namespace
