// Internals of the Huffman family: the careful reader and writer, the shared
// constants, and the fast paths against the careful paths on the same blocks.
#include <gtest/gtest.h>

#include "core/cpu.h"
#include "huffman/huffkernels.h"
#include "huffman/huffrecords.h"
#include "huffman_common.h"

namespace {

TEST(HuffmanConstants, FilledByRule) {
  for (int i = 0; i < 256; ++i) EXPECT_EQ(own_pj_csize[i], href::bitLen(static_cast<uint32_t>(i)));
  for (int i = 0; i < 512; ++i) EXPECT_EQ(own_pj_eobsize[i], i < 2 ? 0 : href::bitLen(static_cast<uint32_t>(i)) - 1);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(own_pj_lowest_coef[i], i ? 1 - (1 << i) : 0);
    EXPECT_EQ(own_pj_extend_offset[i], own_pj_lowest_coef[i]);
    EXPECT_EQ(own_pj_extend_test[i], i ? 1 << (i - 1) : 0);
    EXPECT_EQ(own_pj_twoexpnminusone[i], own_pj_extend_test[i]);
  }
}

struct Fill {
  std::vector<uint8_t> src;
  int pos = 0, marker = 0;
  ZvpiDecodeHuffmanState s{};
  int call(int need, int len = -1) {
    return ownpj_FillBitBuffer(src.data(), len < 0 ? static_cast<int>(src.size()) : len, &pos, &marker, need, &s);
  }
};

TEST(HuffmanFill, TopsUpTo25BitsByteByByte) {
  Fill f{{0x12, 0x34, 0x56, 0x78, 0x9A}};
  EXPECT_EQ(f.call(0), zvpStatusOk);
  EXPECT_EQ(f.pos, 4);
  EXPECT_EQ(f.s.bitCount, 32);
  EXPECT_EQ(f.s.bitBufferLo, 0x12345678u);
  EXPECT_EQ(f.s.bitBufferHi, 0u);
}

TEST(HuffmanFill, EndOfSource) {
  Fill f{{0xAB}};
  EXPECT_EQ(f.call(8), zvpStatusOk);  // need met
  EXPECT_EQ(f.pos, 1);
  EXPECT_EQ(f.s.bitCount, 8);
  EXPECT_EQ(f.call(9), zvpStatusOutOfBuffer);
  EXPECT_EQ(f.call(8), zvpStatusOk);
}

TEST(HuffmanFill, LoneFFAtEnd) {
  Fill f{{0x11, 0xFF}};
  EXPECT_EQ(f.call(0), zvpStatusOutOfBuffer);  // even though nothing was needed
  EXPECT_EQ(f.pos, 2);
  EXPECT_EQ(f.s.bitCount, 8);
}

TEST(HuffmanFill, StuffingFillBytesAndMarker) {
  Fill f{{0xFF, 0x00, 0xFF, 0xFF, 0xFF, 0xD9, 0x55}};
  EXPECT_EQ(f.call(30), zvpStatusOk);  // the marker is a success
  EXPECT_EQ(f.s.bitCount, 8);
  EXPECT_EQ(f.s.bitBufferLo & 0xFF, 0xFFu);
  EXPECT_EQ(f.marker, 0xD9);
  EXPECT_EQ(f.pos, 6);
  EXPECT_EQ(f.call(9), zvpStatusJpegRange);  // marker pending, too few bits
  EXPECT_EQ(f.call(8), zvpStatusOk);
  EXPECT_EQ(f.pos, 6);
}

TEST(HuffmanFill, MarkerByteFFNeverStored) {
  Fill f{{0xFF, 0xFF, 0xFF}};
  EXPECT_EQ(f.call(0), zvpStatusOutOfBuffer);
  EXPECT_EQ(f.marker, 0);
  EXPECT_EQ(f.pos, 3);
}

TEST(HuffmanSymbol, NegativeCountAfterMarker) {
  // Table: one code "0" of length 1 (symbol 7) and codes of length 9.
  uint8_t bits[16] = {1, 0, 0, 0, 0, 0, 0, 0, 2}, vals[3] = {7, 8, 9};
  ZvpiDecodeHuffmanSpec t;
  ASSERT_EQ(ownpj_DecodeHuffmanSpecInit(bits, vals, &t), zvpStatusOk);
  // 8 bits "1000 0000" held, then a marker: the 9-bit walk runs into it, the
  // request is a success and the count goes to -1.
  std::vector<uint8_t> src = {0xFF, 0xD0};
  int pos = 0, marker = 0, sym = -5;
  ZvpiDecodeHuffmanState s{};
  s.bitBufferLo = 0x80;
  s.bitCount = 8;
  // The bits below come from a shift by -1 modulo 32 (code 0 at length 9),
  // which leads outside the symbol list: no code.
  EXPECT_EQ(ownpj_DecodeHuffSymbol(src.data(), 2, &pos, &marker, &sym, &t, &s), zvpStatusJpegRange);
  EXPECT_EQ(marker, 0xD0);
  EXPECT_EQ(pos, 2);
  EXPECT_EQ(s.bitCount, -1);
  EXPECT_EQ(sym, 0);
  EXPECT_EQ(ownpj_DecodeHuffSymbol(src.data(), 2, &pos, &marker, &sym, &t, &s), zvpStatusJpegRange);
}

TEST(HuffmanSymbol, NoCodeBy16Bits) {
  uint8_t bits[16] = {1}, vals[1] = {3};
  ZvpiDecodeHuffmanSpec t;
  ASSERT_EQ(ownpj_DecodeHuffmanSpecInit(bits, vals, &t), zvpStatusOk);
  std::vector<uint8_t> src = {0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00};
  int pos = 0, marker = 0, sym = -5;
  ZvpiDecodeHuffmanState s{};
  EXPECT_EQ(ownpj_DecodeHuffSymbol(src.data(), 8, &pos, &marker, &sym, &t, &s), zvpStatusJpegRange);
  EXPECT_EQ(sym, 0);
  EXPECT_EQ(s.bitCount, 32 - 17);  // the walk took 17 bits
}

TEST(HuffmanWriteBits, SpanFormAndStuffing) {
  std::vector<uint8_t> dst(4, 0xCD);
  int pos = 0;
  ZvpiEncodeHuffmanState s{};
  EXPECT_EQ(ownpj_write_bits_jpeg(5, 0, dst.data(), 4, &pos, &s), zvpStatusHuffmanTable);
  EXPECT_EQ(ownpj_write_bits_jpeg(0x1FF, 9, dst.data(), 4, &pos, &s), zvpStatusOk);
  EXPECT_EQ(pos, 2);  // 0xFF then a stuffed 0x00
  EXPECT_EQ(dst[0], 0xFF);
  EXPECT_EQ(dst[1], 0x00);
  EXPECT_EQ(s.bitCount, 1);
  EXPECT_EQ(s.bitBufferLo & 0xFFFFFF, 0x800000u);
  // Room for the 0xFF but not for its stuffing: the position keeps it, the
  // record its old bits.
  EXPECT_EQ(ownpj_write_bits_jpeg(0x7F, 7, dst.data(), 3, &pos, &s), zvpStatusOutOfBuffer);
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(dst[2], 0xFF);
  EXPECT_EQ(s.bitCount, 1);
}

TEST(HuffmanLongBits, MarkerAndNoCode) {
  uint8_t bits[16] = {1, 0, 0, 0, 0, 0, 0, 0, 2}, vals[3] = {7, 8, 9};
  ZvpiDecodeHuffmanSpec t;
  ASSERT_EQ(ownpj_DecodeHuffmanSpecInit(bits, vals, &t), zvpStatusOk);
  std::vector<uint8_t> src = {0x80, 0x7F, 0xFF, 0xD0};
  int pos = 0, cnt = 0, marker = 0;
  uint32_t b = 0;
  OwnpjDirectCursor c{src.data(), &pos, &b, &cnt, &marker};
  EXPECT_EQ(ownpj_DecodeLongBits(9, &t, c), 8);  // 1000 0000 0
  EXPECT_EQ(marker, 0xD0);
  EXPECT_EQ(cnt, 7);
  EXPECT_EQ(ownpj_DecodeLongBits(9, &t, c), -256);  // 7 bits left, marker met
  uint8_t none[16] = {};
  ZvpiDecodeHuffmanSpec empty;
  ownpj_DecodeHuffmanSpecInit(none, vals, &empty);
  std::vector<uint8_t> src2 = {0x12, 0x34, 0x56, 0x78, 0xFF, 0xD9};
  pos = cnt = marker = 0;
  b = 0;
  OwnpjDirectCursor c2{src2.data(), &pos, &b, &cnt, &marker};
  EXPECT_EQ(ownpj_DecodeLongBits(9, &empty, c2), -1);
}

// Fast path against careful path on the same blocks and the same state.
TEST(HuffmanPaths, DecoderFastEqualsCareful) {
  zt::Rng rng(51);
  for (int it = 0; it < 6; ++it) {
    ht::Tables t = ht::Tables::random(rng);
    href::CodeMap dcm(t.dcL), acm(t.acL);
    href::BitWriter bw;
    std::vector<std::array<int16_t, 64>> blocks(200);
    int16_t edc = 0;
    for (auto& b : blocks) {
      ht::randomBlock(rng, rng.uniform(0, 5), b.data());
      href::encodeBlock(bw, b.data(), edc, dcm, acm);
    }
    bw.padOnes();
    std::vector<uint8_t> src = bw.out;
    src.insert(src.end(), {0xFF, 0xD9});
    int len = static_cast<int>(src.size());
    int pos = 0, marker = 0;
    int16_t dc = 0;
    ZvpiDecodeHuffmanState s{};
    auto* dcT = reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(t.dcD.b);
    auto* acT = reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(t.acD.b);
    int fast = 0;
    for (auto& b : blocks) {
      int16_t f[64], c[64];
      int pf = pos, pc = pos, mf = marker, mc = marker;
      int16_t df = dc, dcc = dc;
      ZvpiDecodeHuffmanState sf = s, sc = s;
      int r = ownpj_DecodeHuffman8x8_JPEG_1u16s_C1(src.data(), len, &pf, f, &df, &mf, dcT, acT, &sf);
      ASSERT_EQ(ownpj_DecodeHuffman8x8_Careful_JPEG_1u16s_C1(src.data(), len, &pc, c, &dcc, &mc, dcT, acT, &sc),
                zvpStatusOk);
      ASSERT_EQ(0, std::memcmp(c, b.data(), 128));
      if (r == 0) {
        ++fast;
        ASSERT_EQ(0, std::memcmp(f, c, 128));
        ASSERT_EQ(df, dcc);
        ASSERT_EQ(sf.blockEnd, sc.blockEnd);
        // Same position in the data bits (stuffed zero bytes not counted).
        auto dataBits = [&](int p, int cnt) {
          int stuffed = 0;
          for (int i = 1; i < p; ++i) stuffed += src[i - 1] == 0xFF && src[i] == 0;
          return (p - stuffed) * 8 - cnt;
        };
        ASSERT_EQ(dataBits(pf, sf.bitCount), dataBits(pc, sc.bitCount));
      } else {
        ASSERT_EQ(pf, pos);  // nothing visible changed
        ASSERT_EQ(df, dc);
        ASSERT_EQ(sf.bitCount, s.bitCount);
      }
      // Continue from the careful path's state.
      pos = pc;
      marker = mc;
      dc = dcc;
      s = sc;
    }
    EXPECT_GT(fast, 100);
  }
}

TEST(HuffmanPaths, EncoderFastEqualsCareful) {
  zt::Rng rng(52);
  for (int it = 0; it < 6; ++it) {
    ht::Tables t = ht::Tables::random(rng);
    auto* dcT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.dcE.b);
    auto* acT = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(t.acE.b);
    std::vector<uint8_t> a(1 << 16), b(1 << 16);
    int pa = 0, pb = 0;
    int16_t da = 0, db = 0;
    ZvpiEncodeHuffmanState sa{}, sb{};
    for (int n = 0; n < 200; ++n) {
      int16_t blk[64];
      ht::randomBlock(rng, rng.uniform(0, 5), blk);
      ASSERT_EQ(ownpj_EncodeHuffman8x8_JPEG_16s1u_C1(blk, a.data(), 1 << 16, &pa, &da, dcT, acT, &sa), 0);
      ASSERT_EQ(ownpj_EncodeHuffman8x8_Careful_JPEG_16s1u_C1(blk, b.data(), 1 << 16, &pb, &db, dcT, acT, &sb), 0);
      ASSERT_EQ(pa, pb);
      ASSERT_EQ(da, db);
      ASSERT_EQ(sa.bitCount, sb.bitCount);
      uint32_t mask = sa.bitCount ? ((1u << sa.bitCount) - 1) << (24 - sa.bitCount) : 0;
      ASSERT_EQ(sa.bitBufferLo & mask, sb.bitBufferLo & mask);
      ASSERT_EQ(0, std::memcmp(a.data(), b.data(), static_cast<size_t>(pa)));
    }
  }
}

}  // namespace

namespace {

TEST(HuffmanKernels, ZigzagMaskTwins) {
  zt::Rng rng(61);
  static const auto zz = href::zigzag();
  for (int it = 0; it < 2000; ++it) {
    zt::Guarded g(128, static_cast<size_t>(2 * (it % 8)));
    int16_t* b = g.as<int16_t>();
    for (int i = 0; i < 64; ++i) b[i] = static_cast<int16_t>(rng.uniform(0, 3) ? 0 : rng.s16());
    if (it % 5 == 0) b[rng.uniform(0, 63)] = -32768;
    uint64_t want = 0;
    for (int k = 0; k < 64; ++k) want |= static_cast<uint64_t>(b[zz[k]] != 0) << k;
    ASSERT_EQ(zvp::huff::zigzagMaskScalar(b), want);
#if !defined(ZVP_NO_X86)
    if (zvp::cpuIsa() >= zvp::Isa::SSE41) {
      ASSERT_EQ(zvp::huff::zigzagMaskSSE41(b), want);
    }
#endif
  }
}

}  // namespace
