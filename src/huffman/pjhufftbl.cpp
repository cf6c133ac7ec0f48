// Huffman table records: decode and encode tables from DHT lists, the code
// lengths of optimised tables from symbol frequencies, and the constant tables
// that the coders share.
#include <array>
#include <cstring>

#include "core/checks.h"
#include "core/memory.h"
#include "huffman/huffrecords.h"

namespace {

constexpr int bitLength(uint32_t v) {
  int n = 0;
  while (v) {
    ++n;
    v >>= 1;
  }
  return n;
}

template <size_t N, class F>
constexpr std::array<int32_t, N> fillBy(F f) {
  std::array<int32_t, N> t{};
  for (size_t i = 0; i < N; ++i) t[i] = f(static_cast<int32_t>(i));
  return t;
}

constexpr auto kCsize = fillBy<256>([](int32_t i) { return bitLength(static_cast<uint32_t>(i)); });
constexpr auto kEobsize = fillBy<512>([](int32_t i) { return i <= 1 ? 0 : bitLength(static_cast<uint32_t>(i)) - 1; });
constexpr auto kLowest = fillBy<16>([](int32_t i) { return i == 0 ? 0 : 1 - (1 << i); });
constexpr auto kTest = fillBy<16>([](int32_t i) { return i == 0 ? 0 : (1 << (i - 1)); });

static_assert(kCsize[0] == 0 && kCsize[1] == 1 && kCsize[3] == 2 && kCsize[128] == 8 && kCsize[255] == 8);
static_assert(kEobsize[1] == 0 && kEobsize[2] == 1 && kEobsize[511] == 8);
static_assert(kLowest[1] == -1 && kLowest[15] == -32767);
static_assert(kTest[1] == 1 && kTest[15] == 16384);

// Expands the 16 counts into a zero-terminated list of code lengths.
// Returns the number of codes, or -1 when there are more than 256.
int expandLengths(const Zvp8u* pListBits, uint32_t* lens) {
  int p = 0;
  for (int length = 1; length <= 16; ++length) {
    int n = pListBits[length - 1];
    if (p + n > 256) return -1;
    for (int i = 0; i < n; ++i) lens[p++] = static_cast<uint32_t>(length);
  }
  lens[p] = 0;
  return p;
}

}  // namespace

extern const std::array<int32_t, 256> own_pj_csize = kCsize;
extern const std::array<int32_t, 512> own_pj_eobsize = kEobsize;
extern const std::array<int32_t, 16> own_pj_lowest_coef = kLowest;
extern const std::array<int32_t, 16> own_pj_extend_offset = kLowest;
extern const std::array<int32_t, 16> own_pj_extend_test = kTest;
extern const std::array<int32_t, 16> own_pj_twoexpnminusone = kTest;

namespace zvp::huff {
int category(int32_t v) {
  uint32_t a = v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
  if (a < 256) return own_pj_csize[a];
  if (a < 65536) return own_pj_csize[a >> 8] + 8;
  return bitLength(a);
}
}  // namespace zvp::huff

ZvpStatus ownpj_DecodeHuffmanSpecInit(const Zvp8u* pListBits, const Zvp8u* pListVals, ZvpiDecodeHuffmanSpec* pSpec) {
  std::memset(static_cast<void*>(pSpec), 0, sizeof *pSpec);
  uint32_t lens[257] = {};
  uint32_t codes[257] = {};
  if (expandLengths(pListBits, lens) < 0) return zvpStatusHuffmanTable;

  if (lens[0] != 0) {
    uint32_t code = 0;
    uint32_t si = lens[0];
    int p = 0;
    while (lens[p]) {
      while (lens[p] == si) {
        if (p > 256) return zvpStatusHuffmanTable;
        codes[p++] = code++;
      }
      code <<= 1;
      ++si;
    }
  }

  int p = 0;
  for (int k = 1; k <= 16; ++k) {
    int n = pListBits[k - 1];
    if (n == 0) {
      pSpec->maxCode[k] = 0xFFFF;
      continue;
    }
    pSpec->valPtr[k] = static_cast<uint16_t>(p);
    pSpec->minCode[k] = static_cast<uint16_t>(codes[p]);
    for (int i = 0; i < n; ++i, ++p) {
      if (p > 255) return zvpStatusHuffmanTable;
      pSpec->symbols[p] = pListVals[p];
    }
    pSpec->maxCode[k] = static_cast<uint16_t>(codes[p - 1]);
  }
  pSpec->maxCode[17] = 0xFFFF;

  // 8-bit look-ahead. An index of 256 passes the test on purpose: that one
  // store lands just behind the array, on minCode[0] and minCode[1].
  unsigned char* look = reinterpret_cast<unsigned char*>(pSpec) + offsetof(ZvpiDecodeHuffmanSpec, lookAhead);
  p = 0;
  for (int k = 1; k <= 8; ++k) {
    for (int n = pListBits[k - 1]; n > 0; --n, ++p) {
      uint64_t e = static_cast<uint64_t>(codes[p]) << (8 - k);
      uint32_t entry = (static_cast<uint32_t>(k) << 16) | pListVals[p];
      for (uint64_t j = 0; j < (1u << (8 - k)); ++j) {
        uint64_t idx = e + j;
        if (idx > 256) return zvpStatusHuffmanTable;
        std::memcpy(look + 4 * idx, &entry, 4);
      }
    }
  }
  return zvpStatusOk;
}

ZvpStatus ownpj_EncodeHuffmanSpecInit(const Zvp8u* pListBits, const Zvp8u* pListVals, ZvpiEncodeHuffmanSpec* pSpec) {
  std::memset(static_cast<void*>(pSpec), 0, sizeof *pSpec);
  uint32_t lens[257] = {};
  uint32_t codes[257] = {};
  int count = expandLengths(pListBits, lens);
  if (count < 0) return zvpStatusHuffmanTable;

  uint32_t code = 0;
  uint32_t si = lens[0];
  int p = 0;
  while (lens[p]) {
    while (lens[p] == si) codes[p++] = code++;
    if (code >= (1u << si)) return zvpStatusHuffmanTable;
    code <<= 1;
    ++si;
  }
  for (int i = 0; i < count; ++i) pSpec->code[pListVals[i]] = (lens[i] << 16) | (codes[i] & 0xFFFF);
  return zvpStatusOk;
}

ZvpStatus ownpj_EncodeHuffmanRawTableInit(const Zvp32s* pStatistics, Zvp8u* pListBits, Zvp8u* pListVals) {
  int32_t freq[257];
  std::memcpy(freq, pStatistics, sizeof freq);
  freq[256] = 1;
  int32_t codesize[257] = {};
  int32_t others[257];
  for (int32_t& o : others) o = -1;
  uint8_t bits[33] = {};

  for (;;) {
    int c1 = -1;
    int32_t v = 1000000000;
    for (int i = 0; i <= 256; ++i)
      if (freq[i] != 0 && freq[i] <= v) {
        v = freq[i];
        c1 = i;
      }
    int c2 = -1;
    v = 1000000000;
    for (int i = 0; i <= 256; ++i)
      if (freq[i] != 0 && freq[i] <= v && i != c1) {
        v = freq[i];
        c2 = i;
      }
    if (c2 < 0) break;
    // Frequencies add with 32-bit wrap.
    freq[c1] = static_cast<int32_t>(static_cast<uint32_t>(freq[c1]) + static_cast<uint32_t>(freq[c2]));
    freq[c2] = 0;
    ++codesize[c1];
    while (others[c1] >= 0) {
      c1 = others[c1];
      ++codesize[c1];
    }
    others[c1] = c2;
    ++codesize[c2];
    while (others[c2] >= 0) {
      c2 = others[c2];
      ++codesize[c2];
    }
  }

  for (int i = 0; i <= 256; ++i) {
    if (codesize[i] == 0) continue;
    if (codesize[i] > 32) return zvpStatusHuffmanTable;
    ++bits[codesize[i]];
  }

  // Limit lengths to 16. The bounds below are only reachable with counts that
  // no binary tree of 257 leaves gives (8-bit counts wrapped by negative
  // frequencies); they end the build with a table error instead of looping.
  for (int i = 32; i > 16; --i) {
    int guard = 0;
    while (bits[i] > 0) {
      int j = i - 2;
      while (j > 0 && bits[j] == 0) --j;
      if (j <= 0 || ++guard > 4096) return zvpStatusHuffmanTable;
      bits[i] = static_cast<uint8_t>(bits[i] - 2);
      bits[i - 1] = static_cast<uint8_t>(bits[i - 1] + 1);
      bits[j + 1] = static_cast<uint8_t>(bits[j + 1] + 2);
      bits[j] = static_cast<uint8_t>(bits[j] - 1);
    }
  }

  // Drop the reserved code from the longest length that has codes.
  for (int i = 16; i >= 1; --i)
    if (bits[i] != 0) {
      --bits[i];
      break;
    }

  for (int i = 1; i <= 16; ++i) pListBits[i - 1] = bits[i];
  int p = 0;
  for (int i = 1; i <= 32; ++i)
    for (int j = 0; j < 256; ++j)
      if (codesize[j] == i) pListVals[p++] = static_cast<Zvp8u>(j);
  return zvpStatusOk;
}

namespace {

// The members shared by the decoder and the encoder table records: size,
// init, init into fresh memory, free. One body each, over the record type.
template <int Size>
ZvpStatus specBufSize(int* pSize) {
  if (!pSize) return zvpStatusNullPointer;
  *pSize = Size;
  return zvpStatusOk;
}

template <class Spec, ZvpStatus (*Init)(const Zvp8u*, const Zvp8u*, Spec*)>
ZvpStatus specInit(const Zvp8u* pListBits, const Zvp8u* pListVals, Spec* pSpec) {
  if (ZvpStatus st = zvp::checkTables({pListBits, pListVals, pSpec})) return st;
  return Init(pListBits, pListVals, pSpec);
}

template <class Spec, int Size, ZvpStatus (*Init)(const Zvp8u*, const Zvp8u*, Spec*)>
ZvpStatus specInitAlloc(const Zvp8u* pListBits, const Zvp8u* pListVals, Spec** ppSpec) {
  if (ZvpStatus st = zvp::checkTables({pListBits, pListVals, ppSpec})) return st;
  auto* spec = reinterpret_cast<Spec*>(zvpsMalloc_8u(Size));
  if (!spec) return zvpStatusNullPointer;
  *ppSpec = spec;  // stays stored, and owned by the caller, also when the lists fail
  return Init(pListBits, pListVals, spec);
}

template <class Spec>
ZvpStatus specFree(Spec* pSpec) {
  if (!pSpec) return zvpStatusNullPointer;
  zvpsFree(pSpec);
  return zvpStatusOk;
}

}  // namespace

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) {
  return specBufSize<ZVPJ_DECODE_HUFFMAN_SPEC_SIZE>(pSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecInit_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                                ZvpiDecodeHuffmanSpec* pDecHuffSpec) {
  return specInit<ZvpiDecodeHuffmanSpec, ownpj_DecodeHuffmanSpecInit>(pListBits, pListVals, pDecHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                                     ZvpiDecodeHuffmanSpec** ppDecHuffSpec) {
  return specInitAlloc<ZvpiDecodeHuffmanSpec, ZVPJ_DECODE_HUFFMAN_SPEC_SIZE, ownpj_DecodeHuffmanSpecInit>(
      pListBits, pListVals, ppDecHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecFree_JPEG_8u(ZvpiDecodeHuffmanSpec* pDecHuffSpec) {
  return specFree(pDecHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) {
  return specBufSize<ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE>(pSize);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecInit_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                                ZvpiEncodeHuffmanSpec* pEncHuffSpec) {
  return specInit<ZvpiEncodeHuffmanSpec, ownpj_EncodeHuffmanSpecInit>(pListBits, pListVals, pEncHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                                     ZvpiEncodeHuffmanSpec** ppEncHuffSpec) {
  return specInitAlloc<ZvpiEncodeHuffmanSpec, ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE, ownpj_EncodeHuffmanSpecInit>(
      pListBits, pListVals, ppEncHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecFree_JPEG_8u(ZvpiEncodeHuffmanSpec* pEncHuffSpec) {
  return specFree(pEncHuffSpec);
}

extern "C" ZVPJ_API ZvpStatus zvpiEncodeHuffmanRawTableInit_JPEG_8u(const Zvp32s* pStatistics, Zvp8u* pListBits,
                                                                    Zvp8u* pListVals) {
  if (ZvpStatus st = zvp::checkTables({pStatistics, pListBits, pListVals})) return st;
  return ownpj_EncodeHuffmanRawTableInit(pStatistics, pListBits, pListVals);
}
