// Reference models of the texture codecs, written from the block formats and
// the encoder rules alone, pixel by pixel and bit by bit. Images are R G B A
// (or Y Co Cg) rows of width * bpp bytes, with no padding.
#pragma once

#include <cstdint>
#include <vector>

namespace ref::tex {

enum class Fmt { DXT1, DXT3, DXT5, BC7 };

// One 4x4 block to 64 bytes of RGBA.
void decodeBlock(Fmt f, const uint8_t* block, uint8_t out[64]);
// A region: the blocks' pixels inside width x height, rows of 4*width bytes.
std::vector<uint8_t> decodeImage(Fmt f, const uint8_t* stream, int width, int height);

// Encoders of 16 contiguous RGBA pixels; the DXT5 block path and wide path.
void encodeDXT1(const uint8_t px[64], uint8_t out[8]);
void encodeDXT3(const uint8_t px[64], uint8_t out[16]);
void encodeDXT5Block(const uint8_t px[64], uint8_t out[16]);
void encodeDXT5Wide(const uint8_t px[64], uint8_t out[16]);
void encodeYCoCg(const uint8_t px[48], uint8_t out[16]);

// Region encoders, source rows of width * bpp bytes (no padding).
std::vector<uint8_t> encodeImage(Fmt f, const uint8_t* src, int width, int height);
std::vector<uint8_t> encodeImageYCoCg(const uint8_t* src, int width, int height);

}  // namespace ref::tex
