// Colour conversion, decoding direction: YCbCr (and YCCK) planes to RGB, BGR,
// packed 16-bit pixels and CMYK; interleaved 4:2:2 to RGB. Scalar twins of the
// group kernels, the dispatch point of the family, the row loops and the
// exported entries.
#include "core/checks.h"
#include "core/cpu.h"
#include "core/parallel.h"
#include "sample/colour.h"

namespace zvp::cc {

namespace {

void yccToRgbP3Scalar(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* r, Zvp8u* g, Zvp8u* b, int n) {
  for (int x = 0; x < n; ++x) {
    const Rgb p = decodeA(y[x], cb[x], cr[x]);
    r[x] = p.r, g[x] = p.g, b[x] = p.b;
  }
}

template <bool Bgr>
void yccToC3Scalar(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp8u* d, int n) {
  for (int x = 0; x < n; ++x) {
    const Rgb p = decodeB(y[x], cb[x], cr[x]);
    d[3 * x + 0] = Bgr ? p.b : p.r, d[3 * x + 1] = p.g, d[3 * x + 2] = Bgr ? p.r : p.b;
  }
}

template <Packed F>
void yccToPackedScalar(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, Zvp16u* d, int n) {
  for (int x = 0; x < n; ++x) store16u(d + x, pack(F, decodeA(y[x], cb[x], cr[x])));
}

void ycckToCmykP4Scalar(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* c, Zvp8u* m,
                        Zvp8u* ye, Zvp8u* ko, int n) {
  for (int x = 0; x < n; ++x) {
    const Rgb p = decodeA(y[x], cb[x], cr[x]);
    c[x] = static_cast<Zvp8u>(255 - p.r), m[x] = static_cast<Zvp8u>(255 - p.g), ye[x] = static_cast<Zvp8u>(255 - p.b);
    ko[x] = k[x];
  }
}

void ycckToCmykC4Scalar(const Zvp8u* y, const Zvp8u* cb, const Zvp8u* cr, const Zvp8u* k, Zvp8u* d, int n) {
  for (int x = 0; x < n; ++x) {
    const Rgb p = decodeA(y[x], cb[x], cr[x]);
    d[4 * x + 0] = static_cast<Zvp8u>(255 - p.r), d[4 * x + 1] = static_cast<Zvp8u>(255 - p.g);
    d[4 * x + 2] = static_cast<Zvp8u>(255 - p.b), d[4 * x + 3] = k[x];
  }
}

void ycc422ToRgbScalar(const Zvp8u* s, Zvp8u* d, int n) {
  for (int x = 0; x < n; x += 2) {
    const D422 c = chroma422(s[2 * x + 1], s[2 * x + 3]);
    const Rgb p0 = apply422(s[2 * x], c), p1 = apply422(s[2 * x + 2], c);
    d[3 * x + 0] = p0.r, d[3 * x + 1] = p0.g, d[3 * x + 2] = p0.b;
    d[3 * x + 3] = p1.r, d[3 * x + 4] = p1.g, d[3 * x + 5] = p1.b;
  }
}

}  // namespace

const DecKernels kDecScalar = ZVP_CC_DEC_KERNELS(Scalar, ycc422ToRgbScalar);

Kernels kernels() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::AVX2) return {kDecAVX2, kEncAVX2};
  if (cpuIsa() >= Isa::SSE41) return {kDecSSE41, kEncSSE41};
#endif
  return {kDecScalar, kEncScalar};
}

}  // namespace zvp::cc

using namespace zvp::cc;
using zvp::rowPtr;

ZvpStatus ownpj_YCbCrToRGB_JPEG_8u_P3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* const pDst[3], int dstStep,
                                       ZvpiSize roi) {
  const DecKernels k = kernels().dec;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *y = rowPtr(pSrc[0], srcStep, row), *cb = rowPtr(pSrc[1], srcStep, row),
                *cr = rowPtr(pSrc[2], srcStep, row);
    Zvp8u *r = rowPtr(pDst[0], dstStep, row), *g = rowPtr(pDst[1], dstStep, row), *b = rowPtr(pDst[2], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.yccToRgbP3(y, cb, cr, r, g, b, w4); },
        [&](int x) {
          const Rgb p = decodeTail(y[x], cb[x], cr[x]);
          r[x] = p.r, g[x] = p.g, b[x] = p.b;
        });
  });
  return zvpStatusOk;
}

template <bool Bgr>
static ZvpStatus yccToC3Region(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  const DecKernels k = kernels().dec;
  const auto group = Bgr ? k.yccToBgrC3 : k.yccToRgbC3;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *y = rowPtr(pSrc[0], srcStep, row), *cb = rowPtr(pSrc[1], srcStep, row),
                *cr = rowPtr(pSrc[2], srcStep, row);
    Zvp8u* d = rowPtr(pDst, dstStep, row);
    splitRow(
        roi.width, [&](int w4) { group(y, cb, cr, d, w4); },
        [&](int x) {
          const Rgb p = decodeTail(y[x], cb[x], cr[x]);
          d[3 * x + 0] = Bgr ? p.b : p.r, d[3 * x + 1] = p.g, d[3 * x + 2] = Bgr ? p.r : p.b;
        });
  });
  return zvpStatusOk;
}

ZvpStatus ownpj_YCbCrToRGB_JPEG_8u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst, int dstStep,
                                         ZvpiSize roi) {
  return yccToC3Region<false>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_YCbCrToBGR_JPEG_8u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst, int dstStep,
                                         ZvpiSize roi) {
  return yccToC3Region<true>(pSrc, srcStep, pDst, dstStep, roi);
}

// The packed members are plain loops over rows, no parallel region.
template <Packed F>
static ZvpStatus yccToPackedRegion(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst, int dstStep, ZvpiSize roi) {
  const auto group = kernels().dec.yccToPacked[static_cast<int>(F)];
  for (int row = 0; row < roi.height; ++row) {
    const Zvp8u *y = rowPtr(pSrc[0], srcStep, row), *cb = rowPtr(pSrc[1], srcStep, row),
                *cr = rowPtr(pSrc[2], srcStep, row);
    Zvp16u* d = rowPtr(pDst, dstStep, row);
    splitRow(
        roi.width, [&](int w4) { group(y, cb, cr, d, w4); },
        [&](int x) { store16u(d + x, pack(F, decodeTail(y[x], cb[x], cr[x]))); });
  }
  return zvpStatusOk;
}

ZvpStatus ownpj_YCCKToCMYK_JPEG_8u_P4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* const pDst[4], int dstStep,
                                       ZvpiSize roi) {
  const DecKernels k = kernels().dec;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *y = rowPtr(pSrc[0], srcStep, row), *cb = rowPtr(pSrc[1], srcStep, row),
                *cr = rowPtr(pSrc[2], srcStep, row), *kk = rowPtr(pSrc[3], srcStep, row);
    Zvp8u *c = rowPtr(pDst[0], dstStep, row), *m = rowPtr(pDst[1], dstStep, row), *ye = rowPtr(pDst[2], dstStep, row),
          *ko = rowPtr(pDst[3], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.ycckToCmykP4(y, cb, cr, kk, c, m, ye, ko, w4); },
        [&](int x) {
          const Rgb p = decodeTail(y[x], cb[x], cr[x]);
          c[x] = static_cast<Zvp8u>(255 - p.r), m[x] = static_cast<Zvp8u>(255 - p.g);
          ye[x] = static_cast<Zvp8u>(255 - p.b), ko[x] = kk[x];
        });
  });
  return zvpStatusOk;
}

ZvpStatus ownpj_YCCKToCMYK_JPEG_8u_P4C4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* pDst, int dstStep,
                                         ZvpiSize roi) {
  const DecKernels k = kernels().dec;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *y = rowPtr(pSrc[0], srcStep, row), *cb = rowPtr(pSrc[1], srcStep, row),
                *cr = rowPtr(pSrc[2], srcStep, row), *kk = rowPtr(pSrc[3], srcStep, row);
    Zvp8u* d = rowPtr(pDst, dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.ycckToCmykC4(y, cb, cr, kk, d, w4); },
        [&](int x) {
          const Rgb p = decodeTail(y[x], cb[x], cr[x]);
          d[4 * x + 0] = static_cast<Zvp8u>(255 - p.r), d[4 * x + 1] = static_cast<Zvp8u>(255 - p.g);
          d[4 * x + 2] = static_cast<Zvp8u>(255 - p.b), d[4 * x + 3] = kk[x];
        });
  });
  return zvpStatusOk;
}

// 4:2:2: groups of 8 pixels over width & ~7, then the tail by pairs through
// the tables; an odd width writes its last pair whole.
ZvpStatus ownpj_YCbCr422ToRGB_JPEG_8u_C2C3R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  const DecKernels k = kernels().dec;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u* s = rowPtr(pSrc, srcStep, row);
    Zvp8u* d = rowPtr(pDst, dstStep, row);
    const int w8 = roi.width & ~7;
    if (w8 >= 8) k.ycc422ToRgb(s, d, w8);
    for (int x = w8; x < roi.width; x += 2) {
      const int cb = s[2 * x + 1], cr = s[2 * x + 3];
      const Rgb p0 = decodeTail(s[2 * x], cb, cr), p1 = decodeTail(s[2 * x + 2], cb, cr);
      d[3 * x + 0] = p0.r, d[3 * x + 1] = p0.g, d[3 * x + 2] = p0.b;
      d[3 * x + 3] = p1.r, d[3 * x + 4] = p1.g, d[3 * x + 5] = p1.b;
    }
  });
  return zvpStatusOk;
}

#define ZVP_P3_ENTRY(name, DstT, dstNull)                                                                     \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(const Zvp8u* const pSrc[3], int srcStep, DstT pDst, int dstStep,  \
                                           ZvpiSize roiSize) {                                                \
    if (ZvpStatus st = checkColour(anyNull(reinterpret_cast<const void* const*>(pSrc), 3), dstNull, srcStep, \
                                   dstStep, roiSize))                                                         \
      return st;                                                                                              \
    return ownpj_##name(pSrc, srcStep, pDst, dstStep, roiSize);                                               \
  }

#define SET_NULL(n) anyNull(reinterpret_cast<const void* const*>(pDst), n)

ZVP_P3_ENTRY(YCbCrToRGB_JPEG_8u_P3R, Zvp8u* const*, SET_NULL(3))
ZVP_P3_ENTRY(YCbCrToRGB_JPEG_8u_P3C3R, Zvp8u*, !pDst)
ZVP_P3_ENTRY(YCbCrToBGR_JPEG_8u_P3C3R, Zvp8u*, !pDst)

#define ZVP_PACKED_WORKER(F)                                                                                   \
  ZvpStatus ownpj_YCbCrTo##F##_JPEG_8u16u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst, int dstStep, \
                                                ZvpiSize roi) {                                                    \
    return yccToPackedRegion<Packed::F>(pSrc, srcStep, pDst, dstStep, roi);                                        \
  }
ZVP_PACKED_WORKER(RGB555)
ZVP_PACKED_WORKER(BGR555)
ZVP_PACKED_WORKER(RGB565)
ZVP_PACKED_WORKER(BGR565)
#undef ZVP_PACKED_WORKER

ZVP_P3_ENTRY(YCbCrToRGB555_JPEG_8u16u_P3C3R, Zvp16u*, !pDst)
ZVP_P3_ENTRY(YCbCrToBGR555_JPEG_8u16u_P3C3R, Zvp16u*, !pDst)
ZVP_P3_ENTRY(YCbCrToRGB565_JPEG_8u16u_P3C3R, Zvp16u*, !pDst)
ZVP_P3_ENTRY(YCbCrToBGR565_JPEG_8u16u_P3C3R, Zvp16u*, !pDst)

extern "C" ZVPJ_API ZvpStatus zvpiYCCKToCMYK_JPEG_8u_P4R(const Zvp8u* const pSrc[4], int srcStep,
                                                        Zvp8u* const pDst[4], int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = checkColour(anyNull(reinterpret_cast<const void* const*>(pSrc), 4), SET_NULL(4), srcStep,
                                 dstStep, roiSize))
    return st;
  return ownpj_YCCKToCMYK_JPEG_8u_P4R(pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiYCCKToCMYK_JPEG_8u_P4C4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* pDst,
                                                          int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st =
          checkColour(anyNull(reinterpret_cast<const void* const*>(pSrc), 4), !pDst, srcStep, dstStep, roiSize))
    return st;
  return ownpj_YCCKToCMYK_JPEG_8u_P4C4R(pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiYCbCr422ToRGB_JPEG_8u_C2C3R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst,
                                                             int dstStep, ZvpiSize roiSize) {
  if (ZvpStatus st = checkColour(!pSrc, !pDst, srcStep, dstStep, roiSize)) return st;
  return ownpj_YCbCr422ToRGB_JPEG_8u_C2C3R(pSrc, srcStep, pDst, dstStep, roiSize);
}
