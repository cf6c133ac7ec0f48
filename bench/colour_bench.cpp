// Colour conversion and chroma sampling on a 3840x2160 image at 1 and 2
// threads, in megapixels per second (items = pixels of the 3840x2160 image:
// the source of a down-sampler, the output of an up-sampler). Beside them in
// the same run: a plain memcpy of the member's source bytes, and libyuv
// doing the nearest equivalent work (full-range JPEG YCbCr 4:4:4 / 4:2:0 to
// RGB and back, 2x box down-sampling, 2x bilinear up-sampling; libyuv runs
// on one thread). Rates are taken over wall-clock time.
#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <vector>

#include "zvpj.h"
#if defined(ZVP_HAVE_LIBYUV)
#include <libyuv.h>
#endif

namespace {

constexpr int W = 3840, H = 2160;
constexpr size_t N = static_cast<size_t>(W) * H;

struct Images {
  std::vector<Zvp8u> p[4], q[4], inter, out;
  std::vector<Zvp16u> packed;
  Images() {
    for (int i = 0; i < 4; ++i) {
      p[i].resize(N + 2 * W + 64), q[i].resize(N + 2 * W + 64);
      for (size_t k = 0; k < p[i].size(); ++k) p[i][k] = static_cast<Zvp8u>(k * (7 + 2 * i) + (k >> 9));
    }
    inter.resize(4 * N);
    for (size_t k = 0; k < inter.size(); ++k) inter[k] = static_cast<Zvp8u>(k * 13 + (k >> 11));
    out.resize(4 * N);
    packed.resize(N);
    for (size_t k = 0; k < N; ++k) packed[k] = static_cast<Zvp16u>(k * 2654435761u >> 7);
  }
};
Images& img() {
  static Images i;
  return i;
}

using Fn = std::function<void(Images&)>;

void run(benchmark::State& st, const Fn& f, size_t srcBytes) {
  zvpSetNumThreads(static_cast<int>(st.range(0)));
  Images& m = img();
  for (auto _ : st) {
    f(m);
    benchmark::ClobberMemory();
  }
  st.SetItemsProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(N));
  st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(srcBytes));
}

#define SRC3 const Zvp8u* s[3] = {m.p[0].data(), m.p[1].data(), m.p[2].data()}
#define SRC4 const Zvp8u* s[4] = {m.p[0].data(), m.p[1].data(), m.p[2].data(), m.p[3].data()}
#define DST3 Zvp8u* const d[3] = {m.q[0].data(), m.q[1].data(), m.q[2].data()}
#define DST4 Zvp8u* const d[4] = {m.q[0].data(), m.q[1].data(), m.q[2].data(), m.q[3].data()}
#define MEMBER(name, bytes, body) \
  benchmark::RegisterBenchmark(name, [](benchmark::State& st) { run(st, [](Images& m) { body; }, bytes); })->Arg(1)->Arg(2)->UseRealTime()

void registerAll() {
  const ZvpiSize roi{W, H};
  (void)roi;
  // Memory bound: memcpy of 1, 2, 3 and 4 bytes per pixel.
  for (int bpp = 1; bpp <= 4; ++bpp)
    benchmark::RegisterBenchmark(("memcpy_" + std::to_string(bpp) + "B_per_px").c_str(),
                                 [bpp](benchmark::State& st) {
                                   run(st, [bpp](Images& m) { std::memcpy(m.out.data(), m.inter.data(), bpp * N); },
                                       bpp * N);
                                 })
        ->Arg(1)
        ->UseRealTime();

  MEMBER("YCbCrToRGB_P3R", 3 * N, SRC3; DST3; zvpiYCbCrToRGB_JPEG_8u_P3R(s, W, d, W, {W, H}));
  MEMBER("YCbCrToRGB_P3C3R", 3 * N, SRC3; zvpiYCbCrToRGB_JPEG_8u_P3C3R(s, W, m.out.data(), 3 * W, {W, H}));
  MEMBER("YCbCrToBGR_P3C3R", 3 * N, SRC3; zvpiYCbCrToBGR_JPEG_8u_P3C3R(s, W, m.out.data(), 3 * W, {W, H}));
  MEMBER("YCbCrToRGB555", 3 * N, SRC3; zvpiYCbCrToRGB555_JPEG_8u16u_P3C3R(s, W, reinterpret_cast<Zvp16u*>(m.out.data()), 2 * W, {W, H}));
  MEMBER("YCbCrToBGR555", 3 * N, SRC3; zvpiYCbCrToBGR555_JPEG_8u16u_P3C3R(s, W, reinterpret_cast<Zvp16u*>(m.out.data()), 2 * W, {W, H}));
  MEMBER("YCbCrToRGB565", 3 * N, SRC3; zvpiYCbCrToRGB565_JPEG_8u16u_P3C3R(s, W, reinterpret_cast<Zvp16u*>(m.out.data()), 2 * W, {W, H}));
  MEMBER("YCbCrToBGR565", 3 * N, SRC3; zvpiYCbCrToBGR565_JPEG_8u16u_P3C3R(s, W, reinterpret_cast<Zvp16u*>(m.out.data()), 2 * W, {W, H}));
  MEMBER("YCCKToCMYK_P4R", 4 * N, SRC4; DST4; zvpiYCCKToCMYK_JPEG_8u_P4R(s, W, d, W, {W, H}));
  MEMBER("YCCKToCMYK_P4C4R", 4 * N, SRC4; zvpiYCCKToCMYK_JPEG_8u_P4C4R(s, W, m.out.data(), 4 * W, {W, H}));
  MEMBER("YCbCr422ToRGB_C2C3R", 2 * N, zvpiYCbCr422ToRGB_JPEG_8u_C2C3R(m.inter.data(), 2 * W, m.out.data(), 3 * W, {W, H}));
  MEMBER("RGBToY_P3C1R", 3 * N, SRC3; zvpiRGBToY_JPEG_8u_P3C1R(s, W, m.q[0].data(), W, {W, H}));
  MEMBER("RGBToY_C3C1R", 3 * N, zvpiRGBToY_JPEG_8u_C3C1R(m.inter.data(), 3 * W, m.q[0].data(), W, {W, H}));
  MEMBER("BGRToY_C3C1R", 3 * N, zvpiBGRToY_JPEG_8u_C3C1R(m.inter.data(), 3 * W, m.q[0].data(), W, {W, H}));
  MEMBER("RGBToYCbCr_P3R", 3 * N, SRC3; DST3; zvpiRGBToYCbCr_JPEG_8u_P3R(s, W, d, W, {W, H}));
  MEMBER("RGBToYCbCr_C3P3R", 3 * N, DST3; zvpiRGBToYCbCr_JPEG_8u_C3P3R(m.inter.data(), 3 * W, d, W, {W, H}));
  MEMBER("BGRToYCbCr_C3P3R", 3 * N, DST3; zvpiBGRToYCbCr_JPEG_8u_C3P3R(m.inter.data(), 3 * W, d, W, {W, H}));
  MEMBER("CMYKToYCCK_P4R", 4 * N, SRC4; DST4; zvpiCMYKToYCCK_JPEG_8u_P4R(s, W, d, W, {W, H}));
  MEMBER("CMYKToYCCK_C4P4R", 4 * N, DST4; zvpiCMYKToYCCK_JPEG_8u_C4P4R(m.inter.data(), 4 * W, d, W, {W, H}));
  MEMBER("RGB555ToYCbCr", 2 * N, DST3; zvpiRGB555ToYCbCr_JPEG_16u8u_C3P3R(m.packed.data(), 2 * W, d, W, {W, H}));
  MEMBER("BGR555ToYCbCr", 2 * N, DST3; zvpiBGR555ToYCbCr_JPEG_16u8u_C3P3R(m.packed.data(), 2 * W, d, W, {W, H}));
  MEMBER("RGB565ToYCbCr", 2 * N, DST3; zvpiRGB565ToYCbCr_JPEG_16u8u_C3P3R(m.packed.data(), 2 * W, d, W, {W, H}));
  MEMBER("BGR565ToYCbCr", 2 * N, DST3; zvpiBGR565ToYCbCr_JPEG_16u8u_C3P3R(m.packed.data(), 2 * W, d, W, {W, H}));

  // Chroma sampling (the 3840x2160 plane is the down source / up output).
  MEMBER("SampleDownH2V1_C1R", N, zvpiSampleDownH2V1_JPEG_8u_C1R(m.p[0].data(), W, {W, H}, m.q[0].data(), W / 2, {W / 2, H}));
  MEMBER("SampleDownH2V2_C1R", N, zvpiSampleDownH2V2_JPEG_8u_C1R(m.p[0].data(), W, {W, H}, m.q[0].data(), W / 2, {W / 2, H / 2}));
  MEMBER("SampleUpH2V1_C1R", N / 2, zvpiSampleUpH2V1_JPEG_8u_C1R(m.p[0].data() + 1, W / 2, {W / 2, H}, m.q[0].data(), W, {W, H}));
  MEMBER("SampleUpH2V2_C1R", N / 4, zvpiSampleUpH2V2_JPEG_8u_C1R(m.p[0].data() + W / 2 + 1, W / 2, {W / 2, H / 2}, m.q[0].data(), W, {W, H}));
  MEMBER("SampleDownRowH2V1_Box", N, for (int y = 0; y < H; ++y) zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(m.p[0].data() + size_t(y) * W, W, m.q[0].data() + size_t(y) * W / 2));
  MEMBER("SampleDownRowH2V2_Box", N, for (int y = 0; y < H / 2; ++y) zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(m.p[0].data() + size_t(2 * y) * W, m.p[0].data() + size_t(2 * y + 1) * W, W, m.q[0].data() + size_t(y) * W / 2));
  MEMBER("SampleUpRowH2V1_Triangle", N / 2, for (int y = 0; y < H; ++y) zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(m.p[0].data() + size_t(y) * W / 2, W / 2, m.q[0].data() + size_t(y) * W));
  MEMBER("SampleUpRowH2V2_Triangle", N / 4, for (int y = 0; y < H; ++y) zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(m.p[0].data() + size_t(y / 2) * W / 2, m.p[0].data() + size_t(y / 2 + 1) * W / 2, W / 2, m.q[0].data() + size_t(y) * W));

#if defined(ZVP_HAVE_LIBYUV)
  MEMBER("libyuv_I444ToRGB24_JPEG", 3 * N, libyuv::I444ToRGB24Matrix(m.p[0].data(), W, m.p[1].data(), W, m.p[2].data(), W, m.out.data(), 3 * W, &libyuv::kYuvJPEGConstants, W, H));
  MEMBER("libyuv_J420ToRGB24", N * 3 / 2, libyuv::J420ToRGB24(m.p[0].data(), W, m.p[1].data(), W / 2, m.p[2].data(), W / 2, m.out.data(), 3 * W, W, H));
  MEMBER("libyuv_RGB24ToJ420", 3 * N, libyuv::RGB24ToJ420(m.inter.data(), 3 * W, m.q[0].data(), W, m.q[1].data(), W / 2, m.q[2].data(), W / 2, W, H));
  MEMBER("libyuv_RGB24ToJ400", 3 * N, libyuv::RGB24ToJ400(m.inter.data(), 3 * W, m.q[0].data(), W, W, H));
  MEMBER("libyuv_ScalePlane_Box_2xDown", N, libyuv::ScalePlane(m.p[0].data(), W, W, H, m.q[0].data(), W / 2, W / 2, H / 2, libyuv::kFilterBox));
  MEMBER("libyuv_ScalePlane_Box_2xDown_H", N, libyuv::ScalePlane(m.p[0].data(), W, W, H, m.q[0].data(), W / 2, W / 2, H, libyuv::kFilterBox));
  MEMBER("libyuv_ScalePlane_Bilinear_2xUp", N / 4, libyuv::ScalePlane(m.p[0].data(), W / 2, W / 2, H / 2, m.q[0].data(), W, W, H, libyuv::kFilterBilinear));
#endif
}

}  // namespace

int main(int argc, char** argv) {
  registerAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
