// zvp demo: prints the version record, then runs a generated image through
// a few of the library's families and prints what each did.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "zvpj.h"

namespace {

using Clock = std::chrono::steady_clock;
double us(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double, std::micro>(b - a).count(); }

double psnr(const std::vector<Zvp8u>& a, const std::vector<Zvp8u>& b, size_t stride = 1, size_t channels = 1) {
  double se = 0;
  size_t n = 0;
  for (size_t i = 0; i < a.size(); i += stride)
    for (size_t c = 0; c < channels; ++c, ++n) {
      const double d = double(a[i + c]) - double(b[i + c]);
      se += d * d;
    }
  return se == 0 ? INFINITY : 10 * std::log10(255.0 * 255.0 * n / se);
}

bool check(ZvpStatus st, const char* what) {
  if (st != zvpStatusOk) std::printf("%s failed with status %d\n", what, st);
  return st == zvpStatusOk;
}

}  // namespace

int main() {
  const ZvpLibraryVersion* v = zvpjGetLibVersion();
  std::printf("%s  version %s  (%d.%d, build %d.%d, target %s, %s)\n", v->name, v->version, v->major, v->minor,
              v->majorBuild, v->build, v->targetCpu, v->buildDate);
  std::printf("threads available to a call: %d\n\n", zvpGetNumThreads());

  // A 1920x1088 RGB image: gradients, fine texture and a few hard edges.
  const int w = 1920, h = 1088;
  const ZvpiSize roi = {w, h};
  std::vector<Zvp8u> rgb(size_t(w) * h * 3);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      Zvp8u* p = &rgb[(size_t(y) * w + x) * 3];
      const bool box = (x / 240 + y / 136) % 2 == 0;
      p[0] = Zvp8u((x * 255) / (w - 1));
      const int g = (y * 255) / (h - 1) + (x * 37 + y * 91) % 31 - 15;  // with some fine texture
      p[1] = Zvp8u(g < 0 ? 0 : g > 255 ? 255 : g);
      p[2] = Zvp8u(box ? 200 : 40);
    }

  // Level shift into signed samples and back.
  std::vector<Zvp8u> grey(size_t(w) * h), back(grey.size());
  for (size_t i = 0; i < grey.size(); ++i) grey[i] = rgb[3 * i + 1];
  std::vector<Zvp16s> shifted(grey.size());
  auto t0 = Clock::now();
  if (!check(zvpiSub128_JPEG_8u16s_C1R(grey.data(), w, shifted.data(), 2 * w, roi), "Sub128")) return 1;
  if (!check(zvpiAdd128_JPEG_16s8u_C1R(shifted.data(), 2 * w, back.data(), w, roi), "Add128")) return 1;
  auto t1 = Clock::now();
  std::printf("level shift  %dx%d plane to -128..127 and back: %s (%.0f us)\n", w, h,
              grey == back ? "same bytes" : "DIFFERENT", us(t0, t1));

  // Colour conversion: RGB to Y, Cb, Cr planes and back.
  std::vector<Zvp8u> Y(size_t(w) * h), Cb(Y.size()), Cr(Y.size()), rgb2(rgb.size());
  Zvp8u* const planes[3] = {Y.data(), Cb.data(), Cr.data()};
  const Zvp8u* const cplanes[3] = {Y.data(), Cb.data(), Cr.data()};
  t0 = Clock::now();
  if (!check(zvpiRGBToYCbCr_JPEG_8u_C3P3R(rgb.data(), 3 * w, planes, w, roi), "RGBToYCbCr")) return 1;
  if (!check(zvpiYCbCrToRGB_JPEG_8u_P3C3R(cplanes, w, rgb2.data(), 3 * w, roi), "YCbCrToRGB")) return 1;
  t1 = Clock::now();
  std::printf("colour       RGB -> YCbCr -> RGB: PSNR %.1f dB (%.0f us)\n", psnr(rgb, rgb2), us(t0, t1));

  // Block DCT with quantisation at quality 75 of a flat base table, and back.
  Zvp8u raw[64];
  for (Zvp8u& q : raw) q = 16;
  Zvp16u fwd[64], inv[64];
  if (!check(zvpiQuantFwdRawTableInit_JPEG_8u(raw, 75), "QuantFwdRawTableInit") ||
      !check(zvpiQuantFwdTableInit_JPEG_8u16u(raw, fwd), "QuantFwdTableInit") ||
      !check(zvpiQuantInvTableInit_JPEG_8u16u(raw, inv), "QuantInvTableInit"))
    return 1;
  std::vector<Zvp8u> Y2(Y.size());
  alignas(16) Zvp16s coef[64];
  long nonzero = 0;
  t0 = Clock::now();
  for (int by = 0; by < h; by += 8)
    for (int bx = 0; bx < w; bx += 8) {
      const size_t at = size_t(by) * w + bx;
      zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&Y[at], w, coef, fwd);
      for (Zvp16s c : coef) nonzero += c != 0;
      zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(coef, &Y2[at], w, inv);
    }
  t1 = Clock::now();
  std::printf("block DCT    %d blocks of Y, quantised by %d: %.1f nonzero coefficients a block, PSNR %.1f dB (%.0f us)\n",
              (w / 8) * (h / 8), raw[0], double(nonzero) / ((w / 8) * (h / 8)), psnr(Y, Y2), us(t0, t1));

  // PackBits: every row of the blue plane (flat boxes) into one buffer, then back.
  std::vector<Zvp8u> blue(Y.size());
  for (size_t i = 0; i < blue.size(); ++i) blue[i] = rgb[3 * i + 2];
  std::vector<Zvp8u> packed(blue.size() * 2), blue2(blue.size());
  int pos = 0;
  t0 = Clock::now();
  for (int y = 0; y < h; ++y)
    if (!check(zvpiPackBitsRow_TIFF_8u_C1(&blue[size_t(y) * w], w, packed.data(), &pos, int(packed.size()) - pos),
               "PackBitsRow"))
      return 1;
  const int packedBytes = pos;
  pos = 0;
  for (int y = 0; y < h; ++y)
    if (!check(zvpiUnpackBitsRow_TIFF_8u_C1(packed.data(), &pos, packedBytes, &blue2[size_t(y) * w], w), "UnpackBitsRow"))
      return 1;
  t1 = Clock::now();
  std::printf("PackBits     blue plane %zu -> %d bytes and back: %s (%.0f us)\n", blue.size(), packedBytes,
              blue == blue2 ? "same bytes" : "DIFFERENT", us(t0, t1));

  // Texture: RGBA to DXT1 blocks and back.
  std::vector<Zvp8u> rgba(size_t(w) * h * 4), rgba2(rgba.size());
  for (size_t i = 0; i < size_t(w) * h; ++i) {
    for (int c = 0; c < 3; ++c) rgba[4 * i + c] = rgb[3 * i + c];
    rgba[4 * i + 3] = 255;
  }
  std::vector<Zvp8u> dxt(size_t(w / 4) * (h / 4) * 8);
  t0 = Clock::now();
  if (!check(zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(rgba.data(), 4 * w, roi, dxt.data()), "DXT1 encode") ||
      !check(zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(dxt.data(), rgba2.data(), 4 * w, roi), "DXT1 decode"))
    return 1;
  t1 = Clock::now();
  std::printf("texture      RGBA -> DXT1 (%zu bytes) -> RGBA: PSNR %.1f dB on R, G, B (%.0f us)\n", dxt.size(),
              psnr(rgba, rgba2, 4, 3), us(t0, t1));

  // HD Photo core transform of one 16x16 region, forward and inverse.
  Zvp32s mb[256], orig[256];
  for (int i = 0; i < 256; ++i) orig[i] = mb[i] = Y[size_t(i / 16) * w + i % 16 + 600] - 128;
  if (!check(zvpiPCTFwd16x16_HDP_32s_C1IR(mb, 64), "PCTFwd16x16") ||
      !check(zvpiPCTInv16x16_HDP_32s_C1IR(mb, 64), "PCTInv16x16"))
    return 1;
  bool same = true;
  for (int i = 0; i < 256; ++i) same = same && mb[i] == orig[i];
  std::printf("photo core   16x16 forward then inverse: %s\n\n", same ? "exact" : "NOT EXACT");

  // The argument checks: a null source is refused before anything is touched.
  const ZvpStatus st = zvpiSub128_JPEG_8u16s_C1R(nullptr, w, shifted.data(), 2 * w, roi);
  std::printf("a null source gives status %d (zvpStatusNullPointer is %d)\n", st, zvpStatusNullPointer);
  return grey == back && blue == blue2 && same ? 0 : 1;
}
