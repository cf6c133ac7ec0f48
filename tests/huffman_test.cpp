// JPEG Huffman tables, bit-stream state and sequential block coders: the
// exported interface against the reference model in tests/ref.
#include <gtest/gtest.h>

#include "huffman_common.h"

namespace {

using ht::DecSpec;
using ht::DecState;
using ht::EncSpec;
using ht::EncState;
using ht::Tables;

// ---- Table records ----------------------------------------------------------

TEST(HuffmanSpec, Sizes) {
  int s = 0;
  EXPECT_EQ(zvpiDecodeHuffmanSpecGetBufSize_JPEG_8u(&s), zvpStatusOk);
  EXPECT_EQ(s, 1644);
  EXPECT_EQ(zvpiEncodeHuffmanSpecGetBufSize_JPEG_8u(&s), zvpStatusOk);
  EXPECT_EQ(s, 1024);
  EXPECT_EQ(zvpiDecodeHuffmanStateGetBufSize_JPEG_8u(&s), zvpStatusOk);
  EXPECT_EQ(s, 20);
  EXPECT_EQ(zvpiEncodeHuffmanStateGetBufSize_JPEG_8u(&s), zvpStatusOk);
  EXPECT_EQ(s, 1044);
  EXPECT_EQ(zvpiDecodeHuffmanSpecGetBufSize_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecGetBufSize_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanStateGetBufSize_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanStateGetBufSize_JPEG_8u(nullptr), zvpStatusNullPointer);
}

TEST(HuffmanSpec, NullArguments) {
  uint8_t bits[16] = {0, 1}, vals[256] = {};
  DecSpec d;
  EncSpec e;
  ZvpiDecodeHuffmanSpec* pd = nullptr;
  ZvpiEncodeHuffmanSpec* pe = nullptr;
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(nullptr, vals, d.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, nullptr, d.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(nullptr, vals, e.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, nullptr, e.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(nullptr, vals, &pd), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, nullptr, &pd), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(nullptr, vals, &pe), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, nullptr, &pe), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, nullptr), zvpStatusNullPointer);
  EXPECT_EQ(pd, nullptr);
  EXPECT_EQ(pe, nullptr);
  EXPECT_EQ(zvpiDecodeHuffmanSpecFree_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanSpecFree_JPEG_8u(nullptr), zvpStatusNullPointer);
  int32_t stats[257] = {};
  uint8_t lb[16], lv[256];
  EXPECT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(nullptr, lb, lv), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(stats, nullptr, lv), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(stats, lb, nullptr), zvpStatusNullPointer);
}

void expectDecodeRecord(const uint8_t* bits, const uint8_t* vals, int wantStatus) {
  href::DecodeRecord want = href::buildDecodeRecord(bits, vals);
  EXPECT_EQ(want.status, wantStatus);
  DecSpec d;
  std::memset(d.b, 0x5A, sizeof d.b);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, d.p()), wantStatus);
  if (wantStatus == zvpStatusOk) { EXPECT_EQ(0, std::memcmp(d.b, want.bytes.data(), 1644)); }
  ZvpiDecodeHuffmanSpec* pa = nullptr;
  EXPECT_EQ(zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, &pa), wantStatus);
  ASSERT_NE(pa, nullptr);  // stored also when the lists fail
  if (wantStatus == zvpStatusOk) { EXPECT_EQ(0, std::memcmp(pa, want.bytes.data(), 1644)); }
  EXPECT_EQ(zvpiDecodeHuffmanSpecFree_JPEG_8u(pa), zvpStatusOk);
}

TEST(HuffmanSpec, DecodeRecordMatchesReference) {
  zt::Rng rng(11);
  for (int it = 0; it < 40; ++it) {
    href::Lists l = it % 2 ? ht::randomAcLists(rng) : ht::randomDcLists(rng, rng.uniform(0, 16));
    SCOPED_TRACE(it);
    expectDecodeRecord(l.bits, l.vals.data(), zvpStatusOk);
  }
}

TEST(HuffmanSpec, DecodeRecordAllZeroCounts) {
  uint8_t bits[16] = {}, vals[256] = {};
  DecSpec d;
  ASSERT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, d.p()), zvpStatusOk);
  href::DecodeRecord want = href::buildDecodeRecord(bits, vals);
  EXPECT_EQ(0, std::memcmp(d.b, want.bytes.data(), 1644));
  for (int k = 1; k <= 17; ++k) EXPECT_EQ(want.maxCode(k), 0xFFFF);
  EXPECT_EQ(want.maxCode(0), 0);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(want.look(i), 0u);
  // Any decode with it fails.
  uint8_t src[64];
  std::memset(src, 0x35, sizeof src);
  int pos = 0, marker = 0;
  int16_t blk[64], dc = 0;
  DecState s;
  zvpiDecodeHuffmanStateInit_JPEG_8u(s.p());
  EXPECT_EQ(zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src, 64, &pos, blk, &dc, &marker, d.p(), d.p(), s.p()),
            zvpStatusJpegRange);
  // The encode record of the same lists is all zero.
  EncSpec e;
  std::memset(e.b, 0x77, sizeof e.b);
  ASSERT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusOk);
  for (uint8_t b : e.b) ASSERT_EQ(b, 0);
}

TEST(HuffmanSpec, CountsOf257Fail) {
  uint8_t bits[16] = {}, vals[256] = {};
  bits[7] = 255;
  bits[8] = 2;  // 257 codes
  DecSpec d;
  EncSpec e;
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, d.p()), zvpStatusHuffmanTable);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusHuffmanTable);
  bits[8] = 1;  // 256 codes: the count test passes
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusOk);
  // Failing InitAlloc keeps the record stored for the caller to free.
  bits[8] = 2;
  ZvpiEncodeHuffmanSpec* pe = nullptr;
  EXPECT_EQ(zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, &pe), zvpStatusHuffmanTable);
  ASSERT_NE(pe, nullptr);
  EXPECT_EQ(zvpiEncodeHuffmanSpecFree_JPEG_8u(pe), zvpStatusOk);
  expectDecodeRecord(bits, vals, zvpStatusHuffmanTable);
}

TEST(HuffmanSpec, LookAheadStoreAtIndex256) {
  // Two codes of length 1 and one of length 2: the third code is 100, its
  // look-ahead starts at 256: that store passes, the next fails.
  uint8_t bits[16] = {2, 1}, vals[256] = {0x11, 0x22, 0x33};
  DecSpec d;
  std::memset(d.b, 0, sizeof d.b);
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, d.p()), zvpStatusHuffmanTable);
  uint16_t min0, min1;
  std::memcpy(&min0, d.b + 1536, 2);
  std::memcpy(&min1, d.b + 1538, 2);
  EXPECT_EQ(min0, 0x33);
  EXPECT_EQ(min1, 2);
  EncSpec e;
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusHuffmanTable);
  expectDecodeRecord(bits, vals, zvpStatusHuffmanTable);
}

TEST(HuffmanSpec, CodeOfAllOnes) {
  uint8_t bits[16] = {2}, vals[256] = {5, 9};
  DecSpec d;
  EXPECT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, d.p()), zvpStatusOk);
  uint16_t max1;
  std::memcpy(&max1, d.b + 1572 + 2, 2);
  EXPECT_EQ(max1, 1);
  EncSpec e;
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusHuffmanTable);
  // A full 16-bit length whose last code would be all ones is refused too.
  uint8_t b2[16] = {};
  b2[15] = 255;
  uint8_t v2[256];
  for (int i = 0; i < 256; ++i) v2[i] = static_cast<uint8_t>(i);
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(b2, v2, e.p()), zvpStatusOk);
  b2[0] = 1;  // 0 + 255 codes of 16 bits after it: fine; now overfill
  b2[1] = 2;
  std::array<uint32_t, 256> ref{};
  EXPECT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(b2, v2, e.p()), href::buildEncodeRecord(b2, v2, ref));
}

TEST(HuffmanSpec, EncodeRecordMatchesReference) {
  zt::Rng rng(12);
  for (int it = 0; it < 40; ++it) {
    href::Lists l = it % 2 ? ht::randomAcLists(rng) : ht::randomDcLists(rng, rng.uniform(0, 16));
    std::array<uint32_t, 256> want{};
    ASSERT_EQ(href::buildEncodeRecord(l.bits, l.vals.data(), want), href::kOk);
    EncSpec e;
    ASSERT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(l.bits, l.vals.data(), e.p()), zvpStatusOk);
    EXPECT_EQ(0, std::memcmp(e.b, want.data(), 1024));
    ZvpiEncodeHuffmanSpec* pe = nullptr;
    ASSERT_EQ(zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(l.bits, l.vals.data(), &pe), zvpStatusOk);
    EXPECT_EQ(0, std::memcmp(pe, want.data(), 1024));
    zvpiEncodeHuffmanSpecFree_JPEG_8u(pe);
  }
}

TEST(HuffmanSpec, DuplicateSymbolKeepsLaterCode) {
  uint8_t bits[16] = {0, 3}, vals[256] = {7, 8, 7};
  EncSpec e;
  ASSERT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, e.p()), zvpStatusOk);
  uint32_t w;
  std::memcpy(&w, e.b + 4 * 7, 4);
  EXPECT_EQ(w, (2u << 16) | 2u);
  std::memcpy(&w, e.b + 4 * 8, 4);
  EXPECT_EQ(w, (2u << 16) | 1u);
}

void expectRawTable(const std::vector<int32_t>& stats) {
  std::vector<int32_t> s(257, 0);
  std::copy(stats.begin(), stats.end(), s.begin());
  s[256] = 12345;  // overwritten with 1 by both
  uint8_t wb[16], wv[256] = {}, gb[16], gv[256] = {};
  int want = href::rawTable(s.data(), wb, wv);
  ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(s.data(), gb, gv), want);
  if (want != zvpStatusOk) return;
  EXPECT_EQ(0, std::memcmp(wb, gb, 16));
  int n = 0;
  for (uint8_t b : wb) n += b;
  EXPECT_EQ(0, std::memcmp(wv, gv, static_cast<size_t>(n)));
}

TEST(HuffmanRawTable, MatchesReference) {
  zt::Rng rng(13);
  for (int it = 0; it < 60; ++it) {
    std::vector<int32_t> st(256, 0);
    int used = rng.uniform(1, 256);
    for (int i = 0; i < used; ++i) {
      int v = rng.uniform(0, 2);
      st[rng.uniform(0, 255)] = v == 0 ? rng.uniform(1, 10) : v == 1 ? rng.uniform(1, 100000) : rng.uniform(0, 1100000000);
    }
    SCOPED_TRACE(it);
    expectRawTable(st);
  }
}

TEST(HuffmanRawTable, LengthLimitingAndTies) {
  // Fibonacci frequencies push code lengths far beyond 16.
  std::vector<int32_t> st(256, 0);
  int32_t a = 1, b = 1;
  for (int i = 0; i < 40; ++i) {
    st[i] = a;
    int32_t c = a + b;
    a = b;
    b = c;
  }
  expectRawTable(st);
  uint8_t lb[16], lv[256];
  std::vector<int32_t> s(257, 0);
  std::copy(st.begin(), st.end(), s.begin());
  ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(s.data(), lb, lv), zvpStatusOk);
  int n = 0;
  for (uint8_t x : lb) n += x;
  EXPECT_EQ(n, 40);
  // Equal frequencies everywhere: ties by index.
  expectRawTable(std::vector<int32_t>(256, 7));
  // Negative frequencies count as small ones.
  std::vector<int32_t> neg(256, 0);
  neg[3] = -5;
  neg[4] = 10;
  neg[9] = 3;
  expectRawTable(neg);
}

TEST(HuffmanRawTable, EdgeCases) {
  std::vector<int32_t> s(257, 0);
  uint8_t lb[16], lv[256];
  std::memset(lb, 0x55, 16);
  std::memset(lv, 0x55, 256);
  ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(s.data(), lb, lv), zvpStatusOk);
  for (uint8_t b : lb) EXPECT_EQ(b, 0);
  EXPECT_EQ(lv[0], 0x55);  // empty list
  s[77] = 1000;
  ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(s.data(), lb, lv), zvpStatusOk);
  EXPECT_EQ(lb[0], 1);
  for (int i = 1; i < 16; ++i) EXPECT_EQ(lb[i], 0);
  EXPECT_EQ(lv[0], 77);
  // Above 1000000000 a frequency does not take part.
  s[77] = 1000000001;
  ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(s.data(), lb, lv), zvpStatusOk);
  for (uint8_t b : lb) EXPECT_EQ(b, 0);
}

// ---- State records ------------------------------------------------------------

TEST(HuffmanState, InitAllocFree) {
  DecState d;
  std::memset(d.b, 0xEE, sizeof d.b);
  EXPECT_EQ(zvpiDecodeHuffmanStateInit_JPEG_8u(d.p()), zvpStatusOk);
  for (uint8_t b : d.b) EXPECT_EQ(b, 0);
  EncState e;
  std::memset(e.b, 0xEE, sizeof e.b);
  EXPECT_EQ(zvpiEncodeHuffmanStateInit_JPEG_8u(e.p()), zvpStatusOk);
  for (uint8_t b : e.b) ASSERT_EQ(b, 0);
  EXPECT_EQ(zvpiDecodeHuffmanStateInit_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanStateInit_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanStateInitAlloc_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanStateInitAlloc_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiDecodeHuffmanStateFree_JPEG_8u(nullptr), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffmanStateFree_JPEG_8u(nullptr), zvpStatusNullPointer);
  ZvpiDecodeHuffmanState* pd = nullptr;
  ZvpiEncodeHuffmanState* pe = nullptr;
  ASSERT_EQ(zvpiDecodeHuffmanStateInitAlloc_JPEG_8u(&pd), zvpStatusOk);
  ASSERT_EQ(zvpiEncodeHuffmanStateInitAlloc_JPEG_8u(&pe), zvpStatusOk);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(reinterpret_cast<uint8_t*>(pd)[i], 0);
  for (int i = 0; i < 1044; ++i) ASSERT_EQ(reinterpret_cast<uint8_t*>(pe)[i], 0);
  EXPECT_EQ(zvpiDecodeHuffmanStateFree_JPEG_8u(pd), zvpStatusOk);
  EXPECT_EQ(zvpiEncodeHuffmanStateFree_JPEG_8u(pe), zvpStatusOk);
}

// ---- Encoder --------------------------------------------------------------------

// Drives the library and the reference model call by call over one stream.
struct EncRun {
  Tables& t;
  int len;
  std::vector<uint8_t> got, want;
  int gpos = 0, wpos = 0;
  int16_t gdc = 0, wdc = 0;
  EncState gs;
  href::EncState ws;
  EncRun(Tables& tt, int l) : t(tt), len(l), got(l + 64, 0xCD), want(l + 64, 0xCD) {
    zvpiEncodeHuffmanStateInit_JPEG_8u(gs.p());
  }
  void check() {
    ASSERT_EQ(gpos, wpos);
    ASSERT_EQ(gdc, wdc);
    ASSERT_EQ(gs.cnt(), ws.cnt);
    uint32_t mask = ws.cnt ? (((1u << ws.cnt) - 1) << (24 - ws.cnt)) : 0;
    ASSERT_EQ(static_cast<uint32_t>(gs.buf()) & mask, ws.span & mask);
    ASSERT_EQ(gs.buf() >> 32, 0u);
    ASSERT_EQ(0, std::memcmp(got.data(), want.data(), static_cast<size_t>(gpos)));
    for (int i = len; i < len + 64; ++i) ASSERT_EQ(got[i], 0xCD) << "write past the buffer";
  }
  int block(const int16_t* b) {
    int st = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(b, got.data(), len, &gpos, &gdc, t.dcE.p(), t.acE.p(), gs.p(), 0);
    int ws_ = href::encodeCall(b, want.data(), len, wpos, wdc, t.dcR, t.acR, ws);
    EXPECT_EQ(st, ws_);
    check();
    return st;
  }
  int flush() {
    int st = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, got.data(), len, &gpos, nullptr, nullptr, nullptr, gs.p(), 1);
    EXPECT_EQ(st, href::flushCall(want.data(), len, wpos, ws));
    check();
    for (uint8_t b : gs.b) EXPECT_EQ(b, 0);
    return st;
  }
};

TEST(HuffmanEncode, StreamsMatchReference) {
  zt::Rng rng(21);
  for (int it = 0; it < 12; ++it) {
    Tables t = Tables::random(rng);
    EncRun run(t, 1 << 16);
    href::BitWriter bw;
    int16_t bdc = 0;
    href::CodeMap dcm(t.dcL), acm(t.acL);
    for (int n = 0; n < 120; ++n) {
      int16_t b[64];
      ht::randomBlock(rng, rng.uniform(0, 5), b);
      ASSERT_EQ(run.block(b), zvpStatusOk);
      ASSERT_TRUE(href::encodeBlock(bw, b, bdc, dcm, acm));
    }
    ASSERT_EQ(run.flush(), zvpStatusOk);
    bw.padOnes();
    ASSERT_EQ(static_cast<size_t>(run.gpos), bw.out.size());
    EXPECT_EQ(0, std::memcmp(run.got.data(), bw.out.data(), bw.out.size()));
  }
}

TEST(HuffmanEncode, ShortBuffersGoCarefulAndFailAlike) {
  zt::Rng rng(22);
  Tables t = Tables::random(rng);
  for (int len = 1; len < 90; ++len) {
    EncRun run(t, len);
    int st = zvpStatusOk;
    for (int n = 0; n < 12 && st == zvpStatusOk; ++n) {
      int16_t b[64];
      ht::randomBlock(rng, n % 6, b);
      st = run.block(b);
    }
    if (st == zvpStatusOk) run.flush();
  }
}

TEST(HuffmanEncode, NearEndSameBytesAsMiddle) {
  zt::Rng rng(23);
  Tables t = Tables::random(rng);
  int16_t b[64];
  ht::randomBlock(rng, 1, b);
  std::vector<uint8_t> mid(4096), end(4096);
  EncState s1, s2;
  zvpiEncodeHuffmanStateInit_JPEG_8u(s1.p());
  zvpiEncodeHuffmanStateInit_JPEG_8u(s2.p());
  int p1 = 0, p2 = 0;
  int16_t d1 = 0, d2 = 0;
  ASSERT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(b, mid.data(), 4096, &p1, &d1, t.dcE.p(), t.acE.p(), s1.p(), 0), 0);
  // Same block with exactly as many bytes as it produces.
  ASSERT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(b, end.data(), p1, &p2, &d2, t.dcE.p(), t.acE.p(), s2.p(), 0), 0);
  EXPECT_EQ(p1, p2);
  EXPECT_EQ(0, std::memcmp(mid.data(), end.data(), static_cast<size_t>(p1)));
  // Same pending bits (the careful path may leave spent bits above the span).
  ASSERT_EQ(s1.cnt(), s2.cnt());
  uint32_t mask = s1.cnt() ? ((1u << s1.cnt()) - 1) << (24 - s1.cnt()) : 0;
  EXPECT_EQ(static_cast<uint32_t>(s1.buf()) & mask, static_cast<uint32_t>(s2.buf()) & mask);
}

TEST(HuffmanEncode, EdgeCases) {
  zt::Rng rng(24);
  Tables t = Tables::random(rng);
  // All-zero AC: DC code then only the end-of-block code.
  int16_t b[64] = {};
  {
    EncRun run(t, 256);
    run.block(b);
    href::BitWriter bw;
    bw.put(t.dcR[0] & 0xFFFF, t.dcR[0] >> 16);
    bw.put(t.acR[0] & 0xFFFF, t.acR[0] >> 16);
    ASSERT_EQ(run.gpos, static_cast<int>(bw.out.size()));
    EXPECT_EQ(0, std::memcmp(run.got.data(), bw.out.data(), bw.out.size()));
    EXPECT_EQ(run.gs.cnt(), bw.n);
  }
  // 16 zeros then a value: 0xF0 first; a value at position 63: no EOB.
  static const auto zz = href::zigzag();
  int16_t c[64] = {};
  c[zz[17]] = 3;
  c[zz[63]] = -2;
  EncRun run(t, 256);
  run.block(c);
  href::BitWriter bw;
  bw.put(t.dcR[0] & 0xFFFF, t.dcR[0] >> 16);
  bw.put(t.acR[0xF0] & 0xFFFF, t.acR[0xF0] >> 16);
  bw.put(t.acR[0x02] & 0xFFFF, t.acR[0x02] >> 16);
  bw.put(3, 2);
  bw.put(t.acR[0xF0] & 0xFFFF, t.acR[0xF0] >> 16);  // 45 zeros: 16 + 16 + 13
  bw.put(t.acR[0xF0] & 0xFFFF, t.acR[0xF0] >> 16);
  bw.put(t.acR[0xD2] & 0xFFFF, t.acR[0xD2] >> 16);
  bw.put(1, 2);
  ASSERT_EQ(run.gpos, static_cast<int>(bw.out.size()));
  EXPECT_EQ(0, std::memcmp(run.got.data(), bw.out.data(), bw.out.size()));
  EXPECT_EQ(run.gs.cnt(), bw.n);
}

TEST(HuffmanEncode, SymbolWithoutCode) {
  zt::Rng rng(25);
  Tables t = Tables::random(rng);
  uint8_t bits[16] = {1}, vals[256] = {0};  // AC table with EOB only
  EncSpec ac;
  ASSERT_EQ(zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, ac.p()), zvpStatusOk);
  int16_t b[64] = {};
  b[1] = 5;
  for (int len : {16, 4096}) {
    std::vector<uint8_t> out(static_cast<size_t>(len));
    EncState s;
    zvpiEncodeHuffmanStateInit_JPEG_8u(s.p());
    int pos = 0;
    int16_t dc = 100;
    EXPECT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(b, out.data(), len, &pos, &dc, t.dcE.p(), ac.p(), s.p(), 0),
              zvpStatusHuffmanTable);
    EXPECT_EQ(dc, 0);  // updated before the failure
  }
}

TEST(HuffmanEncode, Flush) {
  std::vector<uint8_t> out(8, 0xCD);
  EncState s;
  zvpiEncodeHuffmanStateInit_JPEG_8u(s.p());
  int pos = 0;
  // Nothing pending: nothing written.
  EXPECT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), 8, &pos, nullptr, nullptr, nullptr, s.p(), 1), 0);
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(out[0], 0xCD);
  // 3 bits 101 pending: one byte 101 11111.
  uint32_t span = 0xA00000;
  int32_t cnt = 3;
  std::memcpy(s.b, &span, 4);
  std::memcpy(s.b + 8, &cnt, 4);
  EXPECT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), 8, &pos, nullptr, nullptr, nullptr, s.p(), 1), 0);
  EXPECT_EQ(pos, 1);
  EXPECT_EQ(out[0], 0xBF);
  // 111 pending: 0xFF and a stuffed 0x00.
  span = 0xE00000;
  std::memcpy(s.b, &span, 4);
  std::memcpy(s.b + 8, &cnt, 4);
  EXPECT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), 8, &pos, nullptr, nullptr, nullptr, s.p(), 1), 0);
  EXPECT_EQ(pos, 3);
  EXPECT_EQ(out[1], 0xFF);
  EXPECT_EQ(out[2], 0x00);
  // Too little room: OutOfBuffer, and the state is reset all the same.
  std::memcpy(s.b, &span, 4);
  std::memcpy(s.b + 8, &cnt, 4);
  pos = 7;
  EXPECT_EQ(zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), 8, &pos, nullptr, nullptr, nullptr, s.p(), 1),
            zvpStatusOutOfBuffer);
  EXPECT_EQ(pos, 8);
  for (uint8_t b : s.b) EXPECT_EQ(b, 0);
}

TEST(HuffmanEncode, ArgumentOrder) {
  zt::Rng rng(26);
  Tables t = Tables::random(rng);
  int16_t b[64] = {}, dc = 0;
  uint8_t out[64];
  int pos = 0;
  EncState s;
  zvpiEncodeHuffmanStateInit_JPEG_8u(s.p());
  auto call = [&](const int16_t* src, uint8_t* dst, int len, int* p, int16_t* d, const ZvpiEncodeHuffmanSpec* dct,
                  const ZvpiEncodeHuffmanSpec* act, ZvpiEncodeHuffmanState* st, int fl) {
    return zvpiEncodeHuffman8x8_JPEG_16s1u_C1(src, dst, len, p, d, dct, act, st, fl);
  };
  EXPECT_EQ(call(b, nullptr, 0, nullptr, &dc, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(call(b, out, 0, nullptr, &dc, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusBadSize);
  EXPECT_EQ(call(b, out, -1, &pos, &dc, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusBadSize);
  EXPECT_EQ(call(nullptr, out, 64, nullptr, &dc, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(call(b, out, 64, &pos, &dc, t.dcE.p(), t.acE.p(), nullptr, 0), zvpStatusNullPointer);
  // A flush needs neither source nor tables.
  EXPECT_EQ(call(nullptr, out, 64, &pos, nullptr, nullptr, nullptr, s.p(), 1), zvpStatusOk);
  EXPECT_EQ(call(nullptr, out, 64, &pos, &dc, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(call(b, out, 64, &pos, nullptr, t.dcE.p(), t.acE.p(), s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(call(b, out, 64, &pos, &dc, nullptr, t.acE.p(), s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(call(b, out, 64, &pos, &dc, t.dcE.p(), nullptr, s.p(), 0), zvpStatusNullPointer);
  EXPECT_EQ(pos, 0);
  int bp = 0;
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(nullptr, out, &bp, &dc, t.dcE.p(), t.acE.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, nullptr, &bp, &dc, t.dcE.p(), t.acE.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, out, nullptr, &dc, t.dcE.p(), t.acE.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, out, &bp, nullptr, t.dcE.p(), t.acE.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, out, &bp, &dc, nullptr, t.acE.p()), zvpStatusNullPointer);
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, out, &bp, &dc, t.dcE.p(), nullptr), zvpStatusNullPointer);
}

TEST(HuffmanEncode, DirectMatchesReference) {
  zt::Rng rng(27);
  for (int it = 0; it < 6; ++it) {
    Tables t = Tables::random(rng);
    std::vector<uint8_t> got(1 << 16, 0), want(1 << 16, 0);
    int gp = 0, wp = 0;
    int16_t gd = 0, wd = 0;
    // Start mid-byte with 5 bits already there.
    got[0] = want[0] = 0xA8;
    gp = wp = 5;
    for (int n = 0; n < 150; ++n) {
      int16_t b[64];
      ht::randomBlock(rng, rng.uniform(0, 5), b);
      ASSERT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, got.data(), &gp, &gd, t.dcE.p(), t.acE.p()), 0);
      href::encodeDirect(b, want.data(), wp, wd, t.dcR, t.acR);
      ASSERT_EQ(gp, wp);
      ASSERT_EQ(gd, wd);
      ASSERT_EQ(0, std::memcmp(got.data(), want.data(), static_cast<size_t>(gp / 8 + 1)));
    }
  }
}

TEST(HuffmanEncode, DirectWithoutCodesWritesValues) {
  uint8_t bits[16] = {}, vals[256] = {};
  EncSpec empty;
  zvpiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, empty.p());
  int16_t b[64] = {};
  b[0] = 5;  // category 3: "101", no code
  uint8_t out[32] = {};
  int bp = 0;
  int16_t dc = 0;
  EXPECT_EQ(zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(b, out, &bp, &dc, empty.p(), empty.p()), zvpStatusOk);
  EXPECT_EQ(bp, 3);
  EXPECT_EQ(out[0], 0xA0);
  EXPECT_EQ(dc, 5);
}

// ---- Decoder ----------------------------------------------------------------------

// Drives library and reference decoder call by call; returns the statuses.
struct DecRun {
  Tables& t;
  const std::vector<uint8_t>& src;
  int len;
  int gpos = 0, wpos = 0, gm = 0, wm = 0;
  int16_t gdc = 0, wdc = 0;
  DecState gs;
  href::DecState ws;
  int fastCalls = 0;
  DecRun(Tables& tt, const std::vector<uint8_t>& s, int l) : t(tt), src(s), len(l) {
    zvpiDecodeHuffmanStateInit_JPEG_8u(gs.p());
  }
  int block(int16_t* got) {
    int16_t want[64];
    int st = zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), len, &gpos, got, &gdc, &gm, t.dcD.p(), t.acD.p(), gs.p());
    href::DecCall w = href::decodeCall(src.data(), len, wpos, want, wdc, wm, t.dcRec, t.acRec, ws);
    fastCalls += w.fast;
    EXPECT_EQ(st, w.status);
    EXPECT_EQ(gpos, wpos);
    EXPECT_EQ(gm, wm);
    EXPECT_EQ(gdc, wdc);
    EXPECT_EQ(gs.cnt(), ws.cnt);
    EXPECT_EQ(gs.blockEnd(), ws.blockEnd);
    int c = ws.cnt;
    if (c > 0 && c <= 32) {
      uint64_t mask = (uint64_t{1} << c) - 1;
      EXPECT_EQ(gs.buf() & mask, ws.buf & mask);
    }
    EXPECT_EQ(0, std::memcmp(got, want, 128));
    return st;
  }
  // At the end of a restart interval the marker may not have been read yet:
  // skip to just behind it, as an application does.
  void toMarker() {
    if (gm) return;
    ASSERT_EQ(wm, 0);
    int p = gpos;
    while (p + 1 < len && !(src[p] == 0xFF && src[p + 1] != 0 && src[p + 1] != 0xFF)) ++p;
    ASSERT_LT(p + 1, len);
    gm = wm = src[p + 1];
    gpos = wpos = p + 2;
  }
  void restart() {
    toMarker();
    zvpiDecodeHuffmanStateInit_JPEG_8u(gs.p());
    ws = href::DecState{};
    gm = wm = 0;
    gdc = wdc = 0;
  }
};

// Entropy-coded data of blocks; with `restartEvery`, RSTn markers between
// intervals; ends with fill bytes and EOI.
std::vector<uint8_t> makeStream(Tables& t, const std::vector<std::array<int16_t, 64>>& blocks, int restartEvery,
                                bool fill = true) {
  href::CodeMap dcm(t.dcL), acm(t.acL);
  std::vector<uint8_t> out;
  href::BitWriter bw;
  int16_t dc = 0;
  int rst = 0;
  for (size_t i = 0; i < blocks.size(); ++i) {
    if (restartEvery && i && i % restartEvery == 0) {
      bw.padOnes();
      out.insert(out.end(), bw.out.begin(), bw.out.end());
      bw = href::BitWriter{};
      out.push_back(0xFF);
      out.push_back(static_cast<uint8_t>(0xD0 + (rst++ & 7)));
      dc = 0;
    }
    href::encodeBlock(bw, blocks[i].data(), dc, dcm, acm);
  }
  bw.padOnes();
  out.insert(out.end(), bw.out.begin(), bw.out.end());
  if (fill) {
    out.push_back(0xFF);
    out.push_back(0xFF);
  }
  out.push_back(0xFF);
  out.push_back(0xD9);
  return out;
}

std::vector<std::array<int16_t, 64>> randomBlocks(zt::Rng& rng, int n) {
  std::vector<std::array<int16_t, 64>> v(static_cast<size_t>(n));
  for (auto& b : v) ht::randomBlock(rng, rng.uniform(0, 5), b.data());
  return v;
}

TEST(HuffmanDecode, StreamsRoundTripAndMatchModel) {
  zt::Rng rng(31);
  for (int it = 0; it < 10; ++it) {
    Tables t = Tables::random(rng);
    auto blocks = randomBlocks(rng, 150);
    int every = it % 3 == 0 ? 0 : rng.uniform(1, 9);
    auto stream = makeStream(t, blocks, every);
    DecRun run(t, stream, static_cast<int>(stream.size()));
    for (size_t i = 0; i < blocks.size(); ++i) {
      if (every && i && i % every == 0) {
        run.toMarker();
        EXPECT_EQ(run.gm, 0xD0 + static_cast<int>(((i / every) - 1) & 7));
        run.restart();
      }
      int16_t got[64];
      ASSERT_EQ(run.block(got), zvpStatusOk) << i;
      ASSERT_EQ(0, std::memcmp(got, blocks[i].data(), 128)) << i;
    }
    EXPECT_GT(run.fastCalls, 100);
  }
}

TEST(HuffmanDecode, BufferEndsExactlyOrMidBlock) {
  zt::Rng rng(32);
  Tables t = Tables::random(rng);
  auto blocks = randomBlocks(rng, 40);
  auto stream = makeStream(t, blocks, 0, false);
  stream.resize(stream.size() - 2);  // no EOI
  // Every length: the model decides each status and state.
  for (int len = 0; len <= static_cast<int>(stream.size()); len += (len < 64 ? 1 : 7)) {
    DecRun run(t, stream, len);
    for (size_t i = 0; i < blocks.size(); ++i) {
      int16_t got[64];
      if (run.block(got) != zvpStatusOk) break;
    }
  }
}

TEST(HuffmanDecode, MarkersFillBytesAndStuffing) {
  zt::Rng rng(33);
  Tables t = Tables::random(rng);
  auto blocks = randomBlocks(rng, 30);
  for (auto& b : blocks) b[1] = -1;  // many 1 bits: plenty of stuffed 0xFF
  auto stream = makeStream(t, blocks, 4);
  int ff00 = 0;
  for (size_t i = 0; i + 1 < stream.size(); ++i) ff00 += stream[i] == 0xFF && stream[i + 1] == 0;
  DecRun run(t, stream, static_cast<int>(stream.size()));
  for (size_t i = 0; i < blocks.size(); ++i) {
    if (i && i % 4 == 0) run.restart();
    int16_t got[64];
    ASSERT_EQ(run.block(got), zvpStatusOk);
    ASSERT_EQ(0, std::memcmp(got, blocks[i].data(), 128));
  }
  EXPECT_GT(ff00, 10);
}

TEST(HuffmanDecode, EoiMidStream) {
  zt::Rng rng(133);
  Tables t = Tables::random(rng);
  auto blocks = randomBlocks(rng, 10);
  auto stream = makeStream(t, blocks, 0);
  size_t eoiEnd = stream.size();
  for (int i = 0; i < 100; ++i) stream.push_back(static_cast<uint8_t>(rng.uniform(0, 254)));
  DecRun run(t, stream, static_cast<int>(stream.size()));
  int16_t got[64];
  for (size_t i = 0; i < blocks.size(); ++i) {
    ASSERT_EQ(run.block(got), zvpStatusOk);
    ASSERT_EQ(0, std::memcmp(got, blocks[i].data(), 128));
  }
  // The next block runs into EOI: marker stored, position behind it, and
  // the first request for more bits than there are is JpegRange.
  EXPECT_EQ(run.block(got), zvpStatusJpegRange);
  EXPECT_EQ(run.gm, 0xD9);
  EXPECT_EQ(run.gpos, static_cast<int>(eoiEnd));
  EXPECT_EQ(run.block(got), zvpStatusJpegRange);
  EXPECT_EQ(run.gpos, static_cast<int>(eoiEnd));
}

TEST(HuffmanDecode, PendingMarkerGoesCarefulAndSucceeds) {
  zt::Rng rng(34);
  Tables t = Tables::random(rng);
  auto blocks = randomBlocks(rng, 3);
  for (auto& b : blocks) {
    std::memset(b.data(), 0, 128);
    b[0] = 1;
  }
  auto stream = makeStream(t, blocks, 0);
  DecRun run(t, stream, static_cast<int>(stream.size()));
  run.gm = run.wm = 0x55;  // set by the caller: stops all reading
  int16_t got[64];
  EXPECT_EQ(run.block(got), zvpStatusJpegRange);
  EXPECT_EQ(run.gpos, 0);
  // With the bits already in the record, the first block succeeds.
  run.restart();
  int16_t warm[64];
  ASSERT_EQ(run.block(warm), zvpStatusOk);  // fast path, bits read ahead
  run.gm = run.wm = 0x55;
  if (run.block(got) == zvpStatusOk) { EXPECT_EQ(0, std::memcmp(got, blocks[1].data(), 128)); }
}

// The small tables of the marker tests: DC category 0 is "00" (the standard
// luminance DC lengths), and the one AC code "00" is the end of block.
void tinyTables(DecSpec& dc, DecSpec& ac) {
  uint8_t dcb[16] = {0, 1, 5, 1, 1, 1, 1, 1, 1}, dcv[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  uint8_t acb[16] = {0, 1}, acv[1] = {0};
  ASSERT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(dcb, dcv, dc.p()), 0);
  ASSERT_EQ(zvpiDecodeHuffmanSpecInit_JPEG_8u(acb, acv, ac.p()), 0);
}

TEST(HuffmanDecode, SourceEndsWithLoneFF) {
  // Standard-like table: DC category 0 = "00", AC EOB = "1010"... built here.
  DecSpec dc, ac;
  ASSERT_NO_FATAL_FAILURE(tinyTables(dc, ac));
  // Block "00 00" fits in the first byte; a lone 0xFF ends the source.
  uint8_t src[2] = {0x0F, 0xFF};
  DecState s;
  zvpiDecodeHuffmanStateInit_JPEG_8u(s.p());
  int pos = 0, m = 0;
  int16_t blk[64], d = 0;
  EXPECT_EQ(zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src, 2, &pos, blk, &d, &m, dc.p(), ac.p(), s.p()), zvpStatusOutOfBuffer);
  EXPECT_EQ(pos, 2);
  // Fill bytes then a marker: the position lies 4 bytes on.
  uint8_t src2[5] = {0x0F, 0xFF, 0xFF, 0xFF, 0xD9};
  zvpiDecodeHuffmanStateInit_JPEG_8u(s.p());
  pos = 0;
  EXPECT_EQ(zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src2, 5, &pos, blk, &d, &m, dc.p(), ac.p(), s.p()), zvpStatusOk);
  EXPECT_EQ(pos, 5);
  EXPECT_EQ(m, 0xD9);
  EXPECT_EQ(s.blockEnd(), 1);
  // A source ending exactly after the block's last bit.
  uint8_t src3[1] = {0x0F};
  zvpiDecodeHuffmanStateInit_JPEG_8u(s.p());
  pos = 0;
  m = 0;
  EXPECT_EQ(zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src3, 1, &pos, blk, &d, &m, dc.p(), ac.p(), s.p()), zvpStatusOk);
  EXPECT_EQ(pos, 1);
  EXPECT_EQ(s.cnt(), 4);
}

// Crafted blocks through a table with every symbol (bits written by hand).
struct Crafted {
  Tables t;
  href::BitWriter w;
  explicit Crafted(zt::Rng& rng) : t(Tables::random(rng)) {}
  void sym(const std::array<uint32_t, 256>& r, int s) { w.put(r[s] & 0xFFFF, r[s] >> 16); }
  std::vector<uint8_t> finish(int pad = 64) {
    w.padOnes();
    std::vector<uint8_t> v = w.out;
    v.insert(v.end(), static_cast<size_t>(pad), 0);
    return v;
  }
};

TEST(HuffmanDecode, EdgeCasesOfBlocks) {
  zt::Rng rng(35);
  for (int variant = 0; variant < 2; ++variant) {  // 0: fast path, 1: short buffer (careful)
    Crafted c(rng);
    // Block 1: DC 0, first AC symbol 0x00: 63 zeros, blockEnd 1.
    c.sym(c.t.dcR, 0);
    c.sym(c.t.acR, 0x00);
    // Block 2: run 14 size 0 (0xE0) ends the block like 0x00.
    c.sym(c.t.dcR, 0);
    c.sym(c.t.acR, 0x11);
    c.w.put(1, 1);
    c.sym(c.t.acR, 0xE0);
    // Block 3: three 0xF0 then a value at 49, then 0xF0 at the last positions.
    c.sym(c.t.dcR, 0);
    for (int i = 0; i < 3; ++i) c.sym(c.t.acR, 0xF0);
    c.sym(c.t.acR, 0x01);
    c.w.put(0, 1);
    c.sym(c.t.acR, 0xF0);
    // Block 4: a run past 63 within one symbol (k 60 + 15): lands on 63.
    c.sym(c.t.dcR, 0);
    for (int i = 0; i < 3; ++i) c.sym(c.t.acR, 0xF0);
    c.sym(c.t.acR, 0xB1);  // k = 49 + 11 = 60
    c.w.put(1, 1);
    c.sym(c.t.acR, 0xF2);  // k = 61 + 15 = 76 > 71: error
    c.w.put(3, 2);
    auto src = c.finish(variant ? 0 : 64);
    DecRun run(c.t, src, static_cast<int>(src.size()));
    int16_t got[64];
    static const auto zz = href::zigzag();
    ASSERT_EQ(run.block(got), zvpStatusOk);
    EXPECT_EQ(run.gs.blockEnd(), 1);
    ASSERT_EQ(run.block(got), zvpStatusOk);
    EXPECT_EQ(run.gs.blockEnd(), 3);
    EXPECT_EQ(got[zz[2]], 1);
    ASSERT_EQ(run.block(got), zvpStatusOk);
    EXPECT_EQ(run.gs.blockEnd(), 66);
    EXPECT_EQ(got[zz[49]], -1);
    EXPECT_EQ(run.block(got), zvpStatusError);
    EXPECT_EQ(got[zz[60]], 1);
  }
}

TEST(HuffmanDecode, RunIntoGuardPositions) {
  zt::Rng rng(36);
  Crafted c(rng);
  c.sym(c.t.dcR, 0);
  for (int i = 0; i < 3; ++i) c.sym(c.t.acR, 0xF0);  // k = 49
  c.sym(c.t.acR, 0xD1);                                 // k = 62: value
  c.w.put(1, 1);
  c.sym(c.t.acR, 0x52);  // k = 63 + 5 = 68: guard, lands on 63
  c.w.put(2, 2);
  auto src = c.finish();
  DecRun run(c.t, src, static_cast<int>(src.size()));
  int16_t got[64];
  ASSERT_EQ(run.block(got), zvpStatusOk);
  EXPECT_EQ(got[63], 2);
  EXPECT_EQ(run.gs.blockEnd(), 69);
}

TEST(HuffmanDecode, DcWraps) {
  zt::Rng rng(37);
  Crafted c(rng);
  c.sym(c.t.dcR, 15);
  c.w.put(0x7FFF, 15);  // +32767
  c.sym(c.t.acR, 0);
  auto src = c.finish();
  DecRun run(c.t, src, static_cast<int>(src.size()));
  run.gdc = run.wdc = 30000;
  int16_t got[64];
  ASSERT_EQ(run.block(got), zvpStatusOk);
  EXPECT_EQ(run.gdc, static_cast<int16_t>(30000 + 32767 - 65536));
  EXPECT_EQ(got[0], run.gdc);
}

TEST(HuffmanDecode, OutOfBufferKeepsDcUpdate) {
  zt::Rng rng(38);
  Crafted c(rng);
  c.sym(c.t.dcR, 4);
  c.w.put(9, 4);
  for (int i = 0; i < 20; ++i) {
    c.sym(c.t.acR, 0x0A);
    c.w.put(0x3FF, 10);
  }
  auto src = c.finish(0);
  int len = static_cast<int>(src.size()) - 5;
  DecRun run(c.t, src, len);
  int16_t got[64];
  EXPECT_EQ(run.block(got), zvpStatusOutOfBuffer);
  EXPECT_EQ(run.gdc, 9);
}

TEST(HuffmanDecode, ArgumentOrder) {
  zt::Rng rng(39);
  Tables t = Tables::random(rng);
  uint8_t src[8] = {};
  int pos = 0, m = 0;
  int16_t blk[64], dc = 0;
  DecState s;
  zvpiDecodeHuffmanStateInit_JPEG_8u(s.p());
  auto call = [&](const uint8_t* p, int len, int* ps, int16_t* d, int16_t* l, int* mk, const ZvpiDecodeHuffmanSpec* a,
                  const ZvpiDecodeHuffmanSpec* b, ZvpiDecodeHuffmanState* st) {
    return zvpiDecodeHuffman8x8_JPEG_1u16s_C1(p, len, ps, d, l, mk, a, b, st);
  };
  EXPECT_EQ(call(nullptr, -1, &pos, blk, &dc, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, -1, nullptr, blk, &dc, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusBadArgument);
  EXPECT_EQ(call(src, 8, nullptr, blk, &dc, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, nullptr, &dc, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, blk, nullptr, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, blk, &dc, nullptr, t.dcD.p(), t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, blk, &dc, &m, nullptr, t.acD.p(), s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, blk, &dc, &m, t.dcD.p(), nullptr, s.p()), zvpStatusNullPointer);
  EXPECT_EQ(call(src, 8, &pos, blk, &dc, &m, t.dcD.p(), t.acD.p(), nullptr), zvpStatusNullPointer);
  // Length 0 is allowed: the source has ended.
  EXPECT_EQ(call(src, 0, &pos, blk, &dc, &m, t.dcD.p(), t.acD.p(), s.p()), zvpStatusOutOfBuffer);

  int bp = 0, nb = 0;
  uint32_t pb = 0;
  auto dcall = [&](const uint8_t* p, int* b, int16_t* d, int16_t* l, int* mk, uint32_t* pp, int* pn,
                   const ZvpiDecodeHuffmanSpec* a, const ZvpiDecodeHuffmanSpec* c) {
    return zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(p, b, d, l, mk, pp, pn, a, c);
  };
  EXPECT_EQ(dcall(nullptr, &bp, blk, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, nullptr, blk, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  bp = -8;
  EXPECT_EQ(dcall(src, &bp, nullptr, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusBadArgument);
  bp = 0;
  EXPECT_EQ(dcall(src, &bp, nullptr, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, &bp, blk, nullptr, &m, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, &bp, blk, &dc, nullptr, &pb, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, &bp, blk, &dc, &m, nullptr, &nb, t.dcD.p(), t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, &bp, blk, &dc, &m, &pb, nullptr, nullptr, t.acD.p()), zvpStatusNullPointer);
  nb = -1;
  EXPECT_EQ(dcall(src, &bp, blk, &dc, &m, &pb, &nb, nullptr, t.acD.p()), zvpStatusBadArgument);
  nb = 0;
  EXPECT_EQ(dcall(src, &bp, blk, &dc, &m, &pb, &nb, nullptr, t.acD.p()), zvpStatusNullPointer);
  EXPECT_EQ(dcall(src, &bp, blk, &dc, &m, &pb, &nb, t.dcD.p(), nullptr), zvpStatusNullPointer);
}

TEST(HuffmanDecode, DirectMatchesModel) {
  zt::Rng rng(41);
  for (int it = 0; it < 8; ++it) {
    Tables t = Tables::random(rng);
    auto blocks = randomBlocks(rng, 100);
    auto stream = makeStream(t, blocks, 0);
    for (size_t off : {size_t{0}, size_t{3}, size_t{13}}) {
      zt::Guarded g(stream.size(), off);
      std::memcpy(g.data(), stream.data(), stream.size());
      int gp = 0, wp = 0, gm = 0, wm = 0, gn = 0, wn = 0;
      uint32_t gb = 0, wb = 0;
      int16_t gd = 0, wd = 0;
      for (size_t i = 0; i < blocks.size() + 1; ++i) {
        int16_t got[64], want[64];
        int st = zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(g.data(), &gp, got, &gd, &gm, &gb, &gn, t.dcD.p(), t.acD.p());
        href::DecCall w = href::decodeDirectCall(g.data(), wp, want, wd, wm, wb, wn, t.dcRec, t.acRec);
        ASSERT_EQ(st, w.status) << i;
        ASSERT_EQ(gp, wp) << i;
        ASSERT_EQ(gm, wm);
        ASSERT_EQ(gd, wd);
        ASSERT_EQ(gn, wn) << i;
        if (gn > 0 && gn <= 32) { ASSERT_EQ(gb & (gn == 32 ? ~0u : (1u << gn) - 1), wb & (wn == 32 ? ~0u : (1u << wn) - 1)); }
        ASSERT_EQ(0, std::memcmp(got, want, 128));
        if (i < blocks.size()) { ASSERT_EQ(0, std::memcmp(got, blocks[i].data(), 128)) << i; }
      }
      EXPECT_EQ(gm, 0xD9);
      EXPECT_TRUE(g.intact());
    }
  }
}

}  // namespace

namespace {

// Direct decoder: a marker that cuts the AC symbols ends the block cleanly.
TEST(HuffmanDecodeDirect, MarkerEndsBlockCleanly) {
  zt::Rng rng(71);
  Crafted c(rng);
  static const auto zz = href::zigzag();
  int16_t want[64] = {};
  c.sym(c.t.dcR, 2);
  c.w.put(3, 2);  // +3
  want[0] = 3;
  int k = 1;
  while ((c.w.n != 0 || k < 4) && k < 40) {  // values until the data ends on a byte boundary
    int s = (k % 3 == 0) ? 2 : 1;
    c.sym(c.t.acR, s);
    c.w.put(s == 2 ? 3 : 1, s);
    want[zz[k]] = static_cast<int16_t>(s == 2 ? 3 : 1);
    ++k;
  }
  ASSERT_EQ(c.w.n, 0);
  std::vector<uint8_t> src = c.w.out;
  size_t dataLen = src.size();
  src.insert(src.end(), {0xFF, 0xD0, 0x12, 0x34});
  int bp = 0, m = 0, nb = 0;
  uint32_t pb = 0;
  int16_t dc = 0, got[64];
  ASSERT_EQ(zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src.data(), &bp, got, &dc, &m, &pb, &nb, c.t.dcD.p(), c.t.acD.p()),
            zvpStatusOk);
  EXPECT_EQ(0, std::memcmp(got, want, 128));
  EXPECT_EQ(m, 0xD0);
  EXPECT_EQ(nb, 0);
  EXPECT_EQ(bp, static_cast<int>(dataLen + 2) * 8);
  EXPECT_EQ(dc, 3);
}

TEST(HuffmanDecodeDirect, MarkerBeforeDcKeepsPosition) {
  zt::Rng rng(72);
  Tables t = Tables::random(rng);
  uint8_t src[4] = {0xFF, 0xFF, 0xD9, 0x00};
  int bp = 0, m = 0, nb = 0;
  uint32_t pb = 0;
  int16_t dc = 77, got[64];
  std::memset(got, 0x11, sizeof got);
  ASSERT_EQ(zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src, &bp, got, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()),
            zvpStatusOk);
  EXPECT_EQ(bp, 0);  // not written back
  EXPECT_EQ(m, 0xD9);
  EXPECT_EQ(dc, 77);
  for (int16_t v : got) EXPECT_EQ(v, 0);
  // A bit position's low 3 bits are ignored; a fast-path block leaves a whole byte count.
  href::CodeMap dcm(t.dcL), acm(t.acL);
  href::BitWriter bw;
  bw.put(0x5, 3);  // 3 bits of filler before the block in the first byte
  int16_t blk[64] = {}, edc = 0;
  blk[0] = 9;
  blk[5] = -4;
  href::encodeBlock(bw, blk, edc, dcm, acm);
  bw.padOnes();
  std::vector<uint8_t> s2 = bw.out;
  s2.insert(s2.end(), 40, 0x00);
  s2.insert(s2.end(), {0xFF, 0xD9});
  // Read-ahead: the first byte's last 5 bits, the position behind it.
  bp = 8 + 5;
  nb = 5;
  pb = s2[0] & 0x1F;
  m = 0;
  dc = 0;
  ASSERT_EQ(zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(s2.data(), &bp, got, &dc, &m, &pb, &nb, t.dcD.p(), t.acD.p()),
            zvpStatusOk);
  EXPECT_EQ(0, std::memcmp(got, blk, 128));
  EXPECT_EQ(bp % 8, 0);
  EXPECT_LE(nb, 32);
}

TEST(HuffmanDecodeDirect, PresetMarkerUsesPrefetchedBits) {
  // DC "00" (category 0) and AC EOB "00": four zero bits make a block.
  DecSpec dc, ac;
  ASSERT_NO_FATAL_FAILURE(tinyTables(dc, ac));
  uint8_t src[2] = {0xFF, 0xD9};
  int bp = 16, m = 0xD9, nb = 12;
  uint32_t pb = 0x0F0;  // 0000 1111 0000: one block, then 1111 0000
  int16_t d = 5, got[64];
  ASSERT_EQ(zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src, &bp, got, &d, &m, &pb, &nb, dc.p(), ac.p()), zvpStatusOk);
  EXPECT_EQ(nb, 8);
  EXPECT_EQ(got[0], 5);
  EXPECT_EQ(bp, 16);
}

}  // namespace
