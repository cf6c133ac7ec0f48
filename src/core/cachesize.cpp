// Cache size from the processor's cache descriptors.
#include <atomic>
#include <cstring>

#include "core/memory.h"

#if !defined(ZVP_NO_X86)
#include <cpuid.h>
#endif

namespace zvp {
namespace {

struct CacheRow {
  uint8_t descriptor;
  uint8_t code;  // size = (code >> 4) << ((code & 15) + 18)
};

// In order of falling size, so that the largest cache named wins.
// A row with descriptor 0 ends the table.
constexpr CacheRow TableCacheSize[] = {
    {0xEC, 0xC3},                                                                  // 24 MiB
    {0xEB, 0x93},                                                                  // 18 MiB
    {0x4D, 0x16},                                                                  // 16 MiB
    {0xEA, 0x34}, {0x4C, 0x34},                                                    // 12 MiB
    {0xE4, 0x15}, {0xDE, 0x15}, {0x4B, 0x15}, {0x47, 0x15},                        // 8 MiB
    {0x4E, 0x33}, {0x4A, 0x33},                                                    // 6 MiB
    {0xE3, 0x14}, {0xDD, 0x14}, {0xD8, 0x14}, {0x49, 0x14}, {0x29, 0x14}, {0x46, 0x14},  // 4 MiB
    {0x48, 0x32},                                                                  // 3 MiB
    {0xE2, 0x13}, {0xDC, 0x13}, {0xD7, 0x13}, {0xD2, 0x13},
    {0x25, 0x13}, {0x7D, 0x13}, {0x85, 0x13}, {0x45, 0x13},                        // 2 MiB
    {0xD6, 0x12}, {0xD1, 0x12}, {0x23, 0x12}, {0x87, 0x12},
    {0x7C, 0x12}, {0x78, 0x12}, {0x84, 0x12}, {0x44, 0x12},                        // 1 MiB
    {0xD0, 0x11}, {0x22, 0x11}, {0x7B, 0x11}, {0x80, 0x11}, {0x86, 0x11},
    {0x3E, 0x11}, {0x7F, 0x11}, {0x83, 0x11}, {0x43, 0x11},                        // 512 KiB
    {0x00, 0x00},
};

constexpr int rowSize(uint8_t code) { return (code >> 4) << ((code & 15) + 18); }
static_assert(rowSize(0xC3) == 24 << 20 && rowSize(0x93) == 18 << 20 && rowSize(0x16) == 16 << 20);
static_assert(rowSize(0x34) == 12 << 20 && rowSize(0x15) == 8 << 20 && rowSize(0x33) == 6 << 20);
static_assert(rowSize(0x14) == 4 << 20 && rowSize(0x32) == 3 << 20 && rowSize(0x13) == 2 << 20);
static_assert(rowSize(0x12) == 1 << 20 && rowSize(0x11) == 512 << 10);

std::atomic<int> g_override{-1};

}  // namespace

int cacheSizeFromDescriptors(const char vendor[12], const uint32_t regs[4]) {
  // The descriptors are defined by one maker only.
  if (std::memcmp(vendor, "GenuineIntel", 12) != 0) return 0;
  if ((regs[0] & 0xFF) != 1) return 0;
  uint8_t bytes[16];
  int n = 0;
  for (int r = 0; r < 4; ++r) {
    if (regs[r] & 0x80000000u) continue;
    for (int b = (r == 0 ? 1 : 0); b < 4; ++b) bytes[n++] = static_cast<uint8_t>(regs[r] >> (8 * b));
  }
  for (const CacheRow& row : TableCacheSize) {
    if (row.descriptor == 0) return 0;
    for (int i = 0; i < n; ++i)
      if (bytes[i] == row.descriptor) return rowSize(row.code);
  }
  return 0;
}

int cacheSizeByDescriptor() {
  const int forced = g_override.load(std::memory_order_relaxed);
  if (forced >= 0) return forced;
#if defined(ZVP_NO_X86)
  return 0;
#else
  unsigned a, b, c, d;
  if (!__get_cpuid(0, &a, &b, &c, &d)) return 0;
  char vendor[12];
  std::memcpy(vendor + 0, &b, 4);
  std::memcpy(vendor + 4, &d, 4);
  std::memcpy(vendor + 8, &c, 4);
  if (a < 2) return 0;
  __cpuid(2, a, b, c, d);
  const uint32_t regs[4] = {a, b, c, d};
  return cacheSizeFromDescriptors(vendor, regs);
#endif
}

void setCacheSizeOverride(int bytes) { g_override.store(bytes < 0 ? -1 : bytes, std::memory_order_relaxed); }

}  // namespace zvp
