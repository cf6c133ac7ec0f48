// DXT1, DXT3 and DXT5 block decoders. Colour fields are widened by shifting
// alone (31 gives 248, 63 gives 252), the DXT3 alpha likewise (15 gives 240),
// and the DXT1 three-colour index 3 is opaque white.
#include <cstring>

#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "texture/texture.h"

namespace {

inline uint16_t load16(const Zvp8u* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
inline uint32_t load32(const Zvp8u* p) {
  return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
         (static_cast<uint32_t>(p[3]) << 24);
}

}  // namespace

// Colour table of four RGBA entries from the two 5:6:5 words at pColour;
// `dxt1` allows the c0 <= c1 three-colour form.
void zvp::tex::colourTable(const Zvp8u* pColour, bool dxt1, Zvp8u table[4][4]) {
  const uint16_t c0 = load16(pColour), c1 = load16(pColour + 2);
  const int e0[3] = {((c0 >> 11) & 31) << 3, ((c0 >> 5) & 63) << 2, (c0 & 31) << 3};
  const int e1[3] = {((c1 >> 11) & 31) << 3, ((c1 >> 5) & 63) << 2, (c1 & 31) << 3};
  const bool four = !dxt1 || c0 > c1;
  for (int ch = 0; ch < 3; ++ch) {
    table[0][ch] = static_cast<Zvp8u>(e0[ch]);
    table[1][ch] = static_cast<Zvp8u>(e1[ch]);
    if (four) {
      table[2][ch] = static_cast<Zvp8u>((2 * e0[ch] + e1[ch]) / 3);
      table[3][ch] = static_cast<Zvp8u>((e0[ch] + 2 * e1[ch]) / 3);
    } else {
      table[2][ch] = static_cast<Zvp8u>((e0[ch] + e1[ch]) >> 1);
      table[3][ch] = 255;
    }
  }
  for (int i = 0; i < 4; ++i) table[i][3] = 255;
}

namespace {

using zvp::tex::colourTable;

void colourPixels(const Zvp8u* pColour, bool dxt1, Zvp8u* pTile) {
  Zvp8u table[4][4];
  colourTable(pColour, dxt1, table);
  const uint32_t idx = load32(pColour + 4);
  for (int p = 0; p < 16; ++p) std::memcpy(pTile + 4 * p, table[(idx >> (2 * p)) & 3], 4);
}

using BlockFn = void (*)(const Zvp8u*, Zvp8u*);

}  // namespace

void zvp::tex::alphaTable(int a0, int a1, Zvp8u alpha[8]) {
  alpha[0] = static_cast<Zvp8u>(a0);
  alpha[1] = static_cast<Zvp8u>(a1);
  if (a0 > a1) {
    for (int k = 1; k <= 6; ++k) alpha[k + 1] = static_cast<Zvp8u>(((7 - k) * a0 + k * a1 + 3) / 7);
  } else {
    for (int k = 1; k <= 4; ++k) alpha[k + 1] = static_cast<Zvp8u>(((5 - k) * a0 + k * a1 + 2) / 5);
    alpha[6] = 0;
    alpha[7] = 255;
  }
}

namespace {

// The region walk shared by the three decoders: every block through the
// tile, its rows copied clipped to the region (only the last block column
// and the last block row can be partial). The stream advances by whole
// blocks.
ZvpStatus decodeRegion(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi, int blockBytes, BlockFn fn) {
  const int blocksX = (roi.width + 3) / 4, blocksY = (roi.height + 3) / 4;
  const int lastCols = roi.width - 4 * (blocksX - 1), lastRows = roi.height - 4 * (blocksY - 1);
  Zvp8u tile[64];
  for (int by = 0; by < blocksY; ++by) {
    const int rows = by == blocksY - 1 ? lastRows : 4;
    for (int bx = 0; bx < blocksX; ++bx) {
      fn(pSrc, tile);
      pSrc += blockBytes;
      const size_t bytes = static_cast<size_t>(4 * (bx == blocksX - 1 ? lastCols : 4));
      for (int r = 0; r < rows; ++r) std::memcpy(zvp::rowPtr(pDst, dstStep, 4 * by + r) + 16 * bx, tile + 16 * r, bytes);
    }
  }
  return zvpStatusOk;
}

ZvpStatus checkDecode(const Zvp8u* pSrc, const Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  if (!pSrc || !pDst) return zvpStatusNullPointer;
  if (dstStep == 0) return zvpStatusBadStep;
  return zvp::checkSize(roi);
}

}  // namespace

namespace zvp::tex {

void dxt1BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile) { colourPixels(pBlock, true, pTile); }

void dxt3BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile) {
  colourPixels(pBlock + 8, false, pTile);
  for (int p = 0; p < 16; ++p) {
    const uint16_t word = load16(pBlock + 2 * (p >> 2));
    pTile[4 * p + 3] = static_cast<Zvp8u>(((word >> (4 * (p & 3))) & 15) << 4);
  }
}

void dxt5BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile) {
  colourPixels(pBlock + 8, false, pTile);
  Zvp8u alpha[8];
  alphaTable(pBlock[0], pBlock[1], alpha);
  uint64_t bits = 0;
  for (int i = 0; i < 6; ++i) bits |= static_cast<uint64_t>(pBlock[2 + i]) << (8 * i);
  for (int p = 0; p < 16; ++p) pTile[4 * p + 3] = alpha[(bits >> (3 * p)) & 7];
}

DecodeKernels decodeKernels() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return {dxt1BlockSSE41, dxt3BlockSSE41, dxt5BlockSSE41};
#endif
  return {dxt1BlockScalar, dxt3BlockScalar, dxt5BlockScalar};
}

}  // namespace zvp::tex

void decode_block_dxt1_rgba(const Zvp8u* pBlock, Zvp8u* pTile) { zvp::tex::decodeKernels().dxt1(pBlock, pTile); }
void decode_block_dxt3_rgba(const Zvp8u* pBlock, Zvp8u* pTile) { zvp::tex::decodeKernels().dxt3(pBlock, pTile); }
void decode_block_dxt5_rgba(const Zvp8u* pBlock, Zvp8u* pTile) { zvp::tex::decodeKernels().dxt5(pBlock, pTile); }

ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  return decodeRegion(pSrc, pDst, dstStep, roi, 8, zvp::tex::decodeKernels().dxt1);
}
ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  return decodeRegion(pSrc, pDst, dstStep, roi, 16, zvp::tex::decodeKernels().dxt3);
}
ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  return decodeRegion(pSrc, pDst, dstStep, roi, 16, zvp::tex::decodeKernels().dxt5);
}

// Tests: pointers, then a step of exactly 0 (a negative step walks upward),
// then the size.
extern "C" ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst,
                                                                         int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = checkDecode(pSrc, pDst, dstStep, roiSize)) return st;
  return ownpj_TextureDecodeBlockToRGBA_DXT1_8u_C1C4R(pSrc, pDst, dstStep, roiSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst,
                                                                         int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = checkDecode(pSrc, pDst, dstStep, roiSize)) return st;
  return ownpj_TextureDecodeBlockToRGBA_DXT3_8u_C1C4R(pSrc, pDst, dstStep, roiSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst,
                                                                         int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = checkDecode(pSrc, pDst, dstStep, roiSize)) return st;
  return ownpj_TextureDecodeBlockToRGBA_DXT5_8u_C1C4R(pSrc, pDst, dstStep, roiSize);
}
