// MCU functions: MCUs per second for the RGB decoders and encoders at 444,
// 422 and 411, over a strip of 240 MCUs side by side (a 1920- or 3840-pixel
// wide band), beside a plain memcpy of the same pixel bytes per MCU. The
// decoders run with 16-byte aligned blocks (fast body) and with blocks 2
// bytes off (scalar body).
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
BENCHMARK(Memcpy<444>)->Name("MemcpyPixels444");
BENCHMARK(Memcpy<422>)->Name("MemcpyPixels422");
BENCHMARK(Memcpy<411>)->Name("MemcpyPixels411");

}  // namespace

BENCHMARK_MAIN();
