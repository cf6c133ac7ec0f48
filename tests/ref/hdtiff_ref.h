// Reference models of the photo core transform and of the TIFF row coding,
// written straight from the step lists with no speed in mind. Independent of
// src/: expected values never come from the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ref {

// ---------------------------------------------------------------------------
// Photo core transform. Values are held in 64 bits and wrapped to 32 bits
// after every operation; shifts are arithmetic.

inline int32_t wrap(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v))); }
inline int32_t add(int32_t a, int32_t b) { return wrap(static_cast<int64_t>(a) + b); }
inline int32_t sub(int32_t a, int32_t b) { return wrap(static_cast<int64_t>(a) - b); }
inline int32_t neg(int32_t a) { return wrap(-static_cast<int64_t>(a)); }
inline int32_t mul3(int32_t a) { return wrap(3 * static_cast<int64_t>(a)); }
inline int32_t half(int32_t v) { return v >> 1; }
inline int32_t halfUp(int32_t v) { return add(v, 1) >> 1; }
inline int32_t m3over8(int32_t v) { return add(mul3(v), 4) >> 3; }

inline void rot(int32_t& p, int32_t& q) {
  p = sub(p, m3over8(q));
  q = add(q, m3over8(p));
}

inline void bfly(int32_t& p, int32_t& q, int32_t& r, int32_t& s, bool up) {
  p = add(p, s);
  q = sub(q, r);
  const int32_t d = sub(p, q);
  const int32_t t = sub(up ? halfUp(d) : half(d), s);
  q = add(q, t);
  s = add(sub(s, r), t);
  p = sub(p, s);
  r = t;
}

// b[16]: a0..a3, b0..b3, c0..c3, d0..d3.
inline void pctFwdBlock(int32_t* v) {
  int32_t &a0 = v[0], &a1 = v[1], &a2 = v[2], &a3 = v[3];
  int32_t &b0 = v[4], &b1 = v[5], &b2 = v[6], &b3 = v[7];
  int32_t &c0 = v[8], &c1 = v[9], &c2 = v[10], &c3 = v[11];
  int32_t &d0 = v[12], &d1 = v[13], &d2 = v[14], &d3 = v[15];
  bfly(a0, a3, d0, d3, false);
  bfly(a1, a2, d1, d2, false);
  bfly(b0, b3, c0, c3, false);
  bfly(b1, b2, c1, c2, false);
  bfly(a0, a1, b0, b1, true);
  a3 = sub(a3, b2); a2 = add(a2, b3); b2 = add(b2, halfUp(a3)); b3 = sub(halfUp(a2), b3);
  rot(a3, a2); rot(b3, b2);
  b3 = add(b3, half(a3)); b2 = sub(b2, halfUp(a2)); a3 = sub(a3, b3); a2 = add(a2, b2);
  d0 = sub(d0, c1); c0 = add(c0, d1); c1 = add(c1, halfUp(d0)); d1 = sub(halfUp(c0), d1);
  rot(d0, c0); rot(d1, c1);
  d1 = add(d1, half(d0)); c1 = sub(c1, halfUp(c0)); d0 = sub(d0, d1); c0 = add(c0, c1);
  c3 = neg(c3);
  d2 = neg(d2); d3 = add(c2, d3); d2 = sub(d2, c3);
  const int32_t h = half(d3);
  c2 = sub(c2, h);
  const int32_t g = half(d2);
  int32_t e = add(c3, g);
  const int32_t f = add(c2, add(mul3(e), 4) >> 3);
  e = sub(e, add(mul3(f), 3) >> 2);
  c3 = sub(e, g);
  c2 = add(add(f, add(mul3(e), 3) >> 3), h);
  d2 = add(d2, c3); d3 = sub(d3, c2);
}

inline void pctInvBlock(int32_t* v) {
  int32_t &a0 = v[0], &a1 = v[1], &a2 = v[2], &a3 = v[3];
  int32_t &b0 = v[4], &b1 = v[5], &b2 = v[6], &b3 = v[7];
  int32_t &c0 = v[8], &c1 = v[9], &c2 = v[10], &c3 = v[11];
  int32_t &d0 = v[12], &d1 = v[13], &d2 = v[14], &d3 = v[15];
  a3 = add(a3, b3); a2 = sub(a2, b2); b3 = sub(b3, half(a3)); b2 = add(b2, halfUp(a2));
  a2 = sub(a2, m3over8(a3)); a3 = add(a3, m3over8(a2));
  b2 = sub(b2, m3over8(b3)); b3 = add(b3, m3over8(b2));
  b2 = sub(b2, halfUp(a3)); b3 = sub(halfUp(a2), b3); a3 = add(a3, b2); a2 = sub(a2, b3);
  d0 = add(d0, d1); c0 = sub(c0, c1); d1 = sub(d1, half(d0)); c1 = add(c1, halfUp(c0));
  c0 = sub(c0, m3over8(d0)); d0 = add(d0, m3over8(c0));
  c1 = sub(c1, m3over8(d1)); d1 = add(d1, m3over8(c1));
  c1 = sub(c1, halfUp(d0)); d1 = sub(halfUp(c0), d1); d0 = add(d0, c1); c0 = sub(c0, d1);
  d3 = add(c2, d3); d2 = sub(d2, c3);
  const int32_t h = half(d3);
  c2 = sub(c2, h);
  const int32_t g = half(d2);
  int32_t e = add(c3, g);
  const int32_t f = sub(c2, add(mul3(e), 3) >> 3);
  e = add(e, add(mul3(f), 3) >> 2);
  c3 = sub(e, g);
  c2 = add(sub(f, add(mul3(e), 4) >> 3), h);
  d2 = add(d2, c3); d3 = sub(d3, c2); c3 = neg(c3); d2 = neg(d2);
  bfly(a0, a1, b0, b1, true);
  bfly(a0, a3, d0, d3, false);
  bfly(a1, a2, d1, d2, false);
  bfly(b0, b3, c0, c3, false);
  bfly(b1, b2, c1, c2, false);
}

// Every 4x4 block of a w x h region (byte step), in place, any alignment.
inline void pctRegion(uint8_t* base, int step, int w, int h, bool forward) {
  for (int y = 0; y + 4 <= h; y += 4)
    for (int x = 0; x + 4 <= w; x += 4) {
      int32_t v[16];
      for (int r = 0; r < 4; ++r)
        std::memcpy(v + 4 * r, base + static_cast<ptrdiff_t>(y + r) * step + 4 * x, 16);
      if (forward)
        pctFwdBlock(v);
      else
        pctInvBlock(v);
      for (int r = 0; r < 4; ++r)
        std::memcpy(base + static_cast<ptrdiff_t>(y + r) * step + 4 * x, v + 4 * r, 16);
    }
}

// ---------------------------------------------------------------------------
// PackBits.

struct Token {
  bool run;
  size_t start, length;  // source bytes covered
};

// The tokens of a source, by the encoder's rules.
inline std::vector<Token> packBitsTokens(const uint8_t* s, size_t n) {
  std::vector<Token> out;
  size_t i = 0;
  while (i < n) {
    if (i + 1 < n && s[i] == s[i + 1]) {
      size_t len = 2;
      while (len < 128 && i + len < n && s[i + len] == s[i]) ++len;
      out.push_back({true, i, len});
      i += len;
      continue;
    }
    size_t j = i + 1;
    while (true) {
      if (j - i == 128) break;
      if (j == n) break;
      if (j + 2 < n && s[j] == s[j + 1] && s[j + 1] == s[j + 2]) break;
      if (j + 1 == n - 1 && s[j] == s[j + 1]) break;
      ++j;
    }
    out.push_back({false, i, j - i});
    i = j;
  }
  return out;
}

inline std::vector<uint8_t> packBits(const uint8_t* s, size_t n) {
  std::vector<uint8_t> out;
  for (const Token& t : packBitsTokens(s, n)) {
    if (t.run) {
      out.push_back(static_cast<uint8_t>(257 - t.length));
      out.push_back(s[t.start]);
    } else {
      out.push_back(static_cast<uint8_t>(t.length - 1));
      out.insert(out.end(), s + t.start, s + t.start + t.length);
    }
  }
  return out;
}

// Result of the encoder into `room` bytes: the whole tokens that fit, in order.
struct PackResult {
  int status;      // 0 or -124
  size_t written;  // bytes of whole tokens
};
inline PackResult packBitsInto(const uint8_t* s, size_t n, size_t room) {
  size_t used = 0;
  for (const Token& t : packBitsTokens(s, n)) {
    const size_t need = t.run ? 2 : t.length + 1;
    if (used + need > room) return {-124, used};
    used += need;
  }
  return {0, used};
}

// The decoder, step by step: src holds srcLen bytes plus the one byte at
// index srcLen that a repeat header at the very end reads.
struct UnpackResult {
  int status;  // 0 or -124
  long long pos;
  std::vector<uint8_t> out;  // bytes written
};
inline UnpackResult unpackBits(const uint8_t* src, long long pos, long long srcLen, long long dstLen) {
  UnpackResult r{0, pos, {}};
  while (true) {
    if (r.pos >= srcLen) {
      r.status = -124;
      return r;
    }
    const int n = static_cast<int8_t>(src[r.pos]);
    r.pos += 1;
    if (n == -128) {
    } else if (n < 0) {
      const long long count = 1 - n;
      if (r.pos > srcLen || static_cast<long long>(r.out.size()) + count > dstLen) {
        r.status = -124;
        return r;
      }
      r.out.insert(r.out.end(), static_cast<size_t>(count), src[r.pos]);
      r.pos += 1;
    } else {
      const long long count = n + 1;
      if (r.pos + count > srcLen || static_cast<long long>(r.out.size()) + count > dstLen) {
        r.status = -124;
        return r;
      }
      r.out.insert(r.out.end(), src + r.pos, src + r.pos + count);
      r.pos += count;
    }
    if (static_cast<long long>(r.out.size()) == dstLen) {
      r.status = 0;
      return r;
    }
  }
}

}  // namespace ref
