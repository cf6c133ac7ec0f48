// PackBits decoder on arbitrary bytes, positions and lengths. The first
// bytes of the input choose the start position and the output length; the
// rest is the encoded data, copied into a buffer of exactly its size plus
// the one byte behind it that a repeat header at the very end reads (a
// caller keeps that byte readable). The decoder's status, position and
// output are compared with the plain reference decoder of the tests; every
// successful decode must pack and decode to the same bytes; and the input
// packed as a row into a room that may run out gives the reference tokens.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "../tests/ref/hdtiff_ref.h"
#include "zvpj.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  const int startSel = data[0];
  const int dstLen = 1 + ((data[1] << 8 | data[2]) % 4096);
  const int flags = data[3];
  data += 4;
  size -= 4;
  if (size == 0) return 0;
  const int srcLen = static_cast<int>(size);
  std::vector<uint8_t> src(data, data + size);
  src.push_back(flags);  // the byte at index srcLen
  // Start positions: mostly 0, sometimes inside, at or past the end.
  int start = 0;
  if (startSel >= 192) start = startSel % (srcLen + 2);
  std::vector<uint8_t> dst(static_cast<size_t>(dstLen));
  int pos = start;
  const ZvpStatus st = zvpiUnpackBitsRow_TIFF_8u_C1(src.data(), &pos, srcLen, dst.data(), dstLen);
  if (st != zvpStatusOk && st != zvpStatusUnderRun) __builtin_trap();
  if (pos < start || pos > srcLen + 1) __builtin_trap();
  const ref::UnpackResult want = ref::unpackBits(src.data(), start, srcLen, dstLen);
  if ((want.status == 0) != (st == zvpStatusOk) || want.pos != pos) __builtin_trap();
  if (!want.out.empty() && std::memcmp(want.out.data(), dst.data(), want.out.size()) != 0) __builtin_trap();
  if (st == zvpStatusOk) {
    // The row packs back and decodes to itself.
    std::vector<uint8_t> enc(static_cast<size_t>(dstLen) * 2 + 2);
    int epos = 0;
    if (zvpiPackBitsRow_TIFF_8u_C1(dst.data(), dstLen, enc.data(), &epos, static_cast<int>(enc.size())) != zvpStatusOk)
      __builtin_trap();
    std::vector<uint8_t> back(static_cast<size_t>(dstLen));
    int dpos = 0;
    if (zvpiUnpackBitsRow_TIFF_8u_C1(enc.data(), &dpos, epos, back.data(), dstLen) != zvpStatusOk) __builtin_trap();
    if (dpos != epos || std::memcmp(back.data(), dst.data(), back.size()) != 0) __builtin_trap();
  }
  // The encoder on the raw input as a row, into a room that may run out.
  std::vector<uint8_t> room(static_cast<size_t>(1 + flags % 64 + srcLen / 2));
  int rpos = 0;
  const ZvpStatus es = zvpiPackBitsRow_TIFF_8u_C1(src.data(), srcLen, room.data(), &rpos, static_cast<int>(room.size()));
  if (es != zvpStatusOk && es != zvpStatusUnderRun) __builtin_trap();
  const ref::PackResult pr = ref::packBitsInto(src.data(), size, room.size());
  if ((pr.status == 0) != (es == zvpStatusOk) || static_cast<size_t>(rpos) != pr.written) __builtin_trap();
  const std::vector<uint8_t> full = ref::packBits(src.data(), size);
  if (rpos > 0 && std::memcmp(full.data(), room.data(), static_cast<size_t>(rpos)) != 0) __builtin_trap();
  return 0;
}
