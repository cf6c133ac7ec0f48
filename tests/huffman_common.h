// Shared helpers of the Huffman tests: tables from statistics, block
// generators, and views of the opaque records' documented layouts.
#pragma once

#include <array>
#include <cstring>
#include <vector>

#include "ref/huffman_ref.h"
#include "support/testutil.h"
#include "zvpj.h"

namespace ht {

// Opaque records as plain byte arrays of their documented sizes.
struct DecSpec {
  alignas(16) uint8_t b[ZVPJ_DECODE_HUFFMAN_SPEC_SIZE];
  ZvpiDecodeHuffmanSpec* p() { return reinterpret_cast<ZvpiDecodeHuffmanSpec*>(b); }
};
struct EncSpec {
  alignas(16) uint8_t b[ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE];
  ZvpiEncodeHuffmanSpec* p() { return reinterpret_cast<ZvpiEncodeHuffmanSpec*>(b); }
};
struct DecState {
  alignas(16) uint8_t b[ZVPJ_DECODE_HUFFMAN_STATE_SIZE];
  ZvpiDecodeHuffmanState* p() { return reinterpret_cast<ZvpiDecodeHuffmanState*>(b); }
  uint64_t buf() const { uint64_t v; std::memcpy(&v, b, 8); return v; }
  int32_t cnt() const { int32_t v; std::memcpy(&v, b + 8, 4); return v; }
  int32_t blockEnd() const { int32_t v; std::memcpy(&v, b + 16, 4); return v; }
  void set(uint64_t buf, int32_t cnt) { std::memcpy(b, &buf, 8); std::memcpy(b + 8, &cnt, 4); }
};
struct EncState {
  alignas(16) uint8_t b[ZVPJ_ENCODE_HUFFMAN_STATE_SIZE];
  ZvpiEncodeHuffmanState* p() { return reinterpret_cast<ZvpiEncodeHuffmanState*>(b); }
  uint64_t buf() const { uint64_t v; std::memcpy(&v, b, 8); return v; }
  int32_t cnt() const { int32_t v; std::memcpy(&v, b + 8, 4); return v; }
};

// Lists from statistics (reference builder).
inline href::Lists listsFrom(const std::vector<int32_t>& stats) {
  std::vector<int32_t> s(257, 0);
  std::copy(stats.begin(), stats.end(), s.begin());
  href::Lists l;
  uint8_t vals[256] = {};
  href::rawTable(s.data(), l.bits, vals);
  l.vals.assign(vals, vals + l.count());
  return l;
}

// DC table over categories 0..maxCat and AC table over all 256 symbols, with
// random skewed frequencies so that code lengths vary up to 16.
inline href::Lists randomDcLists(zt::Rng& rng, int maxCat = 15) {
  std::vector<int32_t> st(256, 0);
  for (int i = 0; i <= maxCat; ++i) st[i] = 1 + (rng.uniform(0, 3) == 0 ? rng.uniform(0, 100000) : rng.uniform(0, 50));
  return listsFrom(st);
}
inline href::Lists randomAcLists(zt::Rng& rng) {
  std::vector<int32_t> st(256, 0);
  for (int i = 0; i < 256; ++i) st[i] = 1 + (rng.uniform(0, 7) == 0 ? rng.uniform(0, 1000000) : rng.uniform(0, 30));
  return listsFrom(st);
}

struct Tables {
  href::Lists dcL, acL;
  DecSpec dcD, acD;
  EncSpec dcE, acE;
  std::array<uint32_t, 256> dcR{}, acR{};
  href::DecodeRecord dcRec, acRec;
  void build() {
    zvpiDecodeHuffmanSpecInit_JPEG_8u(dcL.bits, dcL.vals.data(), dcD.p());
    zvpiDecodeHuffmanSpecInit_JPEG_8u(acL.bits, acL.vals.data(), acD.p());
    zvpiEncodeHuffmanSpecInit_JPEG_8u(dcL.bits, dcL.vals.data(), dcE.p());
    zvpiEncodeHuffmanSpecInit_JPEG_8u(acL.bits, acL.vals.data(), acE.p());
    href::buildEncodeRecord(dcL.bits, dcL.vals.data(), dcR);
    href::buildEncodeRecord(acL.bits, acL.vals.data(), acR);
    dcRec = href::buildDecodeRecord(dcL.bits, dcL.vals.data());
    acRec = href::buildDecodeRecord(acL.bits, acL.vals.data());
  }
  static Tables random(zt::Rng& rng) {
    Tables t;
    t.dcL = randomDcLists(rng);
    t.acL = randomAcLists(rng);
    t.build();
    return t;
  }
};

// Blocks of varied statistics: 0 sparse, 1 dense, 2 large values, 3 all
// zero AC, 4 runs of 16 and more, 5 last coefficient set.
inline void randomBlock(zt::Rng& rng, int kind, int16_t* b) {
  static const auto zz = href::zigzag();
  std::memset(b, 0, 128);
  b[0] = static_cast<int16_t>(rng.uniform(-16384, 16383));
  switch (kind) {
    case 0:
      for (int i = rng.uniform(0, 6); i > 0; --i) b[zz[rng.uniform(1, 63)]] = static_cast<int16_t>(rng.uniform(-20, 20));
      break;
    case 1:
      for (int k = 1; k < 64; ++k) b[zz[k]] = static_cast<int16_t>(rng.uniform(-300, 300));
      break;
    case 2:
      for (int k = 1; k < 64; ++k)
        if (rng.uniform(0, 2) == 0) b[zz[k]] = static_cast<int16_t>(rng.uniform(-32767, 32767));
      break;
    case 3:
      break;
    case 4:
      b[zz[rng.uniform(17, 40)]] = static_cast<int16_t>(rng.uniform(1, 5));
      b[zz[63]] = static_cast<int16_t>(rng.uniform(0, 1) ? 7 : 0);
      break;
    default:
      b[zz[63]] = static_cast<int16_t>(rng.uniform(-1023, 1023) | 1);
      break;
  }
}

}  // namespace ht
