// A small JPEG marker reader and writer for tests and benchmarks: baseline
// frames, DQT, DHT, DRI, one scan. Not library code: the library parses no files.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace jpegio {

struct Component {
  int id = 0, h = 1, v = 1, tq = 0;
  int td = 0, ta = 0;  // table selectors of the scan
};

struct HuffTable {
  bool present = false;
  uint8_t bits[16] = {};
  std::vector<uint8_t> vals;
};

struct Image {
  int width = 0, height = 0;
  std::vector<Component> comps;
  std::array<std::array<uint16_t, 64>, 4> quant{};  // zig-zag order as in DQT
  HuffTable dc[4], ac[4];
  int restartInterval = 0;
  std::vector<int> scanComps;     // indices into comps, in scan order
  std::vector<uint8_t> entropy;   // entropy-coded segment with its RST markers, up to the next non-RST marker
};

// Parses a baseline (or extended sequential, 8-bit) JPEG with one scan.
// Returns an empty string on success, else what went wrong.
std::string read(const std::vector<uint8_t>& file, Image& img);

// Writes SOI, DQT, SOF0, DHT, DRI (when set), SOS, the entropy data and EOI.
std::vector<uint8_t> write(const Image& img);

// Geometry of the scan: MCU counts and blocks per MCU per component.
struct Geometry {
  int hmax = 1, vmax = 1;
  int mcusX = 0, mcusY = 0;
  // Per component: blocks across and down that hold image data.
  std::vector<int> widthInBlocks, heightInBlocks;
  bool interleaved = false;
};
Geometry geometry(const Image& img);

}  // namespace jpegio
