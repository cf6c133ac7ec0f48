// TIFF row coding through the exported interface: PackBits encoding and
// decoding against the reference coder, the worked examples, running out of
// room at every byte, and the byte-plane split and join.
#include <gtest/gtest.h>

#include <vector>

#include "ref/hdtiff_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Encodes src into a fresh buffer (plenty of room) from position 0.
Bytes pack(const Bytes& src) {
  Bytes dst(src.size() * 2 + 16, 0xEE);
  int pos = 0;
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), static_cast<int>(src.size()), dst.data(), &pos,
                                       static_cast<int>(dst.size())),
            zvpStatusOk);
  dst.resize(static_cast<size_t>(pos));
  return dst;
}

// Decodes exactly n bytes; the encoded data gets one readable byte behind it.
Bytes unpack(const Bytes& enc, size_t n, int* endPos = nullptr) {
  Bytes src = enc;
  src.push_back(0);
  Bytes out(n, 0xEE);
  int pos = 0;
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, static_cast<int>(enc.size()), out.data(),
                                         static_cast<int>(n)),
            zvpStatusOk);
  if (endPos) *endPos = pos;
  return out;
}

TEST(PackBits, WorkedExamples) {
  EXPECT_EQ(pack({9}), (Bytes{0x00, 9}));
  EXPECT_EQ(pack({5, 5}), (Bytes{0xFF, 5}));
  EXPECT_EQ(pack({1, 2, 2, 3}), (Bytes{3, 1, 2, 2, 3}));
  EXPECT_EQ(pack({1, 2, 2}), (Bytes{0x00, 1, 0xFF, 2}));
  EXPECT_EQ(pack({1, 2, 2, 2}), (Bytes{0x00, 1, 0xFE, 2}));
  EXPECT_EQ(pack(Bytes(130, 4)), (Bytes{0x81, 4, 0xFF, 4}));
  Bytes distinct(129);
  for (int i = 0; i < 129; ++i) distinct[i] = static_cast<uint8_t>(i);
  Bytes want{127};
  want.insert(want.end(), distinct.begin(), distinct.begin() + 128);
  want.push_back(0);
  want.push_back(128);
  EXPECT_EQ(pack(distinct), want);
}

TEST(PackBits, MoreTokenRules) {
  // A pair inside a literal stays there; three in a row start a run.
  EXPECT_EQ(pack({1, 2, 2, 3, 4}), (Bytes{4, 1, 2, 2, 3, 4}));
  EXPECT_EQ(pack({1, 2, 2, 2, 3}), (Bytes{0, 1, 0xFE, 2, 0, 3}));
  EXPECT_EQ(pack({1, 1, 2}), (Bytes{0xFF, 1, 0, 2}));
  EXPECT_EQ(pack({1, 2, 3, 3}), (Bytes{1, 1, 2, 0xFF, 3}));
  EXPECT_EQ(pack(Bytes(128, 7)), (Bytes{0x81, 7}));
  EXPECT_EQ(pack(Bytes(129, 7)), (Bytes{0x81, 7, 0, 7}));
  EXPECT_EQ(pack(Bytes(3, 7)), (Bytes{0xFE, 7}));
}

TEST(PackBits, DecoderWorkedExamples) {
  {
    const Bytes src{0xFE, 7, 0x01, 1, 2, 0x80, 0};
    Bytes out(5, 0);
    int pos = 0;
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 7, out.data(), 5), zvpStatusOk);
    EXPECT_EQ(out, (Bytes{7, 7, 7, 1, 2}));
    EXPECT_EQ(pos, 5);
  }
  {
    const Bytes src{0xFE, 7, 0xAA};
    Bytes out(9, 0x55);
    int pos = 0;
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 2, out.data(), 9), zvpStatusUnderRun);
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(out, (Bytes{7, 7, 7, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}));
  }
}

TEST(PackBits, DecoderPositionAndStatusRules) {
  Bytes out(8, 0x55);
  int pos;
  // -128 is skipped.
  {
    const Bytes src{0x80, 0x80, 0xFF, 3, 0};
    pos = 0;
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 4, out.data(), 2), zvpStatusOk);
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(out[0], 3);
    EXPECT_EQ(out[1], 3);
  }
  // A repeat header as the last input byte reads the byte at srcLenBytes.
  {
    const Bytes src{0x00, 1, 0xFD, 9};
    pos = 0;
    std::fill(out.begin(), out.end(), 0x55);
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 3, out.data(), 5), zvpStatusOk);
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(out[0], 1);
    for (int i = 1; i < 5; ++i) EXPECT_EQ(out[i], 9);
  }
  // A literal that needs more source: position after its header.
  {
    const Bytes src{0x00, 1, 0x03, 1, 2, 3};
    pos = 0;
    std::fill(out.begin(), out.end(), 0x55);
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 6, out.data(), 8), zvpStatusUnderRun);
    EXPECT_EQ(pos, 3);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(out[1], 0x55);
  }
  // A token that does not fit the output: position after its header, nothing of it written.
  {
    const Bytes src{0x01, 1, 2, 0xFD, 4, 0x02, 5, 6, 7};
    pos = 0;
    std::fill(out.begin(), out.end(), 0x55);
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 9, out.data(), 4), zvpStatusUnderRun);
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(out, (Bytes{1, 2, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}));
    pos = 3;
    std::fill(out.begin(), out.end(), 0x55);
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 9, out.data(), 6), zvpStatusUnderRun);
    EXPECT_EQ(pos, 6);
    EXPECT_EQ(out, (Bytes{4, 4, 4, 4, 0x55, 0x55, 0x55, 0x55}));
  }
  // Starting at the end, or beyond it.
  {
    const Bytes src{0x00, 1, 0};
    for (int start : {2, 3}) {
      pos = start;
      ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 2, out.data(), 1), zvpStatusUnderRun);
      EXPECT_EQ(pos, start);
    }
    // A start position inside the data.
    const Bytes two{0x00, 1, 0xFF, 2, 0};
    pos = 2;
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(two.data(), &pos, 4, out.data(), 2), zvpStatusOk);
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(out[0], 2);
    EXPECT_EQ(out[1], 2);
  }
}

// Sources of many shapes: random, photo-like, flat, and the adversarial ones.
std::vector<Bytes> sources(zt::Rng& rng) {
  std::vector<Bytes> all;
  for (int n : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 127, 128, 129, 130, 131, 255, 256, 257, 300, 1000, 4099}) {
    Bytes r(n);
    for (auto& b : r) b = rng.byte();
    all.push_back(r);
    for (auto& b : r) b = static_cast<uint8_t>(rng.uniform(0, 2));  // many short runs
    all.push_back(r);
    for (auto& b : r) b = static_cast<uint8_t>(rng.uniform(0, 1) ? 9 : rng.byte());
    all.push_back(r);
    int v = 128;
    for (auto& b : r) {
      v += rng.uniform(-3, 3);
      v = v < 0 ? 0 : (v > 255 ? 255 : v);
      b = static_cast<uint8_t>(v);
    }
    all.push_back(r);
    all.push_back(Bytes(static_cast<size_t>(n), 42));
  }
  // Literals of 126..130 bytes ending in a run of 1, 2, 3 or 4, or in the data.
  for (int lit = 124; lit <= 131; ++lit)
    for (int run = 0; run <= 5; ++run)
      for (int tail = 0; tail <= 3; ++tail) {
        Bytes r;
        for (int i = 0; i < lit; ++i) r.push_back(static_cast<uint8_t>(i * 7 + 1));
        for (int i = 0; i < run; ++i) r.push_back(0xF0);
        for (int i = 0; i < tail; ++i) r.push_back(static_cast<uint8_t>(0x10 + i));
        all.push_back(r);
      }
  // Runs of 2 and 3 at every position of short literals, and at the end.
  for (int n = 2; n <= 40; ++n)
    for (int at = 0; at + 2 <= n; ++at)
      for (int rl : {2, 3}) {
        if (at + rl > n) continue;
        Bytes r(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) r[i] = static_cast<uint8_t>(i);
        for (int i = 0; i < rl; ++i) r[at + i] = 0xCC;
        all.push_back(r);
      }
  // Runs of 127..131 and 255..258.
  for (int rl : {127, 128, 129, 130, 131, 255, 256, 257, 258}) {
    Bytes r(static_cast<size_t>(rl), 3);
    all.push_back(r);
    r.insert(r.begin(), 1);
    all.push_back(r);
    r.push_back(4);
    all.push_back(r);
  }
  return all;
}

TEST(PackBits, EncoderMatchesReferenceAndDecodesBack) {
  zt::Rng rng(3601);
  for (const Bytes& src : sources(rng)) {
    const Bytes want = ref::packBits(src.data(), src.size());
    for (int start : {0, 5}) {
      zt::Guarded dst(static_cast<size_t>(start) + want.size() + 200, 0);
      std::memset(dst.data(), 0xEE, dst.size());
      int pos = start;
      ASSERT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), static_cast<int>(src.size()), dst.data(), &pos,
                                           static_cast<int>(want.size()) + 200),
                zvpStatusOk);
      ASSERT_EQ(pos, start + static_cast<int>(want.size())) << src.size();
      ASSERT_EQ(Bytes(dst.data() + start, dst.data() + pos), want) << src.size();
      for (int i = 0; i < start; ++i) ASSERT_EQ(dst.data()[i], 0xEE);
      for (size_t i = static_cast<size_t>(pos); i < dst.size(); ++i) ASSERT_EQ(dst.data()[i], 0xEE);
      ASSERT_TRUE(dst.intact());
    }
    // The reference decoder and ours both give the source back.
    const ref::UnpackResult r = [&] {
      Bytes w = want;
      w.push_back(0);
      return ref::unpackBits(w.data(), 0, static_cast<long long>(want.size()), static_cast<long long>(src.size()));
    }();
    ASSERT_EQ(r.status, 0);
    ASSERT_EQ(r.out, src);
    int end = 0;
    ASSERT_EQ(unpack(want, src.size(), &end), src);
    ASSERT_EQ(end, static_cast<int>(want.size()));
  }
}

TEST(PackBits, RunningOutOfRoomAtEveryByte) {
  zt::Rng rng(3602);
  const std::vector<Bytes> all = sources(rng);
  for (size_t k = 0; k < all.size(); k += (all[k].size() > 600 ? 1 : 3)) {
    const Bytes& src = all[k];
    const size_t full = ref::packBits(src.data(), src.size()).size();
    const size_t maxRoom = full + 2;
    for (size_t room = 1; room <= maxRoom; room += (full > 400 ? 7 : 1)) {
      const ref::PackResult want = ref::packBitsInto(src.data(), src.size(), room);
      const Bytes enc = ref::packBits(src.data(), src.size());
      const int start = 3;
      zt::Guarded dst(start + room, 0);
      std::memset(dst.data(), 0xEE, dst.size());
      int pos = start;
      ASSERT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), static_cast<int>(src.size()), dst.data(), &pos,
                                           static_cast<int>(room)),
                want.status == 0 ? zvpStatusOk : zvpStatusUnderRun)
          << src.size() << " room " << room;
      ASSERT_EQ(pos, start + static_cast<int>(want.written)) << src.size() << " room " << room;
      ASSERT_EQ(Bytes(dst.data() + start, dst.data() + pos), Bytes(enc.begin(), enc.begin() + want.written));
      for (int i = 0; i < start; ++i) ASSERT_EQ(dst.data()[i], 0xEE);
      ASSERT_TRUE(dst.intact()) << "wrote beyond the room given";
    }
  }
}

TEST(PackBits, SixteenUnrelatedBytesIntoFive) {
  Bytes src(16);
  for (int i = 0; i < 16; ++i) src[i] = static_cast<uint8_t>(i * 37);
  Bytes dst(32, 0);
  int pos = 11;
  ASSERT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 16, dst.data(), &pos, 5), zvpStatusUnderRun);
  EXPECT_EQ(pos, 11);
}

TEST(PackBits, ManyRowsIntoOneBuffer) {
  zt::Rng rng(3603);
  std::vector<Bytes> rows;
  Bytes buf(20000);
  int pos = 0;
  Bytes want;
  for (int r = 0; r < 40; ++r) {
    Bytes row(static_cast<size_t>(rng.uniform(1, 300)));
    for (auto& b : row) b = static_cast<uint8_t>(rng.uniform(0, 3) ? rng.byte() : 5);
    rows.push_back(row);
    const Bytes e = ref::packBits(row.data(), row.size());
    want.insert(want.end(), e.begin(), e.end());
    ASSERT_EQ(zvpiPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int>(row.size()), buf.data(), &pos,
                                         static_cast<int>(buf.size()) - pos),
              zvpStatusOk);
  }
  ASSERT_EQ(Bytes(buf.begin(), buf.begin() + pos), want);
  want.push_back(0);
  int rp = 0;
  for (const Bytes& row : rows) {
    Bytes out(row.size());
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(want.data(), &rp, pos, out.data(), static_cast<int>(out.size())),
              zvpStatusOk);
    ASSERT_EQ(out, row);
  }
  EXPECT_EQ(rp, pos);
}

TEST(PackBits, DecoderMatchesReferenceOnArbitraryBytes) {
  zt::Rng rng(3604);
  for (int rep = 0; rep < 3000; ++rep) {
    const int srcLen = rng.uniform(1, 300);
    Bytes src(static_cast<size_t>(srcLen) + 1);
    for (auto& b : src) b = rng.byte();
    if (rep % 3 == 0)  // mostly small headers so that rows complete
      for (auto& b : src)
        if (rng.uniform(0, 3) == 0) b = static_cast<uint8_t>(rng.uniform(0, 1) ? rng.uniform(0, 4) : 256 - rng.uniform(1, 5));
    const int start = rng.uniform(0, 3) == 0 ? rng.uniform(0, srcLen + 1) : 0;
    const int dstLen = rng.uniform(1, 400);
    const ref::UnpackResult want = ref::unpackBits(src.data(), start, srcLen, dstLen);
    zt::Guarded dst(static_cast<size_t>(dstLen), static_cast<size_t>(rep % 7));
    std::memset(dst.data(), 0x5A, dst.size());
    int pos = start;
    ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, srcLen, dst.data(), dstLen),
              want.status == 0 ? zvpStatusOk : zvpStatusUnderRun)
        << rep;
    ASSERT_EQ(pos, want.pos) << rep;
    ASSERT_EQ(Bytes(dst.data(), dst.data() + want.out.size()), want.out) << rep;
    for (size_t i = want.out.size(); i < dst.size(); ++i) ASSERT_EQ(dst.data()[i], 0x5A) << rep;
    ASSERT_TRUE(dst.intact());
  }
}

TEST(PackBits, ArgumentChecks) {
  Bytes src(8, 1), dst(8, 0x77);
  int pos = 2;
  // Encoder: pointers, then lengths.
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(nullptr, 8, dst.data(), &pos, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 8, dst.data(), nullptr, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 8, nullptr, &pos, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(nullptr, 0, dst.data(), &pos, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 0, nullptr, &pos, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 0, dst.data(), &pos, 8), zvpStatusBadSize);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), 8, dst.data(), &pos, 0), zvpStatusBadSize);
  EXPECT_EQ(zvpiPackBitsRow_TIFF_8u_C1(src.data(), -1, dst.data(), &pos, -1), zvpStatusBadSize);
  EXPECT_EQ(pos, 2);
  EXPECT_EQ(dst, Bytes(8, 0x77));
  // Decoder.
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(nullptr, &pos, 8, dst.data(), 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), nullptr, 8, dst.data(), 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 8, nullptr, 8), zvpStatusNullPointer);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 0, nullptr, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 0, dst.data(), 8), zvpStatusBadSize);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, 8, dst.data(), 0), zvpStatusBadSize);
  EXPECT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, -5, dst.data(), -5), zvpStatusBadSize);
  EXPECT_EQ(pos, 2);
  EXPECT_EQ(dst, Bytes(8, 0x77));
}

TEST(TiffPlanes, JoinAndSplitMatchTheByteOrder) {
  zt::Rng rng(3605);
  for (int len : zt::interestingWidths()) {
    for (size_t off : {0, 1, 3}) {
      zt::Guarded lo(static_cast<size_t>(len), off), hi(static_cast<size_t>(len), (off + 5) % 16);
      zt::Guarded joined(2 * static_cast<size_t>(len), (off * 3) % 16);
      rng.fill(lo.data(), lo.size());
      rng.fill(hi.data(), hi.size());
      const Zvp8u* planes[2] = {lo.data(), hi.data()};
      ASSERT_EQ(zvpiJoinRow_TIFF_8u16u_C1(planes, joined.as<Zvp16u>(), len), zvpStatusOk);
      for (int i = 0; i < len; ++i) {
        ASSERT_EQ(joined.data()[2 * i], lo.data()[i]) << len;
        ASSERT_EQ(joined.data()[2 * i + 1], hi.data()[i]) << len;
      }
      ASSERT_TRUE(joined.intact());
      zt::Guarded lo2(static_cast<size_t>(len), (off + 7) % 16), hi2(static_cast<size_t>(len), off);
      Zvp8u* out[2] = {lo2.data(), hi2.data()};
      rng.fill(joined.data(), joined.size());
      ASSERT_EQ(zvpiSplitRow_TIFF_16u8u_C1(joined.as<Zvp16u>(), out, len), zvpStatusOk);
      for (int i = 0; i < len; ++i) {
        ASSERT_EQ(lo2.data()[i], joined.data()[2 * i]) << len;
        ASSERT_EQ(hi2.data()[i], joined.data()[2 * i + 1]) << len;
      }
      ASSERT_TRUE(lo2.intact());
      ASSERT_TRUE(hi2.intact());
    }
  }
  // On this little-endian machine the first row is the low byte.
  const Zvp8u l[2] = {0x34, 0xCD}, h[2] = {0x12, 0xAB};
  const Zvp8u* p[2] = {l, h};
  Zvp16u v[2];
  ASSERT_EQ(zvpiJoinRow_TIFF_8u16u_C1(p, v, 2), zvpStatusOk);
  EXPECT_EQ(v[0], 0x1234);
  EXPECT_EQ(v[1], 0xABCD);
}

TEST(TiffPlanes, ArgumentChecks) {
  Zvp8u a[4] = {1, 2, 3, 4}, b[4] = {5, 6, 7, 8};
  Zvp16u w[4] = {9, 9, 9, 9};
  const Zvp8u* src[2] = {a, b};
  const Zvp8u* srcNull0[2] = {nullptr, b};
  const Zvp8u* srcNull1[2] = {a, nullptr};
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(nullptr, w, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(srcNull0, w, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(srcNull1, w, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(src, nullptr, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(src, nullptr, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(src, w, 0), zvpStatusBadStep);
  EXPECT_EQ(zvpiJoinRow_TIFF_8u16u_C1(src, w, -3), zvpStatusBadStep);
  for (Zvp16u v : w) EXPECT_EQ(v, 9);
  Zvp8u* dst[2] = {a, b};
  Zvp8u* dstNull0[2] = {nullptr, b};
  Zvp8u* dstNull1[2] = {a, nullptr};
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(nullptr, dst, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(w, nullptr, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(w, dstNull0, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(w, dstNull1, 4), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(nullptr, dst, 0), zvpStatusNullPointer);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(w, dst, 0), zvpStatusBadStep);
  EXPECT_EQ(zvpiSplitRow_TIFF_16u8u_C1(w, dst, -1), zvpStatusBadStep);
  EXPECT_EQ(a[0], 1);
  EXPECT_EQ(b[3], 8);
}

}  // namespace
