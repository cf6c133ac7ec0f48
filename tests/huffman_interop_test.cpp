// Interoperability of the sequential Huffman coders with libjpeg-turbo:
// (a) files written by libjpeg-turbo decode with our decoder to exactly the
// coefficients of jpeg_read_coefficients; (b) scans written by our encoder
// read back through jpeg_read_coefficients to exactly our blocks.
#include <gtest/gtest.h>

#include <random>

#include "jpegio/jpegio.h"
#include "jpegio/ljt.h"
#include "jpegio/scan.h"

namespace {

struct Config {
  const char* name;
  int h, v;
  bool grey, optimize;
  int restart;
};

const Config kConfigs[] = {
    {"444", 1, 1, false, false, 0}, {"444_opt_rst", 1, 1, false, true, 3}, {"422", 2, 1, false, false, 5},
    {"422_opt", 2, 1, false, true, 0}, {"420", 2, 2, false, false, 0},    {"420_opt_rst1", 2, 2, false, true, 1},
    {"420_rst7", 2, 2, false, false, 7}, {"grey", 1, 1, true, false, 0},   {"grey_opt_rst", 1, 1, true, true, 4},
};

std::vector<uint8_t> makeFile(const Config& c, int w, int h, int quality, unsigned seed) {
  ljt::Options o;
  o.quality = quality;
  o.optimize = c.optimize;
  o.restart = c.restart;
  o.lumaH = c.h;
  o.lumaV = c.v;
  o.grey = c.grey;
  return ljt::compress(ljt::makeImage(w, h, c.grey ? 1 : 3, seed), w, h, o);
}

void expectSameValid(scan::Blocks& ours, const ljt::Coeffs& theirs) {
  ASSERT_EQ(ours.data.size(), theirs.comps.size());
  for (size_t c = 0; c < theirs.comps.size(); ++c) {
    const auto& tc = theirs.comps[c];
    ASSERT_LE(tc.wib, ours.wib[c]);
    ASSERT_LE(tc.hib, ours.hib[c]);
    for (int by = 0; by < tc.hib; ++by)
      for (int bx = 0; bx < tc.wib; ++bx)
        ASSERT_EQ(0, std::memcmp(ours.at(c, bx, by), &tc.blocks[(static_cast<size_t>(by) * tc.wib + bx) * 64], 128))
            << "component " << c << " block " << bx << "," << by;
  }
}

class Interop : public ::testing::TestWithParam<Config> {};

TEST_P(Interop, LibjpegFilesDecodeToTheirCoefficients) {
  const Config& c = GetParam();
  for (int quality : {50, 75, 95, 100}) {
    auto file = makeFile(c, 203, 157, quality, 7u + static_cast<unsigned>(quality));
    ASSERT_FALSE(file.empty());
    jpegio::Image img;
    ASSERT_EQ(jpegio::read(file, img), "");
    ASSERT_EQ(img.restartInterval, c.restart);
    scan::DecTables t;
    ASSERT_TRUE(scan::buildDecTables(img, t));
    scan::Blocks ours = scan::allocate(img);
    ASSERT_EQ(scan::decode(img, t, ours), zvpStatusOk) << quality;
    ljt::Coeffs theirs = ljt::readCoefficients(file);
    ASSERT_TRUE(theirs.ok);
    expectSameValid(ours, theirs);
  }
}

// Code lengths for our blocks through the library's table builder.
void optimisedTables(jpegio::Image& img, scan::Blocks& b) {
  std::vector<std::vector<int32_t>> dcStat(2, std::vector<int32_t>(257, 0)), acStat(2, std::vector<int32_t>(257, 0));
  static const int zz[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
                             41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
                             30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};
  auto cat = [](int v) {
    unsigned a = static_cast<unsigned>(v < 0 ? -v : v);
    int n = 0;
    while (a) ++n, a >>= 1;
    return n;
  };
  int16_t dc[4] = {};
  int lastMcu = 0;
  scan::walk(img, [&](int ci, int bx, int by, int mcu) {
    if (mcu != lastMcu && img.restartInterval && mcu % img.restartInterval == 0) std::memset(dc, 0, sizeof dc);
    lastMcu = mcu;
    int t = ci ? 1 : 0;
    const int16_t* blk = b.at(static_cast<size_t>(ci), bx, by);
    ++dcStat[t][cat(blk[0] - dc[ci])];
    dc[ci] = blk[0];
    int run = 0;
    for (int k = 1; k < 64; ++k) {
      if (!blk[zz[k]]) {
        ++run;
        continue;
      }
      while (run >= 16) ++acStat[t][0xF0], run -= 16;
      ++acStat[t][(run << 4) + cat(blk[zz[k]])];
      run = 0;
    }
    if (run) ++acStat[t][0];
  });
  for (int t = 0; t < 2; ++t) {
    uint8_t vals[256];
    for (auto* p : {&img.dc[t], &img.ac[t]}) {
      std::vector<int32_t>& st = p == &img.dc[t] ? dcStat[t] : acStat[t];
      p->present = true;
      ASSERT_EQ(zvpiEncodeHuffmanRawTableInit_JPEG_8u(st.data(), p->bits, vals), zvpStatusOk);
      int n = 0;
      for (uint8_t x : p->bits) n += x;
      p->vals.assign(vals, vals + n);
    }
  }
  for (auto& comp : img.comps) comp.td = comp.ta = comp.id == img.comps[0].id ? 0 : 1;
}

TEST_P(Interop, OurScansReadBackThroughLibjpeg) {
  const Config& c = GetParam();
  std::mt19937 rng(99);
  for (int variant = 0; variant < 3; ++variant) {
    auto file = makeFile(c, 171, 133, variant == 2 ? 98 : 80, 3u + static_cast<unsigned>(variant));
    jpegio::Image img;
    ASSERT_EQ(jpegio::read(file, img), "");
    ljt::Coeffs theirs = ljt::readCoefficients(file);
    ASSERT_TRUE(theirs.ok);
    scan::Blocks ours = scan::allocate(img);
    for (size_t ci = 0; ci < theirs.comps.size(); ++ci) {
      const auto& tc = theirs.comps[ci];
      for (int by = 0; by < ours.hib[ci]; ++by)
        for (int bx = 0; bx < ours.wib[ci]; ++bx) {
          int16_t* blk = ours.at(ci, bx, by);
          // Padding blocks repeat the last block of the data region.
          int sx = std::min(bx, tc.wib - 1), sy = std::min(by, tc.hib - 1);
          std::memcpy(blk, &tc.blocks[(static_cast<size_t>(sy) * tc.wib + sx) * 64], 128);
          if (variant >= 1) {  // large and dense values as well
            for (int i = 1; i < 64; ++i)
              if (rng() % 9 == 0) blk[i] = static_cast<int16_t>(static_cast<int>(rng() % 2047) - 1023);
            blk[0] = static_cast<int16_t>(static_cast<int>(rng() % 2047) - 1023);
          }
        }
    }
    if (variant >= 1) optimisedTables(img, ours);
    std::vector<uint8_t> buf(1 << 20);
    ASSERT_EQ(scan::encode(img, ours, buf), zvpStatusOk);
    auto written = jpegio::write(img);
    ljt::Coeffs back = ljt::readCoefficients(written);
    ASSERT_TRUE(back.ok);
    expectSameValid(ours, back);
    // Our own decoder reads our file as well.
    jpegio::Image again;
    ASSERT_EQ(jpegio::read(written, again), "");
    scan::DecTables t;
    ASSERT_TRUE(scan::buildDecTables(again, t));
    scan::Blocks dec = scan::allocate(again);
    ASSERT_EQ(scan::decode(again, t, dec), zvpStatusOk);
    expectSameValid(dec, back);
  }
}

INSTANTIATE_TEST_SUITE_P(Huffman, Interop, ::testing::ValuesIn(kConfigs),
                         [](const ::testing::TestParamInfo<Config>& i) { return std::string(i.param.name); });

}  // namespace
