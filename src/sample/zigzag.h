// The JPEG zig-zag order, the single home of both index tables.
#pragma once

#include <array>
#include <cstdint>

// Indexed by natural position: the zig-zag position of that coefficient.
extern const std::array<int32_t, 64> zigzag_index_Fwd;
// Indexed by zig-zag position: the natural position. Entries 64 to 71 are
// guards of value 63, so that a decoder running up to 8 positions past the
// end of a block on damaged data lands on the last coefficient.
extern const std::array<int32_t, 72> own_pj_izigzag_index;
