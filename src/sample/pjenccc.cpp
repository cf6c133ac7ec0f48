// Colour conversion, encoding direction: RGB, BGR, packed 16-bit pixels and
// CMYK to YCbCr (YCCK) planes and to grey. Scalar twins of the group kernels,
// the row loops and the exported entries.
#include "core/checks.h"
#include "core/parallel.h"
#include "sample/colour.h"

namespace zvp::cc {

namespace {

void rgbToYP3Scalar(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* d, int n) {
  for (int x = 0; x < n; ++x) d[x] = greyFloat(r[x], g[x], b[x]);
}

template <bool Bgr>
void toYC3Scalar(const Zvp8u* s, Zvp8u* d, int width) {
  for (int x = 0; x < width; ++x) {
    const int r = s[3 * x + (Bgr ? 2 : 0)], g = s[3 * x + 1], b = s[3 * x + (Bgr ? 0 : 2)];
    d[x] = grey15(r, g, b);
  }
}

void rgbToYccP3Scalar(const Zvp8u* r, const Zvp8u* g, const Zvp8u* b, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  for (int x = 0; x < n; ++x) {
    const Ycc c = encodeDiff(r[x], g[x], b[x]);
    y[x] = c.y, cb[x] = c.cb, cr[x] = c.cr;
  }
}

// Groups of 8 through set 15, a last group of 4 through set 14.
template <bool Bgr>
void toYccC3Scalar(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int n) {
  for (int x = 0; x < n; ++x) {
    const int r = s[3 * x + (Bgr ? 2 : 0)], g = s[3 * x + 1], b = s[3 * x + (Bgr ? 0 : 2)];
    const Ycc c = x < (n & ~7) ? encode15(r, g, b) : encode14(r, g, b);
    y[x] = c.y, cb[x] = c.cb, cr[x] = c.cr;
  }
}

void cmykToYcckP4Scalar(const Zvp8u* c, const Zvp8u* m, const Zvp8u* ye, const Zvp8u* k, Zvp8u* y, Zvp8u* cb,
                        Zvp8u* cr, Zvp8u* ko, int n) {
  for (int x = 0; x < n; ++x) {
    const Ycc v = encodeDiff(255 - c[x], 255 - m[x], 255 - ye[x]);
    y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr, ko[x] = k[x];
  }
}

void cmykToYcckC4Scalar(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, Zvp8u* k, int n) {
  for (int x = 0; x < n; ++x) {
    const int r = 255 - s[4 * x], g = 255 - s[4 * x + 1], b = 255 - s[4 * x + 2];
    const Ycc v = x < (n & ~7) ? encode15(r, g, b) : encode14(r, g, b);
    y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr, k[x] = s[4 * x + 3];
  }
}

template <Packed F>
void packedToYccScalar(const Zvp16u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int width) {
  for (int x = 0; x < width; ++x) {
    const Rgb p = unpack(F, load16u(s + x));
    const Ycc v = encode14(p.r, p.g, p.b);
    y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr;
  }
}

}  // namespace

const EncKernels kEncScalar =
    ZVP_CC_ENC_KERNELS(Scalar, {packedToYccScalar<Packed::RGB555>, packedToYccScalar<Packed::BGR555>,
                                packedToYccScalar<Packed::RGB565>, packedToYccScalar<Packed::BGR565>});

}  // namespace zvp::cc

using namespace zvp::cc;
using zvp::rowPtr;

namespace {

template <bool Bgr>
void toYccTail(const Zvp8u* s, Zvp8u* y, Zvp8u* cb, Zvp8u* cr, int x) {
  const Ycc c = encode14(s[3 * x + (Bgr ? 2 : 0)], s[3 * x + 1], s[3 * x + (Bgr ? 0 : 2)]);
  y[x] = c.y, cb[x] = c.cb, cr[x] = c.cr;
}

}  // namespace

ZvpStatus ownpj_RGBToY_JPEG_8u_P3C1R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst, int dstStep,
                                     ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *r = rowPtr(pSrc[0], srcStep, row), *g = rowPtr(pSrc[1], srcStep, row),
                *b = rowPtr(pSrc[2], srcStep, row);
    Zvp8u* d = rowPtr(pDst, dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.rgbToYP3(r, g, b, d, w4); }, [&](int x) { d[x] = greyTail(r[x], g[x], b[x]); });
  });
  return zvpStatusOk;
}

template <bool Bgr>
static ZvpStatus toYC3Region(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  const auto rowFn = Bgr ? k.bgrToYC3 : k.rgbToYC3;
  zvp::parallelRows(roi, [&](int row) { rowFn(rowPtr(pSrc, srcStep, row), rowPtr(pDst, dstStep, row), roi.width); });
  return zvpStatusOk;
}
ZvpStatus ownpj_RGBToY_JPEG_8u_C3C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  return toYC3Region<false>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_BGRToY_JPEG_8u_C3C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, ZvpiSize roi) {
  return toYC3Region<true>(pSrc, srcStep, pDst, dstStep, roi);
}

ZvpStatus ownpj_RGBToYCbCr_JPEG_8u_P3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* const pDst[3], int dstStep,
                                       ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *r = rowPtr(pSrc[0], srcStep, row), *g = rowPtr(pSrc[1], srcStep, row),
                *b = rowPtr(pSrc[2], srcStep, row);
    Zvp8u *y = rowPtr(pDst[0], dstStep, row), *cb = rowPtr(pDst[1], dstStep, row), *cr = rowPtr(pDst[2], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.rgbToYccP3(r, g, b, y, cb, cr, w4); },
        [&](int x) {
          const Ycc c = encodeTail(r[x], g[x], b[x]);
          y[x] = c.y, cb[x] = c.cb, cr[x] = c.cr;
        });
  });
  return zvpStatusOk;
}

template <bool Bgr>
static ZvpStatus toYccC3Region(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep, ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  const auto group = Bgr ? k.bgrToYccC3 : k.rgbToYccC3;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u* s = rowPtr(pSrc, srcStep, row);
    Zvp8u *y = rowPtr(pDst[0], dstStep, row), *cb = rowPtr(pDst[1], dstStep, row), *cr = rowPtr(pDst[2], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { group(s, y, cb, cr, w4); }, [&](int x) { toYccTail<Bgr>(s, y, cb, cr, x); });
  });
  return zvpStatusOk;
}
ZvpStatus ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                         ZvpiSize roi) {
  return toYccC3Region<false>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                         ZvpiSize roi) {
  return toYccC3Region<true>(pSrc, srcStep, pDst, dstStep, roi);
}

ZvpStatus ownpj_CMYKToYCCK_JPEG_8u_P4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* const pDst[4], int dstStep,
                                       ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u *c = rowPtr(pSrc[0], srcStep, row), *m = rowPtr(pSrc[1], srcStep, row),
                *ye = rowPtr(pSrc[2], srcStep, row), *kk = rowPtr(pSrc[3], srcStep, row);
    Zvp8u *y = rowPtr(pDst[0], dstStep, row), *cb = rowPtr(pDst[1], dstStep, row), *cr = rowPtr(pDst[2], dstStep, row),
          *ko = rowPtr(pDst[3], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.cmykToYcckP4(c, m, ye, kk, y, cb, cr, ko, w4); },
        [&](int x) {
          const Ycc v = encodeTail(255 - c[x], 255 - m[x], 255 - ye[x]);
          y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr, ko[x] = kk[x];
        });
  });
  return zvpStatusOk;
}

ZvpStatus ownpj_CMYKToYCCK_JPEG_8u_C4P4R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[4], int dstStep,
                                         ZvpiSize roi) {
  const EncKernels k = kernels().enc;
  zvp::parallelRows(roi, [&](int row) {
    const Zvp8u* s = rowPtr(pSrc, srcStep, row);
    Zvp8u *y = rowPtr(pDst[0], dstStep, row), *cb = rowPtr(pDst[1], dstStep, row), *cr = rowPtr(pDst[2], dstStep, row),
          *ko = rowPtr(pDst[3], dstStep, row);
    splitRow(
        roi.width, [&](int w4) { k.cmykToYcckC4(s, y, cb, cr, ko, w4); },
        [&](int x) {
          const Ycc v = encode14(255 - s[4 * x], 255 - s[4 * x + 1], 255 - s[4 * x + 2]);
          y[x] = v.y, cb[x] = v.cb, cr[x] = v.cr, ko[x] = s[4 * x + 3];
        });
  });
  return zvpStatusOk;
}

// The packed encoders: set 14 on every pixel, plain loops over rows.
template <Packed F>
static ZvpStatus packedRegion(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep, ZvpiSize roi) {
  const auto rowFn = kernels().enc.packedToYcc[static_cast<int>(F)];
  for (int row = 0; row < roi.height; ++row)
    rowFn(rowPtr(pSrc, srcStep, row), rowPtr(pDst[0], dstStep, row), rowPtr(pDst[1], dstStep, row),
          rowPtr(pDst[2], dstStep, row), roi.width);
  return zvpStatusOk;
}
ZvpStatus ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                               ZvpiSize roi) {
  return packedRegion<Packed::RGB555>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                               ZvpiSize roi) {
  return packedRegion<Packed::BGR555>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                               ZvpiSize roi) {
  return packedRegion<Packed::RGB565>(pSrc, srcStep, pDst, dstStep, roi);
}
ZvpStatus ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3], int dstStep,
                                               ZvpiSize roi) {
  return packedRegion<Packed::BGR565>(pSrc, srcStep, pDst, dstStep, roi);
}

#define SRC_SET(n) anyNull(reinterpret_cast<const void* const*>(pSrc), n)
#define DST_SET(n) anyNull(reinterpret_cast<const void* const*>(pDst), n)
#define ZVP_ENC_ENTRY(name, SrcT, DstT, srcNull, dstNull)                                                       \
  extern "C" ZVPJ_API ZvpStatus zvpi##name(SrcT pSrc, int srcStep, DstT pDst, int dstStep, ZvpiSize roiSize) { \
    if (ZvpStatus st = checkColour(srcNull, dstNull, srcStep, dstStep, roiSize)) return st;                     \
    return ownpj_##name(pSrc, srcStep, pDst, dstStep, roiSize);                                                 \
  }

ZVP_ENC_ENTRY(RGBToY_JPEG_8u_P3C1R, const Zvp8u* const*, Zvp8u*, SRC_SET(3), !pDst)
ZVP_ENC_ENTRY(RGBToY_JPEG_8u_C3C1R, const Zvp8u*, Zvp8u*, !pSrc, !pDst)
ZVP_ENC_ENTRY(BGRToY_JPEG_8u_C3C1R, const Zvp8u*, Zvp8u*, !pSrc, !pDst)
ZVP_ENC_ENTRY(RGBToYCbCr_JPEG_8u_P3R, const Zvp8u* const*, Zvp8u* const*, SRC_SET(3), DST_SET(3))
ZVP_ENC_ENTRY(RGBToYCbCr_JPEG_8u_C3P3R, const Zvp8u*, Zvp8u* const*, !pSrc, DST_SET(3))
ZVP_ENC_ENTRY(BGRToYCbCr_JPEG_8u_C3P3R, const Zvp8u*, Zvp8u* const*, !pSrc, DST_SET(3))
ZVP_ENC_ENTRY(CMYKToYCCK_JPEG_8u_P4R, const Zvp8u* const*, Zvp8u* const*, SRC_SET(4), DST_SET(4))
ZVP_ENC_ENTRY(CMYKToYCCK_JPEG_8u_C4P4R, const Zvp8u*, Zvp8u* const*, !pSrc, DST_SET(4))
ZVP_ENC_ENTRY(RGB555ToYCbCr_JPEG_16u8u_C3P3R, const Zvp16u*, Zvp8u* const*, !pSrc, DST_SET(3))
ZVP_ENC_ENTRY(BGR555ToYCbCr_JPEG_16u8u_C3P3R, const Zvp16u*, Zvp8u* const*, !pSrc, DST_SET(3))
ZVP_ENC_ENTRY(RGB565ToYCbCr_JPEG_16u8u_C3P3R, const Zvp16u*, Zvp8u* const*, !pSrc, DST_SET(3))
ZVP_ENC_ENTRY(BGR565ToYCbCr_JPEG_16u8u_C3P3R, const Zvp16u*, Zvp8u* const*, !pSrc, DST_SET(3))
