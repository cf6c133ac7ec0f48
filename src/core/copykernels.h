// Copy kernels shared by the vector copy and the region copy.
#pragma once

#include <cstdint>

#include "zvpj.h"

namespace zvp {

// Which direction test the block loop uses: the vector copy's or the region copy's.
enum class DirectionRule { Vector, Region };

// Lengths below 64: moves 32, 16, 8, 4 (and 2, for the region copy) and then
// single bytes as the length's bits ask.
void copyShort(const Zvp8u* s, Zvp8u* d, int len, bool twoByteStep);

// Lengths of 64 and more through ordinary stores.
void copyOrdinary(const Zvp8u* s, Zvp8u* d, int64_t len, DirectionRule rule);

}  // namespace zvp
