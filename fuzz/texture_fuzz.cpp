// Arbitrary block streams and region sizes through the four texture decoders
// (every byte pattern is a valid block) and the encoders on the same bytes
// read as pixels. Sizes come from the first bytes; the stream is copied to
// a buffer of exactly the size the region needs, so any overrun is reported.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "zvpj.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  const int w = 1 + data[0] % 37, h = 1 + data[1] % 23;
  const int extra = data[2] % 9;
  const bool negative = data[3] & 1;
  data += 4;
  size -= 4;
  const size_t blocks = static_cast<size_t>((w + 3) / 4) * ((h + 3) / 4);
  const int rowBytes = 4 * w + extra;
  std::vector<uint8_t> dst(static_cast<size_t>(rowBytes) * h);
  Zvp8u* base = negative ? dst.data() + static_cast<size_t>(rowBytes) * (h - 1) : dst.data();
  const int step = negative ? -rowBytes : rowBytes;
  for (int f = 0; f < 4; ++f) {
    const size_t bb = f == 0 ? 8 : 16;
    std::vector<uint8_t> src(blocks * bb);
    for (size_t i = 0; i < src.size(); ++i) src[i] = size ? data[i % size] : 0;
    ZvpStatus st;
    switch (f) {
      case 0: st = zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(src.data(), base, step, {w, h}); break;
      case 1: st = zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(src.data(), base, step, {w, h}); break;
      case 2: st = zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(src.data(), base, step, {w, h}); break;
      default: st = zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(src.data(), base, step, {w, h}); break;
    }
    if (st != zvpStatusOk) __builtin_trap();
  }
  // The decoded pixels, read back as encoder input.
  std::vector<uint8_t> out(blocks * 16);
  if (zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(base, step, {w, h}, out.data()) != zvpStatusOk) __builtin_trap();
  if (zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(base, step, {w, h}, out.data()) != zvpStatusOk) __builtin_trap();
  if (zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(base, step, {w, h}, out.data()) != zvpStatusOk) __builtin_trap();
  if (zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(base, step, {w, h}, out.data()) != zvpStatusOk) __builtin_trap();
  return 0;
}
