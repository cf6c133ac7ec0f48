// Whole-scan entropy decoding and encoding with the library's sequential
// Huffman coders, over a scan parsed or to be written by jpegio.
#pragma once

#include <cstring>
#include <vector>

#include "jpegio/jpegio.h"
#include "zvpj.h"

namespace scan {

// Blocks per component in raster order, wib x hib of the MCU-padded grid.
struct Blocks {
  std::vector<int> wib, hib;
  std::vector<std::vector<int16_t>> data;
  int16_t* at(size_t c, int bx, int by) { return &data[c][(static_cast<size_t>(by) * wib[c] + bx) * 64]; }
};

inline Blocks allocate(const jpegio::Image& img) {
  jpegio::Geometry g = jpegio::geometry(img);
  Blocks b;
  for (size_t c = 0; c < img.comps.size(); ++c) {
    int w = g.interleaved ? g.mcusX * img.comps[c].h : g.widthInBlocks[c];
    int h = g.interleaved ? g.mcusY * img.comps[c].v : g.heightInBlocks[c];
    b.wib.push_back(w);
    b.hib.push_back(h);
    b.data.emplace_back(static_cast<size_t>(w) * h * 64, 0);
  }
  return b;
}

// Calls f(component, bx, by, mcuIndex) for every block of the scan in order.
template <class F>
void walk(const jpegio::Image& img, F f) {
  jpegio::Geometry g = jpegio::geometry(img);
  int mcu = 0;
  for (int my = 0; my < g.mcusY; ++my)
    for (int mx = 0; mx < g.mcusX; ++mx, ++mcu) {
      if (g.interleaved) {
        for (int ci : img.scanComps) {
          const jpegio::Component& c = img.comps[static_cast<size_t>(ci)];
          for (int y = 0; y < c.v; ++y)
            for (int x = 0; x < c.h; ++x) f(ci, mx * c.h + x, my * c.v + y, mcu);
        }
      } else {
        f(img.scanComps[0], mx, my, mcu);
      }
    }
}

// The symbol list of a table (never null, also when empty).
inline const uint8_t* vals(const jpegio::HuffTable& t) {
  static const uint8_t none[1] = {0};
  return t.vals.empty() ? none : t.vals.data();
}

struct DecTables {
  std::vector<std::vector<uint8_t>> dc, ac;  // 1644-byte records
};
inline bool buildDecTables(const jpegio::Image& img, DecTables& t) {
  t.dc.assign(4, std::vector<uint8_t>(ZVPJ_DECODE_HUFFMAN_SPEC_SIZE));
  t.ac.assign(4, std::vector<uint8_t>(ZVPJ_DECODE_HUFFMAN_SPEC_SIZE));
  for (int i = 0; i < 4; ++i) {
    if (img.dc[i].present &&
        zvpiDecodeHuffmanSpecInit_JPEG_8u(img.dc[i].bits, vals(img.dc[i]),
                                          reinterpret_cast<ZvpiDecodeHuffmanSpec*>(t.dc[i].data())))
      return false;
    if (img.ac[i].present &&
        zvpiDecodeHuffmanSpecInit_JPEG_8u(img.ac[i].bits, vals(img.ac[i]),
                                          reinterpret_cast<ZvpiDecodeHuffmanSpec*>(t.ac[i].data())))
      return false;
  }
  return true;
}

// Decodes the whole scan; returns the first failing status (0 on success).
inline int decode(const jpegio::Image& img, const DecTables& t, Blocks& out) {
  alignas(16) uint8_t st[ZVPJ_DECODE_HUFFMAN_STATE_SIZE];
  auto* state = reinterpret_cast<ZvpiDecodeHuffmanState*>(st);
  zvpiDecodeHuffmanStateInit_JPEG_8u(state);
  const uint8_t* src = img.entropy.data();
  int len = static_cast<int>(img.entropy.size());
  int pos = 0, marker = 0, lastMcu = 0, status = 0;
  int16_t dc[4] = {};
  walk(img, [&](int ci, int bx, int by, int mcu) {
    if (status) return;
    if (mcu != lastMcu && img.restartInterval && mcu % img.restartInterval == 0) {
      if (!marker) {  // the interval's marker not read yet: skip to behind it
        while (pos + 1 < len && !(src[pos] == 0xFF && src[pos + 1] >= 0xD0 && src[pos + 1] <= 0xD7)) ++pos;
        pos += 2;
      }
      marker = 0;
      zvpiDecodeHuffmanStateInit_JPEG_8u(state);
      std::memset(dc, 0, sizeof dc);
    }
    lastMcu = mcu;
    const jpegio::Component& c = img.comps[static_cast<size_t>(ci)];
    status = zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src, len, &pos, out.at(static_cast<size_t>(ci), bx, by), &dc[ci],
                                                &marker,
                                                reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(t.dc[c.td].data()),
                                                reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(t.ac[c.ta].data()),
                                                state);
  });
  return status;
}

// Encodes the whole scan into img.entropy with restart markers; returns the
// first failing status.
inline int encode(jpegio::Image& img, Blocks& in, std::vector<uint8_t>& buf) {
  std::vector<std::vector<uint8_t>> dcT(4, std::vector<uint8_t>(ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE)),
      acT(4, std::vector<uint8_t>(ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE));
  for (int i = 0; i < 4; ++i) {
    if (img.dc[i].present)
      zvpiEncodeHuffmanSpecInit_JPEG_8u(img.dc[i].bits, vals(img.dc[i]),
                                        reinterpret_cast<ZvpiEncodeHuffmanSpec*>(dcT[i].data()));
    if (img.ac[i].present)
      zvpiEncodeHuffmanSpecInit_JPEG_8u(img.ac[i].bits, vals(img.ac[i]),
                                        reinterpret_cast<ZvpiEncodeHuffmanSpec*>(acT[i].data()));
  }
  std::vector<uint8_t> st(ZVPJ_ENCODE_HUFFMAN_STATE_SIZE);
  auto* state = reinterpret_cast<ZvpiEncodeHuffmanState*>(st.data());
  zvpiEncodeHuffmanStateInit_JPEG_8u(state);
  uint8_t* dst = buf.data();
  int len = static_cast<int>(buf.size());
  int pos = 0, lastMcu = 0, status = 0, rst = 0;
  int16_t dc[4] = {};
  walk(img, [&](int ci, int bx, int by, int mcu) {
    if (status) return;
    if (mcu != lastMcu && img.restartInterval && mcu % img.restartInterval == 0) {
      status = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, len, &pos, nullptr, nullptr, nullptr, state, 1);
      if (status || pos + 2 > len) return;
      dst[pos++] = 0xFF;
      dst[pos++] = static_cast<uint8_t>(0xD0 + (rst++ & 7));
      std::memset(dc, 0, sizeof dc);
    }
    lastMcu = mcu;
    const jpegio::Component& c = img.comps[static_cast<size_t>(ci)];
    status = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(in.at(static_cast<size_t>(ci), bx, by), dst, len, &pos, &dc[ci],
                                                reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(dcT[c.td].data()),
                                                reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(acT[c.ta].data()),
                                                state, 0);
  });
  if (!status) status = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, len, &pos, nullptr, nullptr, nullptr, state, 1);
  img.entropy.assign(dst, dst + pos);
  return status;
}

}  // namespace scan
