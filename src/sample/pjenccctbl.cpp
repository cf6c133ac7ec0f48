// The encoding table: eight runs of 256 products of a byte with the
// fixed-point colour matrix, the rounding and the chroma offset folded in.
// Generated at compile time by the rule in sample/colour.h.
#include "sample/colour.h"

alignas(64) constinit const std::array<int32_t, 2048> cc_table = zvp::cc::makeCc();

static_assert(zvp::cc::makeCc()[255] == 19595 * 255 && zvp::cc::makeCc()[512] == 32768 &&
              zvp::cc::makeCc()[1280 + 255] == 32768 * 255 + 8421375);
