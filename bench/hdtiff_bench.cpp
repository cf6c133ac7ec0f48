// Photo core transform in blocks per second (16x16 members and the generic
// members on a 256x256 region), and PackBits encode and decode in megabytes
// of row data per second on photo-like and flat rows, beside libtiff doing
// the same work (one strip of the same rows, encoded and decoded through an
// in-memory TIFF).
#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "zvpj.h"

namespace {

// ----------------------------------------------------------------------------
// Photo core transform.

std::vector<Zvp32s> coefficients(int w, int h) {
  std::mt19937 g(5);
  std::vector<Zvp32s> v(static_cast<size_t>(w) * h);
  for (auto& x : v) x = static_cast<Zvp32s>(g() % 2048) - 1024;
  return v;
}

void PCTFwd16x16(benchmark::State& st) {
  std::vector<Zvp32s> v = coefficients(16, 16);
  for (auto _ : st) {
    zvpiPCTFwd16x16_HDP_32s_C1IR(v.data(), 64);
    benchmark::ClobberMemory();
  }
  st.counters["blocks/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * 16, benchmark::Counter::kIsRate);
}

void PCTInv16x16(benchmark::State& st) {
  std::vector<Zvp32s> v = coefficients(16, 16);
  for (auto _ : st) {
    zvpiPCTInv16x16_HDP_32s_C1IR(v.data(), 64);
    benchmark::ClobberMemory();
  }
  st.counters["blocks/s"] = benchmark::Counter(static_cast<double>(st.iterations()) * 16, benchmark::Counter::kIsRate);
}

void PCTFwdGeneric(benchmark::State& st) {
  const int n = 256;
  std::vector<Zvp32s> v = coefficients(n, n);
  for (auto _ : st) {
    zvpiPCTFwd_HDP_32s_C1IR(v.data(), 4 * n, {n, n});
    benchmark::ClobberMemory();
  }
  st.counters["blocks/s"] =
      benchmark::Counter(static_cast<double>(st.iterations()) * (n / 4) * (n / 4), benchmark::Counter::kIsRate);
}

void PCTInvGeneric(benchmark::State& st) {
  const int n = 256;
  std::vector<Zvp32s> v = coefficients(n, n);
  for (auto _ : st) {
    zvpiPCTInv_HDP_32s_C1IR(v.data(), 4 * n, {n, n});
    benchmark::ClobberMemory();
  }
  st.counters["blocks/s"] =
      benchmark::Counter(static_cast<double>(st.iterations()) * (n / 4) * (n / 4), benchmark::Counter::kIsRate);
}

BENCHMARK(PCTFwd16x16);
BENCHMARK(PCTInv16x16);
BENCHMARK(PCTFwdGeneric);
BENCHMARK(PCTInvGeneric);

// ----------------------------------------------------------------------------
// PackBits.

constexpr int kWidth = 2048, kRows = 128;

// Photo-like: a slow random walk with a little noise (mostly literals with
// short runs); flat: every row one value (runs of 128).
std::vector<Zvp8u> rows(bool flat) {
  std::mt19937 g(7);
  std::vector<Zvp8u> v(static_cast<size_t>(kWidth) * kRows);
  for (int y = 0; y < kRows; ++y) {
    int level = 128;
    for (int x = 0; x < kWidth; ++x) {
      if (flat) {
        v[static_cast<size_t>(y) * kWidth + x] = static_cast<Zvp8u>(y);
      } else {
        level = std::clamp(level + static_cast<int>(g() % 5) - 2, 0, 255);
        v[static_cast<size_t>(y) * kWidth + x] = static_cast<Zvp8u>(level);
      }
    }
  }
  return v;
}

std::vector<Zvp8u> ourStrip(const std::vector<Zvp8u>& img) {
  std::vector<Zvp8u> out(img.size() * 2);
  int pos = 0;
  for (int y = 0; y < kRows; ++y)
    zvpiPackBitsRow_TIFF_8u_C1(img.data() + static_cast<size_t>(y) * kWidth, kWidth, out.data(), &pos,
                               static_cast<int>(out.size()) - pos);
  out.resize(static_cast<size_t>(pos));
  out.push_back(0);
  return out;
}

void PackBitsEncode(benchmark::State& st) {
  const std::vector<Zvp8u> img = rows(st.range(0) != 0);
  std::vector<Zvp8u> out(img.size() * 2);
  for (auto _ : st) {
    int pos = 0;
    for (int y = 0; y < kRows; ++y)
      zvpiPackBitsRow_TIFF_8u_C1(img.data() + static_cast<size_t>(y) * kWidth, kWidth, out.data(), &pos,
                                 static_cast<int>(out.size()) - pos);
    benchmark::DoNotOptimize(pos);
    benchmark::ClobberMemory();
  }
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(img.size()));
  st.SetLabel(st.range(0) ? "flat" : "photo");
}

void PackBitsDecode(benchmark::State& st) {
  const std::vector<Zvp8u> img = rows(st.range(0) != 0);
  const std::vector<Zvp8u> enc = ourStrip(img);
  std::vector<Zvp8u> out(img.size());
  for (auto _ : st) {
    int pos = 0;
    for (int y = 0; y < kRows; ++y)
      zvpiUnpackBitsRow_TIFF_8u_C1(enc.data(), &pos, static_cast<int>(enc.size()) - 1,
                                   out.data() + static_cast<size_t>(y) * kWidth, kWidth);
    benchmark::ClobberMemory();
  }
  if (out != img) st.SkipWithError("decoded rows differ");
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(img.size()));
  st.SetLabel(st.range(0) ? "flat" : "photo");
}

// An in-memory TIFF file for libtiff.
struct MemFile {
  std::vector<char> data;
  toff_t pos = 0;
};
tsize_t memRead(thandle_t h, tdata_t buf, tsize_t n) {
  auto* f = static_cast<MemFile*>(h);
  const tsize_t avail = static_cast<tsize_t>(f->data.size()) - static_cast<tsize_t>(f->pos);
  const tsize_t k = std::max<tsize_t>(0, std::min(n, avail));
  std::memcpy(buf, f->data.data() + f->pos, static_cast<size_t>(k));
  f->pos += static_cast<toff_t>(k);
  return k;
}
tsize_t memWrite(thandle_t h, tdata_t buf, tsize_t n) {
  auto* f = static_cast<MemFile*>(h);
  if (f->pos + static_cast<toff_t>(n) > f->data.size()) f->data.resize(f->pos + static_cast<toff_t>(n));
  std::memcpy(f->data.data() + f->pos, buf, static_cast<size_t>(n));
  f->pos += static_cast<toff_t>(n);
  return n;
}
toff_t memSeek(thandle_t h, toff_t off, int whence) {
  auto* f = static_cast<MemFile*>(h);
  if (whence == SEEK_SET) f->pos = off;
  else if (whence == SEEK_CUR) f->pos += off;
  else f->pos = f->data.size() + off;
  return f->pos;
}
int memClose(thandle_t) { return 0; }
toff_t memSize(thandle_t h) { return static_cast<MemFile*>(h)->data.size(); }
int memMap(thandle_t, tdata_t*, toff_t*) { return 0; }
void memUnmap(thandle_t, tdata_t, toff_t) {}

TIFF* openMem(MemFile& f, const char* mode) {
  f.pos = 0;
  return TIFFClientOpen("mem", mode, &f, memRead, memWrite, memSeek, memClose, memSize, memMap, memUnmap);
}

void setTags(TIFF* t) {
  TIFFSetField(t, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(kWidth));
  TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(kRows));
  TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
  TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(kRows));
}

void LibtiffPackBitsEncode(benchmark::State& st) {
  std::vector<Zvp8u> img = rows(st.range(0) != 0);
  MemFile f;
  TIFF* t = openMem(f, "w");
  setTags(t);
  for (auto _ : st) {
    // The same strip rewritten in place: same data, same size.
    TIFFWriteEncodedStrip(t, 0, img.data(), static_cast<tmsize_t>(img.size()));
    benchmark::ClobberMemory();
  }
  TIFFClose(t);
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(img.size()));
  st.SetLabel(st.range(0) ? "flat" : "photo");
}

void LibtiffPackBitsDecode(benchmark::State& st) {
  std::vector<Zvp8u> img = rows(st.range(0) != 0);
  MemFile f;
  TIFF* t = openMem(f, "w");
  setTags(t);
  TIFFWriteEncodedStrip(t, 0, img.data(), static_cast<tmsize_t>(img.size()));
  TIFFClose(t);
  t = openMem(f, "r");
  std::vector<Zvp8u> out(img.size());
  for (auto _ : st) {
    TIFFReadEncodedStrip(t, 0, out.data(), static_cast<tmsize_t>(out.size()));
    benchmark::ClobberMemory();
  }
  TIFFClose(t);
  if (out != img) st.SkipWithError("libtiff strip differs");
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(img.size()));
  st.SetLabel(st.range(0) ? "flat" : "photo");
}

BENCHMARK(PackBitsEncode)->Arg(0)->Arg(1);
BENCHMARK(LibtiffPackBitsEncode)->Arg(0)->Arg(1);
BENCHMARK(PackBitsDecode)->Arg(0)->Arg(1);
BENCHMARK(LibtiffPackBitsDecode)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
