// Tables of the decoding tail: chroma byte to its share of R, G and B.
// Generated at compile time by the rules in sample/colour.h.
#include "sample/colour.h"

alignas(64) constinit const std::array<int32_t, 256> cr_r_tbl = zvp::cc::makeCrR();
alignas(64) constinit const std::array<int32_t, 256> cb_b_tbl = zvp::cc::makeCbB();
alignas(64) constinit const std::array<int32_t, 256> cr_g_tbl = zvp::cc::makeCrG();
alignas(64) constinit const std::array<int32_t, 256> cb_g_tbl = zvp::cc::makeCbG();

static_assert(zvp::cc::makeCrR()[0] == -179 && zvp::cc::makeCrR()[128] == 0 && zvp::cc::makeCrR()[255] == 178);
static_assert(zvp::cc::makeCbB()[0] == -227 && zvp::cc::makeCbB()[255] == 225);
static_assert(zvp::cc::makeCrG()[0] == 5990656 && zvp::cc::makeCbG()[128] == 32768);
