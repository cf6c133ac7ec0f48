// MCU functions through the public interface: every member against the
// reference model on seeded random blocks and pixels, with aligned and
// misaligned block runs (the test picks the expected body from the
// pointers), steps wider than the MCU, guard bytes; the edge cases; and the
// order of the argument checks.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ref/mcu_ref.h"
#include "support/testutil.h"

namespace {

using ref::mcu::Blocks;
using ref::mcu::Samp;

enum class Kind { RGB, BGR, CMYK, P555, P565, Up, Join, Down, Split };

using DecCall = ZvpStatus (*)(const Zvp16s* const*, void*, int);
using EncCall = ZvpStatus (*)(const void*, int, Zvp16s* const*);

// Which body runs for a given set of block pointers.
enum class Rule { FastOnly, AllAligned, YAligned };

struct DecCase {
  const char* name;
  Kind kind;
  Samp samp;
  int n;  // block runs: 3 or 4
  Rule rule;
  DecCall call;
};
struct EncCase {
  const char* name;
  Kind kind;
  Samp samp;
  int n;
  Rule rule;
  EncCall call;
};

#define DEC(fn, kind, samp, n, rule, T)                                                                    \
  DecCase {                                                                                                \
    #fn, Kind::kind, Samp::samp, n, Rule::rule,                                                            \
        [](const Zvp16s* const* m, void* d, int s) { return zvpi##fn(m, static_cast<T*>(d), s); }           \
  }
#define ENC(fn, kind, samp, n, rule, T)                                                                    \
  EncCase {                                                                                                \
    #fn, Kind::kind, Samp::samp, n, Rule::rule,                                                            \
        [](const void* p, int s, Zvp16s* const* m) { return zvpi##fn(static_cast<const T*>(p), s, m); }     \
  }

const std::vector<DecCase>& decoders() {
  static const std::vector<DecCase> v = {
      DEC(YCbCr444ToRGBLS_MCU_16s8u_P3C3R, RGB, S444, 3, AllAligned, Zvp8u),
      DEC(YCbCr422ToRGBLS_MCU_16s8u_P3C3R, RGB, S422, 3, AllAligned, Zvp8u),
      DEC(YCbCr411ToRGBLS_MCU_16s8u_P3C3R, RGB, S411, 3, AllAligned, Zvp8u),
      DEC(YCbCr444ToBGRLS_MCU_16s8u_P3C3R, BGR, S444, 3, AllAligned, Zvp8u),
      DEC(YCbCr422ToBGRLS_MCU_16s8u_P3C3R, BGR, S422, 3, AllAligned, Zvp8u),
      DEC(YCbCr411ToBGRLS_MCU_16s8u_P3C3R, BGR, S411, 3, AllAligned, Zvp8u),
      DEC(YCCK444ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S444, 4, AllAligned, Zvp8u),
      DEC(YCCK422ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S422, 4, AllAligned, Zvp8u),
      DEC(YCCK411ToCMYKLS_MCU_16s8u_P4C4R, CMYK, S411, 4, AllAligned, Zvp8u),
      DEC(YCbCr444ToBGR555LS_MCU_16s16u_P3C3R, P555, S444, 3, FastOnly, Zvp16u),
      DEC(YCbCr422ToBGR555LS_MCU_16s16u_P3C3R, P555, S422, 3, FastOnly, Zvp16u),
      DEC(YCbCr411ToBGR555LS_MCU_16s16u_P3C3R, P555, S411, 3, FastOnly, Zvp16u),
      DEC(YCbCr444ToBGR565LS_MCU_16s16u_P3C3R, P565, S444, 3, FastOnly, Zvp16u),
      DEC(YCbCr422ToBGR565LS_MCU_16s16u_P3C3R, P565, S422, 3, FastOnly, Zvp16u),
      DEC(YCbCr411ToBGR565LS_MCU_16s16u_P3C3R, P565, S411, 3, FastOnly, Zvp16u),
      DEC(SampleUp444LS_MCU_16s8u_P3C3R, Up, S444, 3, AllAligned, Zvp8u),
      DEC(SampleUp422LS_MCU_16s8u_P3C3R, Up, S422, 3, AllAligned, Zvp8u),
      DEC(SampleUp411LS_MCU_16s8u_P3C3R, Up, S411, 3, AllAligned, Zvp8u),
      DEC(Join422LS_MCU_16s8u_P3C2R, Join, S422, 3, AllAligned, Zvp8u),
  };
  return v;
}

const std::vector<EncCase>& encoders() {
  static const std::vector<EncCase> v = {
      ENC(RGBToYCbCr444LS_MCU_8u16s_C3P3R, RGB, S444, 3, FastOnly, Zvp8u),
      ENC(RGBToYCbCr422LS_MCU_8u16s_C3P3R, RGB, S422, 3, FastOnly, Zvp8u),
      ENC(RGBToYCbCr411LS_MCU_8u16s_C3P3R, RGB, S411, 3, YAligned, Zvp8u),
      ENC(BGRToYCbCr444LS_MCU_8u16s_C3P3R, BGR, S444, 3, FastOnly, Zvp8u),
      ENC(BGRToYCbCr422LS_MCU_8u16s_C3P3R, BGR, S422, 3, FastOnly, Zvp8u),
      ENC(BGRToYCbCr411LS_MCU_8u16s_C3P3R, BGR, S411, 3, YAligned, Zvp8u),
      ENC(CMYKToYCCK444LS_MCU_8u16s_C4P4R, CMYK, S444, 4, AllAligned, Zvp8u),
      ENC(CMYKToYCCK422LS_MCU_8u16s_C4P4R, CMYK, S422, 4, AllAligned, Zvp8u),
      ENC(CMYKToYCCK411LS_MCU_8u16s_C4P4R, CMYK, S411, 4, AllAligned, Zvp8u),
      ENC(BGR555ToYCbCr444LS_MCU_16u16s_C3P3R, P555, S444, 3, FastOnly, Zvp16u),
      ENC(BGR555ToYCbCr422LS_MCU_16u16s_C3P3R, P555, S422, 3, FastOnly, Zvp16u),
      ENC(BGR555ToYCbCr411LS_MCU_16u16s_C3P3R, P555, S411, 3, FastOnly, Zvp16u),
      ENC(BGR565ToYCbCr444LS_MCU_16u16s_C3P3R, P565, S444, 3, FastOnly, Zvp16u),
      ENC(BGR565ToYCbCr422LS_MCU_16u16s_C3P3R, P565, S422, 3, FastOnly, Zvp16u),
      ENC(BGR565ToYCbCr411LS_MCU_16u16s_C3P3R, P565, S411, 3, FastOnly, Zvp16u),
      ENC(SampleDown444LS_MCU_8u16s_C3P3R, Down, S444, 3, FastOnly, Zvp8u),
      ENC(SampleDown422LS_MCU_8u16s_C3P3R, Down, S422, 3, FastOnly, Zvp8u),
      ENC(SampleDown411LS_MCU_8u16s_C3P3R, Down, S411, 3, FastOnly, Zvp8u),
      ENC(Split422LS_MCU_8u16s_C2P3R, Split, S422, 3, FastOnly, Zvp8u),
  };
  return v;
}

int bytesPerPixel(Kind k) {
  switch (k) {
    case Kind::CMYK: return 4;
    case Kind::P555:
    case Kind::P565:
    case Kind::Join:
    case Kind::Split: return 2;
    default: return 3;
  }
}

int runLength(Samp s, int i) { return i == 1 || i == 2 ? 64 : 64 * ref::mcu::lumaBlocks(s); }

const std::vector<int16_t>& run(const Blocks& b, int i) { return i == 0 ? b.y : i == 1 ? b.cb : i == 2 ? b.cr : b.k; }
std::vector<int16_t>& run(Blocks& b, int i) { return i == 0 ? b.y : i == 1 ? b.cb : i == 2 ? b.cr : b.k; }

bool expectFast(Rule r, const std::vector<size_t>& offsets) {
  switch (r) {
    case Rule::FastOnly: return true;
    case Rule::YAligned: return offsets[0] % 16 == 0;
    case Rule::AllAligned:
      for (size_t o : offsets)
        if (o % 16) return false;
      return true;
  }
  return true;
}

void refDecode(const DecCase& c, bool fast, const Blocks& b, uint8_t* dst, int step) {
  switch (c.kind) {
    case Kind::RGB: ref::mcu::toRGB(c.samp, fast, false, b, dst, step); break;
    case Kind::BGR: ref::mcu::toRGB(c.samp, fast, true, b, dst, step); break;
    case Kind::CMYK: ref::mcu::toCMYK(c.samp, fast, b, dst, step); break;
    case Kind::P555: ref::mcu::toPacked(c.samp, false, b, dst, step); break;
    case Kind::P565: ref::mcu::toPacked(c.samp, true, b, dst, step); break;
    case Kind::Up: ref::mcu::sampleUp(c.samp, b, dst, step); break;
    case Kind::Join: ref::mcu::join422(b, dst, step); break;
    default: FAIL();
  }
}

void refEncode(const EncCase& c, bool fast, const uint8_t* src, int step, Blocks& b) {
  switch (c.kind) {
    case Kind::RGB: ref::mcu::fromRGB(c.samp, fast, false, src, step, b); break;
    case Kind::BGR: ref::mcu::fromRGB(c.samp, fast, true, src, step, b); break;
    case Kind::CMYK: ref::mcu::fromCMYK(c.samp, fast, src, step, b); break;
    case Kind::P555: ref::mcu::fromPacked(c.samp, false, src, step, b); break;
    case Kind::P565: ref::mcu::fromPacked(c.samp, true, src, step, b); break;
    case Kind::Down: ref::mcu::sampleDown(c.samp, src, step, b); break;
    case Kind::Split: ref::mcu::split422(src, step, b); break;
    default: FAIL();
  }
}

// Block runs of one MCU placed at chosen byte offsets from a 64-byte boundary.
struct Runs {
  std::vector<std::unique_ptr<zt::Guarded>> bufs;
  std::vector<Zvp16s*> ptrs;
  Runs(Samp s, int n, const std::vector<size_t>& offsets) {
    for (int i = 0; i < n; ++i) {
      bufs.push_back(std::make_unique<zt::Guarded>(2 * static_cast<size_t>(runLength(s, i)), offsets[i]));
      ptrs.push_back(bufs.back()->as<Zvp16s>());
    }
  }
  void load(const Blocks& b) {
    for (size_t i = 0; i < bufs.size(); ++i)
      std::memcpy(bufs[i]->data(), run(b, static_cast<int>(i)).data(), bufs[i]->size());
  }
  void store(Blocks& b) const {
    for (size_t i = 0; i < bufs.size(); ++i)
      std::memcpy(run(b, static_cast<int>(i)).data(), bufs[i]->data(), bufs[i]->size());
  }
  bool intact() const {
    for (const auto& g : bufs)
      if (!g->intact()) return false;
    return true;
  }
};

// Pixel area of one MCU: step * (height - 1) + row bytes.
size_t areaBytes(Samp s, Kind k, int step) {
  return static_cast<size_t>(step) * (ref::mcu::height(s) - 1) + static_cast<size_t>(ref::mcu::width(s)) * bytesPerPixel(k);
}

// Block values: realistic ranges, the whole 16-bit range, and extremes.
void fillBlocks(zt::Rng& rng, Blocks& b, int mode) {
  for (int i = 0; i < 4; ++i)
    for (int16_t& v : run(b, i)) {
      if (mode == 0)
        v = static_cast<int16_t>(rng.uniform(-180, 180));
      else if (mode == 1)
        v = rng.s16();
      else {
        static const int16_t ext[] = {-32768, -32767, -16384, -300, -129, -128, -1, 0, 1, 127, 128, 255, 300, 16383, 32767};
        v = ext[rng.uniform(0, 14)];
      }
    }
}

std::vector<std::vector<size_t>> offsetSets(int n) {
  std::vector<std::vector<size_t>> sets;
  sets.push_back(std::vector<size_t>(static_cast<size_t>(n), 0));
  sets.push_back(std::vector<size_t>(static_cast<size_t>(n), 32));
  for (size_t off : {2u, 8u, 1u, 14u})
    for (int i = 0; i < n; ++i) {
      std::vector<size_t> o(static_cast<size_t>(n), 16);
      o[static_cast<size_t>(i)] = off;
      sets.push_back(o);
    }
  std::vector<size_t> all;
  for (int i = 0; i < n; ++i) all.push_back(static_cast<size_t>(2 + 4 * i));
  sets.push_back(all);
  return sets;
}

TEST(McuDecode, EveryMemberMatchesReference) {
  zt::Rng rng(3501);
  for (const DecCase& c : decoders()) {
    const int rowBytes = ref::mcu::width(c.samp) * bytesPerPixel(c.kind);
    for (const auto& offsets : offsetSets(c.n)) {
      const bool fast = expectFast(c.rule, offsets);
      for (int mode = 0; mode < 3; ++mode)
        for (int extra : {0, 1, 7, 64}) {
          const int step = rowBytes + extra;
          const size_t dstOff = static_cast<size_t>(extra % 5);
          Blocks b(c.samp);
          fillBlocks(rng, b, mode);
          Runs runs(c.samp, c.n, offsets);
          runs.load(b);
          zt::Guarded dst(areaBytes(c.samp, c.kind, step), dstOff);
          std::vector<uint8_t> want(dst.size() + 64, zt::Guarded::kPattern);
          refDecode(c, fast, b, want.data(), step);
          ASSERT_EQ(c.call(runs.ptrs.data(), dst.data(), step), zvpStatusOk) << c.name;
          ASSERT_EQ(std::memcmp(dst.data(), want.data(), dst.size()), 0)
              << c.name << " mode " << mode << " step " << step << " fast " << fast << " off " << offsets[0]
              << "," << offsets[1] << "," << offsets[2];
          ASSERT_TRUE(dst.intact()) << c.name;
          ASSERT_TRUE(runs.intact()) << c.name;
        }
    }
  }
}

TEST(McuEncode, EveryMemberMatchesReference) {
  zt::Rng rng(3502);
  for (const EncCase& c : encoders()) {
    const int rowBytes = ref::mcu::width(c.samp) * bytesPerPixel(c.kind);
    for (const auto& offsets : offsetSets(c.n)) {
      const bool fast = expectFast(c.rule, offsets);
      for (int mode = 0; mode < 3; ++mode)
        for (int extra : {0, 2, 9, 64}) {
          const int step = rowBytes + extra;
          zt::Guarded src(areaBytes(c.samp, c.kind, step), static_cast<size_t>(extra % 3));
          if (mode == 0)
            rng.fill(src.data(), src.size());
          else
            for (size_t i = 0; i < src.size(); ++i)  // extremes: 0, 1, 254, 255
              src.data()[i] = static_cast<uint8_t>(mode == 1 ? (rng.uniform(0, 1) ? 255 - rng.uniform(0, 1) : rng.uniform(0, 1))
                                                             : 8 * rng.uniform(0, 31));
          Blocks want(c.samp), got(c.samp);
          refEncode(c, fast, src.data(), step, want);
          Runs runs(c.samp, c.n, offsets);
          ASSERT_EQ(c.call(src.data(), step, runs.ptrs.data()), zvpStatusOk) << c.name;
          runs.store(got);
          for (int i = 0; i < c.n; ++i)
            ASSERT_EQ(run(got, i), run(want, i))
                << c.name << " run " << i << " mode " << mode << " step " << step << " fast " << fast;
          ASSERT_TRUE(runs.intact()) << c.name;
        }
    }
  }
}

// ---- Edge cases ----

TEST(McuEdge, AllZeroBlocksDecodeTo128InBothBodies) {
  for (const DecCase& c : decoders()) {
    if (c.kind != Kind::RGB && c.kind != Kind::BGR && c.kind != Kind::Up && c.kind != Kind::Join) continue;
    for (size_t off : {0u, 2u}) {
      Runs runs(c.samp, c.n, std::vector<size_t>(static_cast<size_t>(c.n), off));
      Blocks b(c.samp);
      runs.load(b);
      const int step = ref::mcu::width(c.samp) * bytesPerPixel(c.kind);
      zt::Guarded dst(areaBytes(c.samp, c.kind, step));
      ASSERT_EQ(c.call(runs.ptrs.data(), dst.data(), step), zvpStatusOk);
      for (size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst.data()[i], 128) << c.name << " off " << off;
    }
  }
}

TEST(McuEdge, UnalignedYBlockTakesScalarBody) {
  // y = 0, cb = 0, cr = -1: the fast body gives R = (2105344 - 22970) >> 14 = 127,
  // the scalar body (-91881 >> 16) + 128 = 126.
  Blocks b(Samp::S444);
  b.cr[0] = -1;
  for (size_t yOff : {0u, 2u}) {
    Runs runs(Samp::S444, 3, {yOff, 0, 0});
    runs.load(b);
    Zvp8u dst[8 * 8 * 3];
    ASSERT_EQ(zvpiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(runs.ptrs.data(), dst, 24), zvpStatusOk);
    EXPECT_EQ(dst[0], yOff ? 126 : 127);
    EXPECT_EQ(dst[3], 128);
  }
}

TEST(McuEdge, YCCKKChannelLimitedInFastBodyWrappedInScalarBody) {
  // Fast: clip(k + 128); scalar: low 8 bits of k - 128. Equal for -128..127.
  const int16_t ks[4] = {32767, -200, 127, -128};
  Blocks b(Samp::S444);
  for (int i = 0; i < 4; ++i) b.k[static_cast<size_t>(i)] = ks[i];
  for (size_t kOff : {0u, 2u}) {
    Runs runs(Samp::S444, 4, {0, 0, 0, kOff});
    runs.load(b);
    Zvp8u dst[8 * 8 * 4];
    ASSERT_EQ(zvpiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(runs.ptrs.data(), dst, 32), zvpStatusOk);
    EXPECT_EQ(dst[3], kOff ? 127 : 255);
    EXPECT_EQ(dst[7], kOff ? 184 : 0);
    EXPECT_EQ(dst[11], 255);
    EXPECT_EQ(dst[15], 0);
    EXPECT_EQ(dst[0], 127);  // zero colour blocks: 255 - 128 in both bodies
  }
}

TEST(McuEdge, YBlockOrderOf411) {
  Blocks b(Samp::S411);
  const int16_t level[4] = {-100, -50, 0, 50};
  for (int k = 0; k < 4; ++k)
    for (int i = 0; i < 64; ++i) b.y[static_cast<size_t>(64 * k + i)] = level[k];
  Runs runs(Samp::S411, 3, {0, 0, 0});
  runs.load(b);
  std::vector<Zvp8u> dst(16 * 16 * 3);
  ASSERT_EQ(zvpiSampleUp411LS_MCU_16s8u_P3C3R(runs.ptrs.data(), dst.data(), 48), zvpStatusOk);
  EXPECT_EQ(dst[3 * (0 * 16 + 0)], 28);    // top left
  EXPECT_EQ(dst[3 * (0 * 16 + 15)], 78);   // top right
  EXPECT_EQ(dst[3 * (15 * 16 + 0)], 128);  // bottom left
  EXPECT_EQ(dst[3 * (15 * 16 + 15)], 178); // bottom right
  EXPECT_EQ(dst[3 * (7 * 16 + 8)], 78);
  EXPECT_EQ(dst[3 * (8 * 16 + 7)], 128);
}

TEST(McuEdge, SampleUp422ReplicatesOneChromaValue) {
  Blocks b(Samp::S422);
  b.cb[3] = 64;
  Runs runs(Samp::S422, 3, {0, 0, 0});
  runs.load(b);
  std::vector<Zvp8u> dst(16 * 8 * 3);
  ASSERT_EQ(zvpiSampleUp422LS_MCU_16s8u_P3C3R(runs.ptrs.data(), dst.data(), 48), zvpStatusOk);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 16; ++x)
      EXPECT_EQ(dst[static_cast<size_t>(3 * (16 * y + x) + 1)], (y == 0 && (x == 6 || x == 7)) ? 192 : 128)
          << x << "," << y;
}

TEST(McuEdge, WhiteAndBlackThroughRGBToYCbCr444) {
  for (int v : {255, 0}) {
    std::vector<Zvp8u> src(8 * 8 * 3, static_cast<Zvp8u>(v));
    Runs runs(Samp::S444, 3, {0, 0, 0});
    ASSERT_EQ(zvpiRGBToYCbCr444LS_MCU_8u16s_C3P3R(src.data(), 24, runs.ptrs.data()), zvpStatusOk);
    Blocks got(Samp::S444);
    runs.store(got);
    for (int i = 0; i < 64; ++i) {
      EXPECT_EQ(got.y[static_cast<size_t>(i)], v ? 127 : -128);
      EXPECT_EQ(got.cb[static_cast<size_t>(i)], 0);
      EXPECT_EQ(got.cr[static_cast<size_t>(i)], 0);
    }
  }
}

TEST(McuEdge, SampleDown422RoundsDown) {
  std::vector<Zvp8u> src(16 * 8 * 3);
  for (int p = 0; p < 16 * 8; ++p) {
    src[static_cast<size_t>(3 * p + 1)] = static_cast<Zvp8u>(p % 2);  // Cb 0, 1, 0, 1 ...
    src[static_cast<size_t>(3 * p + 2)] = static_cast<Zvp8u>(p % 2);
  }
  Runs runs(Samp::S422, 3, {0, 0, 0});
  ASSERT_EQ(zvpiSampleDown422LS_MCU_8u16s_C3P3R(src.data(), 48, runs.ptrs.data()), zvpStatusOk);
  Blocks got(Samp::S422);
  runs.store(got);
  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(got.cb[static_cast<size_t>(i)], -128);
    EXPECT_EQ(got.cr[static_cast<size_t>(i)], -128);
  }
}

TEST(McuEdge, CMYK444FastBodyRoundsChromaWith8133) {
  // A flat colour whose chroma sits between the two rounding terms.
  int found = 0;
  for (int c = 0; c < 256 && !found; c += 1)
    for (int m = 0; m < 256 && !found; m += 5) {
      const int R = 255 - c, G = 255 - m, B = 255 - 40;
      const int t = -2764 * R - 5428 * G + 8192 * B;
      if (((t + 8133) >> 14) == ((t + 8192) >> 14)) continue;
      found = 1;
      std::vector<Zvp8u> src(8 * 8 * 4);
      for (int p = 0; p < 64; ++p) {
        src[static_cast<size_t>(4 * p)] = static_cast<Zvp8u>(c);
        src[static_cast<size_t>(4 * p + 1)] = static_cast<Zvp8u>(m);
        src[static_cast<size_t>(4 * p + 2)] = 40;
        src[static_cast<size_t>(4 * p + 3)] = 7;
      }
      Runs runs(Samp::S444, 4, {0, 0, 0, 0});
      ASSERT_EQ(zvpiCMYKToYCCK444LS_MCU_8u16s_C4P4R(src.data(), 32, runs.ptrs.data()), zvpStatusOk);
      Blocks got(Samp::S444);
      runs.store(got);
      EXPECT_EQ(got.cb[0], (t + 8133) >> 14);
      EXPECT_NE(got.cb[0], (t + 8192) >> 14);
      EXPECT_EQ(got.k[0], 7 - 128);
    }
  EXPECT_TRUE(found);
}

TEST(McuEdge, PackedWhiteEncodesFromExpandedChannels) {
  // Full white in BGR565 enters as 248, 252, 248; in BGR555 as 248 each.
  Runs runs(Samp::S444, 3, {0, 0, 0});
  std::vector<Zvp16u> src(64, 0xFFFF);
  ASSERT_EQ(zvpiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(src.data(), 16, runs.ptrs.data()), zvpStatusOk);
  Blocks got(Samp::S444);
  runs.store(got);
  EXPECT_EQ(got.y[0], (4899 * 248 + 9617 * 252 + 1868 * 248 - 2088960) >> 14);
  std::fill(src.begin(), src.end(), Zvp16u{0x7FFF});
  ASSERT_EQ(zvpiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(src.data(), 16, runs.ptrs.data()), zvpStatusOk);
  runs.store(got);
  EXPECT_EQ(got.y[0], (16384 * 248 - 2088960) >> 14);
}

// ---- Argument checks ----

TEST(McuArgs, DecodersCheckPointersThenStep) {
  for (const DecCase& c : decoders()) {
    Runs runs(c.samp, c.n, std::vector<size_t>(static_cast<size_t>(c.n), 0));
    const int step = ref::mcu::width(c.samp) * bytesPerPixel(c.kind);
    zt::Guarded dst(areaBytes(c.samp, c.kind, step));
    const std::vector<uint8_t> before = dst.snapshot();
    EXPECT_EQ(c.call(nullptr, dst.data(), step), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(runs.ptrs.data(), nullptr, step), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(nullptr, dst.data(), 0), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(runs.ptrs.data(), nullptr, 0), zvpStatusNullPointer) << c.name;
    for (int i = 0; i < c.n; ++i) {
      std::vector<Zvp16s*> p = runs.ptrs;
      p[static_cast<size_t>(i)] = nullptr;
      EXPECT_EQ(c.call(p.data(), dst.data(), step), zvpStatusNullPointer) << c.name << " " << i;
      EXPECT_EQ(c.call(p.data(), dst.data(), 0), zvpStatusNullPointer) << c.name << " " << i;
    }
    for (int bad : {0, -1, -step})
      EXPECT_EQ(c.call(runs.ptrs.data(), dst.data(), bad), zvpStatusBadStep) << c.name;
    EXPECT_EQ(dst.snapshot(), before) << c.name;
    EXPECT_TRUE(dst.intact());
    // One byte of step is accepted (rows overlap; the call succeeds).
    EXPECT_EQ(c.call(runs.ptrs.data(), dst.data(), 1), zvpStatusOk) << c.name;
  }
}

TEST(McuArgs, EncodersTestTheStepBeforeReadingTheBlockArray) {
  for (const EncCase& c : encoders()) {
    Runs runs(c.samp, c.n, std::vector<size_t>(static_cast<size_t>(c.n), 0));
    const int step = ref::mcu::width(c.samp) * bytesPerPixel(c.kind);
    zt::Guarded src(areaBytes(c.samp, c.kind, step));
    Blocks zero(c.samp);
    runs.load(zero);
    EXPECT_EQ(c.call(nullptr, step, runs.ptrs.data()), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(src.data(), step, nullptr), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(nullptr, 0, runs.ptrs.data()), zvpStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(src.data(), 0, nullptr), zvpStatusNullPointer) << c.name;
    for (int i = 0; i < c.n; ++i) {
      std::vector<Zvp16s*> p = runs.ptrs;
      p[static_cast<size_t>(i)] = nullptr;
      EXPECT_EQ(c.call(src.data(), step, p.data()), zvpStatusNullPointer) << c.name << " " << i;
      // Both wrong: the step is tested before the block pointers are read.
      EXPECT_EQ(c.call(src.data(), 0, p.data()), zvpStatusBadStep) << c.name << " " << i;
    }
    for (int bad : {0, -1, -step})
      EXPECT_EQ(c.call(src.data(), bad, runs.ptrs.data()), zvpStatusBadStep) << c.name;
    Blocks got(c.samp);
    runs.store(got);
    for (int i = 0; i < c.n; ++i) EXPECT_EQ(run(got, i), run(zero, i)) << c.name;
    EXPECT_TRUE(runs.intact());
  }
}

}  // namespace
