// Interoperability with Pillow's BCn decoder (Debian python3-pil): block
// streams and the library's decoded pixels are written to files, and
// tests/texture_pillow.py decodes the streams with Pillow and compares.
//
// BC7 streams are random blocks of every mode, partition, rotation and index
// selector: Pillow must give exactly our pixels. The invalid mode is left out:
// by design the library gives transparent black, Pillow opaque black.
//
// DXT streams are random blocks kept where the standard decoding and this
// library's decoding agree. They differ by design in:
//  - widening: the library shifts only (31 -> 248), the usual rule replicates
//    the top bits (31 -> 255); so red and blue fields stay below 4 and green
//    below 16, where both give the same;
//  - DXT1 three-colour index 3: opaque white here, transparent black there;
//    so index 3 is not used in three-colour blocks;
//  - DXT3 alpha: v << 4 here, v * 17 there; they agree at 0 only;
//  - DXT5 eight-alpha entries: rounded here, truncated there; they agree when
//    a0 - a1 is a multiple of 7 (and the six-alpha entries when a1 - a0 is a
//    multiple of 5).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "support/testutil.h"
#include "texture_cases.h"
#include "zvpj.h"

namespace {

void writeStream(const std::filesystem::path& file, int w, int h, int n, const std::vector<uint8_t>& stream,
                 const std::vector<uint8_t>& pixels) {
  FILE* f = std::fopen(file.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  const uint32_t head[3] = {static_cast<uint32_t>(w), static_cast<uint32_t>(h), static_cast<uint32_t>(n)};
  std::fwrite(head, 4, 3, f);  // little-endian host
  std::fwrite(stream.data(), 1, stream.size(), f);
  std::fwrite(pixels.data(), 1, pixels.size(), f);
  std::fclose(f);
}

// A colour half (8 bytes at p) whose endpoints widen the same both ways.
void agreeingColour(zt::Rng& rng, uint8_t* p, bool dxt1) {
  auto word = [&] { return static_cast<unsigned>((rng.uniform(0, 3) << 11) | (rng.uniform(0, 15) << 5) | rng.uniform(0, 3)); };
  const unsigned c0 = word(), c1 = word();
  p[0] = static_cast<uint8_t>(c0); p[1] = static_cast<uint8_t>(c0 >> 8);
  p[2] = static_cast<uint8_t>(c1); p[3] = static_cast<uint8_t>(c1 >> 8);
  uint32_t idx = 0;
  for (int i = 0; i < 16; ++i) {
    unsigned v = static_cast<unsigned>(rng.uniform(0, 3));
    if (dxt1 && c0 <= c1 && v == 3) v = static_cast<unsigned>(rng.uniform(0, 2));
    idx |= v << (2 * i);
  }
  for (int i = 0; i < 4; ++i) p[4 + i] = static_cast<uint8_t>(idx >> (8 * i));
}

}  // namespace

TEST(TextureInterop, PillowDecodesOurBlocks) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() /
                                    ("zvp_texture_pillow_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  zt::Rng rng(77);
  const int w = 64, h = 36;
  const int blocks = (w / 4) * (h / 4);

  // BC7: every mode, every partition, rotation and selector.
  {
    std::vector<uint8_t> all;
    ztex::forEveryBc7Case(rng, [&](const uint8_t* b, int, int, int, int) { all.insert(all.end(), b, b + 16); });
    const int n = static_cast<int>(all.size() / 16);
    const int bw = 16, bh = (n + bw - 1) / bw;
    all.resize(static_cast<size_t>(bw) * bh * 16, 0x40);  // pad with mode 6 blocks
    std::vector<uint8_t> px(static_cast<size_t>(4 * bw) * 4 * bh * 4);
    ASSERT_EQ(zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(all.data(), px.data(), 16 * bw, {4 * bw, 4 * bh}),
              zvpStatusOk);
    writeStream(dir / "bc7.bin", 4 * bw, 4 * bh, 7, all, px);
  }
  // DXT1, DXT3, DXT5 on agreeing blocks.
  for (int n : {1, 2, 3}) {
    const int bb = n == 1 ? 8 : 16;
    std::vector<uint8_t> s(static_cast<size_t>(blocks) * bb);
    for (int b = 0; b < blocks; ++b) {
      uint8_t* p = &s[static_cast<size_t>(b) * bb];
      if (n == 1) {
        agreeingColour(rng, p, true);
      } else if (n == 2) {
        std::fill(p, p + 8, 0);
        agreeingColour(rng, p + 8, false);
      } else {
        int a0, a1;
        if (rng.uniform(0, 1)) {
          a1 = rng.uniform(0, 200);
          a0 = a1 + 7 * rng.uniform(1, (255 - a1) / 7);
        } else {
          a0 = rng.uniform(0, 200);
          a1 = a0 + 5 * rng.uniform(0, (255 - a0) / 5);
        }
        p[0] = static_cast<uint8_t>(a0);
        p[1] = static_cast<uint8_t>(a1);
        rng.fill(p + 2, 6);
        agreeingColour(rng, p + 8, false);
      }
    }
    std::vector<uint8_t> px(static_cast<size_t>(w) * h * 4);
    const auto fn = n == 1 ? zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R
                  : n == 2 ? zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R
                           : zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R;
    ASSERT_EQ(fn(s.data(), px.data(), 4 * w, {w, h}), zvpStatusOk);
    writeStream(dir / ("dxt" + std::to_string(n) + ".bin"), w, h, n, s, px);
  }
  const std::string cmd = "/usr/bin/python3 " ZVP_TEXTURE_PILLOW_SCRIPT " " + dir.string();
  const int rc = std::system(cmd.c_str());
  EXPECT_EQ(rc, 0) << cmd;
  std::filesystem::remove_all(dir);
}
