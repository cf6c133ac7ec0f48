// Fuzzer of the Huffman family: arbitrary table lists into the table
// builders, arbitrary bytes into every decoder (the Direct one with the
// stream ended by a marker, as its callers guarantee), arbitrary blocks and
// statistics into the encoders and the length builder.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <algorithm>
#include <vector>

#include "zvpj.h"

namespace {

struct Input {
  const uint8_t* p;
  size_t n;
  uint8_t byte() {
    if (!n) return 0;
    --n;
    return *p++;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  uint8_t mode = in.byte();

  // Two tables from the input: counts and symbols as a DHT carries them.
  alignas(16) uint8_t dcRec[ZVPJ_DECODE_HUFFMAN_SPEC_SIZE], acRec[ZVPJ_DECODE_HUFFMAN_SPEC_SIZE];
  alignas(16) uint8_t dcEnc[ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE], acEnc[ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE];
  uint8_t bits[2][16], vals[2][256];
  for (int t = 0; t < 2; ++t) {
    for (int i = 0; i < 16; ++i) bits[t][i] = (mode & 0x80) ? in.byte() : static_cast<uint8_t>(in.byte() & 0x1F);
    for (int i = 0; i < 256; ++i) vals[t][i] = static_cast<uint8_t>(i);
    int nv = in.byte();
    for (int i = 0; i < nv; ++i) vals[t][i] = in.byte();
  }
  // Records are used whatever the builders answer: a failed build leaves a
  // partly filled record, which must still be safe to decode with.
  zvpiDecodeHuffmanSpecInit_JPEG_8u(bits[0], vals[0], reinterpret_cast<ZvpiDecodeHuffmanSpec*>(dcRec));
  zvpiDecodeHuffmanSpecInit_JPEG_8u(bits[1], vals[1], reinterpret_cast<ZvpiDecodeHuffmanSpec*>(acRec));
  zvpiEncodeHuffmanSpecInit_JPEG_8u(bits[0], vals[0], reinterpret_cast<ZvpiEncodeHuffmanSpec*>(dcEnc));
  zvpiEncodeHuffmanSpecInit_JPEG_8u(bits[1], vals[1], reinterpret_cast<ZvpiEncodeHuffmanSpec*>(acEnc));
  auto* dcD = reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(dcRec);
  auto* acD = reinterpret_cast<const ZvpiDecodeHuffmanSpec*>(acRec);
  auto* dcE = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(dcEnc);
  auto* acE = reinterpret_cast<const ZvpiEncodeHuffmanSpec*>(acEnc);

  std::vector<uint8_t> rest(in.p, in.p + in.n);
  alignas(16) int16_t blk[64 + 16];

  switch (mode & 3) {
    case 0: {  // stateful decoder over an exact-size buffer
      std::vector<uint8_t> src(rest);
      alignas(16) uint8_t st[ZVPJ_DECODE_HUFFMAN_STATE_SIZE];
      auto* state = reinterpret_cast<ZvpiDecodeHuffmanState*>(st);
      zvpiDecodeHuffmanStateInit_JPEG_8u(state);
      int pos = 0, marker = 0;
      int16_t dc = 0;
      for (int i = 0; i < 400 && pos < static_cast<int>(src.size()); ++i) {
        ZvpStatus s = zvpiDecodeHuffman8x8_JPEG_1u16s_C1(src.empty() ? reinterpret_cast<const uint8_t*>(blk) : src.data(),
                                                         static_cast<int>(src.size()), &pos, blk, &dc, &marker, dcD,
                                                         acD, state);
        if (s != zvpStatusOk || marker) {  // resume after it, as a tolerant application would
          marker = 0;
          zvpiDecodeHuffmanStateInit_JPEG_8u(state);
          if (s != zvpStatusOk) ++pos;
        }
      }
      break;
    }
    case 1: {  // Direct decoder, the stream ended by a marker
      std::vector<uint8_t> src(rest);
      src.push_back(0xFF);
      src.push_back(0xD9);
      int bitPos = 0, marker = 0, nb = 0;
      uint32_t pre = 0;
      int16_t dc = 0;
      for (int i = 0; i < 400 && marker == 0; ++i) {
        ZvpStatus s = zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src.data(), &bitPos, blk, &dc, &marker, &pre, &nb, dcD,
                                                                acD);
        if (s != zvpStatusOk) break;
      }
      break;
    }
    case 2: {  // encoders with arbitrary blocks
      std::vector<uint8_t> dst(static_cast<size_t>(in.byte()) * 8 + 1);
      std::vector<uint8_t> direct(64 * 1024);
      std::vector<uint8_t> st(ZVPJ_ENCODE_HUFFMAN_STATE_SIZE);
      auto* state = reinterpret_cast<ZvpiEncodeHuffmanState*>(st.data());
      zvpiEncodeHuffmanStateInit_JPEG_8u(state);
      int pos = 0, bitPos = 0;
      int16_t dc = 0, dc2 = 0;
      size_t off = 0;
      for (int i = 0; i < 64 && off + 128 <= rest.size(); ++i, off += 128) {
        std::memcpy(blk, &rest[off], 128);
        ZvpStatus s = zvpiEncodeHuffman8x8_JPEG_16s1u_C1(blk, dst.data(), static_cast<int>(dst.size()), &pos, &dc, dcE,
                                                         acE, state, 0);
        if (s != zvpStatusOk) {
          pos = 0;
          zvpiEncodeHuffmanStateInit_JPEG_8u(state);
        }
        if (bitPos < 60 * 1024 * 8)
          zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, direct.data(), &bitPos, &dc2, dcE, acE);
      }
      zvpiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst.data(), static_cast<int>(dst.size()), &pos, nullptr, nullptr,
                                         nullptr, state, 1);
      break;
    }
    default: {  // code lengths from arbitrary statistics
      std::vector<int32_t> stats(257, 0);
      if (!rest.empty()) std::memcpy(stats.data(), rest.data(), std::min(rest.size(), stats.size() * 4));
      uint8_t lb[16], lv[256];
      if (zvpiEncodeHuffmanRawTableInit_JPEG_8u(stats.data(), lb, lv) == zvpStatusOk) {
        alignas(16) uint8_t rec[ZVPJ_DECODE_HUFFMAN_SPEC_SIZE];
        zvpiDecodeHuffmanSpecInit_JPEG_8u(lb, lv, reinterpret_cast<ZvpiDecodeHuffmanSpec*>(rec));
        zvpiEncodeHuffmanSpecInit_JPEG_8u(lb, lv, reinterpret_cast<ZvpiEncodeHuffmanSpec*>(rec));
      }
      break;
    }
  }
  return 0;
}
