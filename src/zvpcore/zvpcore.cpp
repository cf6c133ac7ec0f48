// libzvpcore: the services the primitives library imports — aligned memory,
// the size of the largest cache, the number of threads a call may use, and
// the processor's feature word.
#include "zvpj.h"

#include <omp.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

namespace {

// 0 means "not set by the application": follow the OpenMP runtime.
std::atomic<int> g_numThreads{0};

Zvp64u processorFeatures() {
  Zvp64u f = 0;
#if defined(__x86_64__) || defined(__i386__)
  __builtin_cpu_init();
  // __builtin_cpu_supports("avx2") also requires the OS to save YMM state.
  if (__builtin_cpu_supports("avx2")) f |= ZVP_FEATURE_AVX2;
#endif
  return f;
}

}  // namespace

extern "C" {

ZVPCORE_API void* zvpMalloc(int len) {
  if (len < 1) return nullptr;
  void* p = nullptr;
  if (posix_memalign(&p, 64, static_cast<size_t>(len)) != 0) return nullptr;
  return p;
}

ZVPCORE_API void zvpFree(void* ptr) { std::free(ptr); }

ZVPCORE_API ZvpStatus zvpGetMaxCacheSizeB(int* pSizeByte) {
  if (!pSizeByte) return zvpStatusNullPointer;
  long best = 0;
  const int names[] = {_SC_LEVEL1_DCACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL3_CACHE_SIZE,
                       _SC_LEVEL4_CACHE_SIZE};
  for (int n : names) {
    long v = sysconf(n);
    if (v > best) best = v;
  }
  if (best <= 0) {
    *pSizeByte = 0;
    return zvpStatusError;  // the processor did not tell
  }
  *pSizeByte = best > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(best);
  return zvpStatusOk;
}

ZVPCORE_API int ownGetNumThreads(void) {
  int n = g_numThreads.load(std::memory_order_relaxed);
  return n > 0 ? n : omp_get_max_threads();
}

ZVPCORE_API int zvpGetNumThreads(void) { return ownGetNumThreads(); }

ZVPCORE_API ZvpStatus zvpSetNumThreads(int numThreads) {
  if (numThreads < 1) return zvpStatusBadSize;
  g_numThreads.store(numThreads, std::memory_order_relaxed);
  return zvpStatusOk;
}

ZVPCORE_API Zvp64u ownGetFeature(Zvp64u featureMask) {
  static const Zvp64u features = processorFeatures();
  return features & featureMask;
}

}  // extern "C"
