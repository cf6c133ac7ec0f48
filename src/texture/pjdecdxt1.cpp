// BC7 block decoder: the eight modes and the invalid mode (transparent
// black). Fields are read by a little-endian bit reader in the format's
// order; endpoints are widened by replicating their top bits, and every
// channel is interpolated as (e0 (64 - w) + e1 w + 32) >> 6.
#include <cstring>

#include <utility>

#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "texture/texture.h"

namespace {

// Index of the lowest set bit of byte 0; 8 marks the invalid mode.
constexpr auto makeModeMap() {
  struct T {
    uint32_t v[256];
  } t{};
  for (int b = 0; b < 256; ++b) {
    int m = 0;
    while (m < 8 && !((b >> m) & 1)) ++m;
    t.v[b] = static_cast<uint32_t>(m);
  }
  return t;
}
constexpr auto modeMapStore = makeModeMap();
const uint32_t* const modeMap = modeMapStore.v;

// Two-subset partitions: bit i set when pixel i is in subset 1.
constexpr uint16_t kTwoSubsetMasks[64] = {
    0xCCCC, 0x8888, 0xEEEE, 0xECC8, 0xC880, 0xFEEC, 0xFEC8, 0xEC80, 0xC800, 0xFFEC, 0xFE80, 0xE800, 0xFFE8,
    0xFF00, 0xFFF0, 0xF000, 0xF710, 0x008E, 0x7100, 0x08CE, 0x008C, 0x7310, 0x3100, 0x8CCE, 0x088C, 0x3110,
    0x6666, 0x366C, 0x17E8, 0x0FF0, 0x718E, 0x399C, 0xAAAA, 0xF0F0, 0x5A5A, 0x33CC, 0x3C3C, 0x55AA, 0x9696,
    0xA55A, 0x73CE, 0x13C8, 0x324C, 0x3BDC, 0x6996, 0xC33C, 0x9966, 0x0660, 0x0272, 0x04E4, 0x4E40, 0x2720,
    0xC936, 0x936C, 0x39C6, 0x639C, 0x9336, 0x9CC6, 0x817E, 0xE718, 0xCCF0, 0x0FCC, 0x7744, 0xEE22};

// Three-subset partitions, one digit per pixel, pixel 0 first.
constexpr const char* kThreeSubsetDigits[64] = {
    "0011001102212222", "0001001122112221", "0000200122112211", "0222002200110111", "0000000011221122",
    "0011001100220022", "0022002211111111", "0011001122112211", "0000000011112222", "0000111111112222",
    "0000111122222222", "0012001200120012", "0112011201120112", "0122012201220122", "0011011211221222",
    "0011200122002220", "0001001101121122", "0111001120012200", "0000112211221122", "0022002200221111",
    "0111011102220222", "0001000122212221", "0000001101220122", "0000110022102210", "0122012200110000",
    "0012001211222222", "0110122112210110", "0000011012211221", "0022110211020022", "0110011020022222",
    "0011012201220011", "0000200022112221", "0000000211221222", "0222002200120011", "0011001200220222",
    "0120012001200120", "0000111122220000", "0120120120120120", "0120201212010120", "0011220011220011",
    "0011112222000011", "0101010122222222", "0000000021212121", "0022112200221122", "0022001100220011",
    "0220122102201221", "0101222222220101", "0000212121212121", "0101010101012222", "0222011102220111",
    "0002111200021112", "0000211221122112", "0222011101110222", "0002111211120002", "0110011001102222",
    "0000000021122112", "0110011022222222", "0022001100110022", "0022112211220022", "0000000000002112",
    "0002000100020001", "0222122202221222", "0101222222222222", "0111201122012220"};

struct SubsetTables {
  uint32_t two[64][16];
  uint32_t three[64][16];
};
constexpr SubsetTables makeSubsetTables() {
  SubsetTables t{};
  for (int p = 0; p < 64; ++p)
    for (int i = 0; i < 16; ++i) {
      t.two[p][i] = (kTwoSubsetMasks[p] >> i) & 1u;
      t.three[p][i] = static_cast<uint32_t>(kThreeSubsetDigits[p][i] - '0');
    }
  return t;
}
constexpr SubsetTables subsetTables = makeSubsetTables();
const uint32_t (*const subset_index_two_subsets)[16] = subsetTables.two;
const uint32_t (*const subset_index_three_subsets)[16] = subsetTables.three;

// Anchor cases: two subsets name the anchor of subset 1; three subsets name
// the unordered pair of anchors of subsets 1 and 2.
constexpr uint32_t idxFixupTwoSubsetMap[64] = {
    3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 0, 2, 0, 0, 2, 2, 3, 0, 2, 0, 0, 2, 2, 0, 0,
    3, 3, 1, 2, 0, 2, 3, 3, 0, 2, 0, 0, 0, 3, 3, 1, 1, 0, 1, 2, 3, 3, 0, 0, 3, 3, 3, 3, 3, 0, 0, 3};
constexpr uint32_t idxFixupThreeSubsetMap[64] = {
    2, 1, 10, 2, 10, 2, 2, 10, 10, 10, 7, 7, 7, 4,  2, 1, 2, 1, 10, 2, 2, 1,  7, 9, 0, 10, 5, 6,  10, 4, 11, 10,
    10, 2, 2, 3, 6, 9, 8, 11, 7, 2, 10, 4, 2, 7, 7, 10, 2, 2, 4,  4, 4, 10, 4, 11, 4, 11, 10, 13, 2, 12, 2, 1};
constexpr int kTwoCaseAnchor[4] = {2, 6, 8, 15};
constexpr int kThreeCaseAnchors[14][2] = {{3, 5},  {3, 8},  {3, 15}, {5, 10}, {5, 15}, {6, 8},   {6, 10},
                                          {6, 15}, {8, 9},  {8, 10}, {8, 15}, {10, 15}, {12, 15}, {13, 15}};

constexpr uint16_t interW2[4] = {0, 21, 43, 64};
constexpr uint16_t interW3[8] = {0, 9, 18, 27, 37, 46, 55, 64};
constexpr uint16_t interW4[16] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};
constexpr const uint16_t* interW[3] = {interW2, interW3, interW4};

class BitReader {
 public:
  explicit BitReader(const Zvp8u* p) {
    std::memcpy(&lo_, p, 8);  // little-endian host
    std::memcpy(&hi_, p + 8, 8);
  }
  uint32_t get(int n) {
    uint32_t v;
    if (pos_ >= 64) {
      v = static_cast<uint32_t>(hi_ >> (pos_ - 64));
    } else if (pos_ + n <= 64) {
      v = static_cast<uint32_t>(lo_ >> pos_);
    } else {
      v = static_cast<uint32_t>((lo_ >> pos_) | (hi_ << (64 - pos_)));
    }
    pos_ += n;
    return v & ((1u << n) - 1u);
  }

 private:
  uint64_t lo_ = 0, hi_ = 0;
  int pos_ = 0;
};

struct ModeInfo {
  int subsets, partBits, rotBits, selBits, colourBits, alphaBits, pbits, indexBits, index2Bits;
};
// pbits: 0 none, 1 one per subset, 2 one per endpoint.
constexpr ModeInfo kModes[8] = {
    {3, 4, 0, 0, 4, 0, 2, 3, 0}, {2, 6, 0, 0, 6, 0, 1, 3, 0}, {3, 6, 0, 0, 5, 0, 0, 2, 0},
    {2, 6, 0, 0, 7, 0, 2, 2, 0}, {1, 0, 2, 1, 5, 6, 0, 2, 3}, {1, 0, 2, 0, 7, 8, 0, 2, 2},
    {1, 0, 0, 0, 7, 7, 2, 4, 0}, {2, 6, 0, 0, 5, 5, 2, 2, 0}};

inline uint32_t widen(uint32_t v, int n) {
  const uint32_t y = v << (8 - n);
  return (y | (y >> n)) & 0xFF;
}

inline Zvp8u interpolate(uint32_t e0, uint32_t e1, uint32_t w) {
  return static_cast<Zvp8u>((e0 * (64 - w) + e1 * w + 32) >> 6);
}

// Unpacks one index set, one bit fewer at each anchor pixel.
void readIndices(BitReader& br, int bits, const bool anchor[16], uint32_t out[16]) {
  for (int i = 0; i < 16; ++i) out[i] = br.get(anchor[i] ? bits - 1 : bits);
}

const Zvp8u* decodeBlock(const Zvp8u* pBlock, Zvp8u* pDst, int dstStep, zvp::tex::Bc7InterpolateFn interp) {
  const uint32_t mode = modeMap[pBlock[0]];
  if (mode > 7) {
    for (int r = 0; r < 4; ++r) std::memset(zvp::rowPtr(pDst, dstStep, r), 0, 16);
    return pBlock + 16;
  }
  const ModeInfo& m = kModes[mode];
  BitReader br(pBlock);
  br.get(static_cast<int>(mode) + 1);
  const uint32_t partition = br.get(m.partBits);
  const uint32_t rotation = br.get(m.rotBits);
  const uint32_t selector = br.get(m.selBits);
  const int ends = 2 * m.subsets;
  uint32_t ep[4][6];  // channel, endpoint
  for (int ch = 0; ch < 3; ++ch)
    for (int e = 0; e < ends; ++e) ep[ch][e] = br.get(m.colourBits);
  for (int e = 0; e < ends; ++e) ep[3][e] = m.alphaBits ? br.get(m.alphaBits) : 255;
  int cBits = m.colourBits, aBits = m.alphaBits;
  if (m.pbits) {
    uint32_t p[6];
    const int count = m.pbits == 2 ? ends : m.subsets;
    for (int i = 0; i < count; ++i) p[i] = br.get(1);
    for (int e = 0; e < ends; ++e) {
      const uint32_t bit = m.pbits == 2 ? p[e] : p[e >> 1];
      for (int ch = 0; ch < 3; ++ch) ep[ch][e] = (ep[ch][e] << 1) | bit;
      if (m.alphaBits) ep[3][e] = (ep[3][e] << 1) | bit;
    }
    ++cBits;
    if (aBits) ++aBits;
  }
  for (int e = 0; e < ends; ++e) {
    for (int ch = 0; ch < 3; ++ch) ep[ch][e] = widen(ep[ch][e], cBits);
    if (aBits) ep[3][e] = widen(ep[3][e], aBits);
  }

  // Subset of each pixel and its anchors.
  const uint32_t* subset = nullptr;
  bool anchor[16] = {};
  anchor[0] = true;
  static constexpr uint32_t kZero[16] = {};
  if (m.subsets == 2) {
    subset = subset_index_two_subsets[partition];
    anchor[kTwoCaseAnchor[idxFixupTwoSubsetMap[partition]]] = true;
  } else if (m.subsets == 3) {
    subset = subset_index_three_subsets[partition];
    const int* pair = kThreeCaseAnchors[idxFixupThreeSubsetMap[partition]];
    anchor[pair[0]] = anchor[pair[1]] = true;
  } else {
    subset = kZero;
  }

  uint32_t idx[16], idx2[16];
  readIndices(br, m.indexBits, anchor, idx);
  // Per pixel and channel (R G B A, pixel order): the two endpoints and the
  // weight; then one interpolation pass over the 64 bytes.
  alignas(16) Zvp8u e0[64], e1[64], wt[64];
  if (m.subsets == 1 && m.index2Bits) {
    // Modes 4 and 5: a second index set; the selector chooses the roles of
    // the sets, and the rotation exchanges output channel rotation - 1 with
    // alpha: it takes the A endpoints with the alpha index, and output A
    // that channel's endpoints with the colour index.
    const bool single[16] = {true};
    readIndices(br, m.index2Bits, single, idx2);
    const uint32_t* colourIdx = selector ? idx2 : idx;
    const uint32_t* alphaIdx = selector ? idx : idx2;
    const int colourW = selector ? m.index2Bits : m.indexBits;
    const int alphaW = selector ? m.indexBits : m.index2Bits;
    int src[4] = {0, 1, 2, 3};
    if (rotation) std::swap(src[rotation - 1], src[3]);
    for (int i = 0; i < 16; ++i) {
      const Zvp8u wc = static_cast<Zvp8u>(interW[colourW - 2][colourIdx[i]]);
      const Zvp8u wa = static_cast<Zvp8u>(interW[alphaW - 2][alphaIdx[i]]);
      for (int ch = 0; ch < 4; ++ch) {
        e0[4 * i + ch] = static_cast<Zvp8u>(ep[src[ch]][0]);
        e1[4 * i + ch] = static_cast<Zvp8u>(ep[src[ch]][1]);
        wt[4 * i + ch] = src[ch] == 3 ? wa : wc;
      }
    }
  } else {
    const uint16_t* w = interW[m.indexBits - 2];
    for (int i = 0; i < 16; ++i) {
      const uint32_t s = subset[i];
      for (int ch = 0; ch < 4; ++ch) {
        e0[4 * i + ch] = static_cast<Zvp8u>(ep[ch][2 * s]);
        e1[4 * i + ch] = static_cast<Zvp8u>(ep[ch][2 * s + 1]);
        wt[4 * i + ch] = static_cast<Zvp8u>(w[idx[i]]);
      }
    }
  }
  alignas(16) Zvp8u px[64];
  interp(e0, e1, wt, px);
  for (int r = 0; r < 4; ++r) std::memcpy(zvp::rowPtr(pDst, dstStep, r), px + 16 * r, 16);
  return pBlock + 16;
}

}  // namespace

namespace zvp::tex {

void bc7InterpolateScalar(const Zvp8u* e0, const Zvp8u* e1, const Zvp8u* w, Zvp8u* out) {
  for (int i = 0; i < 64; ++i) out[i] = interpolate(e0[i], e1[i], w[i]);
}

Bc7InterpolateFn bc7Interpolate() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return bc7InterpolateSSE41;
#endif
  return bc7InterpolateScalar;
}

}  // namespace zvp::tex

const Zvp8u* decode_block_bc7_rgba(const Zvp8u* pBlock, Zvp8u* pDst, int dstStep) {
  return decodeBlock(pBlock, pDst, dstStep, zvp::tex::bc7Interpolate());
}

ZvpStatus ownpj_TextureDecodeBlockToRGBA_BC7_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  const int fullCols = roi.width / 4, restCols = roi.width % 4;
  const int fullRows = roi.height / 4, restRows = roi.height % 4;
  const zvp::tex::Bc7InterpolateFn interp = zvp::tex::bc7Interpolate();
  Zvp8u tile[64];
  for (int by = 0; by < fullRows; ++by) {
    Zvp8u* row = zvp::rowPtr(pDst, dstStep, 4 * by);
    for (int bx = 0; bx < fullCols; ++bx) pSrc = decodeBlock(pSrc, row + 16 * bx, dstStep, interp);
    if (restCols) {
      pSrc = decodeBlock(pSrc, tile, 16, interp);
      for (int r = 0; r < 4; ++r)
        std::memcpy(zvp::rowPtr(row, dstStep, r) + 16 * fullCols, tile + 16 * r, static_cast<size_t>(4 * restCols));
    }
  }
  if (restRows) {
    Zvp8u* row = zvp::rowPtr(pDst, dstStep, 4 * fullRows);
    const int blocksX = fullCols + (restCols ? 1 : 0);
    for (int bx = 0; bx < blocksX; ++bx) {
      pSrc = decodeBlock(pSrc, tile, 16, interp);
      const int cols = bx < fullCols ? 4 : restCols;
      for (int r = 0; r < restRows; ++r)
        std::memcpy(zvp::rowPtr(row, dstStep, r) + 16 * bx, tile + 16 * r, static_cast<size_t>(4 * cols));
    }
  }
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep,
                                                                        ZvpiSize roiSize) {
  if (!pSrc || !pDst) return zvpStatusNullPointer;
  if (dstStep == 0) return zvpStatusBadStep;
  if (ZvpStatus st = zvp::checkSize(roiSize)) return st;
  return ownpj_TextureDecodeBlockToRGBA_BC7_8u_C1C4R(pSrc, pDst, dstStep, roiSize);
}
