#include "core/cpu.h"

#include <atomic>

namespace zvp {
namespace {

Isa detect() {
#if defined(ZVP_NO_X86)
  return Isa::Scalar;
#else
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
      __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2"))
    return Isa::AVX512;
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("bmi"))
    return Isa::AVX2;
  if (__builtin_cpu_supports("sse4.1")) return Isa::SSE41;
  return Isa::Scalar;
#endif
}

std::atomic<int> g_cap{static_cast<int>(Isa::AVX512)};

}  // namespace

Isa cpuIsa() {
  static const Isa best = detect();
  const int cap = g_cap.load(std::memory_order_relaxed);
  return static_cast<int>(best) < cap ? best : static_cast<Isa>(cap);
}

Isa setIsaCap(Isa cap) { return static_cast<Isa>(g_cap.exchange(static_cast<int>(cap))); }

}  // namespace zvp
