// Level shift on full-HD and 4K planes at 1 and 2 threads, beside a plain
// memcpy of the 16-bit plane (the memory-bandwidth bound). Bytes per second
// count every byte read and written.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "zvpj.h"

namespace {

struct Plane {
  int w, h;
  std::vector<Zvp8u> p8;
  std::vector<Zvp16s> p16;
  Plane(int w_, int h_) : w(w_), h(h_), p8(static_cast<size_t>(w_) * h_), p16(p8.size()) {
    for (size_t i = 0; i < p8.size(); ++i) {
      p8[i] = static_cast<Zvp8u>(i * 7);
      p16[i] = static_cast<Zvp16s>((i * 13) % 700) - 350;
    }
  }
};

Plane& plane(int w, int /*h*/) {
  static Plane fhd(1920, 1080), uhd(3840, 2160);
  return w == 1920 ? fhd : uhd;
}

void Sub128(benchmark::State& st) {
  Plane& p = plane(static_cast<int>(st.range(0)), static_cast<int>(st.range(1)));
  zvpSetNumThreads(static_cast<int>(st.range(2)));
  for (auto _ : st) {
    zvpiSub128_JPEG_8u16s_C1R(p.p8.data(), p.w, p.p16.data(), 2 * p.w, {p.w, p.h});
    benchmark::ClobberMemory();
  }
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * p.w * p.h * 3);
}

void Add128(benchmark::State& st) {
  Plane& p = plane(static_cast<int>(st.range(0)), static_cast<int>(st.range(1)));
  zvpSetNumThreads(static_cast<int>(st.range(2)));
  for (auto _ : st) {
    zvpiAdd128_JPEG_16s8u_C1R(p.p16.data(), 2 * p.w, p.p8.data(), p.w, {p.w, p.h});
    benchmark::ClobberMemory();
  }
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * p.w * p.h * 3);
}

void Memcpy16(benchmark::State& st) {
  Plane& p = plane(static_cast<int>(st.range(0)), static_cast<int>(st.range(1)));
  std::vector<Zvp16s> out(p.p16.size());
  for (auto _ : st) {
    std::memcpy(out.data(), p.p16.data(), out.size() * 2);
    benchmark::ClobberMemory();
  }
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * p.w * p.h * 4);
}

void sizes(benchmark::internal::Benchmark* b) {
  for (int threads : {1, 2}) {
    b->Args({1920, 1080, threads});
    b->Args({3840, 2160, threads});
  }
  b->ArgNames({"w", "h", "threads"})->UseRealTime();
}

BENCHMARK(Sub128)->Apply(sizes);
BENCHMARK(Add128)->Apply(sizes);
BENCHMARK(Memcpy16)->Args({1920, 1080, 1})->Args({3840, 2160, 1})->ArgNames({"w", "h", "threads"})->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
