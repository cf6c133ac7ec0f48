// Chroma sampling kernels: every SSE4.1 kernel against its scalar twin at
// every output count up to 80 and every misalignment of source and
// destination; the up kernels with their sample before and after.
#include <gtest/gtest.h>

#include "core/cpu.h"
#include "sample/sampling.h"
#include "support/testutil.h"

namespace {

#if !defined(ZVP_NO_X86)
using zvp::ss::Kernels;

template <class Run>
void twins(int inPerOut, Run&& run) {
  zt::Rng rng(99);
  for (int n = 0; n <= 80; ++n)
    for (size_t offS = 0; offS < 17; offS += 3)
      for (size_t offD = 0; offD < 17; offD += 5) {
        const size_t inLen = static_cast<size_t>(n) * inPerOut + 4;
        zt::Guarded s(inLen, offS), t(inLen, offS + 1), a(static_cast<size_t>(n), offD), b(static_cast<size_t>(n), offD);
        rng.fill(s.data(), inLen), rng.fill(t.data(), inLen);
        run(zvp::ss::kScalar, s.data() + 1, t.data() + 1, a.data(), n);  // one valid sample before
        run(zvp::ss::kSSE41, s.data() + 1, t.data() + 1, b.data(), n);
        ASSERT_EQ(a.snapshot(), b.snapshot()) << "n " << n << " offsets " << offS << " " << offD;
        ASSERT_TRUE(a.intact() && b.intact());
      }
}

TEST(SamplingKernels, VectorKernelsMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  twins(2, [](const Kernels& k, const Zvp8u* s, const Zvp8u*, Zvp8u* d, int n) { k.downH2V1(s, d, n); });
  twins(2, [](const Kernels& k, const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) { k.downH2V2(s, t, d, n); });
  twins(2, [](const Kernels& k, const Zvp8u* s, const Zvp8u*, Zvp8u* d, int n) { k.boxH2V1(s, d, n); });
  twins(2, [](const Kernels& k, const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) { k.boxH2V2(s, t, d, n); });
  twins(1, [](const Kernels& k, const Zvp8u* s, const Zvp8u*, Zvp8u* d, int n) { k.upH2V1(s, d, n); });
  twins(1, [](const Kernels& k, const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) { k.upH2V2(s, t, d, n); });
}

// Extreme values: all 0 and all 255 rows, and alternating extremes.
TEST(SamplingKernels, ExtremesMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  for (int pattern = 0; pattern < 4; ++pattern) {
    std::vector<uint8_t> s(200), t(200), a(64), b(64);
    for (int i = 0; i < 200; ++i) {
      s[i] = uint8_t(pattern == 0 ? 0 : pattern == 1 ? 255 : ((i + pattern) & 1) * 255);
      t[i] = uint8_t(255 - s[i]);
    }
    for (auto fn : {&Kernels::downH2V2, &Kernels::boxH2V2}) {
      (zvp::ss::kScalar.*fn)(s.data(), t.data(), a.data(), 64);
      (zvp::ss::kSSE41.*fn)(s.data(), t.data(), b.data(), 64);
      ASSERT_EQ(a, b);
    }
    zvp::ss::kScalar.upH2V2(s.data() + 1, t.data() + 1, a.data(), 64);
    zvp::ss::kSSE41.upH2V2(s.data() + 1, t.data() + 1, b.data(), 64);
    ASSERT_EQ(a, b);
  }
}
#endif

}  // namespace
