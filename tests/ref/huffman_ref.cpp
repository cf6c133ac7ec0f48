// Reference model of the Huffman coders (see huffman_ref.h).
#include "ref/huffman_ref.h"

#include <deque>

namespace href {

DecodeRecord buildDecodeRecord(const uint8_t* bits, const uint8_t* vals) {
  DecodeRecord r;
  std::vector<int> lens;
  for (int len = 1; len <= 16; ++len) {
    if (static_cast<int>(lens.size()) + bits[len - 1] > 256) {
      r.status = kHuffmanTable;
      return r;
    }
    for (int i = 0; i < bits[len - 1]; ++i) lens.push_back(len);
  }
  std::vector<uint64_t> codes(lens.size());
  uint64_t code = 0;
  for (size_t i = 0; i < lens.size(); ++i) {
    if (i > 0 && lens[i] != lens[i - 1]) code <<= (lens[i] - lens[i - 1]);
    codes[i] = code++;
  }
  int p = 0;
  for (int k = 1; k <= 16; ++k) {
    if (bits[k - 1] == 0) {
      r.set16(1572 + 2 * k, 0xFFFF);
      continue;
    }
    r.set16(1608 + 2 * k, static_cast<uint16_t>(p));
    r.set16(1536 + 2 * k, static_cast<uint16_t>(codes[p]));
    for (int i = 0; i < bits[k - 1]; ++i, ++p) r.set16(2 * p, vals[p]);
    r.set16(1572 + 2 * k, static_cast<uint16_t>(codes[p - 1]));
  }
  r.set16(1572 + 34, 0xFFFF);
  p = 0;
  for (int k = 1; k <= 8; ++k)
    for (int i = 0; i < bits[k - 1]; ++i, ++p)
      for (uint64_t j = 0; j < (1u << (8 - k)); ++j) {
        uint64_t idx = (codes[p] << (8 - k)) + j;
        if (idx > 256) {
          r.status = kHuffmanTable;
          return r;
        }
        r.set32(512 + 4 * static_cast<int>(idx), (static_cast<uint32_t>(k) << 16) | vals[p]);
      }
  return r;
}

int buildEncodeRecord(const uint8_t* bits, const uint8_t* vals, std::array<uint32_t, 256>& out) {
  out.fill(0);
  int total = 0;
  for (int i = 0; i < 16; ++i) {
    if (total + bits[i] > 256) return kHuffmanTable;
    total += bits[i];
  }
  // Codes per length; a length's codes must leave the next code below 2^len.
  std::vector<std::pair<uint32_t, int>> codes;
  uint32_t code = 0;
  bool started = false;
  for (int len = 1; len <= 16; ++len) {
    if (bits[len - 1]) started = true;
    for (int i = 0; i < bits[len - 1]; ++i) codes.push_back({code++, len});
    if (started && code >= (1u << len)) return kHuffmanTable;
    code <<= 1;
  }
  for (size_t i = 0; i < codes.size(); ++i) out[vals[i]] = (static_cast<uint32_t>(codes[i].second) << 16) | codes[i].first;
  return kOk;
}

int rawTable(const int32_t* stats, uint8_t* bitsOut, uint8_t* valsOut) {
  std::vector<int64_t> f(stats, stats + 257);
  f[256] = 1;
  std::vector<int> size(257, 0);
  std::vector<std::vector<int>> members(257);
  for (int i = 0; i < 257; ++i) members[i] = {i};
  for (;;) {
    auto pick = [&](int skip) {
      int best = -1;
      int64_t v = 1000000000;
      for (int i = 0; i <= 256; ++i)
        if (i != skip && f[i] != 0 && f[i] <= v) v = f[i], best = i;
      return best;
    };
    int c1 = pick(-1), c2 = pick(c1);
    if (c2 < 0) break;
    f[c1] = static_cast<int32_t>(static_cast<uint32_t>(f[c1]) + static_cast<uint32_t>(f[c2]));
    f[c2] = 0;
    for (int m : members[c1]) ++size[m];
    for (int m : members[c2]) ++size[m];
    members[c1].insert(members[c1].end(), members[c2].begin(), members[c2].end());
    members[c2].clear();
  }
  int cnt[33] = {};
  for (int i = 0; i <= 256; ++i)
    if (size[i]) {
      if (size[i] > 32) return kHuffmanTable;
      ++cnt[size[i]];
    }
  for (int i = 32; i > 16; --i)
    while (cnt[i] > 0) {
      int j = i - 2;
      while (cnt[j] == 0) --j;
      cnt[i] -= 2;
      cnt[i - 1] += 1;
      cnt[j + 1] += 2;
      cnt[j] -= 1;
    }
  for (int i = 16; i >= 1; --i)
    if (cnt[i]) {
      --cnt[i];
      break;
    }
  for (int i = 1; i <= 16; ++i) bitsOut[i - 1] = static_cast<uint8_t>(cnt[i]);
  int p = 0;
  for (int len = 1; len <= 32; ++len)
    for (int j = 0; j < 256; ++j)
      if (size[j] == len) valsOut[p++] = static_cast<uint8_t>(j);
  return kOk;
}

// ---- Encoding ----------------------------------------------------------------

int writeBits(uint32_t code, int nBits, uint8_t* dst, int len, int& pos, EncState& s) {
  if (nBits == 0) return kHuffmanTable;
  int total = s.cnt + nBits;
  uint32_t span = s.span | ((code & ((1u << nBits) - 1)) << (24 - total));
  int p = pos;
  for (; total >= 8; total -= 8, span <<= 8) {
    if (p >= len) {
      pos = p;
      return kOutOfBuffer;
    }
    uint8_t b = static_cast<uint8_t>(span >> 16);
    dst[p++] = b;
    if (b == 0xFF) {
      if (p == len) {
        pos = p;
        return kOutOfBuffer;
      }
      dst[p++] = 0;
    }
  }
  pos = p;
  s.span = span;
  s.cnt = total;
  return kOk;
}

int encodeCall(const int16_t* blk, uint8_t* dst, int len, int& pos, int16_t& lastDC,
               const std::array<uint32_t, 256>& dcRec, const std::array<uint32_t, 256>& acRec, EncState& s) {
  static const auto zz = zigzag();
  auto put = [&](uint32_t e) { return writeBits(e & 0xFFFF, static_cast<int>(e >> 16), dst, len, pos, s); };
  int32_t d = blk[0] - lastDC;
  lastDC = blk[0];
  int c = category(d);
  if (int st = put(dcRec[c])) return st;
  if (c)
    if (int st = writeBits(static_cast<uint32_t>(d < 0 ? d - 1 : d), c, dst, len, pos, s)) return st;
  int run = 0;
  for (int k = 1; k < 64; ++k) {
    int32_t v = blk[zz[k]];
    if (!v) {
      ++run;
      continue;
    }
    for (; run >= 16; run -= 16)
      if (int st = put(acRec[0xF0])) return st;
    c = category(v);
    int sym = (run << 4) + c;
    if (int st = put(sym < 256 ? acRec[sym] : 0)) return st;
    if (int st = writeBits(static_cast<uint32_t>(v < 0 ? v - 1 : v), c, dst, len, pos, s)) return st;
    run = 0;
  }
  if (run)
    if (int st = put(acRec[0])) return st;
  return kOk;
}

int flushCall(uint8_t* dst, int len, int& pos, EncState& s) {
  int st = writeBits(127, 7, dst, len, pos, s);
  s = EncState{};
  return st;
}

void encodeDirect(const int16_t* blk, uint8_t* dst, int& bitPos, int16_t& lastDC,
                  const std::array<uint32_t, 256>& dcRec, const std::array<uint32_t, 256>& acRec) {
  static const auto zz = zigzag();
  std::vector<int> bitsQ;
  int pos = bitPos >> 3, have = bitPos & 7;
  for (int i = 0; i < have; ++i) bitsQ.push_back((dst[pos] >> (7 - i)) & 1);
  auto put = [&](uint32_t v, int n) {
    for (int i = n - 1; i >= 0; --i) bitsQ.push_back((v >> i) & 1);
  };
  auto sym = [&](uint32_t e) { put(e & 0xFFFF, static_cast<int>(e >> 16)); };
  int32_t d = blk[0] - lastDC;
  lastDC = blk[0];
  int c = category(d);
  sym(dcRec[c]);
  put(static_cast<uint32_t>(d < 0 ? d - 1 : d), c);
  int run = 0;
  for (int k = 1; k < 64; ++k) {
    int32_t v = blk[zz[k]];
    if (!v) {
      ++run;
      continue;
    }
    for (; run >= 16; run -= 16) sym(acRec[0xF0]);
    c = category(v);
    int s = (run << 4) + c;
    sym(s < 256 ? acRec[s] : 0);
    put(static_cast<uint32_t>(v < 0 ? v - 1 : v), c);
    run = 0;
  }
  if (run) sym(acRec[0]);
  size_t i = 0;
  for (; i + 8 <= bitsQ.size(); i += 8) {
    uint8_t b = 0;
    for (int j = 0; j < 8; ++j) b = static_cast<uint8_t>((b << 1) | bitsQ[i + j]);
    dst[pos++] = b;
    if (b == 0xFF) dst[pos++] = 0;
  }
  int rem = static_cast<int>(bitsQ.size() - i);
  uint8_t last = 0;
  for (int j = 0; j < rem; ++j) last |= static_cast<uint8_t>(bitsQ[i + j] << (7 - j));
  dst[pos] = last;
  bitPos = pos * 8 + rem;
}

// ---- Decoding: the stateful decoder ----------------------------------------------

namespace {

bool fits(int32_t code, uint16_t maxCode) { return maxCode != 0xFFFF && code <= maxCode; }
int walkSym(const DecodeRecord& t, int len, int32_t code) {
  int32_t i = t.valPtr(len) - t.minCode(len) + code;
  return (i < 0 || i > 255) ? -1 : t.symbols(i);
}
uint32_t low32(const DecState& s) { return static_cast<uint32_t>(s.buf); }
uint32_t takeBits(uint32_t word, int cnt, int n) {  // n bits below bit position cnt (mod 32)
  uint32_t v = word >> (cnt & 31);
  return n >= 32 ? v : v & ((1u << n) - 1);
}

struct Careful {
  const uint8_t* src;
  int len;
  int& pos;
  int& marker;
  DecState& s;

  int fill(int need) {
    if (marker) return need > s.cnt ? kJpegRange : kOk;
    while (s.cnt < 25) {
      if (pos >= len) return need > s.cnt ? kOutOfBuffer : kOk;
      int b = src[pos++];
      if (b == 0xFF) {
        for (;;) {
          if (pos >= len) return kOutOfBuffer;
          int nx = src[pos++];
          if (nx == 0) break;
          if (nx != 0xFF) {
            marker = nx;
            return kOk;
          }
        }
      }
      s.buf = ((low32(s) << 8) | static_cast<uint32_t>(b)) & 0xFFFFFFFFu;
      s.cnt += 8;
    }
    return kOk;
  }
  int symbol(const DecodeRecord& t, int& sym) {
    int start = 9;
    if (s.cnt < 8) {
      if (int st = fill(0)) return st;
      if (s.cnt < 8) start = 1;
    }
    if (start == 9) {
      uint32_t la = t.look((low32(s) >> ((s.cnt - 8) & 31)) & 255);
      if (la >> 16) {
        s.cnt -= la >> 16;
        sym = la & 0xFFFF;
        return kOk;
      }
    }
    if (s.cnt < start)
      if (int st = fill(start)) return st;
    s.cnt -= start;
    int32_t code = takeBits(low32(s), s.cnt, start);
    int l = start;
    while (l <= 16 && !fits(code, t.maxCode(l))) {
      if (s.cnt < 1)
        if (int st = fill(1)) return st;
      s.cnt -= 1;
      code = code * 2 + takeBits(low32(s), s.cnt, 1);
      ++l;
    }
    sym = l > 16 ? -1 : walkSym(t, l, code);
    if (sym < 0) {
      sym = 0;
      return kJpegRange;
    }
    return kOk;
  }
};

// A bit queue that models the fast path's 64-bit word.
struct FastQ {
  const uint8_t* src;
  int64_t pos, len;
  std::deque<int> q;
  bool direct = false;
  void pushByte(int b) {
    for (int i = 7; i >= 0; --i) q.push_back((b >> i) & 1);
  }
  bool refill() {
    if (!direct) {
      if (len - pos < 8) return false;
      bool ff = false;
      for (int i = 0; i < 8; ++i) ff |= src[pos + i] == 0xFF;
      if (!ff) {
        while (q.size() + 8 <= 64) pushByte(src[pos++]);
        return true;
      }
    } else {
      uintptr_t a = reinterpret_cast<uintptr_t>(src + pos);
      if ((a & 15) <= 12 && src[pos] != 0xFF && src[pos + 1] != 0xFF && src[pos + 2] != 0xFF && src[pos + 3] != 0xFF) {
        for (int i = 0; i < 4; ++i) pushByte(src[pos++]);
        return true;
      }
    }
    while (q.size() <= 24) {
      int b = src[pos++];
      if (b == 0xFF) {
        if (src[pos] != 0) return false;
        ++pos;
      }
      pushByte(b);
    }
    return true;
  }
  uint32_t peek(int n) const {
    uint32_t v = 0;
    for (int i = 0; i < n; ++i) v = (v << 1) | q[i];
    return v;
  }
  uint32_t take(int n) {
    uint32_t v = peek(n);
    q.erase(q.begin(), q.begin() + n);
    return v;
  }
  // -1: give up.
  int symbol(const DecodeRecord& t) {
    if (q.size() < 8 && !refill()) return -1;
    uint32_t la = t.look(peek(8));
    if (la >> 16) {
      take(la >> 16);
      return la & 0xFFFF;
    }
    if (q.size() < 16 && !refill()) return -1;
    for (int l = 9; l <= 16; ++l) {
      int32_t code = peek(l);
      if (fits(code, t.maxCode(l))) {
        int sym = walkSym(t, l, code);
        if (sym < 0) return -1;
        take(l);
        return sym;
      }
    }
    return -1;
  }
  bool value(int s, uint32_t& v) {
    if (static_cast<int>(q.size()) < s && !refill()) return false;
    v = take(s);
    return true;
  }
};

// The fast block body: false means give up.
bool fastBody(FastQ& f, int16_t* dst, int16_t& dc, const DecodeRecord& dct, const DecodeRecord& act, int& kOut) {
  static const auto zz = zigzag();
  int sym = f.symbol(dct);
  if (sym < 0) return false;
  if (sym) {
    uint32_t v;
    if (!f.value(sym & 15, v)) return false;
    dc = static_cast<int16_t>(dc + extend(v, sym & 15));
  }
  dst[0] = dc;
  int k = 1;
  while (k < 64) {
    sym = f.symbol(act);
    if (sym < 0) return false;
    int r = sym >> 4, s = sym & 15;
    if (s == 0) {
      if (r != 15) break;
      if (k + 16 > 63) return false;
      k += 16;
      continue;
    }
    k += r;
    if (k > 63) return false;
    uint32_t v;
    if (!f.value(s, v)) return false;
    dst[zz[k]] = static_cast<int16_t>(extend(v, s));
    ++k;
  }
  kOut = k;
  return true;
}

// Hands back whole bytes so that at most 32 bits remain.
void finish(FastQ& f, uint32_t& bits, int& n) {
  while (f.q.size() > 32) {
    for (int i = 0; i < 8 && !f.q.empty(); ++i) f.q.pop_back();
    --f.pos;
  }
  n = static_cast<int>(f.q.size());
  bits = f.peek(n);
}

}  // namespace

DecCall decodeCall(const uint8_t* src, int len, int& pos, int16_t* dst, int16_t& lastDC, int& marker,
                   const DecodeRecord& dct, const DecodeRecord& act, DecState& s) {
  static const auto zz = zigzag();
  if (!marker) {
    std::memset(dst, 0, 128);
    s.blockEnd = 0;
    if (static_cast<int64_t>(len) - pos >= 24 && s.cnt >= 0 && s.cnt <= 32) {
      FastQ f{src, pos, len, {}};
      for (int i = s.cnt - 1; i >= 0; --i) f.q.push_back((low32(s) >> i) & 1);
      int16_t dc = lastDC;
      int k = 0;
      std::vector<int16_t> tmp(dst, dst + 64);
      if (fastBody(f, tmp.data(), dc, dct, act, k)) {
        uint32_t bits;
        int n;
        finish(f, bits, n);
        std::memcpy(dst, tmp.data(), 128);
        lastDC = dc;
        s.blockEnd = k;
        pos = static_cast<int>(f.pos);
        s.buf = bits;
        s.cnt = n;
        return {kOk, true};
      }
    }
  }
  // Careful path.
  std::memset(dst, 0, 128);
  Careful c{src, len, pos, marker, s};
  int sym = 0;
  if (int st = c.symbol(dct, sym)) {
    s.blockEnd = 0;
    return {st, false};
  }
  if (sym) {
    int sz = sym & 15;
    if (s.cnt < sz)
      if (int st = c.fill(sz)) {
        s.blockEnd = 0;
        return {st, false};
      }
    s.cnt -= sz;
    lastDC = static_cast<int16_t>(lastDC + extend(takeBits(low32(s), s.cnt, sz), sz));
  }
  dst[0] = lastDC;
  int k = 1, st = kOk;
  while (k < 64) {
    if ((st = c.symbol(act, sym))) break;
    int r = sym >> 4, sz = sym & 15;
    if (sz == 0) {
      if (r != 15) break;
      k += 16;
      continue;
    }
    k += r;
    if (s.cnt < sz)
      if ((st = c.fill(sz))) break;
    s.cnt -= sz;
    uint32_t v = takeBits(low32(s), s.cnt, sz);
    if (k > 71) return {kError, false};
    dst[zz[k]] = static_cast<int16_t>(extend(v, sz));
    ++k;
  }
  s.blockEnd = k;
  return {st, false};
}

// ---- Decoding: the Direct decoder --------------------------------------------------

namespace {

struct DirectCareful {
  const uint8_t* src;
  int& pos;
  uint32_t& bits;
  int& cnt;
  int& marker;
  void read() {
    while (cnt < 25) {
      int b = src[pos++];
      if (b == 0xFF) {
        int nx;
        do nx = src[pos++];
        while (nx == 0xFF);
        if (nx) {
          marker = nx;
          return;
        }
      }
      bits = (bits << 8) | static_cast<uint32_t>(b);
      cnt += 8;
    }
  }
  // -256: marker; -1: no code.
  int longBits(const DecodeRecord& t) {
    if (cnt < 9) {
      if (marker <= 0) read();
      if (cnt < 9) return -256;
    }
    cnt -= 9;
    int32_t code = takeBits(bits, cnt, 9);
    for (int l = 9; l <= 16; ++l) {
      if (fits(code, t.maxCode(l))) return walkSym(t, l, code);
      if (cnt < 1) {
        if (marker <= 0) read();
        if (cnt < 1) return -256;
      }
      --cnt;
      code = code * 2 + takeBits(bits, cnt, 1);
    }
    return -1;
  }
  int symbol(const DecodeRecord& t) {
    uint32_t i;
    if (cnt >= 8) {
      i = (bits >> ((cnt - 8) & 31)) & 255;
    } else {
      if (marker <= 0) read();
      if (cnt <= 0) return -256;
      i = cnt >= 8 ? (bits >> ((cnt - 8) & 31)) & 255 : (bits << (8 - cnt)) & 255;
    }
    uint32_t la = t.look(i);
    if (la >> 16) {
      cnt -= la >> 16;
      return la & 0xFFFF;
    }
    return longBits(t);
  }
  bool value(int s, uint32_t& v) {
    if (cnt < s) {
      if (marker <= 0 && cnt < 25) read();
      if (cnt <= 0) return false;
    }
    cnt -= s;
    v = takeBits(bits, cnt, s);
    return true;
  }
};

}  // namespace

DecCall decodeDirectCall(const uint8_t* src, int& bitPos, int16_t* dst, int16_t& lastDC, int& marker, uint32_t& bits,
                         int& nbits, const DecodeRecord& dct, const DecodeRecord& act) {
  static const auto zz = zigzag();
  if (!marker) {
    std::memset(dst, 0, 128);
    if (nbits >= 0 && nbits <= 32) {
      FastQ f{src, bitPos >> 3, 0, {}, true};
      for (int i = nbits - 1; i >= 0; --i) f.q.push_back((bits >> i) & 1);
      int16_t dc = lastDC;
      int k = 0;
      std::vector<int16_t> tmp(dst, dst + 64);
      if (fastBody(f, tmp.data(), dc, dct, act, k)) {
        finish(f, bits, nbits);
        std::memcpy(dst, tmp.data(), 128);
        lastDC = dc;
        bitPos = static_cast<int>(f.pos * 8);
        return {kOk, true};
      }
    }
  }
  std::memset(dst, 0, 128);
  int pos = bitPos >> 3;
  DirectCareful c{src, pos, bits, nbits, marker};
  int sym = c.symbol(dct);
  if (sym == -256) return {kOk, false};
  if (sym < 0) return {kJpegRange, false};
  if (sym) {
    uint32_t v;
    if (!c.value(sym & 15, v)) return {kOutOfBuffer, false};
    lastDC = static_cast<int16_t>(lastDC + extend(v, sym & 15));
  }
  dst[0] = lastDC;
  int k = 1;
  while (k < 64) {
    sym = c.symbol(act);
    if (sym == -256) {
      nbits = 0;
      break;
    }
    if (sym < 0) return {kJpegRange, false};
    int r = sym >> 4, s = sym & 15;
    if (!s) {
      if (r != 15) break;
      k += 16;
      continue;
    }
    k += r;
    uint32_t v;
    if (!c.value(s, v)) return {kOutOfBuffer, false};
    dst[zz[k < 71 ? k : 71]] = static_cast<int16_t>(extend(v, s));
    ++k;
  }
  bitPos = pos * 8;
  return {kOk, false};
}

}  // namespace href
