// Entropy decoding and encoding of whole scans of a 3840x2160 4:2:0 image,
// quality 75 and 95: the library's sequential Huffman coders beside
// libjpeg-turbo doing the same work (jpeg_read_coefficients to decode,
// jpeg_write_coefficients to encode). Counters: MB/s of entropy-coded data
// and blocks/s.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "jpegio/jpegio.h"
#include "jpegio/ljt.h"
#include "jpegio/scan.h"

namespace {

constexpr int kW = 3840, kH = 2160;

struct Fixture {
  std::vector<uint8_t> file;
  jpegio::Image img;
  scan::DecTables tables;
  scan::Blocks blocks;
  double blockCount = 0;
};

Fixture& fixture(int quality) {
  static std::map<int, std::unique_ptr<Fixture>> cache;
  auto& f = cache[quality];
  if (!f) {
    f = std::make_unique<Fixture>();
    ljt::Options o;
    o.quality = quality;
    o.lumaH = o.lumaV = 2;
    f->file = ljt::compress(ljt::makeImage(kW, kH, 3, 1234u), kW, kH, o);
    jpegio::read(f->file, f->img);
    scan::buildDecTables(f->img, f->tables);
    f->blocks = scan::allocate(f->img);
    scan::decode(f->img, f->tables, f->blocks);
    for (size_t c = 0; c < f->blocks.data.size(); ++c) f->blockCount += f->blocks.wib[c] * f->blocks.hib[c];
  }
  return *f;
}

void counters(benchmark::State& state, const Fixture& f) {
  double bytes = static_cast<double>(f.img.entropy.size());
  state.counters["MB/s"] = benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["blocks/s"] = benchmark::Counter(f.blockCount, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["entropyMB"] = bytes / 1e6;
}

void BM_Decode_zvp(benchmark::State& state) {
  Fixture& f = fixture(static_cast<int>(state.range(0)));
  scan::Blocks out = scan::allocate(f.img);
  for (auto _ : state) {
    int st = scan::decode(f.img, f.tables, out);
    benchmark::DoNotOptimize(st);
    if (st) state.SkipWithError("decode failed");
  }
  counters(state, f);
}

void BM_Decode_libjpeg(benchmark::State& state) {
  Fixture& f = fixture(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    jpeg_decompress_struct ci;
    jpeg_error_mgr err;
    ci.err = jpeg_std_error(&err);
    jpeg_create_decompress(&ci);
    jpeg_mem_src(&ci, f.file.data(), static_cast<unsigned long>(f.file.size()));
    jpeg_read_header(&ci, TRUE);
    jvirt_barray_ptr* arr = jpeg_read_coefficients(&ci);
    benchmark::DoNotOptimize(arr);
    jpeg_finish_decompress(&ci);
    jpeg_destroy_decompress(&ci);
  }
  counters(state, f);
}

void BM_Encode_zvp(benchmark::State& state) {
  Fixture& f = fixture(static_cast<int>(state.range(0)));
  jpegio::Image img = f.img;
  std::vector<uint8_t> buf(f.img.entropy.size() * 2 + (1 << 20));
  for (auto _ : state) {
    int st = scan::encode(img, f.blocks, buf);
    benchmark::DoNotOptimize(st);
    if (st) state.SkipWithError("encode failed");
  }
  counters(state, f);
}

void BM_Encode_libjpeg(benchmark::State& state) {
  Fixture& f = fixture(static_cast<int>(state.range(0)));
  jpeg_decompress_struct di;
  jpeg_error_mgr err;
  di.err = jpeg_std_error(&err);
  jpeg_create_decompress(&di);
  jpeg_mem_src(&di, f.file.data(), static_cast<unsigned long>(f.file.size()));
  jpeg_read_header(&di, TRUE);
  jvirt_barray_ptr* arr = jpeg_read_coefficients(&di);
  for (auto _ : state) {
    jpeg_compress_struct ci;
    jpeg_error_mgr cerr;
    ci.err = jpeg_std_error(&cerr);
    jpeg_create_compress(&ci);
    unsigned char* mem = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&ci, &mem, &size);
    jpeg_copy_critical_parameters(&di, &ci);
    jpeg_write_coefficients(&ci, arr);
    jpeg_finish_compress(&ci);
    jpeg_destroy_compress(&ci);
    benchmark::DoNotOptimize(size);
    free(mem);
  }
  jpeg_finish_decompress(&di);
  jpeg_destroy_decompress(&di);
  counters(state, f);
}

BENCHMARK(BM_Decode_zvp)->Arg(75)->Arg(95)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Decode_libjpeg)->Arg(75)->Arg(95)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Encode_zvp)->Arg(75)->Arg(95)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Encode_libjpeg)->Arg(75)->Arg(95)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
