// MCU functions: MCUs per second for the RGB decoders and encoders at 444,
// 422 and 411, over a strip of 240 MCUs side by side (a 1920- or 3840-pixel
// wide band), beside a plain memcpy of the same pixel bytes per MCU. The
// decoders run with 16-byte aligned blocks (fast body) and with blocks 2
// bytes off (scalar body). Beside them, the same strip through the region
// functions on one thread: level shift of 16-bit planes, chroma sampling
// (triangle up / box down) and the plane colour conversion. Those read and
// write planes rather than blocks, so they compare cost, not layout.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "zvpj.h"

namespace {

constexpr int kMcus = 240;

struct Strip {
  int w, h, lumaBlocks, step;
  std::vector<int16_t> store;  // per MCU: Y run, Cb, Cr (plus 8 spare values for the offset)
  std::vector<uint8_t> pixels, copy;
  std::vector<const Zvp16s*> src;  // 3 per MCU
  std::vector<Zvp16s*> dst;

  Strip(int samp, size_t shift) {
    w = samp == 444 ? 8 : 16;
    h = samp == 411 ? 16 : 8;
    lumaBlocks = samp == 444 ? 1 : (samp == 422 ? 2 : 4);
    step = w * kMcus * 3;
    const size_t per = 64 * (lumaBlocks + 2) + 8;
    store.resize(per * kMcus + 8);
    for (size_t i = 0; i < store.size(); ++i) store[i] = static_cast<int16_t>((i * 37) % 300) - 150;
    pixels.resize(static_cast<size_t>(step) * h);
    copy.resize(pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 13);
    // vector storage is 16-byte aligned on this platform; runs are multiples of 128 bytes apart.
    int16_t* base = store.data() + (16 - (reinterpret_cast<uintptr_t>(store.data()) & 15)) % 16 / 2;
    for (int m = 0; m < kMcus; ++m) {
      int16_t* p = reinterpret_cast<int16_t*>(reinterpret_cast<uint8_t*>(base + per * m) + shift);
      Zvp16s* runs[3] = {p, p + 64 * lumaBlocks, p + 64 * (lumaBlocks + 1)};
      for (Zvp16s* r : runs) {
        src.push_back(r);
        dst.push_back(r);
      }
    }
  }
};

using DecFn = ZvpStatus (*)(const Zvp16s* const*, Zvp8u*, int);
using EncFn = ZvpStatus (*)(const Zvp8u*, int, Zvp16s* const*);

template <int Samp>
DecFn decoder() {
  return Samp == 444 ? zvpiYCbCr444ToRGBLS_MCU_16s8u_P3C3R
                     : (Samp == 422 ? zvpiYCbCr422ToRGBLS_MCU_16s8u_P3C3R : zvpiYCbCr411ToRGBLS_MCU_16s8u_P3C3R);
}
template <int Samp>
EncFn encoder() {
  return Samp == 444 ? zvpiRGBToYCbCr444LS_MCU_8u16s_C3P3R
                     : (Samp == 422 ? zvpiRGBToYCbCr422LS_MCU_8u16s_C3P3R : zvpiRGBToYCbCr411LS_MCU_8u16s_C3P3R);
}

template <int Samp, size_t Shift>
void Decode(benchmark::State& st) {
  Strip s(Samp, Shift);
  const DecFn f = decoder<Samp>();
  for (auto _ : st) {
    for (int m = 0; m < kMcus; ++m) f(&s.src[3 * m], s.pixels.data() + 3 * s.w * m, s.step);
    benchmark::ClobberMemory();
  }
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * kMcus);
}

template <int Samp, size_t Shift>
void Encode(benchmark::State& st) {
  Strip s(Samp, Shift);
  const EncFn f = encoder<Samp>();
  for (auto _ : st) {
    for (int m = 0; m < kMcus; ++m) f(s.pixels.data() + 3 * s.w * m, s.step, &s.dst[3 * m]);
    benchmark::ClobberMemory();
  }
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * kMcus);
}

// The pixel bytes of each MCU copied row by row, as a decoder writes them.
template <int Samp>
void Memcpy(benchmark::State& st) {
  Strip s(Samp, 0);
  const size_t row = static_cast<size_t>(3 * s.w);
  for (auto _ : st) {
    for (int m = 0; m < kMcus; ++m)
      for (int y = 0; y < s.h; ++y)
        std::memcpy(s.copy.data() + static_cast<size_t>(s.step) * y + row * m,
                    s.pixels.data() + static_cast<size_t>(s.step) * y + row * m, row);
    benchmark::ClobberMemory();
  }
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * kMcus);
}

// The strip as planes: 16-bit Y, Cb, Cr (level-shifted), their 8-bit forms,
// full-size chroma planes and the interleaved pixels. The chroma planes at
// source size carry one spare sample on each side and one spare row above
// and below, which the up-sampling regions read.
struct Planes {
  int w, h, cw, ch, sx, sy;
  ZvpiSize full, chroma;
  std::vector<int16_t> y16, c16[2];
  std::vector<uint8_t> y8, c8[2], up[2], pixels;
  int c8Step;

  explicit Planes(int samp) {
    sx = samp == 444 ? 1 : 2;
    sy = samp == 411 ? 2 : 1;
    w = (samp == 444 ? 8 : 16) * kMcus;
    h = samp == 411 ? 16 : 8;
    cw = w / sx;
    ch = h / sy;
    full = {w, h};
    chroma = {cw, ch};
    c8Step = cw + 32;
    y16.resize(static_cast<size_t>(w) * h);
    y8.resize(y16.size());
    for (size_t i = 0; i < y16.size(); ++i) y16[i] = static_cast<int16_t>((i * 37) % 256) - 128;
    for (int c = 0; c < 2; ++c) {
      c16[c].resize(static_cast<size_t>(cw) * ch);
      for (size_t i = 0; i < c16[c].size(); ++i) c16[c][i] = static_cast<int16_t>((i * (29 + c)) % 256) - 128;
      c8[c].assign(static_cast<size_t>(c8Step) * (ch + 2), 128);
      up[c].resize(static_cast<size_t>(w) * h);
    }
    pixels.resize(static_cast<size_t>(w) * h * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 13);
  }
  uint8_t* c8At(int c) { return c8[c].data() + c8Step + 16; }  // row 0, column 0
};

// Decoding by regions: Add128 on the three planes, chroma up (422: H2V1,
// 411: H2V2; 444: none), then YCbCr planes to interleaved RGB.
template <int Samp>
void RegionDecode(benchmark::State& st) {
  zvpSetNumThreads(1);
  Planes p(Samp);
  bool failed = false;
  auto check = [&](ZvpStatus r) { failed |= r != zvpStatusOk; };
  for (auto _ : st) {
    check(zvpiAdd128_JPEG_16s8u_C1R(p.y16.data(), 2 * p.w, p.y8.data(), p.w, p.full));
    for (int c = 0; c < 2; ++c) {
      if constexpr (Samp == 444) {
        check(zvpiAdd128_JPEG_16s8u_C1R(p.c16[c].data(), 2 * p.cw, p.up[c].data(), p.w, p.chroma));
      } else {
        check(zvpiAdd128_JPEG_16s8u_C1R(p.c16[c].data(), 2 * p.cw, p.c8At(c), p.c8Step, p.chroma));
        if constexpr (Samp == 422)
          check(zvpiSampleUpH2V1_JPEG_8u_C1R(p.c8At(c), p.c8Step, p.chroma, p.up[c].data(), p.w, p.full));
        else
          check(zvpiSampleUpH2V2_JPEG_8u_C1R(p.c8At(c), p.c8Step, p.chroma, p.up[c].data(), p.w, p.full));
      }
    }
    const Zvp8u* planes[3] = {p.y8.data(), p.up[0].data(), p.up[1].data()};
    check(zvpiYCbCrToRGB_JPEG_8u_P3C3R(planes, p.w, p.pixels.data(), 3 * p.w, p.full));
    benchmark::ClobberMemory();
  }
  if (failed) st.SkipWithError("a region call failed");
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * kMcus);
}

// Encoding by regions: interleaved RGB to YCbCr planes, chroma down (422:
// H2V1, 411: H2V2; 444: none), then Sub128 on the three planes.
template <int Samp>
void RegionEncode(benchmark::State& st) {
  zvpSetNumThreads(1);
  Planes p(Samp);
  bool failed = false;
  auto check = [&](ZvpStatus r) { failed |= r != zvpStatusOk; };
  for (auto _ : st) {
    Zvp8u* planes[3] = {p.y8.data(), p.up[0].data(), p.up[1].data()};
    check(zvpiRGBToYCbCr_JPEG_8u_C3P3R(p.pixels.data(), 3 * p.w, planes, p.w, p.full));
    check(zvpiSub128_JPEG_8u16s_C1R(p.y8.data(), p.w, p.y16.data(), 2 * p.w, p.full));
    for (int c = 0; c < 2; ++c) {
      const Zvp8u* chroma = p.up[c].data();
      int step = p.w;
      if constexpr (Samp == 422) {
        check(zvpiSampleDownH2V1_JPEG_8u_C1R(p.up[c].data(), p.w, p.full, p.c8At(c), p.c8Step, p.chroma));
        chroma = p.c8At(c), step = p.c8Step;
      } else if constexpr (Samp == 411) {
        check(zvpiSampleDownH2V2_JPEG_8u_C1R(p.up[c].data(), p.w, p.full, p.c8At(c), p.c8Step, p.chroma));
        chroma = p.c8At(c), step = p.c8Step;
      }
      check(zvpiSub128_JPEG_8u16s_C1R(chroma, step, p.c16[c].data(), 2 * p.cw, p.chroma));
    }
    benchmark::ClobberMemory();
  }
  if (failed) st.SkipWithError("a region call failed");
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * kMcus);
}

BENCHMARK(Decode<444, 0>)->Name("DecodeRGB444/fast");
BENCHMARK(Decode<444, 2>)->Name("DecodeRGB444/scalar");
BENCHMARK(Decode<422, 0>)->Name("DecodeRGB422/fast");
BENCHMARK(Decode<422, 2>)->Name("DecodeRGB422/scalar");
BENCHMARK(Decode<411, 0>)->Name("DecodeRGB411/fast");
BENCHMARK(Decode<411, 2>)->Name("DecodeRGB411/scalar");
BENCHMARK(Encode<444, 0>)->Name("EncodeRGB444/fast");
BENCHMARK(Encode<422, 0>)->Name("EncodeRGB422/fast");
BENCHMARK(Encode<411, 0>)->Name("EncodeRGB411/fast");
BENCHMARK(Encode<411, 2>)->Name("EncodeRGB411/scalar");
BENCHMARK(RegionDecode<444>)->Name("RegionDecodeRGB444");
BENCHMARK(RegionDecode<422>)->Name("RegionDecodeRGB422");
BENCHMARK(RegionDecode<411>)->Name("RegionDecodeRGB411");
BENCHMARK(RegionEncode<444>)->Name("RegionEncodeRGB444");
BENCHMARK(RegionEncode<422>)->Name("RegionEncodeRGB422");
BENCHMARK(RegionEncode<411>)->Name("RegionEncodeRGB411");
BENCHMARK(Memcpy<444>)->Name("MemcpyPixels444");
BENCHMARK(Memcpy<422>)->Name("MemcpyPixels422");
BENCHMARK(Memcpy<411>)->Name("MemcpyPixels411");

}  // namespace

BENCHMARK_MAIN();
