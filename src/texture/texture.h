// Texture block codecs: DXT1, DXT3, DXT5 and BC7 decoding, DXT encoding from
// RGBA and DXT5 encoding from YCoCg. Internal names of the single-block
// routines and kernels, shared by the module files and the internal tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zvpj.h"

// One block to a contiguous 4x4 tile of R G B A pixels (64 bytes, no step).
void decode_block_dxt1_rgba(const Zvp8u* pBlock, Zvp8u* pTile);
void decode_block_dxt3_rgba(const Zvp8u* pBlock, Zvp8u* pTile);
void decode_block_dxt5_rgba(const Zvp8u* pBlock, Zvp8u* pTile);

// One BC7 block into 4 rows of 16 bytes, dstStep apart; returns pBlock + 16.
const Zvp8u* decode_block_bc7_rgba(const Zvp8u* pBlock, Zvp8u* pDst, int dstStep);

// One block of 16 contiguous R G B A pixels (64 bytes) to its output block.
void encode_block_rgba_dxt1(const Zvp8u* pBlock, Zvp8u* pOut);
void encode_block_rgba_dxt3(const Zvp8u* pBlock, Zvp8u* pOut);
void encode_block_rgba_dxt5(const Zvp8u* pBlock, Zvp8u* pOut);
// One block of 16 contiguous Y Co Cg pixels (48 bytes); rewrites the chroma
// bytes of the buffer with their scaled values.
void encode_block_ycocg_dxt5(Zvp8u* pBlock, Zvp8u* pOut);

// The wide DXT5 path: numBlocks (even) blocks of one block row, read from
// 4 pixel rows srcStep apart, written back to back.
void ownpj_TextureEncodeBlockRowFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks);

// Region workers of the exported functions (no argument tests).
ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi);
ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi);
ZvpStatus ownpj_TextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi);
ZvpStatus ownpj_TextureDecodeBlockToRGBA_BC7_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi);
ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst);
ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst);
ZvpStatus ownpj_TextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst);
ZvpStatus ownpj_TextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roi, Zvp8u* pDst);

namespace zvp::tex {

// Kernels of the wide DXT5 path (all give the same bytes).
using WideRowFn = void (*)(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks);
void wideRowScalar(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks);
void wideRowSSE41(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks);
void wideRowAVX2(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int numBlocks);
WideRowFn wideRow();  // the dispatch point of the encoders

// Decoder kernels: one DXT block to a 64-byte tile, and the tables they share.
using DecodeBlockFn = void (*)(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt1BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt3BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt5BlockScalar(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt1BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt3BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile);
void dxt5BlockSSE41(const Zvp8u* pBlock, Zvp8u* pTile);
struct DecodeKernels {
  DecodeBlockFn dxt1, dxt3, dxt5;
};
DecodeKernels decodeKernels();  // the dispatch point of the decoders
// Four RGBA entries from the 5:6:5 words at pColour (and the index word
// after them); `dxt1` allows the three-colour form.
void colourTable(const Zvp8u* pColour, bool dxt1, Zvp8u table[4][4]);
// The eight DXT5 alphas of ends a0, a1.
void alphaTable(int a0, int a1, Zvp8u alpha[8]);

// BC7 interpolation of 64 channel values: (e0 (64 - w) + e1 w + 32) >> 6.
using Bc7InterpolateFn = void (*)(const Zvp8u* e0, const Zvp8u* e1, const Zvp8u* w, Zvp8u* out);
void bc7InterpolateScalar(const Zvp8u* e0, const Zvp8u* e1, const Zvp8u* w, Zvp8u* out);
void bc7InterpolateSSE41(const Zvp8u* e0, const Zvp8u* e1, const Zvp8u* w, Zvp8u* out);
Bc7InterpolateFn bc7Interpolate();  // the dispatch point of the BC7 decoder

// Kernels of the block path: the colour half of a block (8 bytes) from 16
// contiguous RGBA pixels; the DXT5 alpha half (8 bytes) from them, inset
// ends included; the DXT5 alpha half from 16 alpha bytes and given ends.
using ColourBlockFn = void (*)(const Zvp8u* pBlock, Zvp8u* pOut);
using AlphaBlockRGBAFn = void (*)(const Zvp8u* pBlock, Zvp8u* pOut);
using AlphaIndicesFn = void (*)(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut);
void colourBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut);
void colourBlockSSE41(const Zvp8u* pBlock, Zvp8u* pOut);
void alphaBlockRGBAScalar(const Zvp8u* pBlock, Zvp8u* pOut);
void alphaBlockRGBASSE41(const Zvp8u* pBlock, Zvp8u* pOut);
void alphaIndicesScalar(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut);
void alphaIndicesSSE41(const Zvp8u* pAlpha16, int a0, int a1, Zvp8u* pOut);
// The whole YCoCg block (16 bytes out) from 48 bytes; the buffer is read
// only (encode_block_ycocg_dxt5 itself also rewrites the chroma bytes).
using YCoCgBlockFn = void (*)(const Zvp8u* pBlock, Zvp8u* pOut);
void ycocgBlockScalar(const Zvp8u* pBlock, Zvp8u* pOut);
void ycocgBlockSSE41(const Zvp8u* pBlock, Zvp8u* pOut);
struct BlockKernels {
  ColourBlockFn colour;
  AlphaBlockRGBAFn alphaRGBA;
  AlphaIndicesFn alpha;
  YCoCgBlockFn ycocg;
};
BlockKernels blockKernels();  // the dispatch point of the block path

}  // namespace zvp::tex
