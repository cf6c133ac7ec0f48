// The one row-parallel pattern of the library.
//
// A call spreads the rows of its region over threads only when width times
// height, taken as a wrapping 32-bit signed product, is above 8192 pixels.
// The thread count is asked of the core library on every call, also when the
// loop will stay serial. The region is always opened (a team of one, or a
// serialised region below the threshold); rows are divided statically, one
// contiguous band per thread, and no row is ever cut.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zvpj.h"

namespace zvp {

inline constexpr int32_t kParallelThreshold = 8192;

// width * height as the 32-bit signed product that wraps on overflow.
constexpr int32_t wrappedPixels(ZvpiSize roi) {
  return static_cast<int32_t>(static_cast<uint32_t>(roi.width) * static_cast<uint32_t>(roi.height));
}

// Row y of a region that starts at base with a step in bytes.
template <class T>
inline T* rowPtr(T* base, int step, int y) {
  using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<std::ptrdiff_t>(y) * step);
}

// Calls row(y) for y = 0 .. roi.height - 1, in parallel above the threshold.
template <class RowFn>
inline void parallelRows(ZvpiSize roi, RowFn&& row) {
  const int threads = ownGetNumThreads();
  const int nThreads = threads > 0 ? threads : 1;
  const bool parallel = wrappedPixels(roi) > kParallelThreshold;
  const int height = roi.height;
#pragma omp parallel for num_threads(nThreads) schedule(static) if (parallel)
  for (int y = 0; y < height; ++y) row(y);
}

}  // namespace zvp
