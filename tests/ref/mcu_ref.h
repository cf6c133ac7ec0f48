// Reference model of the MCU functions: plain loops over the pixels of one
// MCU, written from the description of the functions alone.
#pragma once

#include <cstdint>
#include <vector>

namespace ref::mcu {

enum class Samp { S444, S422, S411 };

int width(Samp s);       // pixels: 8 or 16
int height(Samp s);      // pixels: 8 or 16
int lumaBlocks(Samp s);  // 1, 2 or 4

// Block data of one MCU, naturally aligned: Y (and K) runs of 64 * lumaBlocks
// values, one Cb and one Cr block.
struct Blocks {
  std::vector<int16_t> y, cb, cr, k;
  explicit Blocks(Samp s = Samp::S444)
      : y(64 * lumaBlocks(s)), cb(64), cr(64), k(64 * lumaBlocks(s)) {}
};

// Decoding. fast: the arithmetic of the body used for 16-byte aligned blocks;
// otherwise the scalar body.
void toRGB(Samp s, bool fast, bool bgr, const Blocks& b, uint8_t* dst, int step);
void toCMYK(Samp s, bool fast, const Blocks& b, uint8_t* dst, int step);
void toPacked(Samp s, bool is565, const Blocks& b, uint8_t* dst, int step);  // little-endian 16-bit pixels
void sampleUp(Samp s, const Blocks& b, uint8_t* dst, int step);
void join422(const Blocks& b, uint8_t* dst, int step);

// Encoding.
void fromRGB(Samp s, bool fast, bool bgr, const uint8_t* src, int step, Blocks& out);
void fromCMYK(Samp s, bool fast, const uint8_t* src, int step, Blocks& out);
void fromPacked(Samp s, bool is565, const uint8_t* src, int step, Blocks& out);
void sampleDown(Samp s, const uint8_t* src, int step, Blocks& out);
void split422(const uint8_t* src, int step, Blocks& out);

}  // namespace ref::mcu
