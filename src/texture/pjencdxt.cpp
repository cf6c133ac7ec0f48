// DXT1, DXT3 and DXT5 encoders from RGBA pixels and the DXT5 encoder from
// YCoCg pixels. One pass: the colour endpoints come from an inset bounding
// box, with no search. DXT5 has a second, wide path for the first multiple of
// 16 columns of full block rows; its indices stand on the channel sums alone,
// so a block's bytes depend on the path that takes it.
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "texture/texture.h"

namespace {

inline void store16(Zvp8u* p, uint32_t v) {
  p[0] = static_cast<Zvp8u>(v);
  p[1] = static_cast<Zvp8u>(v >> 8);
}
inline void store32(Zvp8u* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<Zvp8u>(v >> (8 * i));
}

inline int absd(int a, int b) { return a > b ? a - b : b - a; }

}  // namespace

namespace zvp::tex {

// The colour half of a block (8 bytes): inset box, 5:6:5 ends, indices by
// the strict distance rule.
void colourBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  int lo[3] = {255, 255, 255}, hi[3] = {0, 0, 0};
  for (int p = 0; p < 16; ++p)
    for (int ch = 0; ch < 3; ++ch) {
      lo[ch] = std::min<int>(lo[ch], pBlock[4 * p + ch]);
      hi[ch] = std::max<int>(hi[ch], pBlock[4 * p + ch]);
    }
  for (int ch = 0; ch < 3; ++ch) {
    const int inset = (hi[ch] - lo[ch]) >> 4;
    hi[ch] -= inset;
    lo[ch] += inset;
  }
  const uint32_t w0 = ((hi[0] >> 3) << 11) | ((hi[1] >> 2) << 5) | (hi[2] >> 3);
  const uint32_t w1 = ((lo[0] >> 3) << 11) | ((lo[1] >> 2) << 5) | (lo[2] >> 3);
  int c[4][3];
  c[0][0] = (hi[0] & 0xF8) | (hi[0] >> 5);
  c[0][1] = (hi[1] & 0xFC) | (hi[1] >> 6);
  c[0][2] = (hi[2] & 0xF8) | (hi[2] >> 5);
  c[1][0] = (lo[0] & 0xF8) | (lo[0] >> 5);
  c[1][1] = (lo[1] & 0xFC) | (lo[1] >> 6);
  c[1][2] = (lo[2] & 0xF8) | (lo[2] >> 5);
  for (int ch = 0; ch < 3; ++ch) {
    c[2][ch] = (2 * c[0][ch] + c[1][ch]) / 3;
    c[3][ch] = (c[0][ch] + 2 * c[1][ch]) / 3;
  }
  uint32_t indices = 0;
  for (int p = 0; p < 16; ++p) {
    int d[4];
    for (int k = 0; k < 4; ++k)
      d[k] = absd(pBlock[4 * p], c[k][0]) + absd(pBlock[4 * p + 1], c[k][1]) + absd(pBlock[4 * p + 2], c[k][2]);
    const uint32_t b0 = (d[2] > d[3] && d[0] > d[3]) ? 1u : 0u;
    const uint32_t b1 = ((d[1] > d[2] && d[0] > d[2]) || (d[0] > d[3] && d[1] > d[3])) ? 1u : 0u;
    indices |= (b0 | (b1 << 1)) << (2 * p);
  }
  store16(pOut, w0);
  store16(pOut + 2, w1);
  store32(pOut + 4, indices);
}

// The DXT5 alpha half (8 bytes) from ends a0, a1 and the alpha byte of each
// pixel (`stride` bytes apart): seven thresholds, index by counting.
static void alphaThresholds(const Zvp8u* pAlpha, int stride, int a0, int a1, Zvp8u* pOut) {
  const int bias = (a0 - a1) / 14;
  int t[7];
  t[0] = (a1 + bias) & 0xFF;
  for (int k = 1; k <= 6; ++k) t[k] = (((7 - k) * a0 + k * a1) / 7 + bias) & 0xFF;
  uint64_t bits = 0;
  for (int p = 0; p < 16; ++p) {
    const int a = pAlpha[stride * p];
    int n = 0;
    for (int k = 0; k < 7; ++k) n += t[k] >= a ? 1 : 0;
    int idx = (n + 1) & 7;
    if (idx < 2) idx ^= 1;
    bits |= static_cast<uint64_t>(idx) << (3 * p);
  }
  pOut[0] = static_cast<Zvp8u>(a0);
  pOut[1] = static_cast<Zvp8u>(a1);
  for (int i = 0; i < 6; ++i) pOut[2 + i] = static_cast<Zvp8u>(bits >> (8 * i));
}

void alphaIndicesScalar(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut) {
  alphaThresholds(pAlpha16, 1, a0, a1, pOut);
}

void alphaBlockRGBAScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  int lo = 255, hi = 0;
  for (int p = 0; p < 16; ++p) {
    lo = std::min<int>(lo, pBlock[4 * p + 3]);
    hi = std::max<int>(hi, pBlock[4 * p + 3]);
  }
  const int inset = (hi - lo) >> 4;
  alphaThresholds(pBlock + 3, 4, hi - inset, lo + inset, pOut);
}

BlockKernels blockKernels() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return {colourBlockSSE41, alphaBlockRGBASSE41, alphaIndicesSSE41, ycocgBlockSSE41};
#endif
  return {colourBlockScalar, alphaBlockRGBAScalar, alphaIndicesScalar, ycocgBlockScalar};
}

}  // namespace zvp::tex

namespace {

// Copies block (bx, by) of a region of `bpp`-byte pixels into a contiguous
// buffer, repeating the last real pixel of each row at the right edge and the
// last real row at the bottom.
void gatherBlock(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, int bx, int by, int bpp, Zvp8u* pBlock) {
  const int cols = std::min(4, roi.width - 4 * bx), rows = std::min(4, roi.height - 4 * by);
  for (int r = 0; r < 4; ++r) {
    Zvp8u* dst = pBlock + 4 * bpp * r;
    if (r >= rows) {
      std::memcpy(dst, dst - 4 * bpp, static_cast<size_t>(4 * bpp));
      continue;
    }
    const Zvp8u* src = zvp::rowPtr(pSrc, srcStep, 4 * by + r) + 4 * bpp * bx;
    std::memcpy(dst, src, static_cast<size_t>(cols * bpp));
    for (int c = cols; c < 4; ++c) std::memcpy(dst + bpp * c, dst + bpp * (cols - 1), static_cast<size_t>(bpp));
  }
}

void dxt3Alpha(const Zvp8u* pBlock, Zvp8u* pOut) {
  for (int i = 0; i < 8; ++i)
    pOut[i] = static_cast<Zvp8u>((pBlock[4 * (2 * i) + 3] >> 4) | (pBlock[4 * (2 * i + 1) + 3] & 0xF0));
}

void ycocgBlock(Zvp8u* pBlock, Zvp8u* pOut, zvp::tex::AlphaIndicesFn alpha);

ZvpStatus checkEncode(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, const Zvp8u* pDst) {
  if (!pSrc || !pDst) return zvpStatusNullPointer;
  if (srcStep == 0) return zvpStatusBadStep;
  return zvp::checkSize(roi);
}

}  // namespace

void encode_block_rgba_dxt1(const Zvp8u* pBlock, Zvp8u* pOut) { zvp::tex::blockKernels().colour(pBlock, pOut); }

void encode_block_rgba_dxt3(const Zvp8u* pBlock, Zvp8u* pOut) {
  dxt3Alpha(pBlock, pOut);
  zvp::tex::blockKernels().colour(pBlock, pOut + 8);
}

void encode_block_rgba_dxt5(const Zvp8u* pBlock, Zvp8u* pOut) {
  const zvp::tex::BlockKernels k = zvp::tex::blockKernels();
  k.alphaRGBA(pBlock, pOut);
  k.colour(pBlock, pOut + 8);
}

namespace zvp::tex {

// One block of the wide path from 4 rows of 4 pixels, srcStep apart.
static void wideBlockScalar(const Zvp8u* pSrc, int srcStep, Zvp8u* pOut) {
  int mn[4] = {255, 255, 255, 255}, mx[4] = {0, 0, 0, 0};
  for (int r = 0; r < 4; ++r) {
    const Zvp8u* row = zvp::rowPtr(pSrc, srcStep, r);
    for (int c = 0; c < 4; ++c)
      for (int ch = 0; ch < 4; ++ch) {
        mn[ch] = std::min<int>(mn[ch], row[4 * c + ch]);
        mx[ch] = std::max<int>(mx[ch], row[4 * c + ch]);
      }
  }
  int hi[4], lo[4];
  for (int ch = 0; ch < 4; ++ch) {
    const int inset = (mx[ch] - mn[ch]) >> 4;
    hi[ch] = mx[ch] - inset;
    lo[ch] = mn[ch] + inset;
  }
  // Dividers: 32768 / (colour range + 1) read as a signed 16-bit value (so a
  // range of 0 gives -32768), and the low 16 bits of 65536 / (alpha range + 1)
  // read as signed (a range of 0 gives 0, a range of 1 gives -32768).
  const int rangeC = (mx[0] - mn[0]) + (mx[1] - mn[1]) + (mx[2] - mn[2]);
  const int dc = static_cast<int16_t>(static_cast<uint16_t>(32768 / (rangeC + 1)));
  const int da = static_cast<int16_t>(static_cast<uint16_t>(65536 / (mx[3] - mn[3] + 1)));
  uint32_t cidx = 0;
  uint64_t aidx = 0;
  for (int r = 0; r < 4; ++r) {
    const Zvp8u* row = zvp::rowPtr(pSrc, srcStep, r);
    for (int c = 0; c < 4; ++c) {
      const Zvp8u* px = row + 4 * c;
      const int s = (px[0] - mn[0]) + (px[1] - mn[1]) + (px[2] - mn[2]);
      const int t = px[3] - mn[3];
      const int rc = std::clamp((8 * s * dc) >> 16, 0, 255);
      const int ra = std::clamp((8 * t * da) >> 16, 0, 255);
      const int p = 4 * r + c;
      cidx |= static_cast<uint32_t>(kColorRawToIndex[rc]) << (2 * p);
      aidx |= static_cast<uint64_t>(kAlphaRawToIndex[ra]) << (3 * p);
    }
  }
  pOut[0] = static_cast<Zvp8u>(hi[3]);
  pOut[1] = static_cast<Zvp8u>(lo[3]);
  for (int i = 0; i < 6; ++i) pOut[2 + i] = static_cast<Zvp8u>(aidx >> (8 * i));
  store16(pOut + 8, ((hi[0] >> 3) << 11) | ((hi[1] >> 2) << 5) | (hi[2] >> 3));
  store16(pOut + 10, ((lo[0] >> 3) << 11) | ((lo[1] >> 2) << 5) | (lo[2] >> 3));
  store32(pOut + 12, cidx);
}

void wideRowScalar(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  for (int b = 0; b < numBlocks; ++b) wideBlockScalar(pSrc + 16 * b, srcStep, pDst + 16 * b);
}

WideRowFn wideRow() {
  switch (cpuIsa()) {
#if !defined(ZVP_NO_X86)
    case Isa::AVX512:
    case Isa::AVX2: return wideRowAVX2;
    case Isa::SSE41: return wideRowSSE41;
#endif
    default: return wideRowScalar;
  }
}

}  // namespace zvp::tex

void ownpj_TextureEncodeBlockRowFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks) {
  // The working store of a pair of blocks lives in the kernel's own frame,
  // so the function is reentrant; its tables are constants.
  zvp::tex::wideRow()(pSrc, srcStep, pDst, numBlocks);
}

void encode_block_ycocg_dxt5(Zvp8u* pBlock, Zvp8u* pOut) { ycocgBlock(pBlock, pOut, zvp::tex::alphaIndicesScalar); }

void zvp::tex::ycocgBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  Zvp8u copy[48];
  std::memcpy(copy, pBlock, 48);
  ycocgBlock(copy, pOut, alphaIndicesScalar);
}

namespace {

void ycocgBlock(Zvp8u* pBlock, Zvp8u* pOut, zvp::tex::AlphaIndicesFn alpha) {
  int mn[3] = {255, 255, 255}, mx[3] = {0, 0, 0};
  for (int p = 0; p < 16; ++p)
    for (int ch = 0; ch < 3; ++ch) {
      mn[ch] = std::min<int>(mn[ch], pBlock[3 * p + ch]);
      mx[ch] = std::max<int>(mx[ch], pBlock[3 * p + ch]);
    }
  const int q = std::max({absd(mx[1], 128), absd(mx[2], 128), absd(mn[1], 128), absd(mn[2], 128)});
  const int scale = q < 32 ? 4 : (q < 64 ? 2 : 1);
  const auto scaled = [scale](int x) { return (scale * (x - 128) + 128) & 255; };
  for (int p = 0; p < 16; ++p)
    for (int ch = 1; ch < 3; ++ch) pBlock[3 * p + ch] = static_cast<Zvp8u>(scaled(pBlock[3 * p + ch]));
  uint32_t lo[3], hi[3];
  for (int ch = 1; ch < 3; ++ch) {
    const uint32_t l = static_cast<uint32_t>(scaled(mn[ch])), h = static_cast<uint32_t>(scaled(mx[ch]));
    // Unsigned, with no lower clamp: a low end of 0 with a range below 7
    // wraps and reads as all ones.
    lo[ch] = ((16u * l + (h - l) - 7u) >> 4) & 0xFF;
    hi[ch] = std::min<uint32_t>((16u * h - (h - l) + 7u) >> 4, 255u);
  }
  uint32_t loCo = lo[1], hiCo = hi[1], loCg = lo[2], hiCg = hi[2];
  uint32_t eLoCo = (loCo & 0xF8) | (loCo >> 5), eHiCo = (hiCo & 0xF8) | (hiCo >> 5);
  uint32_t eLoCg = (loCg & 0xFC) | (loCg >> 6), eHiCg = (hiCg & 0xFC) | (hiCg >> 6);
  const uint32_t midCo = (eLoCo + eHiCo + 1) >> 1, midCg = (eLoCg + eHiCg + 1) >> 1;
  int off = 0;
  for (int p = 0; p < 16; ++p) off += ((pBlock[3 * p + 1] >= midCo) != (pBlock[3 * p + 2] >= midCg)) ? 1 : 0;
  if (off > 8) {
    std::swap(loCg, hiCg);
    std::swap(eLoCg, eHiCg);
  }
  const uint32_t blue = static_cast<uint32_t>(scale - 1);
  store16(pOut + 8, ((hiCo >> 3) << 11) | ((hiCg >> 2) << 5) | blue);
  store16(pOut + 10, ((loCo >> 3) << 11) | ((loCg >> 2) << 5) | blue);
  int c[4][2] = {{static_cast<int>(eHiCo), static_cast<int>(eHiCg)}, {static_cast<int>(eLoCo), static_cast<int>(eLoCg)}};
  for (int ch = 0; ch < 2; ++ch) {
    c[2][ch] = (2 * c[0][ch] + c[1][ch]) / 3;
    c[3][ch] = (c[0][ch] + 2 * c[1][ch]) / 3;
  }
  uint32_t indices = 0;
  for (int p = 0; p < 16; ++p) {
    int d[4];
    for (int k = 0; k < 4; ++k) d[k] = absd(pBlock[3 * p + 1], c[k][0]) + absd(pBlock[3 * p + 2], c[k][1]);
    const uint32_t b0 = (d[0] > d[3] && d[1] > d[3]) ? 1u : 0u;
    const uint32_t b1 = ((d[1] > d[2] && d[0] > d[2]) ? 1u : 0u) | b0;
    indices |= (b0 | (b1 << 1)) << (2 * p);
  }
  store32(pOut + 12, indices);
  Zvp8u luma[16];
  for (int p = 0; p < 16; ++p) luma[p] = pBlock[3 * p];
  alpha(luma, mx[0], mn[0], pOut);
}

}  // namespace

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  const zvp::tex::BlockKernels k = zvp::tex::blockKernels();
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  Zvp8u block[64];
  for (int by = 0; by < blocksY; ++by)
    for (int bx = 0; bx < blocksX; ++bx) {
      gatherBlock(pSrc, srcStep, roi, bx, by, 4, block);
      k.colour(block, pDst);
      pDst += 8;
    }
  return zvpStatusOk;
}

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  const zvp::tex::BlockKernels k = zvp::tex::blockKernels();
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  Zvp8u block[64];
  for (int by = 0; by < blocksY; ++by)
    for (int bx = 0; bx < blocksX; ++bx) {
      gatherBlock(pSrc, srcStep, roi, bx, by, 4, block);
      dxt3Alpha(block, pDst);
      k.colour(block, pDst + 8);
      pDst += 16;
    }
  return zvpStatusOk;
}

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  const int wideBlocks = 4 * (roi.width / 16);
  const zvp::tex::BlockKernels k = zvp::tex::blockKernels();
  Zvp8u block[64];
  for (int by = 0; by < blocksY; ++by) {
    int bx = 0;
    if (4 * by + 4 <= roi.height && wideBlocks > 0) {
      ownpj_TextureEncodeBlockRowFromRGBA_DXT5_8u_C4C1R(zvp::rowPtr(pSrc, srcStep, 4 * by), srcStep, pDst, wideBlocks);
      pDst += 16 * wideBlocks;
      bx = wideBlocks;
    }
    for (; bx < blocksX; ++bx) {
      gatherBlock(pSrc, srcStep, roi, bx, by, 4, block);
      k.alphaRGBA(block, pDst);
      k.colour(block, pDst + 8);
      pDst += 16;
    }
  }
  return zvpStatusOk;
}

ZvpStatus ownpj_TextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  const zvp::tex::YCoCgBlockFn fn = zvp::tex::blockKernels().ycocg;
  Zvp8u block[48];
  for (int by = 0; by < blocksY; ++by)
    for (int bx = 0; bx < blocksX; ++bx) {
      gatherBlock(pSrc, srcStep, roi, bx, by, 3, block);
      fn(block, pDst);
      pDst += 16;
    }
  return zvpStatusOk;
}

// Tests: pointers, then a step of exactly 0 (a negative step is accepted),
// then the size.
extern "C" ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Zvp8u* pSrc, int srcStep,
                                                                           ZvpiSize roiSize, Zvp8u* pDst) {
  if (ZvpStatus st = checkEncode(pSrc, srcStep, roiSize, pDst)) return st;
  return ownpj_TextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(pSrc, srcStep, roiSize, pDst);
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Zvp8u* pSrc, int srcStep,
                                                                           ZvpiSize roiSize, Zvp8u* pDst) {
  if (ZvpStatus st = checkEncode(pSrc, srcStep, roiSize, pDst)) return st;
  return ownpj_TextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(pSrc, srcStep, roiSize, pDst);
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep,
                                                                           ZvpiSize roiSize, Zvp8u* pDst) {
  if (ZvpStatus st = checkEncode(pSrc, srcStep, roiSize, pDst)) return st;
  return ownpj_TextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(pSrc, srcStep, roiSize, pDst);
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const Zvp8u* pSrc, int srcStep,
                                                                            ZvpiSize roiSize, Zvp8u* pDst) {
  if (ZvpStatus st = checkEncode(pSrc, srcStep, roiSize, pDst)) return st;
  return ownpj_TextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(pSrc, srcStep, roiSize, pDst);
}
