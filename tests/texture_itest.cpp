// Texture internals: the vector kernels (wide DXT5 path, block-path
// encoders, DXT decoders) against their scalar twins, and the single-block
// routines and the library on every instruction-set cap against the
// reference models.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/cpu.h"
#include "ref/texture_ref.h"
#include "support/testutil.h"
#include "texture/texture.h"

namespace {

// 4 rows of 4 * numBlocks pixels with content of kind `kind`.
void fillStrip(zt::Rng& rng, uint8_t* p, int rowBytes, int numBlocks, int kind) {
  for (int r = 0; r < 4; ++r)
    for (int i = 0; i < 16 * numBlocks; ++i) {
      int v;
      switch (kind) {
        case 0: v = rng.byte(); break;                              // full ranges
        case 1: v = 77; break;                                      // all ranges 0
        case 2: v = 100 + rng.uniform(0, 1); break;                 // ranges of 1
        case 3: v = (i & 3) == 3 ? rng.uniform(0, 2) : rng.byte(); break;  // small alpha range
        case 4: v = rng.uniform(0, 1) ? 0 : 255; break;             // extremes
        default: v = (i * 5 + r * 17) & 255; break;                 // gradients
      }
      p[static_cast<size_t>(rowBytes) * r + i] = static_cast<uint8_t>(v);
    }
}

// The instruction set of the machine, whatever the cap in force.
[[maybe_unused]] zvp::Isa cpuIsaUncapped() {
  const zvp::Isa saved = zvp::setIsaCap(zvp::Isa::AVX512);
  const zvp::Isa have = zvp::cpuIsa();
  zvp::setIsaCap(saved);
  return have;
}

struct Kernel {
  const char* name;
  zvp::Isa isa;
  zvp::tex::WideRowFn fn;
};

std::vector<Kernel> vectorKernels() {
  std::vector<Kernel> k;
#if !defined(ZVP_NO_X86)
  const zvp::Isa have = cpuIsaUncapped();
  if (have >= zvp::Isa::SSE41) k.push_back({"sse41", zvp::Isa::SSE41, zvp::tex::wideRowSSE41});
  if (have >= zvp::Isa::AVX2) k.push_back({"avx2", zvp::Isa::AVX2, zvp::tex::wideRowAVX2});
#endif
  return k;
}

}  // namespace

TEST(TextureKernels, WideRowVectorMatchesScalar) {
  zt::Rng rng(101);
  for (const Kernel& k : vectorKernels())
    for (int numBlocks = 2; numBlocks <= 20; numBlocks += 2)
      for (int kind = 0; kind < 6; ++kind)
        for (int offset : {0, 1, 7})
          for (bool negative : {false, true}) {
            const int rowBytes = 16 * numBlocks + offset + 3;
            zt::Guarded src(static_cast<size_t>(rowBytes) * 4, static_cast<size_t>(offset));
            fillStrip(rng, src.data(), rowBytes, numBlocks, kind);
            const Zvp8u* base = negative ? src.data() + 3 * rowBytes : src.data();
            const int step = negative ? -rowBytes : rowBytes;
            std::vector<uint8_t> a(16 * numBlocks), b(16 * numBlocks);
            zvp::tex::wideRowScalar(base, step, a.data(), numBlocks);
            k.fn(base, step, b.data(), numBlocks);
            ASSERT_EQ(a, b) << k.name << " blocks " << numBlocks << " kind " << kind;
          }
}

TEST(TextureKernels, BlockPathVectorMatchesScalar) {
#if !defined(ZVP_NO_X86)
  if (cpuIsaUncapped() < zvp::Isa::SSE41) GTEST_SKIP() << "no SSE4.1";
  zt::Rng rng(105);
  for (int t = 0; t < 20000; ++t) {
    const int kind = t % 6;
    alignas(16) uint8_t store[64 + 16];
    uint8_t* px = store + (t % 13);  // any alignment
    fillStrip(rng, px, 16, 1, kind);
    if (t % 7 == 0)  // ties: few distinct values
      for (int i = 0; i < 64; ++i) px[i] = static_cast<uint8_t>(px[i] & 0xC0);
    uint8_t a[8], b[8];
    zvp::tex::colourBlockScalar(px, a);
    zvp::tex::colourBlockSSE41(px, b);
    ASSERT_EQ(0, std::memcmp(a, b, 8)) << t;
    zvp::tex::alphaBlockRGBAScalar(px, a);
    zvp::tex::alphaBlockRGBASSE41(px, b);
    ASSERT_EQ(0, std::memcmp(a, b, 8)) << t;
    // YCoCg: chroma around 128 at every scale, and far from it (wraps).
    uint8_t y[48];
    const int spread = (t / 6) % 4 == 0 ? 31 : (t / 6) % 4 == 1 ? 33 : (t / 6) % 4 == 2 ? 64 : 128;
    for (int i = 0; i < 48; ++i)
      y[i] = static_cast<uint8_t>(i % 3 == 0 ? px[i] : std::min(255, std::max(0, 128 + rng.uniform(-spread, spread))));
    if (t % 11 == 0)
      for (int i = 1; i < 48; i += 3) y[i] = y[i + 1] = static_cast<uint8_t>(rng.uniform(0, 3));
    uint8_t ya[16], yb[16];
    zvp::tex::ycocgBlockScalar(y, ya);
    zvp::tex::ycocgBlockSSE41(y, yb);
    ASSERT_EQ(0, std::memcmp(ya, yb, 16)) << t;
    const int a0 = rng.uniform(0, 255), a1 = t % 3 ? rng.uniform(0, a0) : rng.uniform(0, 255);
    zvp::tex::alphaIndicesScalar(px + 3, a0, a1, a);
    zvp::tex::alphaIndicesSSE41(px + 3, a0, a1, b);
    ASSERT_EQ(0, std::memcmp(a, b, 8)) << t << " " << a0 << " " << a1;
  }
#endif
}

TEST(TextureKernels, DecoderVectorMatchesScalar) {
#if !defined(ZVP_NO_X86)
  if (cpuIsaUncapped() < zvp::Isa::SSE41) GTEST_SKIP() << "no SSE4.1";
  zt::Rng rng(106);
  for (int t = 0; t < 20000; ++t) {
    uint8_t blk[16];
    rng.fill(blk, 16);
    if (t % 4 == 1) { blk[2] = blk[0]; blk[3] = blk[1]; blk[10] = blk[8]; blk[11] = blk[9]; }  // equal ends
    if (t % 4 == 2) std::swap(blk[0], blk[1]);
    uint8_t a[64], b[64];
    zvp::tex::dxt1BlockScalar(blk, a);
    zvp::tex::dxt1BlockSSE41(blk, b);
    ASSERT_EQ(0, std::memcmp(a, b, 64)) << t;
    zvp::tex::dxt3BlockScalar(blk, a);
    zvp::tex::dxt3BlockSSE41(blk, b);
    ASSERT_EQ(0, std::memcmp(a, b, 64)) << t;
    zvp::tex::dxt5BlockScalar(blk, a);
    zvp::tex::dxt5BlockSSE41(blk, b);
    ASSERT_EQ(0, std::memcmp(a, b, 64)) << t;
  }
#endif
}

TEST(TextureKernels, Bc7InterpolationVectorMatchesScalar) {
#if !defined(ZVP_NO_X86)
  if (cpuIsaUncapped() < zvp::Isa::SSE41) GTEST_SKIP() << "no SSE4.1";
  zt::Rng rng(107);
  for (int t = 0; t < 5000; ++t) {
    alignas(16) uint8_t e0[64], e1[64], w[64], a[64], b[64];
    rng.fill(e0, 64);
    rng.fill(e1, 64);
    for (int i = 0; i < 64; ++i) w[i] = static_cast<uint8_t>(t % 5 == 0 ? 64 * (i & 1) : rng.uniform(0, 64));
    if (t % 7 == 0) std::memset(e1, 255, 64);
    zvp::tex::bc7InterpolateScalar(e0, e1, w, a);
    zvp::tex::bc7InterpolateSSE41(e0, e1, w, b);
    ASSERT_EQ(0, std::memcmp(a, b, 64)) << t;
  }
#endif
}

TEST(TextureKernels, WideRowScalarMatchesReference) {
  zt::Rng rng(102);
  for (int kind = 0; kind < 6; ++kind)
    for (int t = 0; t < 20; ++t) {
      std::vector<uint8_t> strip(4 * 32);
      fillStrip(rng, strip.data(), 32, 2, kind);
      uint8_t out[32];
      zvp::tex::wideRowScalar(strip.data(), 32, out, 2);
      for (int b = 0; b < 2; ++b) {
        uint8_t blk[64], want[16];
        for (int r = 0; r < 4; ++r) std::memcpy(blk + 16 * r, &strip[32 * r + 16 * b], 16);
        ref::tex::encodeDXT5Wide(blk, want);
        ASSERT_EQ(0, std::memcmp(out + 16 * b, want, 16)) << kind;
      }
    }
}

TEST(TextureKernels, SingleBlockRoutines) {
  zt::Rng rng(103);
  for (int t = 0; t < 2000; ++t) {
    uint8_t blk[16], tile[64], want[64];
    rng.fill(blk, 16);
    decode_block_dxt1_rgba(blk, tile);
    ref::tex::decodeBlock(ref::tex::Fmt::DXT1, blk, want);
    ASSERT_EQ(0, std::memcmp(tile, want, 64));
    decode_block_dxt3_rgba(blk, tile);
    ref::tex::decodeBlock(ref::tex::Fmt::DXT3, blk, want);
    ASSERT_EQ(0, std::memcmp(tile, want, 64));
    decode_block_dxt5_rgba(blk, tile);
    ref::tex::decodeBlock(ref::tex::Fmt::DXT5, blk, want);
    ASSERT_EQ(0, std::memcmp(tile, want, 64));
    // BC7 with a row step: 4 rows of 16 bytes, 24 apart.
    uint8_t rows[4 * 24];
    std::memset(rows, 0xCD, sizeof rows);
    EXPECT_EQ(decode_block_bc7_rgba(blk, rows, 24), blk + 16);
    ref::tex::decodeBlock(ref::tex::Fmt::BC7, blk, want);
    for (int r = 0; r < 4; ++r) {
      ASSERT_EQ(0, std::memcmp(rows + 24 * r, want + 16 * r, 16));
      for (int x = 16; x < 24; ++x) ASSERT_EQ(rows[24 * r + x], 0xCD);
    }
    uint8_t px[64], out[16], ref16[16];
    rng.fill(px, 64);
    encode_block_rgba_dxt1(px, out);
    ref::tex::encodeDXT1(px, ref16);
    ASSERT_EQ(0, std::memcmp(out, ref16, 8));
    encode_block_rgba_dxt3(px, out);
    ref::tex::encodeDXT3(px, ref16);
    ASSERT_EQ(0, std::memcmp(out, ref16, 16));
    encode_block_rgba_dxt5(px, out);
    ref::tex::encodeDXT5Block(px, ref16);
    ASSERT_EQ(0, std::memcmp(out, ref16, 16));
    uint8_t y[48];
    std::memcpy(y, px, 48);
    ref::tex::encodeYCoCg(y, ref16);
    encode_block_ycocg_dxt5(y, out);
    ASSERT_EQ(0, std::memcmp(out, ref16, 16));
  }
}

TEST(TextureKernels, EveryIsaGivesTheReferenceBytes) {
  zt::Rng rng(104);
  const zvp::Isa saved = zvp::setIsaCap(zvp::Isa::AVX512);
  for (zvp::Isa isa : {zvp::Isa::Scalar, zvp::Isa::SSE41, zvp::Isa::AVX2}) {
    zvp::setIsaCap(isa);
    for (int w : {16, 17, 31, 32, 33, 48, 64, 100}) {
      const int h = 9;
      std::vector<uint8_t> img(static_cast<size_t>(w) * h * 4);
      rng.fill(img.data(), img.size());
      const size_t out = static_cast<size_t>((w + 3) / 4) * 3 * 16;
      std::vector<uint8_t> got(out);
      ASSERT_EQ(ownpj_TextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(img.data(), 4 * w, {w, h}, got.data()), zvpStatusOk);
      EXPECT_EQ(got, ref::tex::encodeImage(ref::tex::Fmt::DXT5, img.data(), w, h)) << w;
      ASSERT_EQ(ownpj_TextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(img.data(), 4 * w, {w, h}, got.data()), zvpStatusOk);
      got.resize(out / 2);
      EXPECT_EQ(got, ref::tex::encodeImage(ref::tex::Fmt::DXT1, img.data(), w, h)) << w;
      got.resize(out);
      ASSERT_EQ(ownpj_TextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(img.data(), 4 * w, {w, h}, got.data()), zvpStatusOk);
      EXPECT_EQ(got, ref::tex::encodeImage(ref::tex::Fmt::DXT3, img.data(), w, h)) << w;
      ASSERT_EQ(ownpj_TextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(img.data(), 3 * w, {w, h}, got.data()), zvpStatusOk);
      EXPECT_EQ(got, ref::tex::encodeImageYCoCg(img.data(), w, h)) << w;
      // Decoders: the DXT5 blocks just made, and the DXT1 reading of them.
      std::vector<uint8_t> px(static_cast<size_t>(w) * h * 4);
      ASSERT_EQ(ownpj_TextureDecodeBlockToRGBA_DXT5_8u_C1C4R(got.data(), px.data(), 4 * w, {w, h}), zvpStatusOk);
      EXPECT_EQ(px, ref::tex::decodeImage(ref::tex::Fmt::DXT5, got.data(), w, h));
      ASSERT_EQ(ownpj_TextureDecodeBlockToRGBA_DXT3_8u_C1C4R(got.data(), px.data(), 4 * w, {w, h}), zvpStatusOk);
      EXPECT_EQ(px, ref::tex::decodeImage(ref::tex::Fmt::DXT3, got.data(), w, h));
      ASSERT_EQ(ownpj_TextureDecodeBlockToRGBA_DXT1_8u_C1C4R(got.data(), px.data(), 4 * w, {w, h}), zvpStatusOk);
      EXPECT_EQ(px, ref::tex::decodeImage(ref::tex::Fmt::DXT1, got.data(), w, h));
      // BC7: the same bytes as random blocks of every mode.
      for (size_t i = 0; i < got.size(); i += 16) {
        const int mode = static_cast<int>((i / 16) % 9);
        got[i] = mode == 8 ? 0 : static_cast<uint8_t>((got[i] << (mode + 1)) | (1u << mode));
      }
      ASSERT_EQ(ownpj_TextureDecodeBlockToRGBA_BC7_8u_C1C4R(got.data(), px.data(), 4 * w, {w, h}), zvpStatusOk);
      EXPECT_EQ(px, ref::tex::decodeImage(ref::tex::Fmt::BC7, got.data(), w, h));
    }
  }
  zvp::setIsaCap(saved);
}
