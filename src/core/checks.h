// Argument tests shared by every family. Each exported function reads as its
// family's order of tests and then one call to its worker:
//
//   if (ZvpStatus st = zvp::checkPairs({{pSrc, srcStep}, {pDst, dstStep}}, roiSize)) return st;
//   return ownpj_Worker(...);
//
// The first failed test decides the status; nothing is touched before.
#pragma once

#include <initializer_list>

#include "zvpj.h"

namespace zvp {

constexpr ZvpStatus checkPtr(const void* p) { return p ? zvpStatusOk : zvpStatusNullPointer; }
constexpr ZvpStatus checkStep(int step) { return step >= 1 ? zvpStatusOk : zvpStatusBadStep; }
constexpr ZvpStatus checkLen(int len) { return len >= 1 ? zvpStatusOk : zvpStatusBadSize; }
constexpr ZvpStatus checkSize(ZvpiSize s) {
  return (s.width >= 1 && s.height >= 1) ? zvpStatusOk : zvpStatusBadSize;
}

// The first status of a list of already evaluated tests that is not Ok.
constexpr ZvpStatus firstFailure(std::initializer_list<ZvpStatus> tests) {
  for (ZvpStatus s : tests)
    if (s != zvpStatusOk) return s;
  return zvpStatusOk;
}

struct PtrStep {
  const void* ptr;
  int step;
};

// "Pairs": each pointer followed at once by its step, then the size.
constexpr ZvpStatus checkPairs(std::initializer_list<PtrStep> bufs, ZvpiSize size) {
  for (const PtrStep& b : bufs) {
    if (!b.ptr) return zvpStatusNullPointer;
    if (b.step < 1) return zvpStatusBadStep;
  }
  return checkSize(size);
}

// "Pairs" without a size (fixed-size blocks: MCU and level-shifting DCT functions).
constexpr ZvpStatus checkPairs(std::initializer_list<PtrStep> bufs) {
  for (const PtrStep& b : bufs) {
    if (!b.ptr) return zvpStatusNullPointer;
    if (b.step < 1) return zvpStatusBadStep;
  }
  return zvpStatusOk;
}

// "Groups": every pointer, then every step, then the size.
constexpr ZvpStatus checkGroups(std::initializer_list<const void*> ptrs,
                                std::initializer_list<int> steps, ZvpiSize size) {
  for (const void* p : ptrs)
    if (!p) return zvpStatusNullPointer;
  for (int s : steps)
    if (s < 1) return zvpStatusBadStep;
  return checkSize(size);
}

// "Rows": pointers, then the length.
constexpr ZvpStatus checkRows(std::initializer_list<const void*> ptrs, int len) {
  for (const void* p : ptrs)
    if (!p) return zvpStatusNullPointer;
  return checkLen(len);
}

// "Tables": pointers only.
constexpr ZvpStatus checkTables(std::initializer_list<const void*> ptrs) {
  for (const void* p : ptrs)
    if (!p) return zvpStatusNullPointer;
  return zvpStatusOk;
}

}  // namespace zvp
