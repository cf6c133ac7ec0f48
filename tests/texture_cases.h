// Texture test cases shared by the public tests and the interoperability
// test: bit fields of a block, and BC7 blocks of every mode, partition,
// rotation and index selector.
#pragma once

#include <cstdint>
#include <vector>

#include "support/testutil.h"

namespace ztex {

// Writes the n low bits of v at bit pos of a little-endian block.
inline void setBits(uint8_t* b, int pos, int n, unsigned v) {
  for (int i = 0; i < n; ++i) {
    const int p = pos + i;
    b[p / 8] = static_cast<uint8_t>((b[p / 8] & ~(1u << (p % 8))) | (((v >> i) & 1u) << (p % 8)));
  }
}

// A BC7 block of a given mode with random fields.
inline std::vector<uint8_t> bc7Random(zt::Rng& rng, int mode) {
  std::vector<uint8_t> b(16);
  rng.fill(b.data(), 16);
  b[0] = static_cast<uint8_t>((b[0] << (mode + 1)) | (1u << mode));
  return b;
}

// Four random BC7 blocks of every mode, partition, rotation and index
// selector, in that order: fn(block, mode, partition, rotation, selector).
template <class Fn>
void forEveryBc7Case(zt::Rng& rng, Fn fn) {
  static const int partBits[8] = {4, 6, 6, 6, 0, 0, 0, 6};
  for (int mode = 0; mode < 8; ++mode) {
    const int parts = 1 << partBits[mode];
    const int rots = (mode == 4 || mode == 5) ? 4 : 1, sels = mode == 4 ? 2 : 1;
    for (int part = 0; part < parts; ++part)
      for (int rot = 0; rot < rots; ++rot)
        for (int sel = 0; sel < sels; ++sel)
          for (int t = 0; t < 4; ++t) {
            auto b = bc7Random(rng, mode);
            int pos = mode + 1;
            setBits(b.data(), pos, partBits[mode], static_cast<unsigned>(part));
            pos += partBits[mode];
            if (rots > 1) {
              setBits(b.data(), pos, 2, static_cast<unsigned>(rot));
              pos += 2;
            }
            if (sels > 1) setBits(b.data(), pos, 1, static_cast<unsigned>(sel));
            fn(b.data(), mode, part, rot, sel);
          }
  }
}

}  // namespace ztex
