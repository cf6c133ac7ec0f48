// Reference model of the JPEG level shift, straight from the formulas.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ref {

inline int16_t sub128(uint8_t s) { return static_cast<int16_t>(static_cast<int>(s) - 128); }

inline uint8_t add128(int16_t s) {
  long v = static_cast<long>(s) + 128;
  if (v < 0) v = 0;
  if (v > 255) v = 255;
  return static_cast<uint8_t>(v);
}

// Regions with byte steps; element access through memcpy (any alignment).
inline void sub128Region(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int w, int h) {
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      int16_t v = sub128(src[static_cast<ptrdiff_t>(y) * srcStep + x]);
      std::memcpy(dst + static_cast<ptrdiff_t>(y) * dstStep + 2 * x, &v, 2);
    }
}

inline void add128Region(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int w, int h) {
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      int16_t v;
      std::memcpy(&v, src + static_cast<ptrdiff_t>(y) * srcStep + 2 * x, 2);
      dst[static_cast<ptrdiff_t>(y) * dstStep + x] = add128(v);
    }
}

}  // namespace ref
