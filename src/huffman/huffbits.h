// Small bit helpers of the Huffman coders' fast paths.
#pragma once

#include <cstdint>
#include <cstring>

namespace zvp::huff {

inline uint64_t load64(const uint8_t* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  return v;
}
inline void store64(uint8_t* p, uint64_t v) { std::memcpy(p, &v, 8); }

// Big-endian 8-byte load: the first byte of the stream in bits 63 to 56.
inline uint64_t loadBE64(const uint8_t* p) { return __builtin_bswap64(load64(p)); }
inline void storeBE64(uint8_t* p, uint64_t v) { store64(p, __builtin_bswap64(v)); }

// True when one of the 8 bytes of v is 0xFF.
inline bool hasFF(uint64_t v) {
  uint64_t x = ~v;
  return ((x - 0x0101010101010101ull) & ~x & 0x8080808080808080ull) != 0;
}

}  // namespace zvp::huff
