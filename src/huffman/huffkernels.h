// Kernels of the Huffman encoder's fast path, chosen at the family's one
// dispatch point (pjenchuff.cpp).
#pragma once

#include <cstdint>

#include "zvpj.h"

namespace zvp::huff {

// Bit k set when the coefficient at zig-zag position k (0 to 63) is nonzero.
using ZigzagMaskFn = uint64_t (*)(const Zvp16s* pSrc);
uint64_t zigzagMaskScalar(const Zvp16s* pSrc);
#if !defined(ZVP_NO_X86)
uint64_t zigzagMaskSSE41(const Zvp16s* pSrc);
#endif

}  // namespace zvp::huff
