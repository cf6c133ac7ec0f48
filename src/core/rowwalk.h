// The walk of a row whose 16-bit side decides alignment: element by element
// when that side sits on an odd address; otherwise element by element up to
// its 16-byte boundary (unless the row ends first), then groups of 32, 16, 8
// and 4 elements, and a single-element tail.
#pragma once

#include <cstdint>

namespace zvp {

template <class One, class Group>
inline void walk16(const void* side16, int len, One&& one, Group&& group) {
  const uintptr_t a = reinterpret_cast<uintptr_t>(side16);
  int i = 0;
  if (a & 1) {
    for (; i < len; ++i) one(i);
    return;
  }
  int lead = static_cast<int>(((16 - (a & 15)) & 15) >> 1);
  if (lead > len) lead = len;
  for (; i < lead; ++i) one(i);
  for (; i + 32 <= len; i += 32) group.template operator()<32>(i);
  if (i + 16 <= len) { group.template operator()<16>(i); i += 16; }
  if (i + 8 <= len) { group.template operator()<8>(i); i += 8; }
  if (i + 4 <= len) { group.template operator()<4>(i); i += 4; }
  for (; i < len; ++i) one(i);
}

}  // namespace zvp
