// Reference model of colour conversion and chroma sampling, written from the
// formulas alone. Each pixel's formula is chosen by its column, as the
// members do: columns below width & ~3 (width & ~7 for 4:2:2) take the fast
// set, the rest the tail.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace ref {

inline int clamp255(long v) { return v < 0 ? 0 : (v > 255 ? 255 : static_cast<int>(v)); }
// Arithmetic right shift of a signed value (floor division by 2^s).
inline long sar(long v, int s) { return v >= 0 ? v >> s : -((-v + (1L << s) - 1) >> s); }

// ---- tables ----
inline long crR(int i) { return sar(91881L * (i - 128) + 32768, 16); }
inline long cbB(int i) { return sar(116130L * (i - 128) + 32768, 16); }
inline long crG(int i) { return -46802L * (i - 128); }
inline long cbG(int i) { return -22554L * (i - 128) + 32768; }
inline long cc(int run, int i) {
  static const long mul[8] = {19595, 38470, 7471, -11059, -21709, 32768, -27439, -5329};
  return mul[run] * i + (run == 2 ? 32768 : 0) + (run == 5 ? 8421375 : 0);
}

struct RGB {
  int r, g, b;
};
struct YCC {
  int y, cb, cr;
};

// ---- decoding ----
inline RGB setA(int y, int cb, int cr) {
  return {clamp255(y + sar(22970L * cr - 2932015, 14)), clamp255(y - sar(5638L * cb + 11700L * cr - 2211182, 14)),
          clamp255(y + sar(29032L * cb - 3708561, 14))};
}
inline RGB setB(int y, int cb, int cr) {
  return {clamp255(y + sar(22970L * cr - 2932015, 14)), clamp255(y + sar(-5638L * cb - 11700L * cr + 2227566, 14)),
          clamp255(y + sar(29032L * cb - 3707961, 14))};
}
inline RGB decTail(int y, int cb, int cr) {
  return {clamp255(y + crR(cr)), clamp255(y + sar(cbG(cb) + crG(cr), 16)), clamp255(y + cbB(cb))};
}
inline RGB decodeAt(bool setBCols, int x, int width, int y, int cb, int cr) {
  if (x < (width & ~3)) return setBCols ? setB(y, cb, cr) : setA(y, cb, cr);
  return decTail(y, cb, cr);
}

// 16-bit saturating helpers of the 4:2:2 set.
inline int s16(long v) { return v < -32768 ? -32768 : (v > 32767 ? 32767 : static_cast<int>(v)); }
inline int hi16(int a, int b) { return static_cast<int>(sar(static_cast<long>(a) * b, 16)); }
inline void set422(int y0, int cb, int y1, int cr, RGB& p0, RGB& p1) {
  const int pR = hi16(cr * 128, 22970), pGr = hi16(cr * 128, -11700);
  const int pB = hi16(cb * 128, 29032), pGb = hi16(cb * 128, -5638);
  const int dR = s16(sar(pR, 5) - 179), dG = s16(sar(s16(pGr + pGb), 5) + 135), dB = s16(sar(pB, 5) - 226);
  p0 = {clamp255(s16(y0 + dR)), clamp255(s16(y0 + dG)), clamp255(s16(y0 + dB))};
  p1 = {clamp255(s16(y1 + dR)), clamp255(s16(y1 + dG)), clamp255(s16(y1 + dB))};
}
// One row of Y Cb Y Cr bytes; odd widths write the last pair whole.
inline void row422(const uint8_t* s, uint8_t* d, int width) {
  for (int x = 0; x < width; x += 2) {
    RGB p0, p1;
    if (x < (width & ~7)) {
      set422(s[2 * x], s[2 * x + 1], s[2 * x + 2], s[2 * x + 3], p0, p1);
    } else {
      p0 = decTail(s[2 * x], s[2 * x + 1], s[2 * x + 3]);
      p1 = decTail(s[2 * x + 2], s[2 * x + 1], s[2 * x + 3]);
    }
    const int o = 3 * x;
    d[o] = uint8_t(p0.r), d[o + 1] = uint8_t(p0.g), d[o + 2] = uint8_t(p0.b);
    d[o + 3] = uint8_t(p1.r), d[o + 4] = uint8_t(p1.g), d[o + 5] = uint8_t(p1.b);
  }
}

// Packed formats: 0 RGB555, 1 BGR555, 2 RGB565, 3 BGR565.
inline uint16_t pack(int fmt, RGB p) {
  const int first = (fmt == 0 || fmt == 2) ? p.r : p.b, last = (fmt == 0 || fmt == 2) ? p.b : p.r;
  if (fmt < 2) return uint16_t((first >> 3) | ((p.g >> 3) << 5) | ((last >> 3) << 10));
  return uint16_t((first >> 3) | ((p.g >> 2) << 5) | ((last >> 3) << 11));
}
inline RGB unpack(int fmt, uint16_t v) {
  int a, g, c;
  if (fmt < 2) {
    a = (v & 0x1F) << 3, g = ((v >> 5) & 0x1F) << 3, c = ((v >> 10) & 0x1F) << 3;
  } else {
    a = (v & 0x1F) << 3, g = ((v >> 5) & 0x3F) << 2, c = ((v >> 11) & 0x1F) << 3;
  }
  return (fmt == 0 || fmt == 2) ? RGB{a, g, c} : RGB{c, g, a};
}

// ---- encoding ----
inline int grey15(int r, int g, int b) { return clamp255(sar(9798L * r + 19235L * g + 3736L * b + 16266, 15)); }
inline int greyFloat(int r, int g, int b) {
  float kr, kg, kb;
  const uint32_t br = 0x3e991687, bg = 0x3f1645a2, bb = 0x3de978d5;
  std::memcpy(&kr, &br, 4), std::memcpy(&kg, &bg, 4), std::memcpy(&kb, &bb, 4);
  volatile float pr = float(r) * kr, pg = float(g) * kg, pb = float(b) * kb;
  volatile float s = pr + pg;
  volatile float v = s + pb;
  return clamp255(static_cast<long>(std::nearbyint(v)));
}
inline int greyTail(int r, int g, int b) { return int(sar(cc(0, r) + cc(1, g) + cc(2, b), 16) & 0xFF); }
inline int greyAt(int x, int width, int r, int g, int b) {
  return x < (width & ~3) ? greyFloat(r, g, b) : greyTail(r, g, b);
}

inline YCC diffSet(int r, int g, int b) {
  const int y0 = static_cast<int16_t>(sar(19595L * r + 38470L * g + 7471L * b + 32768, 16));
  return {clamp255(y0), clamp255(sar((b - y0) * 18491L + 4210688, 15)), clamp255(sar((r - y0) * 23373L + 4210688, 15))};
}
inline YCC encTail(int r, int g, int b) {
  return {int(sar(cc(0, r) + cc(1, g) + cc(2, b), 16) & 0xFF), int(sar(cc(3, r) + cc(4, g) + cc(5, b), 16) & 0xFF),
          int(sar(cc(5, r) + cc(6, g) + cc(7, b), 16) & 0xFF)};
}
inline YCC set15(int r, int g, int b) {
  return {clamp255(sar(9798L * r + 19235L * g + 3736L * b + 16266, 15)),
          clamp255(sar(-5529L * r - 10855L * g + 16384L * b + 4210688, 15)),
          clamp255(sar(16384L * r - 13720L * g - 2664L * b + 4210704, 15))};
}
inline YCC set14(int r, int g, int b) {
  return {clamp255(sar(4899L * r + 9617L * g + 1868L * b + 8192, 14)),
          clamp255(sar(-2764L * r - 5428L * g + 8192L * b + 2105344, 14)),
          clamp255(sar(8192L * r - 6860L * g - 1332L * b + 2105344, 14))};
}
// Planar encoders: difference set, then cc_table tail.
inline YCC planarAt(int x, int width, int r, int g, int b) {
  return x < (width & ~3) ? diffSet(r, g, b) : encTail(r, g, b);
}
// Interleaved encoders: set 15 in whole groups of 8, set 14 after.
inline YCC interleavedAt(int x, int width, int r, int g, int b) {
  return x < (width & ~7) ? set15(r, g, b) : set14(r, g, b);
}

// ---- chroma sampling ----
inline uint8_t u8(long v) { return static_cast<uint8_t>(v); }
// Region, down: dst row r from source rows r (H2V1) or 2r, 2r+1 (H2V2).
inline void downH2V1Row(const uint8_t* s, uint8_t* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = u8((s[2 * i] + s[2 * i + 1] + 1) / 2);
}
inline void downH2V2Row(const uint8_t* s, const uint8_t* t, uint8_t* d, int n) {
  for (int i = 0; i < n; ++i) d[i] = u8((s[2 * i] + s[2 * i + 1] + t[2 * i] + t[2 * i + 1] + 3) / 4);
}
inline void boxH2V1Row(const uint8_t* s, uint8_t* d, int srcWidth) {
  for (int i = 0; i < srcWidth / 2; ++i) d[i] = u8((s[2 * i] + s[2 * i + 1] + (i % 2 == 0 ? 0 : 1)) / 2);
}
inline void boxH2V2Row(const uint8_t* s, const uint8_t* t, uint8_t* d, int srcWidth) {
  for (int i = 0; i < srcWidth / 2; ++i)
    d[i] = u8((s[2 * i] + s[2 * i + 1] + t[2 * i] + t[2 * i + 1] + (i % 2 == 0 ? 1 : 2)) / 4);
}
// Region, up: s may be read at -1 and one past; the caller's memory.
inline void upH2V1Row(const uint8_t* s, uint8_t* d, int n) {
  for (int k = 0; k < n; ++k) {
    const int i = k / 2;
    d[k] = k % 2 == 0 ? u8((3 * s[i] + s[i - 1] + 1) / 4) : u8((3 * s[i] + s[i + 1] + 2) / 4);
  }
}
inline void upH2V2Row(const uint8_t* nr, const uint8_t* fr, uint8_t* d, int n) {
  auto v = [&](int i) { return 3 * nr[i] + fr[i]; };
  for (int k = 0; k < n; ++k) {
    const int i = k / 2;
    d[k] = k % 2 == 0 ? u8((3 * v(i) + v(i - 1) + 8) / 16) : u8((3 * v(i) + v(i + 1) + 7) / 16);
  }
}
// Row, up: n >= 2 source samples, 2n outputs, ends treated.
inline void triH2V1Row(const uint8_t* s, uint8_t* d, int n) {
  d[0] = s[0];
  for (int i = 1; i < n; ++i) d[2 * i] = u8((3 * s[i] + s[i - 1] + 1) / 4);
  for (int i = 0; i <= n - 2; ++i) d[2 * i + 1] = u8((3 * s[i] + s[i + 1] + 2) / 4);
  d[2 * n - 1] = s[n - 1];
}
inline void triH2V2Row(const uint8_t* s1, const uint8_t* s2, uint8_t* d, int n) {
  auto v = [&](int i) { return 3 * s1[i] + s2[i]; };
  d[0] = u8((4 * v(0) + 8) / 16);
  for (int i = 1; i < n; ++i) d[2 * i] = u8((3 * v(i) + v(i - 1) + 8) / 16);
  for (int i = 0; i <= n - 2; ++i) d[2 * i + 1] = u8((3 * v(i) + v(i + 1) + 7) / 16);
  d[2 * n - 1] = u8((4 * v(n - 1) + 7) / 16);
}

}  // namespace ref
