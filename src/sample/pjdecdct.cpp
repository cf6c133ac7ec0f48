// Inverse block DCT members: dequantisation, transform, level shift and
// clip of one block, the reduced and downscaling members, and the float
// inverse of the 12-bit path.
#include <cstdint>
#include <cstring>

#include "core/checks.h"
#include "core/cpu.h"
#include "sample/dctfloat.h"

using zvp::dct::invPassT;

using zvp::dct::ld;
using zvp::dct::st;

namespace {

inline int32_t cvtTrunc(float f) {
  if (!(f >= -2147483648.0f && f < 2147483648.0f)) return INT32_MIN;
  return static_cast<int32_t>(f);
}

inline Zvp8u satU8(int16_t v) { return static_cast<Zvp8u>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// Low 16 bits of coefficient times table entry, for `count` elements.
void dequant(const Zvp16s* pSrc, const Zvp16u* pTable, int16_t* out, int count) {
  for (int i = 0; i < count; ++i) {
    Zvp16u q;
    std::memcpy(&q, pTable + i, 2);
    out[i] = static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(ld(pSrc + i)) * q));
  }
}

// +128 with 16-bit saturation, then to unsigned 8 bits, `w` values per row.
void store128(const int16_t* v, int w, Zvp8u* pDst, int dstStep) {
  for (int y = 0; y < w; ++y)
    for (int x = 0; x < w; ++x)
      pDst[static_cast<std::ptrdiff_t>(y) * dstStep + x] = satU8(zvp::dct::sadd(v[w * y + x], 128));
}

}  // namespace

void zvp::dct::inv32Scalar(const Zvp32f* pSrc, Zvp32f* pDst) {
  float b[64];
  std::memcpy(b, pSrc, sizeof b);
  for (int r = 0; r < 8; ++r) invPassT(b + 8 * r, _t_norm_inv + 8 * r);
  for (int c = 0; c < 8; ++c) {
    float col[8];
    for (int i = 0; i < 8; ++i) col[i] = b[8 * i + c];
    invPassT<float>(col, nullptr);
    for (int i = 0; i < 8; ++i) b[8 * i + c] = col[i];
  }
  std::memcpy(pDst, b, sizeof b);
}

void dct_8x8_inv_32f(const Zvp32f* pSrc, Zvp32f* pDst) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::inv32SSE41(pSrc, pDst);
#endif
  zvp::dct::inv32Scalar(pSrc, pDst);
}

void zvp::dct::qntInvLsScalar(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep, const Zvp32f* pQuantInvTable) {
  float b[64];
  for (int i = 0; i < 64; ++i) {
    float t;
    std::memcpy(&t, pQuantInvTable + i, 4);
    b[i] = static_cast<float>(ld(pSrc + i)) * t;
  }
  inv32Scalar(b, b);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      int v = zvp::dct::sat16(cvtTrunc(b[8 * y + x] + 2048.0f));
      v = v < 0 ? 0 : (v > 4095 ? 4095 : v);
      const Zvp16u u = static_cast<Zvp16u>(v);
      std::memcpy(reinterpret_cast<Zvp8u*>(pDst) + static_cast<std::ptrdiff_t>(y) * dstStep + 2 * x, &u, 2);
    }
}

void dct_qnt_inv_8x8_ls(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep, const Zvp32f* pQuantInvTable) {
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) return zvp::dct::qntInvLsSSE41(pSrc, pDst, dstStep, pQuantInvTable);
#endif
  zvp::dct::qntInvLsScalar(pSrc, pDst, dstStep, pQuantInvTable);
}

void dct_quant_inv8x8_1x1_ls(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, const Zvp16u* pQuantInvTable) {
  Zvp16u q;
  std::memcpy(&q, pQuantInvTable, 2);
  const int32_t p = static_cast<int32_t>(ld(pSrc)) * static_cast<int32_t>(q);
  int16_t v = static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(p) >> 3));
  v = static_cast<int16_t>(static_cast<uint16_t>(v + 128));
  const Zvp8u s = satU8(v);
  for (int y = 0; y < 8; ++y) std::memset(pDst + static_cast<std::ptrdiff_t>(y) * dstStep, s, 8);
}

// After the column pass (a shift right by 6) every value lies within
// -512..511, so the saturating +128 of the reduced members is the wrapping one
// of the clip kernel: the 8x8 store goes through it. N (2 or 4) is the corner
// of coefficients used.
template <int N>
void dct_quant_inv8x8_NxN_ls(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, const Zvp16u* pQuantInvTable) {
  static_assert(N == 2 || N == 4);
  alignas(16) int16_t b[64];
#if !defined(ZVP_NO_X86)
  if (zvp::cpuIsa() >= zvp::Isa::SSE41) {
    zvp::dct::invCornerQuantSSE41<N>(pSrc, pQuantInvTable, b);
    return own_8x8_LSClip_16s8u(b, pDst, dstStep, 128, 0, 255);
  }
#endif
  dequant(pSrc, pQuantInvTable, b, 8 * N);  // rows 0 to N - 1
  if (N == 2)
    dct_8x8_inv_2x2_16s(b, b);
  else
    dct_8x8_inv_4x4_16s(b, b);
  own_8x8_LSClip_16s8u(b, pDst, dstStep, 128, 0, 255);
}

// The downscaling members: an NxN block out of the full inverse.
template <int N>
void dct_quant_inv8x8ToNxN_ls(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, const Zvp16u* pQuantInvTable) {
  static_assert(N == 2 || N == 4);
  alignas(16) int16_t b[64];
  ownpj_QuantInv_8x8_16s(pSrc, b, pQuantInvTable);
  int16_t o[N * N];
  if (N == 2)
    dct_8x8To2x2_inv_16s(b, o);
  else
    dct_8x8To4x4_inv_16s(b, o);
  store128(o, N, pDst, dstStep);
}

namespace {
inline ZvpStatus checkInvLS(const void* pSrc, const void* pDst, int dstStep, const void* pTable) {
  return zvp::firstFailure(
      {zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkStep(dstStep), zvp::checkPtr(pTable)});
}
}  // namespace

extern "C" ZVPJ_API ZvpStatus zvpiDCT8x8InvLSClip_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level,
                                                            Zvp8u clipMin, Zvp8u clipMax) {
  if (ZvpStatus st = zvp::firstFailure({zvp::checkPtr(pSrc), zvp::checkPtr(pDst), zvp::checkStep(dstStep)})) return st;
  alignas(16) Zvp16s b[64];
  dct_8x8_inv_16s(pSrc, b);
  own_8x8_LSClip_16s8u(b, pDst, dstStep, level, clipMin, clipMax);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                                  const Zvp16u* pQuantInvTable) {
  if (ZvpStatus st = checkInvLS(pSrc, pDst, dstStep, pQuantInvTable)) return st;
  alignas(32) Zvp16s b[64];
  ownpj_QuantInv_8x8_16s(pSrc, b, pQuantInvTable);
  alignas(16) Zvp16s t[64];
  dct_8x8_inv_16s(b, t);
  own_8x8_LSClip_16s8u(t, pDst, dstStep, 128, 0, 255);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst,
                                                             const Zvp16u* pQuantInvTable) {
  if (ZvpStatus st = zvp::checkTables({pSrc, pDst, pQuantInvTable})) return st;
  ownpj_QuantInv_8x8_16s(pSrc, pDst, pQuantInvTable);
  dct_8x8_inv_16s(pDst, pDst);
  return zvpStatusOk;
}

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable) {
  if (ZvpStatus st = zvp::checkTables({pSrcDst, pQuantInvTable})) return st;
  ownpj_QuantInv_8x8_16s(pSrcDst, pSrcDst, pQuantInvTable);
  dct_8x8_inv_16s(pSrcDst, pSrcDst);
  return zvpStatusOk;
}

#define ZVP_INV_LS_MEMBER(name, worker)                                                                    \
  extern "C" ZVPJ_API ZvpStatus name(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, const Zvp16u* pQuantInvTable) { \
    if (ZvpStatus st = checkInvLS(pSrc, pDst, dstStep, pQuantInvTable)) return st;                         \
    worker(pSrc, pDst, dstStep, pQuantInvTable);                                                           \
    return zvpStatusOk;                                                                                    \
  }

ZVP_INV_LS_MEMBER(zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, dct_quant_inv8x8_1x1_ls)
ZVP_INV_LS_MEMBER(zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, dct_quant_inv8x8_NxN_ls<2>)
ZVP_INV_LS_MEMBER(zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, dct_quant_inv8x8_NxN_ls<4>)
ZVP_INV_LS_MEMBER(zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, dct_quant_inv8x8ToNxN_ls<2>)
ZVP_INV_LS_MEMBER(zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, dct_quant_inv8x8ToNxN_ls<4>)

extern "C" ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep,
                                                                   const Zvp32f* pQuantInvTable) {
  if (ZvpStatus st = checkInvLS(pSrc, pDst, dstStep, pQuantInvTable)) return st;
  dct_qnt_inv_8x8_ls(pSrc, pDst, dstStep, pQuantInvTable);
  return zvpStatusOk;
}
