#include "ref/texture_ref.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ref::tex {
namespace {

unsigned bitsAt(const uint8_t* b, int pos, int n) {
  unsigned v = 0;
  for (int i = 0; i < n; ++i) v |= ((b[(pos + i) / 8] >> ((pos + i) % 8)) & 1u) << i;
  return v;
}

void dxtColour(const uint8_t* b, bool dxt1, uint8_t out[64]) {
  unsigned c0 = b[0] | (b[1] << 8), c1 = b[2] | (b[3] << 8);
  unsigned e0r = (c0 >> 11) << 3, e0g = ((c0 >> 5) & 63) << 2, e0b = (c0 & 31) << 3;
  unsigned e1r = (c1 >> 11) << 3, e1g = ((c1 >> 5) & 63) << 2, e1b = (c1 & 31) << 3;
  for (int p = 0; p < 16; ++p) {
    unsigned idx = bitsAt(b + 4, 2 * p, 2);
    unsigned r, g, bl, a = 255;
    if (idx == 0) { r = e0r; g = e0g; bl = e0b; }
    else if (idx == 1) { r = e1r; g = e1g; bl = e1b; }
    else if (!dxt1 || c0 > c1) {
      if (idx == 2) { r = (2 * e0r + e1r) / 3; g = (2 * e0g + e1g) / 3; bl = (2 * e0b + e1b) / 3; }
      else { r = (e0r + 2 * e1r) / 3; g = (e0g + 2 * e1g) / 3; bl = (e0b + 2 * e1b) / 3; }
    } else if (idx == 2) { r = (e0r + e1r) / 2; g = (e0g + e1g) / 2; bl = (e0b + e1b) / 2; }
    else { r = g = bl = 255; }
    out[4 * p] = uint8_t(r); out[4 * p + 1] = uint8_t(g); out[4 * p + 2] = uint8_t(bl); out[4 * p + 3] = uint8_t(a);
  }
}

// ---- BC7 ----
const unsigned kTwoMask[64] = {
    0xCCCC, 0x8888, 0xEEEE, 0xECC8, 0xC880, 0xFEEC, 0xFEC8, 0xEC80, 0xC800, 0xFFEC, 0xFE80, 0xE800, 0xFFE8,
    0xFF00, 0xFFF0, 0xF000, 0xF710, 0x008E, 0x7100, 0x08CE, 0x008C, 0x7310, 0x3100, 0x8CCE, 0x088C, 0x3110,
    0x6666, 0x366C, 0x17E8, 0x0FF0, 0x718E, 0x399C, 0xAAAA, 0xF0F0, 0x5A5A, 0x33CC, 0x3C3C, 0x55AA, 0x9696,
    0xA55A, 0x73CE, 0x13C8, 0x324C, 0x3BDC, 0x6996, 0xC33C, 0x9966, 0x0660, 0x0272, 0x04E4, 0x4E40, 0x2720,
    0xC936, 0x936C, 0x39C6, 0x639C, 0x9336, 0x9CC6, 0x817E, 0xE718, 0xCCF0, 0x0FCC, 0x7744, 0xEE22};
const char* const kThree[64] = {
    "0011001102212222", "0001001122112221", "0000200122112211", "0222002200110111", "0000000011221122",
    "0011001100220022", "0022002211111111", "0011001122112211", "0000000011112222", "0000111111112222",
    "0000111122222222", "0012001200120012", "0112011201120112", "0122012201220122", "0011011211221222",
    "0011200122002220", "0001001101121122", "0111001120012200", "0000112211221122", "0022002200221111",
    "0111011102220222", "0001000122212221", "0000001101220122", "0000110022102210", "0122012200110000",
    "0012001211222222", "0110122112210110", "0000011012211221", "0022110211020022", "0110011020022222",
    "0011012201220011", "0000200022112221", "0000000211221222", "0222002200120011", "0011001200220222",
    "0120012001200120", "0000111122220000", "0120120120120120", "0120201212010120", "0011220011220011",
    "0011112222000011", "0101010122222222", "0000000021212121", "0022112200221122", "0022001100220011",
    "0220122102201221", "0101222222220101", "0000212121212121", "0101010101012222", "0222011102220111",
    "0002111200021112", "0000211221122112", "0222011101110222", "0002111211120002", "0110011001102222",
    "0000000021122112", "0110011022222222", "0022001100110022", "0022112211220022", "0000000000002112",
    "0002000100020001", "0222122202221222", "0101222222222222", "0111201122012220"};
const int kFix2[64] = {3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 0, 2, 0, 0, 2, 2, 3, 0, 2, 0, 0,
                       2, 2, 0, 0, 3, 3, 1, 2, 0, 2, 3, 3, 0, 2, 0, 0, 0, 3, 3, 1, 1, 0, 1, 2, 3, 3, 0, 0,
                       3, 3, 3, 3, 3, 0, 0, 3};
const int kFix3[64] = {2, 1, 10, 2,  10, 2, 2,  10, 10, 10, 7, 7, 7, 4, 2, 1,  2,  1, 10, 2, 2, 1,
                       7, 9, 0,  10, 5,  6, 10, 4,  11, 10, 10, 2, 2, 3, 6, 9,  8,  11, 7, 2, 10, 4,
                       2, 7, 7,  10, 2,  2, 4,  4,  4,  10, 4, 11, 4, 11, 10, 13, 2, 12, 2, 1};
const int kCase2[4] = {2, 6, 8, 15};
const int kCase3[14][2] = {{3, 5}, {3, 8}, {3, 15}, {5, 10}, {5, 15}, {6, 8}, {6, 10},
                           {6, 15}, {8, 9}, {8, 10}, {8, 15}, {10, 15}, {12, 15}, {13, 15}};
const int kW2[4] = {0, 21, 43, 64};
const int kW3[8] = {0, 9, 18, 27, 37, 46, 55, 64};
const int kW4[16] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};
const int* weights(int bits) { return bits == 2 ? kW2 : bits == 3 ? kW3 : kW4; }

unsigned widenBC7(unsigned v, int n) {
  unsigned y = v << (8 - n);
  return (y | (y >> n)) & 255;
}
unsigned lerp(unsigned e0, unsigned e1, int w) { return (e0 * (64 - w) + e1 * w + 32) >> 6; }

void decodeBC7(const uint8_t* b, uint8_t out[64]) {
  int mode = 0;
  while (mode < 8 && !((b[0] >> mode) & 1)) ++mode;
  if (mode == 8) { std::memset(out, 0, 64); return; }
  static const int ns[8] = {3, 2, 3, 2, 1, 1, 1, 2}, pb[8] = {4, 6, 6, 6, 0, 0, 0, 6};
  static const int cb[8] = {4, 6, 5, 7, 5, 7, 7, 5}, ab[8] = {0, 0, 0, 0, 6, 8, 7, 5};
  static const int ib[8] = {3, 3, 2, 2, 2, 2, 4, 2};
  int pos = mode + 1;
  auto rd = [&](int n) { unsigned v = bitsAt(b, pos, n); pos += n; return v; };
  int part = int(rd(pb[mode]));
  int rot = (mode == 4 || mode == 5) ? int(rd(2)) : 0;
  int sel = mode == 4 ? int(rd(1)) : 0;
  int n = ns[mode];
  unsigned e[4][6];
  for (int c = 0; c < 3; ++c) for (int i = 0; i < 2 * n; ++i) e[c][i] = rd(cb[mode]);
  for (int i = 0; i < 2 * n; ++i) e[3][i] = ab[mode] ? rd(ab[mode]) : 0;
  int cbits = cb[mode], abits = ab[mode];
  if (mode == 0 || mode == 3 || mode == 6 || mode == 7) {
    unsigned p[6];
    for (int i = 0; i < 2 * n; ++i) p[i] = rd(1);
    for (int i = 0; i < 2 * n; ++i) for (int c = 0; c < 4; ++c) e[c][i] = (e[c][i] << 1) | p[i];
    cbits++; if (abits) abits++;
  } else if (mode == 1) {
    unsigned p[2] = {rd(1), rd(1)};
    for (int i = 0; i < 4; ++i) for (int c = 0; c < 3; ++c) e[c][i] = (e[c][i] << 1) | p[i / 2];
    cbits++;
  }
  for (int i = 0; i < 2 * n; ++i) {
    for (int c = 0; c < 3; ++c) e[c][i] = widenBC7(e[c][i], cbits);
    e[3][i] = abits ? widenBC7(e[3][i], abits) : 255;
  }
  int subset[16] = {};
  bool anchor[16] = {};
  anchor[0] = true;
  if (n == 2) { for (int i = 0; i < 16; ++i) subset[i] = int((kTwoMask[part] >> i) & 1); anchor[kCase2[kFix2[part]]] = true; }
  if (n == 3) {
    for (int i = 0; i < 16; ++i) subset[i] = kThree[part][i] - '0';
    anchor[kCase3[kFix3[part]][0]] = anchor[kCase3[kFix3[part]][1]] = true;
  }
  unsigned i1[16], i2[16] = {};
  for (int i = 0; i < 16; ++i) i1[i] = rd(anchor[i] ? ib[mode] - 1 : ib[mode]);
  int b2 = mode == 4 ? 3 : mode == 5 ? 2 : 0;
  if (b2) for (int i = 0; i < 16; ++i) i2[i] = rd(i == 0 ? b2 - 1 : b2);
  for (int p = 0; p < 16; ++p) {
    unsigned px[4];
    if (b2) {
      const unsigned* ci = sel ? i2 : i1; const unsigned* ai = sel ? i1 : i2;
      int cw = sel ? b2 : ib[mode], aw = sel ? ib[mode] : b2;
      for (int c = 0; c < 3; ++c) px[c] = lerp(e[c][0], e[c][1], weights(cw)[ci[p]]);
      px[3] = lerp(e[3][0], e[3][1], weights(aw)[ai[p]]);
      if (rot) std::swap(px[rot - 1], px[3]);
    } else {
      int s = subset[p];
      for (int c = 0; c < 4; ++c) px[c] = lerp(e[c][2 * s], e[c][2 * s + 1], weights(ib[mode])[i1[p]]);
    }
    for (int c = 0; c < 4; ++c) out[4 * p + c] = uint8_t(px[c]);
  }
}

// ---- encoders ----
int ad(int a, int b) { return std::abs(a - b); }

void colourBlock(const uint8_t px[64], uint8_t out[8]) {
  int mn[3], mx[3];
  for (int c = 0; c < 3; ++c) {
    mn[c] = 255; mx[c] = 0;
    for (int p = 0; p < 16; ++p) { mn[c] = std::min(mn[c], int(px[4 * p + c])); mx[c] = std::max(mx[c], int(px[4 * p + c])); }
    int inset = (mx[c] - mn[c]) >> 4;
    mx[c] -= inset; mn[c] += inset;
  }
  unsigned w0 = ((mx[0] >> 3) << 11) | ((mx[1] >> 2) << 5) | (mx[2] >> 3);
  unsigned w1 = ((mn[0] >> 3) << 11) | ((mn[1] >> 2) << 5) | (mn[2] >> 3);
  int pal[4][3];
  for (int c = 0; c < 3; ++c) {
    int sh = c == 1 ? 6 : 5, mask = c == 1 ? 0xFC : 0xF8;
    pal[0][c] = (mx[c] & mask) | (mx[c] >> sh);
    pal[1][c] = (mn[c] & mask) | (mn[c] >> sh);
    pal[2][c] = (2 * pal[0][c] + pal[1][c]) / 3;
    pal[3][c] = (pal[0][c] + 2 * pal[1][c]) / 3;
  }
  uint32_t idx = 0;
  for (int p = 0; p < 16; ++p) {
    int d[4];
    for (int k = 0; k < 4; ++k) d[k] = ad(px[4 * p], pal[k][0]) + ad(px[4 * p + 1], pal[k][1]) + ad(px[4 * p + 2], pal[k][2]);
    int b0 = d[2] > d[3] && d[0] > d[3];
    int b1 = (d[1] > d[2] && d[0] > d[2]) || (d[0] > d[3] && d[1] > d[3]);
    idx |= uint32_t(b0 + 2 * b1) << (2 * p);
  }
  out[0] = uint8_t(w0); out[1] = uint8_t(w0 >> 8); out[2] = uint8_t(w1); out[3] = uint8_t(w1 >> 8);
  for (int i = 0; i < 4; ++i) out[4 + i] = uint8_t(idx >> (8 * i));
}

void alphaThresholds(const uint8_t* a, int stride, int a0, int a1, uint8_t out[8]) {
  int bias = (a0 - a1) / 14;
  uint8_t t[7];
  t[0] = uint8_t(a1 + bias);
  for (int k = 1; k <= 6; ++k) t[k] = uint8_t(((7 - k) * a0 + k * a1) / 7 + bias);
  out[0] = uint8_t(a0); out[1] = uint8_t(a1);
  uint64_t bits = 0;
  for (int p = 0; p < 16; ++p) {
    int n = 0;
    for (int k = 0; k < 7; ++k) if (t[k] >= a[stride * p]) ++n;
    int idx = (n + 1) & 7;
    if (idx == 0) idx = 1; else if (idx == 1) idx = 0;
    bits |= uint64_t(idx) << (3 * p);
  }
  for (int i = 0; i < 6; ++i) out[2 + i] = uint8_t(bits >> (8 * i));
}

std::vector<uint8_t> gather(const uint8_t* src, int w, int h, int bx, int by, int bpp) {
  std::vector<uint8_t> b(16 * bpp);
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      int y = std::min(4 * by + r, h - 1), x = std::min(4 * bx + c, w - 1);
      std::memcpy(&b[(4 * r + c) * bpp], src + (size_t(y) * w + x) * bpp, bpp);
    }
  return b;
}

}  // namespace

void decodeBlock(Fmt f, const uint8_t* b, uint8_t out[64]) {
  switch (f) {
    case Fmt::DXT1: dxtColour(b, true, out); break;
    case Fmt::DXT3:
      dxtColour(b + 8, false, out);
      for (int p = 0; p < 16; ++p) out[4 * p + 3] = uint8_t(bitsAt(b, 4 * p, 4) << 4);
      break;
    case Fmt::DXT5: {
      dxtColour(b + 8, false, out);
      int a0 = b[0], a1 = b[1], tab[8] = {a0, a1};
      for (int i = 2; i < 8; ++i) {
        if (a0 > a1) tab[i] = ((8 - i) * a0 + (i - 1) * a1 + 3) / 7;
        else if (i < 6) tab[i] = ((6 - i) * a0 + (i - 1) * a1 + 2) / 5;
        else tab[i] = i == 6 ? 0 : 255;
      }
      for (int p = 0; p < 16; ++p) out[4 * p + 3] = uint8_t(tab[bitsAt(b + 2, 3 * p, 3)]);
      break;
    }
    case Fmt::BC7: decodeBC7(b, out); break;
  }
}

std::vector<uint8_t> decodeImage(Fmt f, const uint8_t* s, int w, int h) {
  std::vector<uint8_t> img(size_t(w) * h * 4);
  int bs = f == Fmt::DXT1 ? 8 : 16, bw = (w + 3) / 4, bh = (h + 3) / 4;
  uint8_t t[64];
  for (int by = 0; by < bh; ++by)
    for (int bx = 0; bx < bw; ++bx) {
      decodeBlock(f, s + size_t(by * bw + bx) * bs, t);
      for (int p = 0; p < 16; ++p) {
        int x = 4 * bx + p % 4, y = 4 * by + p / 4;
        if (x < w && y < h) std::memcpy(&img[(size_t(y) * w + x) * 4], t + 4 * p, 4);
      }
    }
  return img;
}

void encodeDXT1(const uint8_t px[64], uint8_t out[8]) { colourBlock(px, out); }
void encodeDXT3(const uint8_t px[64], uint8_t out[16]) {
  uint64_t a = 0;
  for (int p = 0; p < 16; ++p) a |= uint64_t(px[4 * p + 3] >> 4) << (4 * p);
  for (int i = 0; i < 8; ++i) out[i] = uint8_t(a >> (8 * i));
  colourBlock(px, out + 8);
}
void encodeDXT5Block(const uint8_t px[64], uint8_t out[16]) {
  int mn = 255, mx = 0;
  for (int p = 0; p < 16; ++p) { mn = std::min(mn, int(px[4 * p + 3])); mx = std::max(mx, int(px[4 * p + 3])); }
  int inset = (mx - mn) >> 4;
  alphaThresholds(px + 3, 4, mx - inset, mn + inset, out);
  colourBlock(px, out + 8);
}

// The wide path with its tables as described: dividers, the colour index map
// and the ten alpha index tables on pairs of raw positions.
void encodeDXT5Wide(const uint8_t px[64], uint8_t out[16]) {
  int mn[4], mx[4];
  for (int c = 0; c < 4; ++c) {
    mn[c] = 255; mx[c] = 0;
    for (int p = 0; p < 16; ++p) { mn[c] = std::min(mn[c], int(px[4 * p + c])); mx[c] = std::max(mx[c], int(px[4 * p + c])); }
  }
  uint8_t tmp[16];
  encodeDXT5Block(px, tmp);  // endpoints and alphas equal those of the block path
  std::memcpy(out, tmp, 2);
  std::memcpy(out + 8, tmp + 8, 4);
  uint32_t colorDiv = (32768u / (mx[0] - mn[0] + mx[1] - mn[1] + mx[2] - mn[2] + 1));
  colorDiv = colorDiv | (colorDiv << 16);
  uint32_t alphaDiv = (65536u / (mx[3] - mn[3] + 1)) << 16;
  int16_t dc = int16_t(uint16_t(colorDiv & 0xFFFF)), da = int16_t(uint16_t(alphaDiv >> 16));
  int rc[16], ra[16];
  for (int p = 0; p < 16; ++p) {
    int s = px[4 * p] - mn[0] + px[4 * p + 1] - mn[1] + px[4 * p + 2] - mn[2];
    int t = px[4 * p + 3] - mn[3];
    int16_t s8 = int16_t(8 * s), t8 = int16_t(8 * t);
    int32_t pc = int32_t(s8) * dc, pa = int32_t(t8) * da;
    int hc = int16_t(uint32_t(pc) >> 16), ha = int16_t(uint32_t(pa) >> 16);
    rc[p] = std::clamp(hc, 0, 255);
    ra[p] = std::clamp(ha, 0, 255);
  }
  // COLOR_INDICES: each 2-bit field f replaced by m(f), m = 1, 3, 2, 0.
  static const int cm[4] = {1, 3, 2, 0};
  uint32_t cw = 0;
  for (int q = 0; q < 4; ++q) {
    int e = rc[4 * q] | (rc[4 * q + 1] << 2) | (rc[4 * q + 2] << 4) | (rc[4 * q + 3] << 6);
    int mapped = 0;
    for (int k = 0; k < 4; ++k) mapped |= cm[(e >> (2 * k)) & 3] << (2 * k);
    cw |= uint32_t(mapped) << (8 * q);
  }
  for (int i = 0; i < 4; ++i) out[12 + i] = uint8_t(cw >> (8 * i));
  // ALPHA_INDICES.
  static const int am[8] = {1, 7, 6, 5, 4, 3, 2, 0};
  static const int L[10] = {0, 1, 2, 0, 1, 2, 3, 0, 1, 2}, R[10] = {0, 0, 0, 2, 2, 2, 2, 1, 1, 1};
  static const int pairOf[10] = {0, 1, 2, 2, 3, 4, 5, 5, 6, 7};
  uint16_t words[3] = {0, 0, 0};
  for (int j = 0; j < 10; ++j) {
    int pr = pairOf[j];
    int v = (am[ra[2 * pr + 1]] << 3) | am[ra[2 * pr]];
    uint16_t piece = uint16_t((uint32_t(v) << (6 * L[j])) >> (2 * R[j]));
    words[j < 3 ? 0 : j < 7 ? 1 : 2] |= piece;
  }
  for (int i = 0; i < 3; ++i) { out[2 + 2 * i] = uint8_t(words[i]); out[3 + 2 * i] = uint8_t(words[i] >> 8); }
}

void encodeYCoCg(const uint8_t in[48], uint8_t out[16]) {
  uint8_t px[48];
  std::memcpy(px, in, 48);
  int mn[3] = {255, 255, 255}, mx[3] = {0, 0, 0};
  for (int p = 0; p < 16; ++p)
    for (int c = 0; c < 3; ++c) { mn[c] = std::min(mn[c], int(px[3 * p + c])); mx[c] = std::max(mx[c], int(px[3 * p + c])); }
  int q = std::max(std::max(ad(mx[1], 128), ad(mx[2], 128)), std::max(ad(mn[1], 128), ad(mn[2], 128)));
  int scale = q < 32 ? 4 : q < 64 ? 2 : 1;
  auto sc = [&](int x) { return (scale * (x - 128) + 128) & 255; };
  for (int p = 0; p < 16; ++p) { px[3 * p + 1] = uint8_t(sc(px[3 * p + 1])); px[3 * p + 2] = uint8_t(sc(px[3 * p + 2])); }
  uint32_t lo[3], hi[3], e_lo[3], e_hi[3];
  for (int c = 1; c < 3; ++c) {
    uint32_t l = uint32_t(sc(mn[c])), h = uint32_t(sc(mx[c]));
    uint32_t nl = (16 * l + (h - l) - 7) >> 4;
    uint32_t nh = (16 * h - (h - l) + 7) >> 4;
    if (nh > 255) nh = 255;
    lo[c] = nl; hi[c] = nh;
    uint32_t mask = c == 1 ? 0xF8 : 0xFC, sh = c == 1 ? 5 : 6;
    e_lo[c] = uint8_t((nl & mask) | (nl >> sh));
    e_hi[c] = uint8_t((nh & mask) | (nh >> sh));
  }
  uint32_t midCo = (e_lo[1] + e_hi[1] + 1) >> 1, midCg = (e_lo[2] + e_hi[2] + 1) >> 1;
  int cnt = 0;
  for (int p = 0; p < 16; ++p) cnt += (px[3 * p + 1] >= midCo) != (px[3 * p + 2] >= midCg);
  if (cnt > 8) { std::swap(lo[2], hi[2]); std::swap(e_lo[2], e_hi[2]); }
  unsigned w0 = ((((hi[1] >> 3) & 31) << 11) | (((hi[2] >> 2) & 63) << 5) | unsigned(scale - 1)) & 0xFFFF;
  unsigned w1 = ((((lo[1] >> 3) & 31) << 11) | (((lo[2] >> 2) & 63) << 5) | unsigned(scale - 1)) & 0xFFFF;
  int pal[4][2] = {{int(e_hi[1]), int(e_hi[2])}, {int(e_lo[1]), int(e_lo[2])}};
  for (int c = 0; c < 2; ++c) { pal[2][c] = (2 * pal[0][c] + pal[1][c]) / 3; pal[3][c] = (pal[0][c] + 2 * pal[1][c]) / 3; }
  uint32_t idx = 0;
  for (int p = 0; p < 16; ++p) {
    int d[4];
    for (int k = 0; k < 4; ++k) d[k] = ad(px[3 * p + 1], pal[k][0]) + ad(px[3 * p + 2], pal[k][1]);
    int b0 = d[0] > d[3] && d[1] > d[3];
    int b1 = (d[1] > d[2] && d[0] > d[2]) || b0;
    idx |= uint32_t(b0 | (b1 << 1)) << (2 * p);
  }
  alphaThresholds(px, 3, mx[0], mn[0], out);
  out[8] = uint8_t(w0); out[9] = uint8_t(w0 >> 8); out[10] = uint8_t(w1); out[11] = uint8_t(w1 >> 8);
  for (int i = 0; i < 4; ++i) out[12 + i] = uint8_t(idx >> (8 * i));
}

std::vector<uint8_t> encodeImage(Fmt f, const uint8_t* src, int w, int h) {
  int bw = (w + 3) / 4, bh = (h + 3) / 4, bs = f == Fmt::DXT1 ? 8 : 16;
  std::vector<uint8_t> out(size_t(bw) * bh * bs);
  for (int by = 0; by < bh; ++by)
    for (int bx = 0; bx < bw; ++bx) {
      auto b = gather(src, w, h, bx, by, 4);
      uint8_t* o = &out[size_t(by * bw + bx) * bs];
      if (f == Fmt::DXT1) encodeDXT1(b.data(), o);
      else if (f == Fmt::DXT3) encodeDXT3(b.data(), o);
      else if (4 * by + 4 <= h && bx < 4 * (w / 16)) encodeDXT5Wide(b.data(), o);
      else encodeDXT5Block(b.data(), o);
    }
  return out;
}

std::vector<uint8_t> encodeImageYCoCg(const uint8_t* src, int w, int h) {
  int bw = (w + 3) / 4, bh = (h + 3) / 4;
  std::vector<uint8_t> out(size_t(bw) * bh * 16);
  for (int by = 0; by < bh; ++by)
    for (int bx = 0; bx < bw; ++bx) encodeYCoCg(gather(src, w, h, bx, by, 3).data(), &out[size_t(by * bw + bx) * 16]);
  return out;
}

}  // namespace ref::tex
