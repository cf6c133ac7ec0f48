// Allocation and fills: zvpsMalloc_8u, zvpsFree, zvpsSet_8u, zvpsZero_8u,
// zvpsZero_16s and their workers.
#include <cstring>

#include "core/checks.h"
#include "core/memory.h"

#if !defined(ZVP_NO_X86)
#include <emmintrin.h>
#endif

Zvp8u* zvpsMalloc_8u(int len) {
  if (len < 1) return nullptr;
  return static_cast<Zvp8u*>(zvpMalloc(len));
}

void zvpsFree(void* ptr) { zvpFree(ptr); }

namespace zvp {

void setBytesScalar(Zvp8u val, Zvp8u* pDst, int64_t len) {
  for (int64_t i = 0; i < len; ++i) pDst[i] = val;
}

#if !defined(ZVP_NO_X86)

static void setOrdinary(Zvp8u val, Zvp8u* d, int64_t len) {
  if (len < 16) {
    setBytesScalar(val, d, len);
    return;
  }
  const __m128i v = _mm_set1_epi8(static_cast<char>(val));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(d), v);
  int64_t o = (16 - static_cast<int64_t>(reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  for (; o + 64 <= len; o += 64) {
    __m128i* p = reinterpret_cast<__m128i*>(d + o);
    _mm_store_si128(p, v);
    _mm_store_si128(p + 1, v);
    _mm_store_si128(p + 2, v);
    _mm_store_si128(p + 3, v);
  }
  for (; o + 16 <= len; o += 16) _mm_store_si128(reinterpret_cast<__m128i*>(d + o), v);
  if (o < len) _mm_storeu_si128(reinterpret_cast<__m128i*>(d + len - 16), v);
}

void setNonTemporal(Zvp8u val, Zvp8u* d, int64_t len) {
  int64_t head = (16 - static_cast<int64_t>(reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  if (head > len) head = len;
  setBytesScalar(val, d, head);
  const __m128i v = _mm_set1_epi8(static_cast<char>(val));
  int64_t o = head;
  for (; o + 16 <= len; o += 16) _mm_stream_si128(reinterpret_cast<__m128i*>(d + o), v);
  setBytesScalar(val, d + o, len - o);
  _mm_sfence();
}

#else

static void setOrdinary(Zvp8u val, Zvp8u* d, int64_t len) { setBytesScalar(val, d, len); }
void setNonTemporal(Zvp8u val, Zvp8u* d, int64_t len) { setBytesScalar(val, d, len); }

#endif

// Fills above 512 KiB stream past the cache when they are at least as large
// as the largest cache.
static void fill(Zvp8u val, Zvp8u* pDst, int len) {
  if (len > 524288) {
    const int cache = cacheSizeByDescriptor();
    if (cache > 0 && len >= cache) {
      setNonTemporal(val, pDst, len);
      return;
    }
  }
  setOrdinary(val, pDst, len);
}

}  // namespace zvp

void ownsSet_8u(Zvp8u val, Zvp8u* pDst, int len) { zvp::fill(val, pDst, len); }
void ownsZero_8u(Zvp8u* pDst, int len) { zvp::fill(0, pDst, len); }

ZvpStatus zvpsSet_8u(Zvp8u val, Zvp8u* pDst, int len) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pDst), zvp::checkLen(len)})) return st;
  ownsSet_8u(val, pDst, len);
  return zvpStatusOk;
}

ZvpStatus zvpsZero_8u(Zvp8u* pDst, int len) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pDst), zvp::checkLen(len)})) return st;
  ownsZero_8u(pDst, len);
  return zvpStatusOk;
}

ZvpStatus zvpsZero_16s(Zvp16s* pDst, int len) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pDst), zvp::checkLen(len)})) return st;
  ownsZero_8u(reinterpret_cast<Zvp8u*>(pDst), 2 * len);
  return zvpStatusOk;
}
