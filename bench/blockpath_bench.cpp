// Block DCT members at one thread: time and TSC cycles per 8x8 block over a
// batch of 1024 blocks (a 256x256 plane of 8-bit samples, its quantised
// coefficients), beside the cost of only reading and writing the same bytes.
#include <benchmark/benchmark.h>
#include <x86intrin.h>

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "zvpj.h"

namespace {

constexpr int kW = 256, kH = 256, kBlocks = (kW / 8) * (kH / 8);

struct Data {
  std::vector<Zvp8u> plane = std::vector<Zvp8u>(kW * kH), out = std::vector<Zvp8u>(kW * kH);
  std::vector<Zvp16u> plane12 = std::vector<Zvp16u>(kW * kH), out12 = std::vector<Zvp16u>(kW * kH);
  std::vector<Zvp16s> coef = std::vector<Zvp16s>(64 * kBlocks), tmp = std::vector<Zvp16s>(64 * kBlocks);
  std::array<Zvp16u, 64> fwdTable{}, invTable{};
  std::array<Zvp32f, 64> fwdTableF{}, invTableF{};
  Data() {
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        const double v = 128 + 60 * std::sin(x * 0.05) * std::cos(y * 0.07) + ((x * 7 + y * 13) % 17) - 8;
        plane[y * kW + x] = static_cast<Zvp8u>(v);
        plane12[y * kW + x] = static_cast<Zvp16u>(v * 16);
      }
    Zvp8u raw[64];
    for (int i = 0; i < 64; ++i) raw[i] = static_cast<Zvp8u>(8 + i);
    zvpiQuantFwdTableInit_JPEG_8u16u(raw, fwdTable.data());
    zvpiQuantInvTableInit_JPEG_8u16u(raw, invTable.data());
    for (int i = 0; i < 64; ++i) {
      fwdTableF[i] = 1.0f / static_cast<float>(invTable[i] * 16);
      invTableF[i] = static_cast<float>(invTable[i] * 16);
    }
    for (int b = 0; b < kBlocks; ++b)
      zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(blockPtr(plane.data(), b), kW, &coef[64 * b], fwdTable.data());
  }
  template <class T>
  static T* blockPtr(T* p, int b) { return p + (b / (kW / 8)) * 8 * kW + (b % (kW / 8)) * 8; }
};

Data& data() {
  static Data d;
  return d;
}

template <class Fn>
void run(benchmark::State& st, Fn fn) {
  zvpSetNumThreads(1);
  uint64_t cycles = 0;
  for (auto _ : st) {
    const uint64_t t0 = __rdtsc();
    for (int b = 0; b < kBlocks; ++b) fn(b);
    cycles += __rdtsc() - t0;
    benchmark::ClobberMemory();
  }
  const double blocks = static_cast<double>(st.iterations()) * kBlocks;
  st.counters["ns/block"] = benchmark::Counter(blocks, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  st.counters["cycles/block"] = static_cast<double>(cycles) / blocks;
}

// ---- the cost of the bytes alone ------------------------------------------------
void CopyOnly_8u_to_16s(benchmark::State& st) {  // 8 rows of 8 bytes in, 128 bytes out
  Data& d = data();
  run(st, [&](int b) {
    const Zvp8u* s = Data::blockPtr(d.plane.data(), b);
    Zvp8u* o = reinterpret_cast<Zvp8u*>(&d.tmp[64 * b]);
    for (int y = 0; y < 8; ++y) {
      uint64_t w;
      std::memcpy(&w, s + y * kW, 8);
      std::memcpy(o + 16 * y, &w, 8);
      std::memcpy(o + 16 * y + 8, &w, 8);
    }
  });
}
void CopyOnly_16s_to_8u(benchmark::State& st) {  // 128 bytes in, 8 rows of 8 bytes out
  Data& d = data();
  run(st, [&](int b) {
    const Zvp8u* s = reinterpret_cast<const Zvp8u*>(&d.coef[64 * b]);
    Zvp8u* o = Data::blockPtr(d.out.data(), b);
    for (int y = 0; y < 8; ++y) {
      uint64_t w, v;
      std::memcpy(&w, s + 16 * y, 8);
      std::memcpy(&v, s + 16 * y + 8, 8);
      w ^= v;
      std::memcpy(o + y * kW, &w, 8);
    }
  });
}
void CopyOnly_16s_to_16s(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) { std::memcpy(&d.tmp[64 * b], &d.coef[64 * b], 128); });
}

// ---- forward --------------------------------------------------------------------
void Fwd_LS_8u16s(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) {
    zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(Data::blockPtr(d.plane.data(), b), kW, &d.tmp[64 * b], d.fwdTable.data());
  });
}
void Fwd_16s(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) { zvpiDCTQuantFwd8x8_JPEG_16s_C1(&d.coef[64 * b], &d.tmp[64 * b], d.fwdTable.data()); });
}
void Fwd_16s_I(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) { zvpiDCTQuantFwd8x8_JPEG_16s_C1I(&d.tmp[64 * b], d.fwdTable.data()); });
}
void Fwd_LS_16u16s_float(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) {
    zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(Data::blockPtr(d.plane12.data(), b), 2 * kW, &d.tmp[64 * b],
                                         d.fwdTableF.data());
  });
}

// ---- inverse --------------------------------------------------------------------
#define INV_LS(name, fn)                                                                                    \
  void name(benchmark::State& st) {                                                                         \
    Data& d = data();                                                                                       \
    run(st, [&](int b) { fn(&d.coef[64 * b], Data::blockPtr(d.out.data(), b), kW, d.invTable.data()); }); \
  }
INV_LS(Inv_LS_16s8u, zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R)
INV_LS(Inv_LS_1x1, zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R)
INV_LS(Inv_LS_2x2, zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R)
INV_LS(Inv_LS_4x4, zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R)
INV_LS(Inv_To2x2, zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R)
INV_LS(Inv_To4x4, zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R)

void Inv_16s(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) { zvpiDCTQuantInv8x8_JPEG_16s_C1(&d.coef[64 * b], &d.tmp[64 * b], d.invTable.data()); });
}
void Inv_16s_I(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) {
    std::memcpy(&d.tmp[64 * b], &d.coef[64 * b], 128);
    zvpiDCTQuantInv8x8_JPEG_16s_C1I(&d.tmp[64 * b], d.invTable.data());
  });
}
void Inv_LSClip_16s8u(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) {
    zvpiDCT8x8InvLSClip_16s8u_C1R(&d.coef[64 * b], Data::blockPtr(d.out.data(), b), kW, 128, 16, 235);
  });
}
void Inv_LS_16s16u_float(benchmark::State& st) {
  Data& d = data();
  run(st, [&](int b) {
    zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(&d.coef[64 * b], Data::blockPtr(d.out12.data(), b), 2 * kW,
                                         d.invTableF.data());
  });
}

}  // namespace

BENCHMARK(CopyOnly_8u_to_16s);
BENCHMARK(CopyOnly_16s_to_8u);
BENCHMARK(CopyOnly_16s_to_16s);
BENCHMARK(Fwd_LS_8u16s);
BENCHMARK(Fwd_16s);
BENCHMARK(Fwd_16s_I);
BENCHMARK(Fwd_LS_16u16s_float);
BENCHMARK(Inv_LS_16s8u);
BENCHMARK(Inv_16s);
BENCHMARK(Inv_16s_I);
BENCHMARK(Inv_LSClip_16s8u);
BENCHMARK(Inv_LS_1x1);
BENCHMARK(Inv_LS_2x2);
BENCHMARK(Inv_LS_4x4);
BENCHMARK(Inv_To2x2);
BENCHMARK(Inv_To4x4);
BENCHMARK(Inv_LS_16s16u_float);

BENCHMARK_MAIN();
