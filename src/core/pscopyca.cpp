// Byte copies: the checked service zvpsCopy_8u, its worker ownsCopy_8u, and
// the ordinary and non-temporal copy kernels shared with the region copy.
// Every path gives the same bytes; they differ in speed only. Overlapping
// buffers are not supported.
#include <cstring>

#include "core/checks.h"
#include "core/copykernels.h"
#include "core/memory.h"

#if !defined(ZVP_NO_X86)
#include <emmintrin.h>
#endif

namespace zvp {

void copyBytesScalar(const Zvp8u* pSrc, Zvp8u* pDst, int64_t len) {
  for (int64_t i = 0; i < len; ++i) pDst[i] = pSrc[i];
}

void copyShort(const Zvp8u* s, Zvp8u* d, int len, bool twoByteStep) {
  // Moves 32, 16, 8, 4 (2) and then single bytes as the length's bits ask.
  int o = 0;
  if (len & 32) { std::memcpy(d + o, s + o, 32); o += 32; }
  if (len & 16) { std::memcpy(d + o, s + o, 16); o += 16; }
  if (len & 8) { std::memcpy(d + o, s + o, 8); o += 8; }
  if (len & 4) { std::memcpy(d + o, s + o, 4); o += 4; }
  if (twoByteStep) {
    if (len & 2) { std::memcpy(d + o, s + o, 2); o += 2; }
    if (len & 1) d[o] = s[o];
  } else {
    while (o < len) { d[o] = s[o]; ++o; }
  }
}

#if !defined(ZVP_NO_X86)

// 64 bytes into a 16-byte aligned destination.
template <bool AlignedSource>
inline void copyBlock64(const Zvp8u* s, Zvp8u* d) {
  const __m128i* sp = reinterpret_cast<const __m128i*>(s);
  __m128i* dp = reinterpret_cast<__m128i*>(d);
  __m128i v[4];
  for (int i = 0; i < 4; ++i) v[i] = AlignedSource ? _mm_load_si128(sp + i) : _mm_loadu_si128(sp + i);
  for (int i = 0; i < 4; ++i) _mm_store_si128(dp + i, v[i]);
}

void copyOrdinary(const Zvp8u* s, Zvp8u* d, int64_t len, DirectionRule rule) {
  // len >= 64. Align the destination with one unaligned 16-byte copy.
  _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
  const int64_t head = (16 - static_cast<int64_t>(reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  s += head;
  d += head;
  len -= head;
  const int64_t body = (len >> 6) << 6;
  if ((reinterpret_cast<uintptr_t>(s) & 15) == 0) {
    // Pick the direction that keeps loads off the page offset of recent stores.
    const int dlow = static_cast<int>(reinterpret_cast<uintptr_t>(s) & 0xFFF) -
                     static_cast<int>(reinterpret_cast<uintptr_t>(d) & 0xFFF);
    const bool ascending = rule == DirectionRule::Vector ? ((dlow > 0 && dlow <= 160) || dlow < -3936)
                                                         : !(dlow >= 3936 || (dlow >= -160 && dlow < 0));
    if (ascending)
      for (int64_t o = 0; o < body; o += 64) copyBlock64<true>(s + o, d + o);
    else
      for (int64_t o = body - 64; o >= 0; o -= 64) copyBlock64<true>(s + o, d + o);
  } else {
    for (int64_t o = 0; o < body; o += 64) copyBlock64<false>(s + o, d + o);
  }
  // Tail below 64 bytes: 16-byte steps, the last one ending at the end.
  int64_t o = body;
  for (; o + 16 <= len; o += 16)
    _mm_store_si128(reinterpret_cast<__m128i*>(d + o), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + o)));
  if (o < len) {
    const int64_t last = len - 16;  // len >= 48 here, so this stays inside
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + last), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + last)));
  }
}

void copyNonTemporal(const Zvp8u* s, Zvp8u* d, int64_t len) {
  constexpr int64_t kBlock = 262144;
  // Ordinary stores up to the destination's 16-byte boundary.
  int64_t head = (16 - static_cast<int64_t>(reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  if (head > len) head = len;
  copyBytesScalar(s, d, head);
  int64_t o = head;
  volatile Zvp8u sink = 0;
  while (len - o >= 16) {
    const int64_t n = (len - o < kBlock) ? len - o : kBlock;
    // Pull the block's source in: one read every 64 bytes.
    Zvp8u acc = 0;
    for (int64_t t = 0; t < n; t += 64) acc ^= s[o + t];
    sink = acc;
    const int64_t streamed = n & ~int64_t{15};
    for (int64_t t = 0; t < streamed; t += 16)
      _mm_stream_si128(reinterpret_cast<__m128i*>(d + o + t), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + o + t)));
    o += streamed;
    if (streamed != n) break;
  }
  (void)sink;
  copyBytesScalar(s + o, d + o, len - o);  // final bytes below 16
  _mm_sfence();
}

#else  // no x86: the scalar twins serve every path

void copyOrdinary(const Zvp8u* s, Zvp8u* d, int64_t len, DirectionRule) { copyBytesScalar(s, d, len); }
void copyNonTemporal(const Zvp8u* s, Zvp8u* d, int64_t len) { copyBytesScalar(s, d, len); }

#endif

}  // namespace zvp

void ownsCopy_8u(const Zvp8u* pSrc, Zvp8u* pDst, int len) {
  if (len >= 1048576) {
    const int cache = zvp::cacheSizeByDescriptor();
    if (cache > 0 && len >= cache / 2) {
      zvp::copyNonTemporal(pSrc, pDst, len);
      return;
    }
  }
  if (len < 64) {
    zvp::copyShort(pSrc, pDst, len, false);
    return;
  }
  zvp::copyOrdinary(pSrc, pDst, len, zvp::DirectionRule::Vector);
}

ZvpStatus zvpsCopy_8u(const Zvp8u* pSrc, Zvp8u* pDst, int len) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkLen(len)})) return st;
  ownsCopy_8u(pSrc, pDst, len);
  return zvpStatusOk;
}
