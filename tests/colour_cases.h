// The colour members as data for the tests: layout of source and
// destination, the reference row (tests/ref) and the call through the
// public interface. Shared by colour_test (shared object) and colour_itest
// (every instruction-set path).
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ref/colour_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace cases {

struct Layout {
  int planes;  // 1, 3 or 4
  int bpp;     // bytes per pixel in each plane
};

using RefRow = void (*)(const uint8_t* const* s, uint8_t* const* d, int width);
using Call = ZvpStatus (*)(const uint8_t* const* s, int srcStep, uint8_t* const* d, int dstStep, ZvpiSize roi);

struct Member {
  const char* name;
  Layout src, dst;
  bool pairs;  // 4:2:2: an odd width reads and writes one pixel more
  RefRow ref;
  Call call;
};

inline void put(uint8_t* d, ref::RGB p) { d[0] = uint8_t(p.r), d[1] = uint8_t(p.g), d[2] = uint8_t(p.b); }
inline void putBgr(uint8_t* d, ref::RGB p) { d[0] = uint8_t(p.b), d[1] = uint8_t(p.g), d[2] = uint8_t(p.r); }
inline void put16(uint8_t* d, uint16_t v) { std::memcpy(d, &v, 2); }
inline uint16_t get16(const uint8_t* s) {
  uint16_t v;
  std::memcpy(&v, s, 2);
  return v;
}
inline void putYcc(uint8_t* const* d, int x, ref::YCC c) {
  d[0][x] = uint8_t(c.y), d[1][x] = uint8_t(c.cb), d[2][x] = uint8_t(c.cr);
}

#define SRCSET reinterpret_cast<const Zvp8u* const*>(s)
#define DSTSET reinterpret_cast<Zvp8u* const*>(d)
#define SRC1 reinterpret_cast<const Zvp8u*>(s[0])
#define SRC16 reinterpret_cast<const Zvp16u*>(s[0])
#define DST1 reinterpret_cast<Zvp8u*>(d[0])
#define DST16 reinterpret_cast<Zvp16u*>(d[0])
#define CALL(expr) [](const uint8_t* const* s, int ss, uint8_t* const* d, int ds, ZvpiSize roi) { return expr; }

template <int Fmt>
void refYccToPacked(const uint8_t* const* s, uint8_t* const* d, int w) {
  for (int x = 0; x < w; ++x) put16(d[0] + 2 * x, ref::pack(Fmt, ref::decodeAt(false, x, w, s[0][x], s[1][x], s[2][x])));
}
template <int Fmt>
void refPackedToYcc(const uint8_t* const* s, uint8_t* const* d, int w) {
  for (int x = 0; x < w; ++x) {
    const ref::RGB p = ref::unpack(Fmt, get16(s[0] + 2 * x));
    putYcc(d, x, ref::set14(p.r, p.g, p.b));
  }
}

inline const std::vector<Member>& members() {
  static const std::vector<Member> m = {
      {"YCbCrToRGB_P3R", {3, 1}, {3, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) {
           const ref::RGB p = ref::decodeAt(false, x, w, s[0][x], s[1][x], s[2][x]);
           d[0][x] = uint8_t(p.r), d[1][x] = uint8_t(p.g), d[2][x] = uint8_t(p.b);
         }
       },
       CALL(zvpiYCbCrToRGB_JPEG_8u_P3R(SRCSET, ss, DSTSET, ds, roi))},
      {"YCbCrToRGB_P3C3R", {3, 1}, {1, 3}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) put(d[0] + 3 * x, ref::decodeAt(true, x, w, s[0][x], s[1][x], s[2][x]));
       },
       CALL(zvpiYCbCrToRGB_JPEG_8u_P3C3R(SRCSET, ss, DST1, ds, roi))},
      {"YCbCrToBGR_P3C3R", {3, 1}, {1, 3}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) putBgr(d[0] + 3 * x, ref::decodeAt(true, x, w, s[0][x], s[1][x], s[2][x]));
       },
       CALL(zvpiYCbCrToBGR_JPEG_8u_P3C3R(SRCSET, ss, DST1, ds, roi))},
      {"YCbCrToRGB555", {3, 1}, {1, 2}, false, refYccToPacked<0>,
       CALL(zvpiYCbCrToRGB555_JPEG_8u16u_P3C3R(SRCSET, ss, DST16, ds, roi))},
      {"YCbCrToBGR555", {3, 1}, {1, 2}, false, refYccToPacked<1>,
       CALL(zvpiYCbCrToBGR555_JPEG_8u16u_P3C3R(SRCSET, ss, DST16, ds, roi))},
      {"YCbCrToRGB565", {3, 1}, {1, 2}, false, refYccToPacked<2>,
       CALL(zvpiYCbCrToRGB565_JPEG_8u16u_P3C3R(SRCSET, ss, DST16, ds, roi))},
      {"YCbCrToBGR565", {3, 1}, {1, 2}, false, refYccToPacked<3>,
       CALL(zvpiYCbCrToBGR565_JPEG_8u16u_P3C3R(SRCSET, ss, DST16, ds, roi))},
      {"YCCKToCMYK_P4R", {4, 1}, {4, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) {
           const ref::RGB p = ref::decodeAt(false, x, w, s[0][x], s[1][x], s[2][x]);
           d[0][x] = uint8_t(255 - p.r), d[1][x] = uint8_t(255 - p.g), d[2][x] = uint8_t(255 - p.b);
           d[3][x] = s[3][x];
         }
       },
       CALL(zvpiYCCKToCMYK_JPEG_8u_P4R(SRCSET, ss, DSTSET, ds, roi))},
      {"YCCKToCMYK_P4C4R", {4, 1}, {1, 4}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) {
           const ref::RGB p = ref::decodeAt(false, x, w, s[0][x], s[1][x], s[2][x]);
           uint8_t* o = d[0] + 4 * x;
           o[0] = uint8_t(255 - p.r), o[1] = uint8_t(255 - p.g), o[2] = uint8_t(255 - p.b), o[3] = s[3][x];
         }
       },
       CALL(zvpiYCCKToCMYK_JPEG_8u_P4C4R(SRCSET, ss, DST1, ds, roi))},
      {"YCbCr422ToRGB", {1, 2}, {1, 3}, true,
       [](const uint8_t* const* s, uint8_t* const* d, int w) { ref::row422(s[0], d[0], w); },
       CALL(zvpiYCbCr422ToRGB_JPEG_8u_C2C3R(SRC1, ss, DST1, ds, roi))},
      {"RGBToY_P3C1R", {3, 1}, {1, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) d[0][x] = uint8_t(ref::greyAt(x, w, s[0][x], s[1][x], s[2][x]));
       },
       CALL(zvpiRGBToY_JPEG_8u_P3C1R(SRCSET, ss, DST1, ds, roi))},
      {"RGBToY_C3C1R", {1, 3}, {1, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) d[0][x] = uint8_t(ref::grey15(s[0][3 * x], s[0][3 * x + 1], s[0][3 * x + 2]));
       },
       CALL(zvpiRGBToY_JPEG_8u_C3C1R(SRC1, ss, DST1, ds, roi))},
      {"BGRToY_C3C1R", {1, 3}, {1, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) d[0][x] = uint8_t(ref::grey15(s[0][3 * x + 2], s[0][3 * x + 1], s[0][3 * x]));
       },
       CALL(zvpiBGRToY_JPEG_8u_C3C1R(SRC1, ss, DST1, ds, roi))},
      {"RGBToYCbCr_P3R", {3, 1}, {3, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) putYcc(d, x, ref::planarAt(x, w, s[0][x], s[1][x], s[2][x]));
       },
       CALL(zvpiRGBToYCbCr_JPEG_8u_P3R(SRCSET, ss, DSTSET, ds, roi))},
      {"RGBToYCbCr_C3P3R", {1, 3}, {3, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x)
           putYcc(d, x, ref::interleavedAt(x, w, s[0][3 * x], s[0][3 * x + 1], s[0][3 * x + 2]));
       },
       CALL(zvpiRGBToYCbCr_JPEG_8u_C3P3R(SRC1, ss, DSTSET, ds, roi))},
      {"BGRToYCbCr_C3P3R", {1, 3}, {3, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x)
           putYcc(d, x, ref::interleavedAt(x, w, s[0][3 * x + 2], s[0][3 * x + 1], s[0][3 * x]));
       },
       CALL(zvpiBGRToYCbCr_JPEG_8u_C3P3R(SRC1, ss, DSTSET, ds, roi))},
      {"CMYKToYCCK_P4R", {4, 1}, {4, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) {
           putYcc(d, x, ref::planarAt(x, w, 255 - s[0][x], 255 - s[1][x], 255 - s[2][x]));
           d[3][x] = s[3][x];
         }
       },
       CALL(zvpiCMYKToYCCK_JPEG_8u_P4R(SRCSET, ss, DSTSET, ds, roi))},
      {"CMYKToYCCK_C4P4R", {1, 4}, {4, 1}, false,
       [](const uint8_t* const* s, uint8_t* const* d, int w) {
         for (int x = 0; x < w; ++x) {
           const uint8_t* p = s[0] + 4 * x;
           putYcc(d, x, ref::interleavedAt(x, w, 255 - p[0], 255 - p[1], 255 - p[2]));
           d[3][x] = p[3];
         }
       },
       CALL(zvpiCMYKToYCCK_JPEG_8u_C4P4R(SRC1, ss, DSTSET, ds, roi))},
      {"RGB555ToYCbCr", {1, 2}, {3, 1}, false, refPackedToYcc<0>,
       CALL(zvpiRGB555ToYCbCr_JPEG_16u8u_C3P3R(SRC16, ss, DSTSET, ds, roi))},
      {"BGR555ToYCbCr", {1, 2}, {3, 1}, false, refPackedToYcc<1>,
       CALL(zvpiBGR555ToYCbCr_JPEG_16u8u_C3P3R(SRC16, ss, DSTSET, ds, roi))},
      {"RGB565ToYCbCr", {1, 2}, {3, 1}, false, refPackedToYcc<2>,
       CALL(zvpiRGB565ToYCbCr_JPEG_16u8u_C3P3R(SRC16, ss, DSTSET, ds, roi))},
      {"BGR565ToYCbCr", {1, 2}, {3, 1}, false, refPackedToYcc<3>,
       CALL(zvpiBGR565ToYCbCr_JPEG_16u8u_C3P3R(SRC16, ss, DSTSET, ds, roi))},
  };
  return m;
}

// One region: planes of guarded memory, each step*h bytes at an offset.
struct Region {
  std::vector<std::unique_ptr<zt::Guarded>> planes;
  std::vector<uint8_t*> ptrs;
  int step = 0;
  Region(Layout l, int wAlloc, int h, int extra, size_t offset, zt::Rng& rng) {
    const int rowBytes = wAlloc * l.bpp;
    step = rowBytes + extra;
    for (int p = 0; p < l.planes; ++p) {
      planes.push_back(std::make_unique<zt::Guarded>(static_cast<size_t>(step) * (h - 1) + rowBytes,
                                                     offset + static_cast<size_t>(p) * 5));
      rng.fill(planes.back()->data(), planes.back()->size());
      ptrs.push_back(planes.back()->data());
    }
  }
  std::vector<std::vector<uint8_t>> snapshot() const {
    std::vector<std::vector<uint8_t>> s;
    for (const auto& p : planes) s.push_back(p->snapshot());
    return s;
  }
  bool intact() const {
    for (const auto& p : planes)
      if (!p->intact()) return false;
    return true;
  }
};

// The expected destination bytes: untouched bytes as they were, rows by the
// reference.
inline std::vector<std::vector<uint8_t>> expected(const Member& m, const Region& src, const Region& dst, int w, int h) {
  std::vector<std::vector<uint8_t>> out = dst.snapshot();
  for (int y = 0; y < h; ++y) {
    std::vector<const uint8_t*> s;
    for (uint8_t* p : src.ptrs) s.push_back(p + static_cast<ptrdiff_t>(y) * src.step);
    std::vector<uint8_t*> d;
    for (auto& p : out) d.push_back(p.data() + static_cast<ptrdiff_t>(y) * dst.step);
    m.ref(s.data(), d.data(), w);
  }
  return out;
}

// Runs one member on random data and compares every destination byte.
inline void checkAgainstRef(const Member& m, int w, int h, int extraS, int extraD, size_t offS, size_t offD,
                            uint64_t seed) {
  zt::Rng rng(seed);
  const int wAlloc = (m.pairs && (w & 1)) ? w + 1 : w;
  Region src(m.src, wAlloc, h, extraS, offS, rng), dst(m.dst, wAlloc, h, extraD, offD, rng);
  const auto want = expected(m, src, dst, w, h);
  std::vector<const uint8_t*> s(src.ptrs.begin(), src.ptrs.end());
  ASSERT_EQ(m.call(s.data(), src.step, dst.ptrs.data(), dst.step, {w, h}), zvpStatusOk) << m.name;
  for (size_t p = 0; p < want.size(); ++p) {
    const auto got = dst.planes[p]->snapshot();
    for (size_t i = 0; i < got.size(); ++i)
      ASSERT_EQ(int(got[i]), int(want[p][i])) << m.name << " w " << w << " h " << h << " plane " << p << " row "
                                              << i / dst.step << " byte " << i % dst.step;
  }
  ASSERT_TRUE(dst.intact()) << m.name << " w " << w;
}

// Every member, every interesting width, odd steps and odd addresses, and
// one region above the threading threshold.
inline void checkAllMembers() {
  for (const Member& m : members()) {
    uint64_t seed = 1;
    for (int w : zt::interestingWidths()) {
      checkAgainstRef(m, w, 3, 0, 0, 0, 0, seed++);
      checkAgainstRef(m, w, 2, 3, 5, 1, 3, seed++);
      if (::testing::Test::HasFatalFailure()) return;
    }
    checkAgainstRef(m, 8193, 2, 1, 7, 3, 1, seed++);  // above 8192 pixels, many groups
    checkAgainstRef(m, 131, 67, 9, 1, 1, 1, seed++);   // 8777 pixels: threaded rows
  }
}

}  // namespace cases
