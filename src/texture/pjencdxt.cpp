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
#include "texture/dxtenc.h"
#include "texture/texture.h"

namespace zvp::tex {

using namespace enc;

// The colour half of a block (8 bytes): inset box, 5:6:5 ends, indices by
// the strict distance rule.
void colourBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  int lo[3] = {255, 255, 255}, hi[3] = {0, 0, 0};
  for (int p = 0; p < 16; ++p)
    for (int ch = 0; ch < 3; ++ch) {
      lo[ch] = std::min<int>(lo[ch], pBlock[4 * p + ch]);
      hi[ch] = std::max<int>(hi[ch], pBlock[4 * p + ch]);
    }
  for (int ch = 0; ch < 3; ++ch) insetEnds(lo[ch], hi[ch], lo[ch], hi[ch]);
  int c[4][3] = {{widen5(hi[0]), widen6(hi[1]), widen5(hi[2])}, {widen5(lo[0]), widen6(lo[1]), widen5(lo[2])}};
  paletteThirds<3>(c);
  uint32_t indices = 0;
  for (int p = 0; p < 16; ++p) {
    int d[4];
    for (int k = 0; k < 4; ++k)
      d[k] = absd(pBlock[4 * p], c[k][0]) + absd(pBlock[4 * p + 1], c[k][1]) + absd(pBlock[4 * p + 2], c[k][2]);
    const uint32_t b0 = (d[2] > d[3] && d[0] > d[3]) ? 1u : 0u;
    const uint32_t b1 = ((d[1] > d[2] && d[0] > d[2]) || (d[0] > d[3] && d[1] > d[3])) ? 1u : 0u;
    indices |= (b0 | (b1 << 1)) << (2 * p);
  }
  storeColourHalf(pOut, pack565(hi[0], hi[1], hi[2]), pack565(lo[0], lo[1], lo[2]), indices);
}

// The DXT5 alpha half (8 bytes) from ends a0, a1 and the alpha byte of each
// pixel (`stride` bytes apart): index by counting thresholds.
static void alphaHalf(const Zvp8u* pAlpha, int stride, int a0, int a1, Zvp8u* pOut) {
  int t[7];
  alphaThresholds(a0, a1, t);
  uint64_t bits = 0;
  for (int p = 0; p < 16; ++p) {
    const int a = pAlpha[stride * p];
    int n = 0;
    for (int k = 0; k < 7; ++k) n += t[k] >= a ? 1 : 0;
    int idx = (n + 1) & 7;
    if (idx < 2) idx ^= 1;
    bits |= static_cast<uint64_t>(idx) << (3 * p);
  }
  storeAlphaHalf(pOut, a0, a1, bits);
}

void alphaIndicesScalar(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut) { alphaHalf(pAlpha16, 1, a0, a1, pOut); }

void alphaBlockRGBAScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  int lo = 255, hi = 0;
  for (int p = 0; p < 16; ++p) {
    lo = std::min<int>(lo, pBlock[4 * p + 3]);
    hi = std::max<int>(hi, pBlock[4 * p + 3]);
  }
  insetEnds(lo, hi, lo, hi);
  alphaHalf(pBlock + 3, 4, hi, lo, pOut);
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

// Encoders of one gathered block with the kernels k.
void dxt1Block(const zvp::tex::BlockKernels& k, const Zvp8u* pBlock, Zvp8u* pOut) { k.colour(pBlock, pOut); }
void dxt3Block(const zvp::tex::BlockKernels& k, const Zvp8u* pBlock, Zvp8u* pOut) {
  dxt3Alpha(pBlock, pOut);
  k.colour(pBlock, pOut + 8);
}
void dxt5Block(const zvp::tex::BlockKernels& k, const Zvp8u* pBlock, Zvp8u* pOut) {
  k.alphaRGBA(pBlock, pOut);
  k.colour(pBlock, pOut + 8);
}
void ycocgBlockKernel(const zvp::tex::BlockKernels& k, const Zvp8u* pBlock, Zvp8u* pOut) { k.ycocg(pBlock, pOut); }

using BlockEncoder = void (*)(const zvp::tex::BlockKernels&, const Zvp8u*, Zvp8u*);

// The region walk of the encoders: blocks in raster order, each gathered with
// its edges repeated and encoded to OutBytes bytes. With a wide kernel, the
// first multiple of 16 columns of every full block row goes to it instead.
template <int Bpp, int OutBytes, BlockEncoder Encode>
ZvpStatus encodeRegion(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst, zvp::tex::WideRowFn wide = nullptr) {
  const zvp::tex::BlockKernels k = zvp::tex::blockKernels();
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  const int wideBlocks = wide ? 4 * (roi.width / 16) : 0;
  Zvp8u block[16 * Bpp];
  for (int by = 0; by < blocksY; ++by) {
    int bx = 0;
    if (wideBlocks > 0 && 4 * by + 4 <= roi.height) {
      wide(zvp::rowPtr(pSrc, srcStep, 4 * by), srcStep, pDst, wideBlocks);
      pDst += OutBytes * wideBlocks;
      bx = wideBlocks;
    }
    for (; bx < blocksX; ++bx) {
      gatherBlock(pSrc, srcStep, roi, bx, by, Bpp, block);
      Encode(k, block, pDst);
      pDst += OutBytes;
    }
  }
  return zvpStatusOk;
}

ZvpStatus checkEncode(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, const Zvp8u* pDst) {
  if (!pSrc || !pDst) return zvpStatusNullPointer;
  if (srcStep == 0) return zvpStatusBadStep;
  return zvp::checkSize(roi);
}

}  // namespace

void encode_block_rgba_dxt1(const Zvp8u* pBlock, Zvp8u* pOut) { dxt1Block(zvp::tex::blockKernels(), pBlock, pOut); }
void encode_block_rgba_dxt3(const Zvp8u* pBlock, Zvp8u* pOut) { dxt3Block(zvp::tex::blockKernels(), pBlock, pOut); }
void encode_block_rgba_dxt5(const Zvp8u* pBlock, Zvp8u* pOut) { dxt5Block(zvp::tex::blockKernels(), pBlock, pOut); }

namespace zvp::tex {

// One block of the wide path from 4 rows of 4 pixels, srcStep apart: the
// position of each pixel on the box diagonal by one divider per block.
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
  WideRange range{0, 0};
  for (int ch = 0; ch < 4; ++ch) {
    range.mn |= static_cast<uint32_t>(mn[ch]) << (8 * ch);
    range.mx |= static_cast<uint32_t>(mx[ch]) << (8 * ch);
  }
  const int dc = range.colourDivider(), da = range.alphaDivider();
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
      cidx |= static_cast<uint32_t>(kColourRawToIndex[rc]) << (2 * p);
      aidx |= static_cast<uint64_t>(kAlphaRawToIndex[ra]) << (3 * p);
    }
  }
  storeWideBlock(pOut, range, cidx, aidx);
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

namespace {

// The YCoCg block from 48 bytes; rewrites the chroma bytes with their scaled
// values. The alpha half (from the luma) by `alpha`.
void ycocgBlock(Zvp8u* pBlock, Zvp8u* pOut, zvp::tex::AlphaIndicesFn alpha) {
  using namespace zvp::tex::enc;
  int mn[3] = {255, 255, 255}, mx[3] = {0, 0, 0};
  for (int p = 0; p < 16; ++p)
    for (int ch = 0; ch < 3; ++ch) {
      mn[ch] = std::min<int>(mn[ch], pBlock[3 * p + ch]);
      mx[ch] = std::max<int>(mx[ch], pBlock[3 * p + ch]);
    }
  const YCoCgEnds e = ycocgEnds(mn[1], mx[1], mn[2], mx[2]);
  for (int p = 0; p < 16; ++p)
    for (int ch = 1; ch < 3; ++ch) pBlock[3 * p + ch] = static_cast<Zvp8u>(ycocgScaled(e.scale, pBlock[3 * p + ch]));
  int off = 0;
  for (int p = 0; p < 16; ++p) off += ((pBlock[3 * p + 1] >= e.midCo) != (pBlock[3 * p + 2] >= e.midCg)) ? 1 : 0;
  int c[4][2];
  ycocgFinish(e, off, pOut, c);
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

void encode_block_ycocg_dxt5(Zvp8u* pBlock, Zvp8u* pOut) { ycocgBlock(pBlock, pOut, zvp::tex::alphaIndicesScalar); }

void zvp::tex::ycocgBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut) {
  Zvp8u copy[48];
  std::memcpy(copy, pBlock, 48);
  ycocgBlock(copy, pOut, alphaIndicesScalar);
}

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  return encodeRegion<4, 8, dxt1Block>(pSrc, srcStep, roi, pDst);
}

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  return encodeRegion<4, 16, dxt3Block>(pSrc, srcStep, roi, pDst);
}

ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  return encodeRegion<4, 16, dxt5Block>(pSrc, srcStep, roi, pDst, zvp::tex::wideRow());
}

ZvpStatus ownpj_TextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst) {
  return encodeRegion<3, 16, ycocgBlockKernel>(pSrc, srcStep, roi, pDst);
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
