// Rules of the DXT encoders shared by the scalar, SSE4.1 and AVX2 kernels:
// the inset ends, the 5:6:5 words, the three-colour palette, the dividers of
// the wide path, the DXT5 alpha thresholds, the YCoCg ends, and the byte
// layout of the halves of an output block. Plain scalar code only, so every
// kernel file can include it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "zvpj.h"

namespace zvp::tex::enc {

inline void store16(Zvp8u* p, uint32_t v) {
  p[0] = static_cast<Zvp8u>(v);
  p[1] = static_cast<Zvp8u>(v >> 8);
}
inline void store32(Zvp8u* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<Zvp8u>(v >> (8 * i));
}

inline int absd(int a, int b) { return a > b ? a - b : b - a; }

// Byte ch of a word of four packed channels.
inline int channel(uint32_t w, int ch) { return static_cast<int>((w >> (8 * ch)) & 0xFF); }

// The 5:6:5 word of three 8-bit channels (their top bits).
inline uint32_t pack565(int r, int g, int b) { return static_cast<uint32_t>(((r >> 3) << 11) | ((g >> 2) << 5) | (b >> 3)); }

// A 5-bit or 6-bit field widened back to 8 bits by repeating its top bits;
// `v` is the 8-bit value the field was cut from.
inline int widen5(int v) { return (v & 0xF8) | (v >> 5); }
inline int widen6(int v) { return (v & 0xFC) | (v >> 6); }

// The inset ends of a channel of range [mn, mx]: each end moves inward by
// a sixteenth of the range.
inline void insetEnds(int mn, int mx, int& lo, int& hi) {
  const int inset = (mx - mn) >> 4;
  hi = mx - inset;
  lo = mn + inset;
}

// Entries 2 and 3 of a four-entry palette from entries 0 and 1, for the
// first n channels: (2 c0 + c1) / 3 and (c0 + 2 c1) / 3.
template <int N>
inline void paletteThirds(int c[4][N]) {
  for (int ch = 0; ch < N; ++ch) {
    c[2][ch] = (2 * c[0][ch] + c[1][ch]) / 3;
    c[3][ch] = (c[0][ch] + 2 * c[1][ch]) / 3;
  }
}

// The colour half of a block: the two words, then the 2-bit indices.
inline void storeColourHalf(Zvp8u* pOut, uint32_t w0, uint32_t w1, uint32_t indices) {
  store16(pOut, w0);
  store16(pOut + 2, w1);
  store32(pOut + 4, indices);
}

// The DXT5 alpha half of a block: the two ends, then 48 bits of indices.
inline void storeAlphaHalf(Zvp8u* pOut, int a0, int a1, uint64_t bits) {
  pOut[0] = static_cast<Zvp8u>(a0);
  pOut[1] = static_cast<Zvp8u>(a1);
  for (int i = 0; i < 6; ++i) pOut[2 + i] = static_cast<Zvp8u>(bits >> (8 * i));
}

// Four groups of 12 bits (four 3-bit indices each) joined to 48 bits.
inline uint64_t join12(uint32_t g0, uint32_t g1, uint32_t g2, uint32_t g3) {
  return static_cast<uint64_t>(g0) | (static_cast<uint64_t>(g1) << 12) | (static_cast<uint64_t>(g2) << 24) |
         (static_cast<uint64_t>(g3) << 36);
}

// ---- The DXT5 alpha thresholds ----------------------------------------------

// The seven thresholds of ends a0, a1, as bytes: a pixel's index follows from
// the number of thresholds at or above its alpha.
inline void alphaThresholds(int a0, int a1, int t[7]) {
  const int bias = (a0 - a1) / 14;
  t[0] = (a1 + bias) & 0xFF;
  for (int k = 1; k <= 6; ++k) t[k] = (((7 - k) * a0 + k * a1) / 7 + bias) & 0xFF;
}

// ---- The wide DXT5 path --------------------------------------------------------

// Dividers, low 16 bits read as signed: 32768 / (s + 1) for the sum s of the
// R, G, B ranges (a sum of 0 gives -32768), and 65536 / (a + 1) for the
// alpha range a (a range of 0 gives 0, a range of 1 gives -32768).
struct Dividers {
  int16_t colour[766];
  int16_t alpha[256];
};
constexpr Dividers makeDividers() {
  Dividers d{};
  for (int i = 0; i < 766; ++i) d.colour[i] = static_cast<int16_t>(static_cast<uint16_t>(32768 / (i + 1)));
  for (int i = 0; i < 256; ++i) d.alpha[i] = static_cast<int16_t>(static_cast<uint16_t>(65536 / (i + 1)));
  return d;
}
inline constexpr Dividers kDividers = makeDividers();

// The position of a pixel on the box diagonal (colour 0..3, alpha 0..7) to
// its index; 16 entries, so a byte shuffle can read them.
alignas(16) inline constexpr Zvp8u kColourRawToIndex[16] = {1, 3, 2, 0};
alignas(16) inline constexpr Zvp8u kAlphaRawToIndex[16] = {1, 7, 6, 5, 4, 3, 2, 0};

// The channel minima and maxima of a wide block, packed R G B A in words.
struct WideRange {
  uint32_t mn, mx;
  int colourDivider() const {
    int s = 0;
    for (int ch = 0; ch < 3; ++ch) s += channel(mx, ch) - channel(mn, ch);
    return kDividers.colour[s];
  }
  int alphaDivider() const { return kDividers.alpha[channel(mx, 3) - channel(mn, 3)]; }
};

// The 16 bytes of a wide block from its ranges and its packed indices.
inline void storeWideBlock(Zvp8u* pOut, WideRange r, uint32_t colourIndices, uint64_t alphaIndices) {
  int lo[4], hi[4];
  for (int ch = 0; ch < 4; ++ch) insetEnds(channel(r.mn, ch), channel(r.mx, ch), lo[ch], hi[ch]);
  storeAlphaHalf(pOut, hi[3], lo[3], alphaIndices);
  storeColourHalf(pOut + 8, pack565(hi[0], hi[1], hi[2]), pack565(lo[0], lo[1], lo[2]), colourIndices);
}

// ---- The YCoCg block ------------------------------------------------------------

// The chroma scale of a block: 4, 2 or 1 as the largest distance of a
// chroma extreme from 128 is below 32, below 64, or not.
inline int ycocgScale(int mnCo, int mxCo, int mnCg, int mxCg) {
  const int q = std::max({absd(mxCo, 128), absd(mxCg, 128), absd(mnCo, 128), absd(mnCg, 128)});
  return q < 32 ? 4 : (q < 64 ? 2 : 1);
}

// A chroma byte scaled about 128, modulo 256.
inline uint32_t ycocgScaled(int scale, int x) { return static_cast<uint32_t>((scale * (x - 128) + 128) & 255); }

// The chroma ends of a block from the scaled range [l, h] of one chroma
// channel. Unsigned, with no lower clamp: a low end of 0 with a range below
// 7 wraps and reads as all ones.
inline uint32_t ycocgLowEnd(uint32_t l, uint32_t h) { return ((16u * l + (h - l) - 7u) >> 4) & 0xFF; }
inline uint32_t ycocgHighEnd(uint32_t l, uint32_t h) { return std::min<uint32_t>((16u * h - (h - l) + 7u) >> 4, 255u); }

// The ends of a YCoCg block: Co in the 5-bit field, Cg in the 6-bit field,
// and their widened values; `mid` splits each channel for the diagonal test.
struct YCoCgEnds {
  int scale;
  uint32_t loCo, hiCo, loCg, hiCg;
  uint32_t eLoCo, eHiCo, eLoCg, eHiCg;
  uint32_t midCo, midCg;
};

inline YCoCgEnds ycocgEnds(int mnCo, int mxCo, int mnCg, int mxCg) {
  YCoCgEnds e;
  e.scale = ycocgScale(mnCo, mxCo, mnCg, mxCg);
  const uint32_t lCo = ycocgScaled(e.scale, mnCo), hCo = ycocgScaled(e.scale, mxCo);
  const uint32_t lCg = ycocgScaled(e.scale, mnCg), hCg = ycocgScaled(e.scale, mxCg);
  e.loCo = ycocgLowEnd(lCo, hCo);
  e.hiCo = ycocgHighEnd(lCo, hCo);
  e.loCg = ycocgLowEnd(lCg, hCg);
  e.hiCg = ycocgHighEnd(lCg, hCg);
  e.eLoCo = static_cast<uint32_t>(widen5(static_cast<int>(e.loCo)));
  e.eHiCo = static_cast<uint32_t>(widen5(static_cast<int>(e.hiCo)));
  e.eLoCg = static_cast<uint32_t>(widen6(static_cast<int>(e.loCg)));
  e.eHiCg = static_cast<uint32_t>(widen6(static_cast<int>(e.hiCg)));
  e.midCo = (e.eLoCo + e.eHiCo + 1) >> 1;
  e.midCg = (e.eLoCg + e.eHiCg + 1) >> 1;
  return e;
}

// Given the number of pixels off the diagonal (Co and Cg on opposite sides
// of their mids): exchanges the Cg ends when more than 8 are, writes the two
// words of the colour half (the scale - 1 in the blue field) and fills the
// palette (Co, Cg) of the index search.
inline void ycocgFinish(YCoCgEnds e, int off, Zvp8u* pOut, int c[4][2]) {
  if (off > 8) {
    std::swap(e.loCg, e.hiCg);
    std::swap(e.eLoCg, e.eHiCg);
  }
  const uint32_t blue = static_cast<uint32_t>(e.scale - 1);
  store16(pOut + 8, ((e.hiCo >> 3) << 11) | ((e.hiCg >> 2) << 5) | blue);
  store16(pOut + 10, ((e.loCo >> 3) << 11) | ((e.loCg >> 2) << 5) | blue);
  c[0][0] = static_cast<int>(e.eHiCo);
  c[0][1] = static_cast<int>(e.eHiCg);
  c[1][0] = static_cast<int>(e.eLoCo);
  c[1][1] = static_cast<int>(e.eLoCg);
  paletteThirds<2>(c);
}

}  // namespace zvp::tex::enc
