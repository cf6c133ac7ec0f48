// SSE4.1 kernel of the Huffman encoder: the nonzero mask of a block in
// zig-zag order.
#include "huffman/huffkernels.h"
#include "huffman/zigzagmask.h"

namespace zvp::huff {

uint64_t zigzagMaskSSE41(const Zvp16s* pSrc) { return zigzagNonzeroMask(pSrc); }

}  // namespace zvp::huff
