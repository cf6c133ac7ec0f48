// Reverse division by a constant: pDst[i] = value / pSrc[i], rounded to the
// nearest integer, in single precision. Lone elements (the lead up to the
// 16-byte boundary of pDst and the tail) divide exactly; groups of 8 refine a
// reciprocal estimate. Both round ties to even.
#include <omp.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#if !defined(ZVP_NO_X86)
#include <xmmintrin.h>
#endif

#include "core/checks.h"
#include "core/cpu.h"
#include "core/memory.h"
#include "core/primitives.h"

namespace zvp::prim {

float rcpEstimate(float x) {
#if !defined(ZVP_NO_X86)
  return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(x)));
#else
  return 1.0f / x;
#endif
}

Zvp16u divLone(Zvp16u value, Zvp16u x) {
  if (x == 0) return 0xFFFF;
  const float q = static_cast<float>(value) / static_cast<float>(x);
  return static_cast<Zvp16u>(static_cast<int32_t>(std::nearbyintf(q)));
}

Zvp16u divLane(Zvp16u value, Zvp16u x) {
  if (x == 0) return 0xFFFF;
  if (x == 1 && value > 0x7FFF) return value;  // the patched lanes
  const float fx = static_cast<float>(x);
  const float r = rcpEstimate(fx);
  const float q = static_cast<float>(value) * r;
  const float e = 1.0f - fx * r;
  const float a = q + e * q;
  const float res = a + (e * e) * a;
  const int32_t n = static_cast<int32_t>(std::nearbyintf(res));
  return static_cast<Zvp16u>(n > 32767 ? 32767 : n);  // saturation to 16-bit signed
}

namespace {
// Elements before pDst reaches a 16-byte boundary (all of them at an odd address).
int leadCount(const Zvp16u* pDst, int len) {
  const uintptr_t a = reinterpret_cast<uintptr_t>(pDst);
  if (a & 1) return len;
  const int lead = static_cast<int>(((16 - (a & 15)) & 15) / 2);
  return lead < len ? lead : len;
}
inline Zvp16u ld(const Zvp16u* p) {
  Zvp16u v;
  std::memcpy(&v, p, 2);
  return v;
}
inline void st(Zvp16u* p, Zvp16u v) { std::memcpy(p, &v, 2); }
}  // namespace

int divRevScalar(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len) {
  int zero = 0;
  const int lead = leadCount(pDst, len);
  int i = 0;
  for (; i < lead; ++i) {
    const Zvp16u x = ld(pSrc + i);
    zero |= x == 0;
    st(pDst + i, divLone(value, x));
  }
  for (; i + 8 <= len; i += 8)
    for (int k = 0; k < 8; ++k) {
      const Zvp16u x = ld(pSrc + i + k);
      zero |= x == 0;
      st(pDst + i + k, divLane(value, x));
    }
  for (; i < len; ++i) {
    const Zvp16u x = ld(pSrc + i);
    zero |= x == 0;
    st(pDst + i, divLone(value, x));
  }
  return zero;
}

DivRevFn divRev() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return divRevSSE41;
#endif
  return divRevScalar;
}

}  // namespace zvp::prim

int ownzvpsDivCRev_16u(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len) {
  return zvp::prim::divRev()(pSrc, value, pDst, len);
}

int ownzvpsDivCRev_16u_omp(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len) {
  const int threads = ownGetNumThreads();
  if (threads <= 1 || len < threads) return ownzvpsDivCRev_16u(pSrc, value, pDst, len);
  const int team = threads < 2 ? threads : 2;  // capped at two, whatever the machine offers
  // The team's counter of zero divisors: a plain read-increment-write, so a
  // lost increment is possible and harmless (only zero or nonzero matters).
  std::atomic<int> zeros{0};
  int chunk = 0, rest = 0, size = 1;
#pragma omp parallel num_threads(team)
  {
#pragma omp master
    {
      size = omp_get_num_threads();
      chunk = len / size;
      rest = len % size;
    }
#pragma omp barrier
    const int t = omp_get_thread_num();
    const int count = chunk + (t == size - 1 ? rest : 0);
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(t) * chunk;
    if (count > 0 && ownzvpsDivCRev_16u(pSrc + start, value, pDst + start, count))
      zeros.store(zeros.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }
  return zeros.load(std::memory_order_relaxed);
}

ZvpStatus zvpsDivCRev_16u(const Zvp16u* pSrc, Zvp16u value, Zvp16u* pDst, int len) {
  if (ZvpStatus st = zvp::checkRows({pSrc, pDst}, len)) return st;
  if (value == 0) {
    bool zero = false;
    for (int i = 0; i < len && !zero; ++i) {
      Zvp16u x;
      std::memcpy(&x, pSrc + i, 2);
      zero = x == 0;
    }
    zvpsZero_16s(reinterpret_cast<Zvp16s*>(pDst), len);
    return zero ? zvpStatusDivideByZero : zvpStatusOk;
  }
  const int zero = len >= 2048 ? ownzvpsDivCRev_16u_omp(pSrc, value, pDst, len)
                               : ownzvpsDivCRev_16u(pSrc, value, pDst, len);
  return zero ? zvpStatusDivideByZero : zvpStatusOk;
}

ZvpStatus zvpsDivCRev_16u_I(Zvp16u value, Zvp16u* pSrcDst, int len) {
  if (ZvpStatus st = zvp::checkRows({pSrcDst}, len)) return st;
  return zvpsDivCRev_16u(pSrcDst, value, pSrcDst, len);
}
