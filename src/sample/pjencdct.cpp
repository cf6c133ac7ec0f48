// Forward block DCT members: level shift, transform and quantisation of one
// block; the float forward transform of the 12-bit path.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "core/checks.h"
#include "core/pjls.h"
#include "core/primitives.h"
#include "core/cpu.h"
#include "sample/dctfloat.h"

using zvp::dct::fwdPassT;

extern const float CONST_TABLE[6] = {0.70710677f, 0.41421357f, 1.4142135f, 0.76536685f, 0.5411961f, 1.0823922f};

namespace {

// Compile-time cosine and square root: a Taylor series and Newton steps in
// long double, rounded once to double. For the arguments below they give the
// very doubles of the C library's cos and sqrt (checked by a test).
constexpr double constCos(double x) {
  const long double y = x, y2 = y * y;
  long double term = 1, sum = 1;
  for (int n = 1; n < 40; ++n) {
    term = -term * y2 / ((2 * n - 1) * (2 * n));
    sum += term;
  }
  return static_cast<double>(sum);
}
constexpr double constSqrt(double x) {
  long double r = x > 1 ? x : 1;
  for (int i = 0; i < 200; ++i) r = (r + x / r) / 2;
  return static_cast<double>(r);
}

// The normalisation of the float transforms, built at compile time in double
// precision and rounded once to float.
struct NormTables {
  float frw[64], inv[64];
};
constexpr NormTables makeNorms() {
  NormTables t{};
  const double pi = 3.14159265358979323846;
  const double K = 1.082392200292394;
  const double sqrt2 = constSqrt(2.0);
  double g[8], h[8];
  for (int k = 0; k < 8; ++k) {
    const double ck = constCos(k * pi / 16);
    if (k == 0 || k == 4) {
      g[k] = 1;
      h[k] = 1;
    } else if (k == 2 || k == 6) {
      g[k] = 1 / (sqrt2 * ck);
      h[k] = sqrt2 * ck;
    } else {
      g[k] = 1 / (K * sqrt2 * ck);
      h[k] = 2 * constCos(pi / 8) * sqrt2 * ck;
    }
  }
  for (int u = 0; u < 8; ++u)
    for (int v = 0; v < 8; ++v) {
      t.frw[8 * u + v] = static_cast<float>(0.125 * g[u] * g[v]);
      t.inv[8 * u + v] = static_cast<float>(0.125 * h[u] * h[v]);
    }
  return t;
}
constexpr NormTables kNorms = makeNorms();

// float to 32-bit integer as the vector conversion does it: out of range and
// NaN give the lowest value.
inline int32_t cvtRound(float f) {
  if (!(f >= -2147483648.0f && f < 2147483648.0f)) return INT32_MIN;
  return static_cast<int32_t>(std::nearbyintf(f));
}

}  // namespace

extern const float* const _t_norm_frw = kNorms.frw;
extern const float* const _t_norm_inv = kNorms.inv;

void zvp::dct::fwd32Scalar(const Zvp32f* pSrc, Zvp32f* pDst) {
  float b[64];
  std::memcpy(b, pSrc, sizeof b);
  for (int r = 0; r < 8; ++r) fwdPassT(b + 8 * r);
  for (int c = 0; c < 8; ++c) {
    float col[8];
    for (int i = 0; i < 8; ++i) col[i] = b[8 * i + c];
    fwdPassT(col);
    for (int i = 0; i < 8; ++i) b[8 * i + c] = col[i];
  }
  const float* n = kNorms.frw;
  for (int i = 0; i < 64; ++i) b[i] = b[i] * n[i];
  std::memcpy(pDst, b, sizeof b);
}

void dct_8x8_fwd_32f(const Zvp32f* pSrc, Zvp32f* pDst) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::fwd32SSE41(pSrc, pDst);
#endif
  zvp::dct::fwd32Scalar(pSrc, pDst);
}

void zvp::dct::qntFwdLsScalar(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst, const Zvp32f* pQuantFwdTable) {
  float b[64];
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      Zvp16s v;
      std::memcpy(&v, reinterpret_cast<const Zvp8u*>(pSrc) + static_cast<std::ptrdiff_t>(y) * srcStep + 2 * x, 2);
      b[8 * y + x] = static_cast<float>(v) - 2048.0f;
    }
  fwd32Scalar(b, b);
  for (int i = 0; i < 64; ++i) {
    float t;
    std::memcpy(&t, pQuantFwdTable + i, 4);
    zvp::dct::st(pDst + i, zvp::dct::sat16(cvtRound(b[i] * t)));
  }
}

void dct_qnt_fwd_8x8_ls(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst, const Zvp32f* pQuantFwdTable) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::qntFwdLsSSE41(pSrc, srcStep, pDst, pQuantFwdTable);
#endif
  zvp::dct::qntFwdLsScalar(pSrc, srcStep, pDst, pQuantFwdTable);
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst,
                                                                  const Zvp16u* pQuantFwdTable) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkStep(srcStep),
                                        zvp::checkPtr(pQuantFwdTable)}))
    return st;
  ownpj_Sub128_8x8_8u16s(pSrc, srcStep, pDst);
  dct_8x8_fwd_16s(pDst, pDst);
  ownsMul_16u16s_PosSfs(pQuantFwdTable, pDst, pDst, 64, 15);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst,
                                                             const Zvp16u* pQuantFwdTable) {
  if (ZvpStatus st = zvp::checkTables({pSrc, pDst, pQuantFwdTable})) return st;
  dct_8x8_fwd_16s(pSrc, pDst);
  ownsMul_16u16s_PosSfs(pQuantFwdTable, pDst, pDst, 64, 15);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantFwdTable) {
  if (ZvpStatus st = zvp::checkTables({pSrcDst, pQuantFwdTable})) return st;
  dct_8x8_fwd_16s(pSrcDst, pSrcDst);
  ownsMul_16u16s_PosSfs(pQuantFwdTable, pSrcDst, pSrcDst, 64, 15);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst,
                                                                   const Zvp32f* pQuantFwdTable) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkStep(srcStep),
                                        zvp::checkPtr(pQuantFwdTable)}))
    return st;
  dct_qnt_fwd_8x8_ls(pSrc, srcStep, pDst, pQuantFwdTable);
  return zvpStatusOk;
}
