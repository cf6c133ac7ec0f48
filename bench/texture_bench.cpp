// Texture codecs on a 4096x4096 texture: megapixels per second of every
// decoder and encoder, beside stb_dxt and squish (encoders) on the same
// pixels. Before the timings, a quality table: PSNR of the DXT1 and DXT5
// encoders on generated natural-looking images, all decoded by squish's
// standard decoder (and ours by our own decoder in an extra column). squish's
// cluster fit is in the quality table only: it runs below 1 MP/s.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#define STB_DXT_IMPLEMENTATION
#include <stb/stb_dxt.h>
#include <squish.h>

#include "zvpj.h"

namespace {

constexpr int kSize = 4096;

// A natural-looking RGBA image: soft gradients, a few waves, round edges,
// a brick-like pattern and sensor noise; alpha a radial gradient with waves.
std::vector<uint8_t> makeImage(int w, int h, int kind) {
  std::vector<uint8_t> img(static_cast<size_t>(w) * h * 4);
  std::mt19937 g(1234u + static_cast<unsigned>(kind));
  std::normal_distribution<float> noise(0.f, kind == 2 ? 6.f : 2.5f);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const float u = static_cast<float>(x) / w, v = static_cast<float>(y) / h;
      float r, gr, b;
      if (kind == 0) {  // sky and hills
        r = 90 + 120 * v + 20 * std::sin(9 * u + 3 * v);
        gr = 140 + 80 * v + 25 * std::sin(5 * u) * std::cos(7 * v);
        b = 230 - 60 * v + 15 * std::sin(13 * u + 11 * v);
        if (v > 0.6f + 0.1f * std::sin(6 * u)) { r = 70 + 40 * u; gr = 110 + 30 * std::sin(20 * u); b = 50; }
      } else if (kind == 1) {  // objects with edges
        r = 128 + 100 * std::sin(3 * u * 6.28f);
        gr = 128 + 100 * std::cos(2 * v * 6.28f);
        b = 128 + 60 * std::sin((u + v) * 9);
        const float dx = u - 0.5f, dy = v - 0.5f;
        if (dx * dx + dy * dy < 0.08f) { r = 230; gr = 200 - 150 * dy; b = 40; }
        if (std::fmod(u * 7 + v * 3, 1.f) < 0.05f) { r = gr = b = 20; }
      } else {  // bricks
        const int by = y / 24, bx = (x + (by & 1) * 24) / 48;
        const bool mortar = (y % 24) < 3 || ((x + (by & 1) * 24) % 48) < 3;
        const float shade = 20.f * std::sin(static_cast<float>(bx * 7 + by * 13));
        r = mortar ? 180 : 160 + shade;
        gr = mortar ? 175 : 70 + shade / 2;
        b = mortar ? 165 : 50;
      }
      const float dx = u - 0.4f, dy = v - 0.5f;
      float a = 255 - 300 * std::sqrt(dx * dx + dy * dy) + 20 * std::sin(17 * u);
      const float vals[4] = {r + noise(g), gr + noise(g), b + noise(g), a};
      for (int c = 0; c < 4; ++c)
        img[(static_cast<size_t>(y) * w + x) * 4 + c] =
            static_cast<uint8_t>(std::lround(std::fmin(255.f, std::fmax(0.f, vals[c]))));
    }
  return img;
}

std::vector<uint8_t>& texture() {
  static std::vector<uint8_t> t = makeImage(kSize, kSize, 0);
  return t;
}

// RGB to YCoCg with the chroma biased by 128 (the caller's conversion).
std::vector<uint8_t>& ycocgTexture() {
  static std::vector<uint8_t> t = [] {
    const auto& s = texture();
    std::vector<uint8_t> o(static_cast<size_t>(kSize) * kSize * 3);
    for (size_t i = 0; i < o.size() / 3; ++i) {
      const int r = s[4 * i], g = s[4 * i + 1], b = s[4 * i + 2];
      o[3 * i] = static_cast<uint8_t>((r + 2 * g + b + 2) / 4);
      o[3 * i + 1] = static_cast<uint8_t>(std::min(255, std::max(0, (r - b + 1) / 2 + 128)));
      o[3 * i + 2] = static_cast<uint8_t>(std::min(255, std::max(0, (-r + 2 * g - b + 2) / 4 + 128)));
    }
    return o;
  }();
  return t;
}

size_t blocksBytes(int bb) { return static_cast<size_t>(kSize / 4) * (kSize / 4) * bb; }

void stbEncode(const uint8_t* img, int w, int h, uint8_t* out, bool alpha, int mode) {
  uint8_t blk[64];
  for (int by = 0; by < h / 4; ++by)
    for (int bx = 0; bx < w / 4; ++bx) {
      for (int r = 0; r < 4; ++r) std::memcpy(blk + 16 * r, img + (static_cast<size_t>(4 * by + r) * w + 4 * bx) * 4, 16);
      stb_compress_dxt_block(out, blk, alpha ? 1 : 0, mode);
      out += alpha ? 16 : 8;
    }
}

// ---- timings ----

using EncFn = ZvpStatus (*)(const Zvp8u*, int, ZvpiSize, Zvp8u*);
using DecFn = ZvpStatus (*)(const Zvp8u*, Zvp8u*, int, ZvpiSize);

void Encode(benchmark::State& st, EncFn fn, int bb) {
  auto& img = texture();
  std::vector<uint8_t> out(blocksBytes(bb));
  for (auto _ : st) {
    fn(img.data(), 4 * kSize, {kSize, kSize}, out.data());
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

void EncodeYCoCg(benchmark::State& st) {
  auto& img = ycocgTexture();
  std::vector<uint8_t> out(blocksBytes(16));
  for (auto _ : st) {
    zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(img.data(), 3 * kSize, {kSize, kSize}, out.data());
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

void Decode(benchmark::State& st, EncFn enc, DecFn fn, int bb) {
  auto& img = texture();
  std::vector<uint8_t> blocks(blocksBytes(bb)), out(img.size());
  if (enc) {
    enc(img.data(), 4 * kSize, {kSize, kSize}, blocks.data());
  } else {  // BC7: random blocks of every mode
    std::mt19937 g(5);
    for (size_t i = 0; i < blocks.size(); ++i) blocks[i] = static_cast<uint8_t>(g());
    for (size_t i = 0; i < blocks.size(); i += 16) {
      const int mode = static_cast<int>(g() % 8);
      blocks[i] = static_cast<uint8_t>((blocks[i] << (mode + 1)) | (1u << mode));
    }
  }
  for (auto _ : st) {
    fn(blocks.data(), out.data(), 4 * kSize, {kSize, kSize});
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

void Stb(benchmark::State& st, bool alpha, int mode) {
  auto& img = texture();
  std::vector<uint8_t> out(blocksBytes(alpha ? 16 : 8));
  for (auto _ : st) {
    stbEncode(img.data(), kSize, kSize, out.data(), alpha, mode);
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

void Squish(benchmark::State& st, int flags) {
  auto& img = texture();
  std::vector<uint8_t> out(blocksBytes(16));
  for (auto _ : st) {
    squish::CompressImage(img.data(), kSize, kSize, out.data(), flags);
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

void SquishDecode(benchmark::State& st, int flags, int bb) {
  auto& img = texture();
  std::vector<uint8_t> blocks(blocksBytes(bb)), out(img.size());
  squish::CompressImage(img.data(), kSize, kSize, blocks.data(), flags | squish::kColourRangeFit);
  for (auto _ : st) {
    squish::DecompressImage(out.data(), kSize, kSize, blocks.data(), flags);
    benchmark::ClobberMemory();
  }
  st.counters["MP/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * kSize * kSize / 1e6,
                                           benchmark::Counter::kIsRate);
}

// ---- quality ----

double psnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, int channels) {
  double se = 0;
  size_t n = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    if (static_cast<int>(i % 4) >= channels) continue;
    const double d = static_cast<double>(a[i]) - b[i];
    se += d * d;
    ++n;
  }
  const double mse = se / static_cast<double>(n);
  return mse == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mse);
}

void qualityTable() {
  const int w = 512, h = 512;
  const char* names[3] = {"sky and hills", "objects and edges", "bricks"};
  std::printf("PSNR in dB, %dx%d images, decoded by squish's standard decoder "
              "(DXT1: R G B; DXT5: R G B A). 'zvp (own dec.)': our blocks through our shift-only decoder.\n\n", w, h);
  std::printf("| Image | Format | zvp | zvp (own dec.) | stb_dxt | stb_dxt HQ | squish range fit | squish cluster fit |\n");
  std::printf("|---|---|---|---|---|---|---|---|\n");
  for (int k = 0; k < 3; ++k) {
    const auto rgba = makeImage(w, h, k);
    for (int fmt : {1, 5}) {
      // DXT1 is measured on the opaque image (squish would otherwise make
      // the pixels with alpha below 128 transparent).
      auto img = rgba;
      if (fmt == 1)
        for (size_t i = 3; i < img.size(); i += 4) img[i] = 255;
      const int bb = fmt == 1 ? 8 : 16, ch = fmt == 1 ? 3 : 4;
      const int sq = fmt == 1 ? squish::kDxt1 : squish::kDxt5;
      std::vector<uint8_t> blocks(static_cast<size_t>(w / 4) * (h / 4) * bb), out(img.size());
      auto decodeStd = [&] {
        squish::DecompressImage(out.data(), w, h, blocks.data(), sq);
        return psnr(img, out, ch);
      };
      (fmt == 1 ? zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R : zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R)(
          img.data(), 4 * w, {w, h}, blocks.data());
      const double ours = decodeStd();
      (fmt == 1 ? zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R : zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R)(
          blocks.data(), out.data(), 4 * w, {w, h});
      const double oursOwn = psnr(img, out, ch);
      stbEncode(img.data(), w, h, blocks.data(), fmt == 5, STB_DXT_NORMAL);
      const double stb = decodeStd();
      stbEncode(img.data(), w, h, blocks.data(), fmt == 5, STB_DXT_HIGHQUAL);
      const double stbHq = decodeStd();
      squish::CompressImage(img.data(), w, h, blocks.data(), sq | squish::kColourRangeFit);
      const double sqRange = decodeStd();
      squish::CompressImage(img.data(), w, h, blocks.data(), sq | squish::kColourClusterFit);
      const double sqCluster = decodeStd();
      std::printf("| %s | DXT%d | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", names[k], fmt, ours, oursOwn, stb,
                  stbHq, sqRange, sqCluster);
    }
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

BENCHMARK_CAPTURE(Decode, DXT1, zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, 8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decode, DXT3, zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, 16)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decode, DXT5, zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, 16)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decode, BC7, nullptr, zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R, 16)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SquishDecode, DXT1, squish::kDxt1, 8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SquishDecode, DXT5, squish::kDxt5, 16)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, DXT1, zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, 8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, DXT3, zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, 16)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, DXT5, zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, 16)->Unit(benchmark::kMillisecond);
BENCHMARK(EncodeYCoCg)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Stb, DXT1, false, STB_DXT_NORMAL)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Stb, DXT5, true, STB_DXT_NORMAL)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Stb, DXT1_HighQual, false, STB_DXT_HIGHQUAL)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Squish, DXT1_RangeFit, squish::kDxt1 | squish::kColourRangeFit)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Squish, DXT5_RangeFit, squish::kDxt5 | squish::kColourRangeFit)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  qualityTable();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
