// zvp demo: prints the version record, then level-shifts a generated image
// into signed 16-bit samples and back, and reports what it did.
#include <chrono>
#include <cstdio>
#include <vector>

#include "zvpj.h"

int main() {
  const ZvpLibraryVersion* v = zvpjGetLibVersion();
  std::printf("%s  version %s  (%d.%d, build %d.%d, target %s, %s)\n", v->name, v->version, v->major, v->minor,
              v->majorBuild, v->build, v->targetCpu, v->buildDate);
  std::printf("threads available to a call: %d\n", zvpGetNumThreads());

  // A 1920x1080 gradient with a diagonal pattern.
  const int w = 1920, h = 1080;
  std::vector<Zvp8u> image(static_cast<size_t>(w) * h), back(image.size());
  std::vector<Zvp16s> shifted(image.size());
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) image[static_cast<size_t>(y) * w + x] = static_cast<Zvp8u>((x + 2 * y) & 255);

  const ZvpiSize roi = {w, h};
  const auto t0 = std::chrono::steady_clock::now();
  ZvpStatus st = zvpiSub128_JPEG_8u16s_C1R(image.data(), w, shifted.data(), w * 2, roi);
  const auto t1 = std::chrono::steady_clock::now();
  if (st != zvpStatusOk) return std::printf("Sub128 failed: %d\n", st), 1;
  st = zvpiAdd128_JPEG_16s8u_C1R(shifted.data(), w * 2, back.data(), w, roi);
  const auto t2 = std::chrono::steady_clock::now();
  if (st != zvpStatusOk) return std::printf("Add128 failed: %d\n", st), 1;

  int lo = 0, hi = 0;
  for (Zvp16s s : shifted) {
    lo = s < lo ? s : lo;
    hi = s > hi ? s : hi;
  }
  const bool same = image == back;
  auto us = [](auto a, auto b) { return std::chrono::duration<double, std::micro>(b - a).count(); };
  std::printf("level shift of a %dx%d image: samples now %d..%d (%.0f us); shifted back %s (%.0f us)\n", w, h, lo,
              hi, us(t0, t1), same ? "to the same bytes" : "WITH DIFFERENCES", us(t1, t2));

  // The argument checks: a null source is refused before anything is touched.
  st = zvpiSub128_JPEG_8u16s_C1R(nullptr, w, shifted.data(), w * 2, roi);
  std::printf("a null source gives status %d (zvpStatusNullPointer is %d)\n", st, zvpStatusNullPointer);
  return same ? 0 : 1;
}
