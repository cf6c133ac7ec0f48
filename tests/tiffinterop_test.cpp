// PackBits rows against a real TIFF codec: strips that we pack are read back
// exactly by libtiff, and strips that libtiff packs decode exactly with ours.
#include <gtest/gtest.h>
#include <tiffio.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/testutil.h"
#include "zvpj.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct TempFile {
  std::string path;
  TempFile() {
    char name[] = "/tmp/zvp_packbits_XXXXXX";
    const int fd = mkstemp(name);
    if (fd >= 0) close(fd);
    path = name;
  }
  ~TempFile() { unlink(path.c_str()); }
};

void setTags(TIFF* t, int w, int h) {
  TIFFSetField(t, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(w));
  TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(h));
  TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
  TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(h));
}

// An image of h rows of w bytes in one of several characters.
std::vector<Bytes> image(int w, int h, int kind, zt::Rng& rng) {
  std::vector<Bytes> rows(static_cast<size_t>(h), Bytes(static_cast<size_t>(w)));
  for (int y = 0; y < h; ++y) {
    int v = 100 + y;
    for (int x = 0; x < w; ++x) {
      uint8_t b;
      switch (kind) {
        case 0: b = rng.byte(); break;                                      // noise
        case 1: b = static_cast<uint8_t>(y * 3); break;                     // flat rows
        case 2: v += rng.uniform(-2, 2); b = static_cast<uint8_t>(v); break;  // photo-like
        default: b = static_cast<uint8_t>(rng.uniform(0, 4) ? (x / 5) : rng.byte()); break;  // blocky
      }
      rows[y][x] = b;
    }
  }
  return rows;
}

const int kWidths[] = {1, 2, 3, 127, 128, 129, 130, 257, 1000};

TEST(PackBitsInterop, LibtiffReadsStripsWePack) {
  zt::Rng rng(3620);
  for (int w : kWidths)
    for (int kind = 0; kind < 4; ++kind) {
      const int h = 13;
      const std::vector<Bytes> rows = image(w, h, kind, rng);
      Bytes strip(static_cast<size_t>(h) * (w + w / 64 + 2));
      int pos = 0;
      for (const Bytes& r : rows)
        ASSERT_EQ(zvpiPackBitsRow_TIFF_8u_C1(r.data(), w, strip.data(), &pos, static_cast<int>(strip.size()) - pos),
                  zvpStatusOk);
      TempFile f;
      TIFF* t = TIFFOpen(f.path.c_str(), "w");
      ASSERT_NE(t, nullptr);
      setTags(t, w, h);
      ASSERT_EQ(TIFFWriteRawStrip(t, 0, strip.data(), pos), pos);
      TIFFClose(t);

      t = TIFFOpen(f.path.c_str(), "r");
      ASSERT_NE(t, nullptr);
      uint16_t comp = 0;
      TIFFGetField(t, TIFFTAG_COMPRESSION, &comp);
      EXPECT_EQ(comp, COMPRESSION_PACKBITS);
      Bytes line(static_cast<size_t>(TIFFScanlineSize(t)));
      ASSERT_EQ(line.size(), static_cast<size_t>(w));
      for (int y = 0; y < h; ++y) {
        ASSERT_EQ(TIFFReadScanline(t, line.data(), static_cast<uint32_t>(y), 0), 1);
        ASSERT_EQ(line, rows[y]) << "w " << w << " kind " << kind << " row " << y;
      }
      TIFFClose(t);
    }
}

TEST(PackBitsInterop, WeDecodeStripsLibtiffPacks) {
  zt::Rng rng(3621);
  for (int w : kWidths)
    for (int kind = 0; kind < 4; ++kind) {
      const int h = 11;
      const std::vector<Bytes> rows = image(w, h, kind, rng);
      TempFile f;
      TIFF* t = TIFFOpen(f.path.c_str(), "w");
      ASSERT_NE(t, nullptr);
      setTags(t, w, h);
      for (int y = 0; y < h; ++y) {
        Bytes r = rows[y];
        ASSERT_EQ(TIFFWriteScanline(t, r.data(), static_cast<uint32_t>(y), 0), 1);
      }
      TIFFClose(t);

      t = TIFFOpen(f.path.c_str(), "r");
      ASSERT_NE(t, nullptr);
      const tmsize_t rawSize = static_cast<tmsize_t>(TIFFRawStripSize(t, 0));
      ASSERT_GT(rawSize, 0);
      Bytes raw(static_cast<size_t>(rawSize) + 1, 0);  // one readable byte behind the data
      ASSERT_EQ(TIFFReadRawStrip(t, 0, raw.data(), rawSize), rawSize);
      TIFFClose(t);

      int pos = 0;
      for (int y = 0; y < h; ++y) {
        Bytes out(static_cast<size_t>(w), 0xEE);
        ASSERT_EQ(zvpiUnpackBitsRow_TIFF_8u_C1(raw.data(), &pos, static_cast<int>(rawSize), out.data(), w),
                  zvpStatusOk)
            << "w " << w << " kind " << kind << " row " << y;
        ASSERT_EQ(out, rows[y]) << "w " << w << " kind " << kind << " row " << y;
      }
      EXPECT_EQ(pos, static_cast<int>(rawSize));
    }
}

// 16-bit samples kept as two byte planes: joined rows written through
// libtiff (little-endian file) read back as the same sample values, and the
// split of what libtiff reads gives the planes back.
TEST(PackBitsInterop, JoinedSixteenBitRowsRoundTripThroughLibtiff) {
  zt::Rng rng(3622);
  const int w = 77, h = 5;
  std::vector<Bytes> lo(h, Bytes(w)), hi(h, Bytes(w));
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      lo[y][x] = rng.byte();
      hi[y][x] = static_cast<uint8_t>(x & 3);
    }
  TempFile f;
  TIFF* t = TIFFOpen(f.path.c_str(), "wl");
  ASSERT_NE(t, nullptr);
  setTags(t, w, h);
  TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
  for (int y = 0; y < h; ++y) {
    std::vector<Zvp16u> row(w);
    const Zvp8u* planes[2] = {lo[y].data(), hi[y].data()};
    ASSERT_EQ(zvpiJoinRow_TIFF_8u16u_C1(planes, row.data(), w), zvpStatusOk);
    ASSERT_EQ(TIFFWriteScanline(t, row.data(), static_cast<uint32_t>(y), 0), 1);
  }
  TIFFClose(t);
  t = TIFFOpen(f.path.c_str(), "r");
  ASSERT_NE(t, nullptr);
  for (int y = 0; y < h; ++y) {
    std::vector<Zvp16u> row(w);
    ASSERT_EQ(TIFFReadScanline(t, row.data(), static_cast<uint32_t>(y), 0), 1);
    for (int x = 0; x < w; ++x) ASSERT_EQ(row[x], lo[y][x] | (hi[y][x] << 8));
    Bytes l2(w), h2(w);
    Zvp8u* planes[2] = {l2.data(), h2.data()};
    ASSERT_EQ(zvpiSplitRow_TIFF_16u8u_C1(row.data(), planes, w), zvpStatusOk);
    ASSERT_EQ(l2, lo[y]);
    ASSERT_EQ(h2, hi[y]);
  }
  TIFFClose(t);
}

}  // namespace
