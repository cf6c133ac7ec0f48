// Chroma sampling down, SSE4.1: 16 outputs (32 source samples) per step;
// pair sums in 16-bit lanes; the bias of the Row members alternates on even
// and odd lanes. The last outputs through the scalar formula.
#include <smmintrin.h>

#include "sample/sampling.h"

namespace zvp::ss {

namespace {

// Pair sums s[2i] + s[2i+1] of 16 outputs, as two registers of 8 lanes.
inline void pairSums(const Zvp8u* s, __m128i& lo, __m128i& hi) {
  const __m128i ones = _mm_set1_epi8(1);
  lo = _mm_maddubs_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), ones);
  hi = _mm_maddubs_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16)), ones);
}

template <int Shift>
inline void store16(Zvp8u* d, __m128i lo, __m128i hi, __m128i bias) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(_mm_srli_epi16(_mm_add_epi16(lo, bias), Shift),
                                                                    _mm_srli_epi16(_mm_add_epi16(hi, bias), Shift)));
}

// The row bodies differ only in the bias (one per lane pair) and the scalar
// formula of the last outputs.
template <uint8_t (*Tail)(const Zvp8u*, int)>
void rowH2V1(const Zvp8u* s, Zvp8u* d, int n, __m128i bias) {
  int i = 0;
  for (; i + 16 <= n; i += 16) {
    __m128i lo, hi;
    pairSums(s + 2 * i, lo, hi);
    store16<1>(d + i, lo, hi, bias);
  }
  for (; i < n; ++i) d[i] = Tail(s, i);
}

template <uint8_t (*Tail)(const Zvp8u*, const Zvp8u*, int)>
void rowH2V2(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n, __m128i bias) {
  int i = 0;
  for (; i + 16 <= n; i += 16) {
    __m128i a, b, c, e;
    pairSums(s + 2 * i, a, b);
    pairSums(t + 2 * i, c, e);
    store16<2>(d + i, _mm_add_epi16(a, c), _mm_add_epi16(b, e), bias);
  }
  for (; i < n; ++i) d[i] = Tail(s, t, i);
}

void downH2V1(const Zvp8u* s, Zvp8u* d, int n) { rowH2V1<ss::downH2V1>(s, d, n, _mm_set1_epi16(1)); }
void downH2V2(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) {
  rowH2V2<ss::downH2V2>(s, t, d, n, _mm_set1_epi16(3));
}
// Groups start at even outputs, so lane parity is output parity.
void boxH2V1(const Zvp8u* s, Zvp8u* d, int n) { rowH2V1<ss::boxH2V1>(s, d, n, _mm_set1_epi32(0x00010000)); }
void boxH2V2(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n) {
  rowH2V2<ss::boxH2V2>(s, t, d, n, _mm_set1_epi32(0x00020001));
}

}  // namespace

const Kernels kSSE41 = {downH2V1, downH2V2, upH2V1SSE41, upH2V2SSE41, boxH2V1, boxH2V2};

}  // namespace zvp::ss
