// Chroma sampling: row functions, their kernels and the dispatch point.
// Region members (box down with fixed bias, triangle up reading one sample
// beyond each end) and Row members (alternating box bias, triangle with the
// ends treated) share the kernels of their interior.
#pragma once

#include "core/checks.h"
#include "zvpj.h"

// Row functions of the region members (no argument tests).
void ownpj_SampleDownH2V1_JPEG_8u_C1(const Zvp8u* pSrc, Zvp8u* pDst, int dstWidth);
void ownpj_SampleDownH2V2_JPEG_8u_C1(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstWidth);
void ownpj_SampleUpH2V1_JPEG_8u_C1(const Zvp8u* pSrc, Zvp8u* pDst, int dstWidth);
void ownpj_SampleUpH2V2_JPEG_8u_C1(const Zvp8u* pNear, const Zvp8u* pFar, Zvp8u* pDst, int dstWidth);
// Row functions of the Row members (no argument tests).
void ownpj_SampleDownRowH2V1_Box_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst);
void ownpj_SampleDownRowH2V2_Box_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth, Zvp8u* pDst);
void ownpj_SampleUpRowH2V1_Triangle_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst);
void ownpj_SampleUpRowH2V2_Triangle_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth, Zvp8u* pDst);

namespace zvp::ss {

// Kernels over n outputs. The up kernels read s[-1] .. s[(n + 1) / 2]
// (output k from source k / 2 and its neighbour); the box kernels take the
// bias of output 0 from `odd` (Row members: output index parity).
struct Kernels {
  void (*downH2V1)(const Zvp8u* s, Zvp8u* d, int n);
  void (*downH2V2)(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n);
  void (*upH2V1)(const Zvp8u* s, Zvp8u* d, int n);
  void (*upH2V2)(const Zvp8u* near, const Zvp8u* far, Zvp8u* d, int n);
  void (*boxH2V1)(const Zvp8u* s, Zvp8u* d, int n);
  void (*boxH2V2)(const Zvp8u* s, const Zvp8u* t, Zvp8u* d, int n);
};

extern const Kernels kScalar;
#if !defined(ZVP_NO_X86)
extern const Kernels kSSE41;  // pjencss_sse41.cpp
void upH2V1SSE41(const Zvp8u* s, Zvp8u* d, int n);  // pjdecss_sse41.cpp
void upH2V2SSE41(const Zvp8u* near, const Zvp8u* far, Zvp8u* d, int n);
#endif

// The dispatch point of the family (pjencss.cpp).
const Kernels& kernels();

// Region members: source pointer, step, size, then the same for the destination.
inline ZvpStatus checkRegion(const void* pSrc, int srcStep, ZvpiSize srcRoi, const void* pDst, int dstStep,
                             ZvpiSize dstRoi) {
  return firstFailure({checkPtr(pSrc), checkStep(srcStep), checkSize(srcRoi), checkPtr(pDst), checkStep(dstStep),
                       checkSize(dstRoi)});
}

// The formulas, one output each.
inline Zvp8u downH2V1(const Zvp8u* s, int i) { return static_cast<Zvp8u>((s[2 * i] + s[2 * i + 1] + 1) >> 1); }
inline Zvp8u downH2V2(const Zvp8u* s, const Zvp8u* t, int i) {
  return static_cast<Zvp8u>((s[2 * i] + s[2 * i + 1] + t[2 * i] + t[2 * i + 1] + 3) >> 2);
}
inline Zvp8u boxH2V1(const Zvp8u* s, int i) { return static_cast<Zvp8u>((s[2 * i] + s[2 * i + 1] + (i & 1)) >> 1); }
inline Zvp8u boxH2V2(const Zvp8u* s, const Zvp8u* t, int i) {
  return static_cast<Zvp8u>((s[2 * i] + s[2 * i + 1] + t[2 * i] + t[2 * i + 1] + 1 + (i & 1)) >> 2);
}
inline Zvp8u upH2V1(const Zvp8u* s, int k) {
  const int i = k >> 1;
  return static_cast<Zvp8u>((k & 1) ? (3 * s[i] + s[i + 1] + 2) >> 2 : (3 * s[i] + s[i - 1] + 1) >> 2);
}
inline Zvp8u upH2V2(const Zvp8u* n, const Zvp8u* f, int k) {
  const int i = k >> 1;
  const int v = 3 * n[i] + f[i];
  return static_cast<Zvp8u>((k & 1) ? (3 * v + 3 * n[i + 1] + f[i + 1] + 7) >> 4
                                    : (3 * v + 3 * n[i - 1] + f[i - 1] + 8) >> 4);
}

}  // namespace zvp::ss
