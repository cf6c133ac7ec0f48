// Texture codecs through the public interface: edge cases, argument tests,
// and every decoder and encoder against the reference models on random
// regions (every width 1 to 40, large regions, negative and wide steps,
// partial edge blocks, guard bytes).
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "ref/texture_ref.h"
#include "support/testutil.h"
#include "texture_cases.h"
#include "zvpj.h"

using ref::tex::Fmt;
using ztex::bc7Random;
using ztex::setBits;

namespace {

using DecFn = ZvpStatus (*)(const Zvp8u*, Zvp8u*, int, ZvpiSize);
using EncFn = ZvpStatus (*)(const Zvp8u*, int, ZvpiSize, Zvp8u*);

int blockBytes(Fmt f) { return f == Fmt::DXT1 ? 8 : 16; }
DecFn decoder(Fmt f) {
  switch (f) {
    case Fmt::DXT1: return zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R;
    case Fmt::DXT3: return zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R;
    case Fmt::DXT5: return zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R;
    default: return zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R;
  }
}
EncFn encoder(Fmt f) {
  switch (f) {
    case Fmt::DXT1: return zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R;
    case Fmt::DXT3: return zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R;
    default: return zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R;
  }
}

// Decodes one block (1 block region 4x4) through the exported function.
std::vector<uint8_t> decodeOne(Fmt f, const uint8_t* block) {
  std::vector<uint8_t> out(64);
  EXPECT_EQ(decoder(f)(block, out.data(), 16, {4, 4}), zvpStatusOk);
  return out;
}

// Runs a decoder over a w x h region with step `step` (negative: bottom-up),
// checks guard bytes, and returns the region's pixels top row first.
std::vector<uint8_t> decodeRegion(Fmt f, const std::vector<uint8_t>& stream, int w, int h, int extra, bool negative,
                                  size_t offset) {
  const int rowBytes = 4 * w + extra;
  zt::Guarded dst(static_cast<size_t>(rowBytes) * h, offset);
  std::memset(dst.data(), 0x5C, dst.size());
  Zvp8u* base = negative ? dst.data() + static_cast<size_t>(rowBytes) * (h - 1) : dst.data();
  const int step = negative ? -rowBytes : rowBytes;
  EXPECT_EQ(decoder(f)(stream.data(), base, step, {w, h}), zvpStatusOk);
  EXPECT_TRUE(dst.intact());
  std::vector<uint8_t> img(static_cast<size_t>(4 * w) * h);
  for (int y = 0; y < h; ++y) {
    const Zvp8u* row = base + static_cast<std::ptrdiff_t>(y) * step;
    std::memcpy(&img[static_cast<size_t>(4 * w) * y], row, static_cast<size_t>(4 * w));
    for (int x = 4 * w; x < rowBytes; ++x) EXPECT_EQ(row[x], 0x5C) << "padding written";
  }
  return img;
}

std::vector<uint8_t> randomStream(zt::Rng& rng, Fmt f, int w, int h) {
  std::vector<uint8_t> s(static_cast<size_t>((w + 3) / 4) * ((h + 3) / 4) * blockBytes(f));
  rng.fill(s.data(), s.size());
  if (f == Fmt::BC7) {
    // Mostly valid blocks of every mode, now and then an invalid one.
    for (size_t i = 0; i < s.size(); i += 16) {
      const int mode = rng.uniform(0, 8);
      if (mode == 8) s[i] = 0;
      else s[i] = static_cast<uint8_t>((s[i] << (mode + 1)) | (1u << mode));
    }
  }
  return s;
}

// Natural-looking RGBA: smooth gradients, noise and flat patches, so that the
// encoders meet small ranges, zero ranges and full ranges.
std::vector<uint8_t> randomPixels(zt::Rng& rng, int w, int h, int bpp) {
  std::vector<uint8_t> p(static_cast<size_t>(w) * h * bpp);
  const int kind = rng.uniform(0, 3);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < bpp; ++c) {
        int v;
        switch (kind) {
          case 0: v = rng.uniform(0, 255); break;
          case 1: v = (x * 7 + y * 3 + c * 40) & 255; break;
          case 2: v = ((x / 5 + y / 3) & 1) ? 200 + c : 10 * c + rng.uniform(0, 2); break;
          default: v = 128 + rng.uniform(-20, 20) + (x - y); break;
        }
        p[(static_cast<size_t>(y) * w + x) * bpp + c] = static_cast<uint8_t>(std::min(255, std::max(0, v)));
      }
  return p;
}

}  // namespace

// ---------------------------------------------------------------- decoders

TEST(TextureDecode, Dxt1EqualEndsThreeColourIndex3White) {
  const uint8_t blk[8] = {0x34, 0x12, 0x34, 0x12, 0xE4, 0xE4, 0xE4, 0xE4};  // indices 0,1,2,3
  const auto px = decodeOne(Fmt::DXT1, blk);
  const int r = (0x1234 >> 11) << 3, g = ((0x1234 >> 5) & 63) << 2, b = (0x1234 & 31) << 3;
  for (int p = 0; p < 16; ++p) {
    const int idx = p & 3;
    if (idx == 3) {
      for (int c = 0; c < 4; ++c) EXPECT_EQ(px[4 * p + c], 255);
    } else {
      EXPECT_EQ(px[4 * p], r);
      EXPECT_EQ(px[4 * p + 1], g);
      EXPECT_EQ(px[4 * p + 2], b);
      EXPECT_EQ(px[4 * p + 3], 255);
    }
  }
}

TEST(TextureDecode, Dxt1ShiftOnlyWideningAndFourColour) {
  // c0 = 0xFFFF > c1 = 0: entries 248/252/248, 165/168/165, 82/84/82, 0.
  const uint8_t blk[8] = {0xFF, 0xFF, 0x00, 0x00, 0xE4, 0xE4, 0xE4, 0xE4};
  const auto px = decodeOne(Fmt::DXT1, blk);
  const int want[4][3] = {{248, 252, 248}, {0, 0, 0}, {165, 168, 165}, {82, 84, 82}};
  for (int p = 0; p < 16; ++p)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(px[4 * p + c], want[p & 3][c]);
}

TEST(TextureDecode, Dxt3AllOnes) {
  uint8_t blk[16];
  std::memset(blk, 0xFF, 16);
  const auto px = decodeOne(Fmt::DXT3, blk);
  for (int p = 0; p < 16; ++p) {
    EXPECT_EQ(px[4 * p], 248);
    EXPECT_EQ(px[4 * p + 1], 252);
    EXPECT_EQ(px[4 * p + 2], 248);
    EXPECT_EQ(px[4 * p + 3], 240);
  }
}

TEST(TextureDecode, Dxt3Dxt5FourColoursWhenC0BelowC1) {
  for (Fmt f : {Fmt::DXT3, Fmt::DXT5}) {
    uint8_t blk[16] = {};
    blk[8] = 0x00; blk[9] = 0x00;    // c0 = 0
    blk[10] = 0xFF; blk[11] = 0xFF;  // c1 = 0xFFFF
    blk[12] = blk[13] = blk[14] = blk[15] = 0xFF;  // all index 3
    const auto px = decodeOne(f, blk);
    for (int p = 0; p < 16; ++p) {
      EXPECT_EQ(px[4 * p], (0 + 2 * 248) / 3);
      EXPECT_EQ(px[4 * p + 1], (0 + 2 * 252) / 3);
    }
  }
}

namespace {

// The decoded pixels of a DXT5 block with alpha ends a0, a1 (colour half 0)
// whose pixel p has alpha index p & 7.
std::vector<uint8_t> dxt5AlphaIndexRamp(uint8_t a0, uint8_t a1) {
  uint8_t blk[16] = {a0, a1};
  uint64_t bits = 0;
  for (int p = 0; p < 16; ++p) bits |= static_cast<uint64_t>(p & 7) << (3 * p);
  for (int i = 0; i < 6; ++i) blk[2 + i] = static_cast<uint8_t>(bits >> (8 * i));
  return decodeOne(Fmt::DXT5, blk);
}

}  // namespace

TEST(TextureDecode, Dxt5EqualAlphasSixAlphaRule) {
  const auto px = dxt5AlphaIndexRamp(10, 10);
  const int want[8] = {10, 10, 10, 10, 10, 10, 0, 255};
  for (int p = 0; p < 16; ++p) EXPECT_EQ(px[4 * p + 3], want[p & 7]);
}

TEST(TextureDecode, Dxt5EightAlphaRuleRounds) {
  const auto px = dxt5AlphaIndexRamp(200, 1);
  const int want[8] = {200, 1, (1200 + 1 + 3) / 7, (1000 + 2 + 3) / 7, (800 + 3 + 3) / 7,
                       (600 + 4 + 3) / 7, (400 + 5 + 3) / 7, (200 + 6 + 3) / 7};
  for (int p = 0; p < 16; ++p) EXPECT_EQ(px[4 * p + 3], want[p & 7]);
}

TEST(TextureDecode, Region5x5ConsumesTwoByTwoBlocks) {
  zt::Rng rng(11);
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5, Fmt::BC7}) {
    auto s = randomStream(rng, f, 5, 5);
    ASSERT_EQ(s.size(), 4u * blockBytes(f));
    EXPECT_EQ(decodeRegion(f, s, 5, 5, 0, false, 0), ref::tex::decodeImage(f, s.data(), 5, 5));
  }
}

TEST(TextureDecode, Region1x1OnePixel) {
  zt::Rng rng(12);
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5, Fmt::BC7}) {
    auto s = randomStream(rng, f, 1, 1);
    uint8_t tile[64];
    ref::tex::decodeBlock(f, s.data(), tile);
    const auto img = decodeRegion(f, s, 1, 1, 0, false, 3);
    EXPECT_EQ(0, std::memcmp(img.data(), tile, 4));
  }
}

TEST(TextureDecode, StepSmallerThanRowOverwrites) {
  zt::Rng rng(13);
  for (Fmt f : {Fmt::DXT1, Fmt::BC7}) {
    auto s = randomStream(rng, f, 8, 4);
    std::vector<uint8_t> dst(4 * 3 + 32, 0);
    ASSERT_EQ(decoder(f)(s.data(), dst.data(), 4, {8, 4}), zvpStatusOk);
    // Row y starts at 4y; the blocks are stored in stream order, row after
    // row, and later stores overwrite earlier ones.
    std::vector<uint8_t> want(dst.size(), 0);
    for (int bx = 0; bx < 2; ++bx) {
      uint8_t tile[64];
      ref::tex::decodeBlock(f, s.data() + bx * blockBytes(f), tile);
      for (int r = 0; r < 4; ++r) std::memcpy(&want[4 * r + 16 * bx], tile + 16 * r, 16);
    }
    EXPECT_EQ(dst, want);
  }
}

TEST(TextureDecode, ArgumentTests) {
  uint8_t src[64] = {}, dst[64];
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5, Fmt::BC7}) {
    const DecFn fn = decoder(f);
    std::memset(dst, 0x77, sizeof dst);
    EXPECT_EQ(fn(nullptr, dst, 16, {4, 4}), zvpStatusNullPointer);
    EXPECT_EQ(fn(src, nullptr, 16, {4, 4}), zvpStatusNullPointer);
    EXPECT_EQ(fn(nullptr, dst, 0, {0, 0}), zvpStatusNullPointer);  // pointer first
    EXPECT_EQ(fn(src, dst, 0, {4, 4}), zvpStatusBadStep);
    EXPECT_EQ(fn(src, dst, 0, {0, 4}), zvpStatusBadStep);  // step before size
    EXPECT_EQ(fn(src, dst, 16, {0, 4}), zvpStatusBadSize);
    EXPECT_EQ(fn(src, dst, 16, {4, 0}), zvpStatusBadSize);
    EXPECT_EQ(fn(src, dst, 16, {-1, 4}), zvpStatusBadSize);
    for (uint8_t v : dst) EXPECT_EQ(v, 0x77);
    EXPECT_EQ(fn(src, dst + 48, -16, {4, 4}), zvpStatusOk);  // a negative step passes
  }
}

TEST(TextureDecode, RandomRegionsAgainstReference) {
  zt::Rng rng(21);
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5, Fmt::BC7})
    for (int w = 1; w <= 40; ++w) {
      const int h = rng.uniform(1, 10);
      auto s = randomStream(rng, f, w, h);
      const auto want = ref::tex::decodeImage(f, s.data(), w, h);
      EXPECT_EQ(decodeRegion(f, s, w, h, 0, false, 0), want) << w << "x" << h;
      EXPECT_EQ(decodeRegion(f, s, w, h, 5, true, 1), want) << w << "x" << h << " negative";
      EXPECT_EQ(decodeRegion(f, s, w, h, 12, false, 7), want) << w << "x" << h << " wide step";
    }
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5, Fmt::BC7})
    for (auto [w, h] : {std::pair{129, 70}, std::pair{256, 37}, std::pair{97, 97}}) {
      auto s = randomStream(rng, f, w, h);
      EXPECT_EQ(decodeRegion(f, s, w, h, 4, false, 0), ref::tex::decodeImage(f, s.data(), w, h));
      EXPECT_EQ(decodeRegion(f, s, w, h, 0, true, 2), ref::tex::decodeImage(f, s.data(), w, h));
    }
}

// ---------------------------------------------------------------- BC7

TEST(TextureBC7, InvalidModeZeroesAndAdvances) {
  zt::Rng rng(31);
  std::vector<uint8_t> s(32);
  rng.fill(s.data(), 32);
  s[0] = 0;
  s[16] = static_cast<uint8_t>(s[16] | 0x40);  // mode 6 or lower
  const auto img = decodeRegion(Fmt::BC7, s, 8, 4, 0, false, 0);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 16; ++x) EXPECT_EQ(img[32 * y + x], 0);
  EXPECT_EQ(img, ref::tex::decodeImage(Fmt::BC7, s.data(), 8, 4));
  uint8_t second[64];
  ref::tex::decodeBlock(Fmt::BC7, s.data() + 16, second);
  for (int y = 0; y < 4; ++y) EXPECT_EQ(0, std::memcmp(&img[32 * y + 16], second + 16 * y, 16));
}

TEST(TextureBC7, ModeFromLowestSetBit) {
  zt::Rng rng(32);
  std::vector<uint8_t> b(16);
  rng.fill(b.data(), 16);
  b[0] = 0x80;  // mode 7
  EXPECT_EQ(decodeOne(Fmt::BC7, b.data()), std::vector<uint8_t>(decodeOne(Fmt::BC7, b.data())));
  uint8_t want[64];
  ref::tex::decodeBlock(Fmt::BC7, b.data(), want);
  EXPECT_EQ(0, std::memcmp(decodeOne(Fmt::BC7, b.data()).data(), want, 64));
  // 0x41 is mode 0: same as a block whose first byte is 0x01 with the
  // partition field's top bits from 0x40.
  b[0] = 0x41;
  auto m0 = decodeOne(Fmt::BC7, b.data());
  ref::tex::decodeBlock(Fmt::BC7, b.data(), want);
  EXPECT_EQ(0, std::memcmp(m0.data(), want, 64));
  for (int p = 0; p < 16; ++p) EXPECT_EQ(m0[4 * p + 3], 255);  // modes 0-3: opaque
}

TEST(TextureBC7, Mode2AllOnesEndpointsGive255) {
  uint8_t b[16] = {};
  b[0] = 0x04;  // mode 2, partition 0
  for (int i = 0; i < 90; ++i) setBits(b, 9 + i, 1, 1);  // all endpoints 31
  const auto px = decodeOne(Fmt::BC7, b);
  for (int p = 0; p < 16; ++p)
    for (int c = 0; c < 4; ++c) EXPECT_EQ(px[4 * p + c], 255);
}

TEST(TextureBC7, IndexZeroAndTopIndexGiveEndpoints) {
  // Mode 6: R 7 bits + p-bit; e0 = 0x55 <<1 | 0, e1 = 0x2A << 1 | 1.
  for (unsigned top : {0u, 15u}) {
    uint8_t b[16] = {};
    b[0] = 0x40;
    int pos = 7;
    const unsigned e[4][2] = {{0x55, 0x2A}, {0x01, 0x7F}, {0x33, 0x44}, {0x7E, 0x00}};
    for (int c = 0; c < 4; ++c)
      for (int k = 0; k < 2; ++k) { setBits(b, pos, 7, e[c][k]); pos += 7; }
    setBits(b, pos, 1, 0); setBits(b, pos + 1, 1, 1); pos += 2;
    setBits(b, pos, 3, top & 7); pos += 3;
    for (int p = 1; p < 16; ++p) { setBits(b, pos, 4, top); pos += 4; }
    const auto px = decodeOne(Fmt::BC7, b);
    const int k = top ? 1 : 0;
    for (int p = 0; p < 16; ++p) {
      if (p == 0 && top) continue;  // the anchor's top bit is 0: index 7
      for (int c = 0; c < 4; ++c) EXPECT_EQ(px[4 * p + c], static_cast<int>(((e[c][k] << 1) | k) << 0)) << p << c;
    }
  }
}

TEST(TextureBC7, Mode4Rotation1Selector1) {
  zt::Rng rng(33);
  for (int t = 0; t < 50; ++t) {
    auto b = bc7Random(rng, 4);
    setBits(b.data(), 5, 2, 1);  // rotation 1
    setBits(b.data(), 7, 1, 1);  // selector 1
    // Read the fields by hand: R ends at 8, 13; A ends at 38, 44 (6 bits).
    auto get = [&](int pos, int n) { unsigned v = 0; for (int i = 0; i < n; ++i) v |= ((b[(pos + i) / 8] >> ((pos + i) % 8)) & 1u) << i; return v; };
    const unsigned r0 = get(8, 5), r1 = get(13, 5), a0 = get(38, 6), a1 = get(44, 6);
    const unsigned R0 = (r0 << 3) | (r0 >> 2), R1 = (r1 << 3) | (r1 >> 2);
    const unsigned A0 = (a0 << 2) | (a0 >> 4), A1 = (a1 << 2) | (a1 >> 4);
    static const int w2[4] = {0, 21, 43, 64}, w3[8] = {0, 9, 18, 27, 37, 46, 55, 64};
    int pos2 = 50, pos3 = 81;
    const auto px = decodeOne(Fmt::BC7, b.data());
    for (int p = 0; p < 16; ++p) {
      const unsigned i2 = get(pos2, p ? 2 : 1), i3 = get(pos3, p ? 3 : 2);
      pos2 += p ? 2 : 1; pos3 += p ? 3 : 2;
      EXPECT_EQ(px[4 * p], (A0 * (64 - w2[i2]) + A1 * w2[i2] + 32) >> 6);
      EXPECT_EQ(px[4 * p + 3], (R0 * (64 - w3[i3]) + R1 * w3[i3] + 32) >> 6);
    }
  }
}

TEST(TextureBC7, Mode5Rotation0AlphaPassesAt8Bits) {
  uint8_t b[16] = {};
  b[0] = 0x20;  // mode 5, rotation 0
  // alpha endpoints at bit 50 (8 bits each); all indices 0 -> alpha = a0.
  setBits(b, 50, 8, 0x9D);
  setBits(b, 58, 8, 0x13);
  const auto px = decodeOne(Fmt::BC7, b);
  for (int p = 0; p < 16; ++p) EXPECT_EQ(px[4 * p + 3], 0x9D);
}

TEST(TextureBC7, Width5RegionAndPartition0Anchors) {
  zt::Rng rng(34);
  auto s = randomStream(rng, Fmt::BC7, 5, 8);
  EXPECT_EQ(decodeRegion(Fmt::BC7, s, 5, 8, 0, false, 0), ref::tex::decodeImage(Fmt::BC7, s.data(), 5, 8));
  // Mode 2 partition 0: anchors 3 and 15 take one bit fewer; an index field
  // with every bit set gives index 1 at pixels 0, 3, 15 and 3 elsewhere.
  uint8_t b[16] = {};
  b[0] = 0x04;
  setBits(b, 9, 5, 0);            // R of subset 0 e0 = 0
  setBits(b, 9 + 5, 5, 31);       // R of subset 0 e1 = 31
  setBits(b, 9 + 10, 5, 0);       // subset 1 e0
  setBits(b, 9 + 15, 5, 31);      // subset 1 e1
  setBits(b, 9 + 20, 5, 0);
  setBits(b, 9 + 25, 5, 31);
  for (int i = 99; i < 128; ++i) setBits(b, i, 1, 1);
  const auto px = decodeOne(Fmt::BC7, b);
  for (int p = 0; p < 16; ++p) {
    const bool anchor = p == 0 || p == 3 || p == 15;
    EXPECT_EQ(px[4 * p], anchor ? (255 * 21 + 32) >> 6 : 255) << p;
  }
}

TEST(TextureBC7, EveryModePartitionRotationSelector) {
  zt::Rng rng(35);
  ztex::forEveryBc7Case(rng, [](const uint8_t* b, int mode, int part, int rot, int sel) {
    uint8_t want[64];
    ref::tex::decodeBlock(Fmt::BC7, b, want);
    const auto got = decodeOne(Fmt::BC7, b);
    ASSERT_EQ(0, std::memcmp(got.data(), want, 64)) << mode << " " << part << " " << rot << " " << sel;
  });
}

// ---------------------------------------------------------------- encoders

namespace {

// Encodes a w x h region whose rows are step bytes apart (negative:
// bottom-up) and checks the guards around the output.
std::vector<uint8_t> encodeRegion(EncFn fn, int bpp, int bb, const std::vector<uint8_t>& img, int w, int h, int extra,
                                  bool negative) {
  const int rowBytes = bpp * w + extra;
  std::vector<uint8_t> src(static_cast<size_t>(rowBytes) * h, 0xEE);
  const size_t out = static_cast<size_t>((w + 3) / 4) * ((h + 3) / 4) * bb;
  zt::Guarded dst(out, 3);
  std::memset(dst.data(), 0, out);
  for (int y = 0; y < h; ++y) {
    const int row = negative ? h - 1 - y : y;
    std::memcpy(&src[static_cast<size_t>(rowBytes) * row], &img[static_cast<size_t>(bpp) * w * y],
                static_cast<size_t>(bpp * w));
  }
  const Zvp8u* base = negative ? &src[static_cast<size_t>(rowBytes) * (h - 1)] : src.data();
  const std::vector<uint8_t> before = src;
  EXPECT_EQ(fn(base, negative ? -rowBytes : rowBytes, {w, h}, dst.data()), zvpStatusOk);
  EXPECT_TRUE(dst.intact());
  EXPECT_EQ(src, before) << "source written";
  return dst.snapshot();
}

std::vector<uint8_t> refEncode(Fmt f, const std::vector<uint8_t>& img, int w, int h) {
  return ref::tex::encodeImage(f, img.data(), w, h);
}

}  // namespace

TEST(TextureEncode, OneByOne) {
  const std::vector<uint8_t> px = {200, 100, 50, 77};
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5}) {
    const auto out = encodeRegion(encoder(f), 4, blockBytes(f), px, 1, 1, 0, false);
    const uint8_t* c = out.data() + (f == Fmt::DXT1 ? 0 : 8);
    const unsigned word = ((200u >> 3) << 11) | ((100u >> 2) << 5) | (50u >> 3);
    EXPECT_EQ(c[0] | (c[1] << 8), static_cast<int>(word));
    EXPECT_EQ(c[2] | (c[3] << 8), static_cast<int>(word));
    EXPECT_EQ(c[4] | c[5] | c[6] | c[7], 0);  // all colour indices 0
    EXPECT_EQ(out, refEncode(f, px, 1, 1));
  }
}

TEST(TextureEncode, FlatAlphaDxt5) {
  std::vector<uint8_t> img(4 * 4 * 4);
  zt::Rng rng(41);
  rng.fill(img.data(), img.size());
  for (int p = 0; p < 16; ++p) img[4 * p + 3] = 99;
  const auto out = encodeRegion(encoder(Fmt::DXT5), 4, 16, img, 4, 4, 0, false);
  EXPECT_EQ(out[0], 99);
  EXPECT_EQ(out[1], 99);
  uint64_t bits = 0;
  for (int i = 0; i < 6; ++i) bits |= static_cast<uint64_t>(out[2 + i]) << (8 * i);
  for (int p = 0; p < 16; ++p) EXPECT_LE((bits >> (3 * p)) & 7, 1u);
}

TEST(TextureEncode, Width15Against16ChangesPath) {
  zt::Rng rng(42);
  const int h = 4;
  std::vector<uint8_t> img16(16 * h * 4);
  rng.fill(img16.data(), img16.size());
  std::vector<uint8_t> img15(15 * h * 4);
  for (int y = 0; y < h; ++y) std::memcpy(&img15[60 * y], &img16[64 * y], 60);
  // Make the 16th column equal to the 15th so that the padding of width 15 gives the same pixels.
  for (int y = 0; y < h; ++y) std::memcpy(&img16[64 * y + 60], &img16[64 * y + 56], 4);
  const auto o15 = encodeRegion(encoder(Fmt::DXT5), 4, 16, img15, 15, h, 0, false);
  const auto o16 = encodeRegion(encoder(Fmt::DXT5), 4, 16, img16, 16, h, 0, false);
  EXPECT_EQ(o15, refEncode(Fmt::DXT5, img15, 15, h));
  EXPECT_EQ(o16, refEncode(Fmt::DXT5, img16, 16, h));
  EXPECT_NE(o15, o16);  // random pixels: the paths choose different indices
  // Endpoints agree between the paths.
  for (int b = 0; b < 4; ++b) {
    EXPECT_EQ(0, std::memcmp(&o15[16 * b], &o16[16 * b], 2));
    EXPECT_EQ(0, std::memcmp(&o15[16 * b + 8], &o16[16 * b + 8], 4));
  }
}

TEST(TextureEncode, Width17FifthBlockOnBlockPath) {
  zt::Rng rng(43);
  std::vector<uint8_t> img(17 * 8 * 4);
  rng.fill(img.data(), img.size());
  const auto out = encodeRegion(encoder(Fmt::DXT5), 4, 16, img, 17, 8, 0, false);
  EXPECT_EQ(out, refEncode(Fmt::DXT5, img, 17, 8));
  // The fifth block of the first row: column 16 repeated, block path.
  uint8_t blk[64], want[16];
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) std::memcpy(blk + 16 * r + 4 * c, &img[(17 * r + 16) * 4], 4);
  ref::tex::encodeDXT5Block(blk, want);
  EXPECT_EQ(0, std::memcmp(&out[16 * 4], want, 16));
}

TEST(TextureEncode, WidePathAlphaRangeOne) {
  // Alpha 10 and 11 only: every raw alpha 0, index 1.
  std::vector<uint8_t> img(16 * 4 * 4);
  zt::Rng rng(44);
  rng.fill(img.data(), img.size());
  for (int p = 0; p < 64; ++p) img[4 * p + 3] = static_cast<uint8_t>(10 + (p & 1));
  const auto out = encodeRegion(encoder(Fmt::DXT5), 4, 16, img, 16, 4, 0, false);
  EXPECT_EQ(out, refEncode(Fmt::DXT5, img, 16, 4));
  for (int b = 0; b < 4; ++b) {
    EXPECT_EQ(out[16 * b], 11);
    EXPECT_EQ(out[16 * b + 1], 10);
    uint64_t bits = 0;
    for (int i = 0; i < 6; ++i) bits |= static_cast<uint64_t>(out[16 * b + 2 + i]) << (8 * i);
    EXPECT_EQ(bits, 0x249249249249ull);  // index 1 everywhere
  }
}

TEST(TextureEncode, Dxt5WidePathIsReentrant) {
  // Four threads encode different wide regions at once; each must get the
  // bytes of the reference, as if alone.
  zt::Rng rng(46);
  std::vector<std::vector<uint8_t>> imgs, want;
  for (int t = 0; t < 4; ++t) {
    imgs.push_back(randomPixels(rng, 256, 64, 4));
    want.push_back(refEncode(Fmt::DXT5, imgs.back(), 256, 64));
  }
  std::vector<std::vector<uint8_t>> got(4, std::vector<uint8_t>(want[0].size()));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int rep = 0; rep < 20; ++rep)
        zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(imgs[t].data(), 4 * 256, {256, 64}, got[t].data());
    });
  for (auto& th : threads) th.join();
  for (int t = 0; t < 4; ++t) EXPECT_EQ(got[t], want[t]) << t;
}

TEST(TextureEncode, ArgumentTests) {
  uint8_t src[64] = {}, dst[16];
  for (EncFn fn : {zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R,
                   zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R}) {
    std::memset(dst, 0x77, sizeof dst);
    EXPECT_EQ(fn(nullptr, 16, {4, 4}, dst), zvpStatusNullPointer);
    EXPECT_EQ(fn(src, 16, {4, 4}, nullptr), zvpStatusNullPointer);
    EXPECT_EQ(fn(src, 0, {0, 0}, nullptr), zvpStatusNullPointer);
    EXPECT_EQ(fn(src, 0, {4, 4}, dst), zvpStatusBadStep);
    EXPECT_EQ(fn(src, 0, {0, 0}, dst), zvpStatusBadStep);
    EXPECT_EQ(fn(src, 16, {0, 4}, dst), zvpStatusBadSize);
    EXPECT_EQ(fn(src, 16, {4, -2}, dst), zvpStatusBadSize);
    for (uint8_t v : dst) EXPECT_EQ(v, 0x77);
    EXPECT_EQ(fn(src + 48, -16, {1, 4}, dst), zvpStatusOk);  // negative step accepted
  }
}

TEST(TextureEncode, RandomRegionsAgainstReference) {
  zt::Rng rng(45);
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5})
    for (int w = 1; w <= 40; ++w) {
      const int h = rng.uniform(1, 11);
      const auto img = randomPixels(rng, w, h, 4);
      const auto want = refEncode(f, img, w, h);
      EXPECT_EQ(encodeRegion(encoder(f), 4, blockBytes(f), img, w, h, 0, false), want) << w << "x" << h;
      EXPECT_EQ(encodeRegion(encoder(f), 4, blockBytes(f), img, w, h, 9, true), want) << w << "x" << h << " neg";
    }
  for (Fmt f : {Fmt::DXT1, Fmt::DXT3, Fmt::DXT5})
    for (auto [w, h] : {std::pair{130, 70}, std::pair{256, 36}, std::pair{67, 131}}) {
      const auto img = randomPixels(rng, w, h, 4);
      EXPECT_EQ(encodeRegion(encoder(f), 4, blockBytes(f), img, w, h, 3, false), refEncode(f, img, w, h));
    }
}

// ---------------------------------------------------------------- YCoCg

namespace {
std::vector<uint8_t> ycocgBlock(int y0, int co, int cg) {
  std::vector<uint8_t> b(48);
  for (int p = 0; p < 16; ++p) {
    b[3 * p] = static_cast<uint8_t>(y0);
    b[3 * p + 1] = static_cast<uint8_t>(co);
    b[3 * p + 2] = static_cast<uint8_t>(cg);
  }
  return b;
}
std::vector<uint8_t> encY(const std::vector<uint8_t>& img, int w, int h) {
  return encodeRegion(zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16, img, w, h, 0, false);
}
}  // namespace

TEST(TextureYCoCg, GreyBlockScale4) {
  const auto out = encY(ycocgBlock(77, 128, 128), 4, 4);
  EXPECT_EQ(out[8] & 31, 3);
  EXPECT_EQ(out[10] & 31, 3);
  EXPECT_EQ(out[0], 77);
  EXPECT_EQ(out[1], 77);
  uint64_t bits = 0;
  for (int i = 0; i < 6; ++i) bits |= static_cast<uint64_t>(out[2 + i]) << (8 * i);
  for (int p = 0; p < 16; ++p) EXPECT_LE((bits >> (3 * p)) & 7, 1u);  // all Y equal
  uint8_t want[16];
  ref::tex::encodeYCoCg(ycocgBlock(77, 128, 128).data(), want);
  EXPECT_EQ(0, std::memcmp(out.data(), want, 16));
}

TEST(TextureYCoCg, ScaleThresholds) {
  for (auto [q, blue] : {std::pair{31, 3}, std::pair{32, 1}, std::pair{63, 1}, std::pair{64, 0}}) {
    auto img = ycocgBlock(50, 128, 128);
    img[3 * 5 + 2] = static_cast<uint8_t>(128 - q);  // min Cg
    const auto out = encY(img, 4, 4);
    EXPECT_EQ(out[8] & 31, blue) << q;
    uint8_t want[16];
    ref::tex::encodeYCoCg(img.data(), want);
    EXPECT_EQ(0, std::memcmp(out.data(), want, 16));
  }
}

TEST(TextureYCoCg, ZeroChromaWraps) {
  // Co = Cg = 0: q = 128, scale 1, lo = 0 with range 0 wraps to all ones.
  const auto out = encY(ycocgBlock(9, 0, 0), 4, 4);
  const unsigned c1 = out[10] | (out[11] << 8);
  EXPECT_EQ(c1 >> 11, 31u);
  EXPECT_EQ((c1 >> 5) & 63, 63u);
  const unsigned c0 = out[8] | (out[9] << 8);
  EXPECT_EQ(c0 >> 11, 0u);  // hi = (0 - 0 + 7) >> 4 = 0
  uint8_t want[16];
  ref::tex::encodeYCoCg(ycocgBlock(9, 0, 0).data(), want);
  EXPECT_EQ(0, std::memcmp(out.data(), want, 16));
}

TEST(TextureYCoCg, DiagonalCountEightKeepsOrder) {
  // 8 pixels high Co/low Cg, 8 pixels low Co/high Cg... count 16 swaps;
  // 8 on the anti-diagonal and 8 on the diagonal: count 8, no exchange.
  auto img = ycocgBlock(1, 128, 128);
  for (int p = 0; p < 16; ++p) {
    const bool hiCo = p < 8;
    const bool hiCg = (p < 4) || (p >= 8 && p < 12);
    img[3 * p + 1] = static_cast<uint8_t>(hiCo ? 150 : 110);
    img[3 * p + 2] = static_cast<uint8_t>(hiCg ? 150 : 110);
  }
  const auto out = encY(img, 4, 4);
  const unsigned c0 = out[8] | (out[9] << 8), c1 = out[10] | (out[11] << 8);
  EXPECT_GT((c0 >> 5) & 63, (c1 >> 5) & 63);  // upper Cg stays in colour 0
  uint8_t want[16];
  ref::tex::encodeYCoCg(img.data(), want);
  EXPECT_EQ(0, std::memcmp(out.data(), want, 16));
  // Nine off-diagonal pixels: exchanged.
  img[3 * 12 + 2] = 150;
  const auto out9 = encY(img, 4, 4);
  const unsigned d0 = out9[8] | (out9[9] << 8), d1 = out9[10] | (out9[11] << 8);
  EXPECT_LT((d0 >> 5) & 63, (d1 >> 5) & 63);
}

TEST(TextureYCoCg, RandomRegionsAgainstReference) {
  zt::Rng rng(51);
  for (int w = 1; w <= 40; ++w) {
    const int h = rng.uniform(1, 9);
    const auto img = randomPixels(rng, w, h, 3);
    const auto want = ref::tex::encodeImageYCoCg(img.data(), w, h);
    EXPECT_EQ(encodeRegion(zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16, img, w, h, 0, false), want) << w;
    EXPECT_EQ(encodeRegion(zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16, img, w, h, 7, true), want) << w;
  }
  const auto img = randomPixels(rng, 131, 67, 3);
  EXPECT_EQ(encodeRegion(zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16, img, 131, 67, 0, false),
            ref::tex::encodeImageYCoCg(img.data(), 131, 67));
}
