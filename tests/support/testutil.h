// Test support: seeded random data, buffers with guard bytes and chosen
// misalignment, and control of the library's thread count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "zvpj.h"

namespace zt {

// A fixed seed per test keeps every failure reproducible.
class Rng {
 public:
  explicit Rng(uint64_t seed) : g_(seed) {}
  int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(g_); }
  uint8_t byte() { return static_cast<uint8_t>(g_()); }
  int16_t s16() { return static_cast<int16_t>(g_()); }
  uint32_t u32() { return static_cast<uint32_t>(g_()); }
  template <class T>
  void fill(T* p, size_t n) {
    for (size_t i = 0; i < n; ++i) {
      T v;
      uint64_t r = g_();
      std::memcpy(&v, &r, sizeof v);
      p[i] = v;
    }
  }
  std::mt19937_64& engine() { return g_; }

 private:
  std::mt19937_64 g_;
};

// Bytes with guard zones on both sides, the payload starting `offset` bytes
// past a 64-byte boundary. The guards hold a pattern that intact() checks.
class Guarded {
 public:
  static constexpr size_t kGuard = 64;
  static constexpr uint8_t kPattern = 0xA5;

  Guarded(size_t bytes, size_t offset = 0) : bytes_(bytes), offset_(offset), store_(bytes + 2 * kGuard + 128) {
    uintptr_t base = reinterpret_cast<uintptr_t>(store_.data()) + kGuard;
    base = (base + 63) & ~uintptr_t{63};
    data_ = reinterpret_cast<uint8_t*>(base) + offset;
    std::memset(store_.data(), kPattern, store_.size());
  }
  uint8_t* data() { return data_; }
  template <class T>
  T* as() { return reinterpret_cast<T*>(data_); }
  size_t size() const { return bytes_; }
  // True when nothing outside [data, data + size) was written.
  bool intact() const {
    const uint8_t* begin = store_.data();
    const uint8_t* end = store_.data() + store_.size();
    for (const uint8_t* p = begin; p < data_; ++p)
      if (*p != kPattern) return false;
    for (const uint8_t* p = data_ + bytes_; p < end; ++p)
      if (*p != kPattern) return false;
    return true;
  }
  std::vector<uint8_t> snapshot() const { return std::vector<uint8_t>(data_, data_ + bytes_); }

 private:
  size_t bytes_, offset_;
  std::vector<uint8_t> store_;
  uint8_t* data_;
};

// Sets the library's thread count for a scope, and restores it after.
class Threads {
 public:
  explicit Threads(int n) : saved_(zvpGetNumThreads()) { zvpSetNumThreads(n); }
  ~Threads() { zvpSetNumThreads(saved_); }
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;

 private:
  int saved_;
};

// Widths worth trying for a row kernel: 1, odd sizes, around every group width.
std::vector<int> interestingWidths();

}  // namespace zt
