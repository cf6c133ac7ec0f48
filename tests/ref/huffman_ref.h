// Reference model of the JPEG Huffman tables, bit-stream state and sequential
// block coders, written from the library's contract with plain loops and
// bit-by-bit reading. Independent of src/: it never calls the library.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

namespace href {

constexpr int kOk = 0, kError = -2, kBadArgument = -5, kNull = -8, kOutOfBuffer = -62, kJpegRange = -63,
              kHuffmanTable = -64;

// Zig-zag order: natural index of stream position k (0..63), walked along
// the anti-diagonals; positions 64 to 71 are guards of 63.
inline std::array<int, 72> zigzag() {
  std::array<int, 72> z{};
  int k = 0;
  for (int s = 0; s <= 14; ++s) {
    if (s % 2 == 0) {  // upwards: row falls
      for (int y = s < 8 ? s : 7; y >= 0 && s - y < 8; --y) z[k++] = y * 8 + (s - y);
    } else {
      for (int x = s < 8 ? s : 7; x >= 0 && s - x < 8; --x) z[k++] = (s - x) * 8 + x;
    }
  }
  for (int i = 64; i < 72; ++i) z[i] = 63;
  return z;
}

inline int bitLen(uint32_t v) {
  int n = 0;
  while (v) ++n, v >>= 1;
  return n;
}

// DHT lists.
struct Lists {
  uint8_t bits[16] = {};
  std::vector<uint8_t> vals;
  int count() const {
    int n = 0;
    for (int i = 0; i < 16; ++i) n += bits[i];
    return n;
  }
};

// Canonical codes of a valid list: code and length per list index.
struct Code {
  uint32_t code;
  int len;
};
inline std::vector<Code> canonical(const Lists& l) {
  std::vector<Code> out;
  uint32_t code = 0;
  for (int len = 1; len <= 16; ++len) {
    for (int i = 0; i < l.bits[len - 1]; ++i) out.push_back({code++, len});
    code <<= 1;
  }
  return out;
}

// Decode record bytes (1644), from the steps of the table builder.
struct DecodeRecord {
  int status = kOk;
  std::array<uint8_t, 1644> bytes{};
  uint16_t symbols(int i) const { return get16(2 * i); }
  uint32_t look(int i) const { uint32_t v; std::memcpy(&v, &bytes[512 + 4 * i], 4); return v; }
  uint16_t minCode(int k) const { return get16(1536 + 2 * k); }
  uint16_t maxCode(int k) const { return get16(1572 + 2 * k); }
  uint16_t valPtr(int k) const { return get16(1608 + 2 * k); }
  uint16_t get16(int off) const { uint16_t v; std::memcpy(&v, &bytes[off], 2); return v; }
  void set16(int off, uint16_t v) { std::memcpy(&bytes[off], &v, 2); }
  void set32(int off, uint32_t v) { std::memcpy(&bytes[off], &v, 4); }
};
DecodeRecord buildDecodeRecord(const uint8_t* bits, const uint8_t* vals);
// Encode record (256 words) and its status.
int buildEncodeRecord(const uint8_t* bits, const uint8_t* vals, std::array<uint32_t, 256>& out);
// Code lengths from statistics (257 readable entries).
int rawTable(const int32_t* stats, uint8_t* bits, uint8_t* vals);

// Symbol decoding by canonical code (valid tables only).
struct CodeMap {
  std::map<std::pair<int, uint32_t>, int> sym;  // (length, code) -> symbol
  std::array<std::pair<uint32_t, int>, 256> enc{};  // symbol -> (code, length)
  explicit CodeMap(const Lists& l) {
    auto c = canonical(l);
    for (size_t i = 0; i < c.size(); ++i) {
      sym[{c[i].len, c[i].code}] = l.vals[i];
      enc[l.vals[i]] = {c[i].code, c[i].len};
    }
  }
};

// ---- Encoding --------------------------------------------------------------

// Plain bit writer with byte stuffing.
struct BitWriter {
  std::vector<uint8_t> out;
  uint32_t acc = 0;
  int n = 0;
  void put(uint32_t v, int len) {
    for (int i = len - 1; i >= 0; --i) {
      acc = (acc << 1) | ((v >> i) & 1);
      if (++n == 8) {
        out.push_back(static_cast<uint8_t>(acc));
        if ((acc & 0xFF) == 0xFF) out.push_back(0);
        acc = 0;
        n = 0;
      }
    }
  }
  void padOnes() {
    if (n) put(0x7F, 8 - n);
  }
};

inline int category(int32_t v) { return bitLen(static_cast<uint32_t>(v < 0 ? -v : v)); }

// Symbols and value bits of one block; false when a symbol has no code.
inline bool encodeBlock(BitWriter& w, const int16_t* blk, int16_t& lastDC, const CodeMap& dc, const CodeMap& ac) {
  static const auto zz = zigzag();
  int32_t d = blk[0] - lastDC;
  lastDC = blk[0];
  int c = category(d);
  if (dc.enc[c].second == 0) return false;
  w.put(dc.enc[c].first, dc.enc[c].second);
  if (c) w.put(static_cast<uint32_t>(d < 0 ? d - 1 : d) & ((1u << c) - 1), c);
  int run = 0;
  for (int k = 1; k < 64; ++k) {
    int32_t v = blk[zz[k]];
    if (v == 0) {
      ++run;
      continue;
    }
    while (run >= 16) {
      if (!ac.enc[0xF0].second) return false;
      w.put(ac.enc[0xF0].first, ac.enc[0xF0].second);
      run -= 16;
    }
    c = category(v);
    int s = (run << 4) + c;
    if (s > 255 || !ac.enc[s].second) return false;
    w.put(ac.enc[s].first, ac.enc[s].second);
    w.put(static_cast<uint32_t>(v < 0 ? v - 1 : v) & ((1u << c) - 1), c);
    run = 0;
  }
  if (run) {
    if (!ac.enc[0].second) return false;
    w.put(ac.enc[0].first, ac.enc[0].second);
  }
  return true;
}

// The stateful encoder's careful model: span form, one write per code/value.
struct EncState {
  uint32_t span = 0;
  int cnt = 0;
};
int writeBits(uint32_t code, int nBits, uint8_t* dst, int len, int& pos, EncState& s);
// Whole-call model of the stateful encoder (status; pos, state, lastDC, dst updated).
int encodeCall(const int16_t* blk, uint8_t* dst, int len, int& pos, int16_t& lastDC,
               const std::array<uint32_t, 256>& dcRec, const std::array<uint32_t, 256>& acRec, EncState& s);
int flushCall(uint8_t* dst, int len, int& pos, EncState& s);
// Direct encoder model: continues the partial last byte at bit position bitPos.
void encodeDirect(const int16_t* blk, uint8_t* dst, int& bitPos, int16_t& lastDC, const std::array<uint32_t, 256>& dcRec,
                  const std::array<uint32_t, 256>& acRec);

// ---- Decoding --------------------------------------------------------------

// A whole scan's entropy data into blocks (valid streams): stops at a marker.
struct ScanReader {
  const uint8_t* p;
  size_t len, pos = 0;
  uint32_t acc = 0;
  int n = 0;
  bool marker = false;
  int bit() {
    if (n == 0) {
      if (marker || pos >= len) return 0;
      uint8_t b = p[pos++];
      if (b == 0xFF) {
        uint8_t nx = p[pos++];
        if (nx != 0) {
          marker = true;
          return 0;
        }
      }
      acc = b;
      n = 8;
    }
    --n;
    return (acc >> n) & 1;
  }
  uint32_t bits(int k) {
    uint32_t v = 0;
    while (k--) v = (v << 1) | bit();
    return v;
  }
  int symbol(const CodeMap& m) {
    uint32_t code = 0;
    for (int len = 1; len <= 16; ++len) {
      code = (code << 1) | bit();
      auto it = m.sym.find({len, code});
      if (it != m.sym.end()) return it->second;
    }
    return -1;
  }
  void byteAlign() { n = 0; }
};
inline int32_t extend(uint32_t v, int s) { return s == 0 ? 0 : (v < (1u << (s - 1)) ? static_cast<int32_t>(v) - (1 << s) + 1 : static_cast<int32_t>(v)); }
inline bool decodeBlock(ScanReader& r, int16_t* blk, int16_t& lastDC, const CodeMap& dc, const CodeMap& ac) {
  static const auto zz = zigzag();
  std::memset(blk, 0, 128);
  int s = r.symbol(dc);
  if (s < 0) return false;
  lastDC = static_cast<int16_t>(lastDC + extend(r.bits(s & 15), s & 15));
  blk[0] = lastDC;
  for (int k = 1; k < 64; ++k) {
    int sym = r.symbol(ac);
    if (sym < 0) return false;
    int run = sym >> 4, sz = sym & 15;
    if (sz == 0) {
      if (run != 15) break;
      k += 15;
      continue;
    }
    k += run;
    blk[zz[k < 71 ? k : 71]] = static_cast<int16_t>(extend(r.bits(sz), sz));
  }
  return true;
}

// Exact model of the stateful decoder (fast path, then careful path),
// including its caller-visible state.
struct DecState {
  uint64_t buf = 0;
  int cnt = 0, eobRun = 0, blockEnd = 0;
};
struct DecCall {
  int status;
  bool fast;  // the fast path finished the block
};
DecCall decodeCall(const uint8_t* src, int len, int& pos, int16_t* dst, int16_t& lastDC, int& marker,
                   const DecodeRecord& dc, const DecodeRecord& ac, DecState& s);
// Exact model of the Direct decoder.
DecCall decodeDirectCall(const uint8_t* src, int& bitPos, int16_t* dst, int16_t& lastDC, int& marker, uint32_t& bits,
                         int& nbits, const DecodeRecord& dc, const DecodeRecord& ac);

}  // namespace href
