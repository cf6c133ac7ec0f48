// Reference model of the MCU functions (see mcu_ref.h).
#include "ref/mcu_ref.h"

namespace ref::mcu {

int width(Samp s) { return s == Samp::S444 ? 8 : 16; }
int height(Samp s) { return s == Samp::S411 ? 16 : 8; }
int lumaBlocks(Samp s) { return s == Samp::S444 ? 1 : (s == Samp::S422 ? 2 : 4); }

namespace {

int sx(Samp s) { return s == Samp::S444 ? 1 : 2; }
int sy(Samp s) { return s == Samp::S411 ? 2 : 1; }

// Y (and K) value of pixel (x, y): block 2 (y / 8) + x / 8 of the run,
// position 8 (y mod 8) + x mod 8.
int lumaAt(int x, int y) { return 64 * (2 * (y / 8) + x / 8) + 8 * (y % 8) + x % 8; }
int chromaAt(Samp s, int x, int y) { return 8 * (y / sy(s)) + x / sx(s); }

int clip(int64_t v) { return v < 0 ? 0 : (v > 255 ? 255 : static_cast<int>(v)); }
int wrap16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint64_t>(v) & 0xFFFF)); }

struct RGB {
  int r, g, b;
};

RGB decodePixel(bool fast, int64_t y, int64_t cb, int64_t cr) {
  if (fast) {
    const int64_t dR = (22970 * cr + 2105344) >> 14;
    const int64_t dG = (-5638 * cb - 11700 * cr + 2105344) >> 14;
    const int64_t dB = (29032 * cb + 2105344) >> 14;
    return {clip(wrap16(y + dR)), clip(wrap16(y + dG)), clip(wrap16(y + dB))};
  }
  return {clip(y + ((91881 * cr) >> 16) + 128), clip(y + ((-22554 * cb - 46802 * cr) >> 16) + 128),
          clip(y + ((116130 * cb) >> 16) + 128)};
}

RGB pixelOf(const Blocks& b, Samp s, int x, int y, bool fast) {
  const int c = chromaAt(s, x, y);
  return decodePixel(fast, b.y[lumaAt(x, y)], b.cb[c], b.cr[c]);
}

}  // namespace

void toRGB(Samp s, bool fast, bool bgr, const Blocks& b, uint8_t* dst, int step) {
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const RGB p = pixelOf(b, s, x, y, fast);
      uint8_t* d = dst + static_cast<long>(y) * step + 3 * x;
      d[0] = static_cast<uint8_t>(bgr ? p.b : p.r);
      d[1] = static_cast<uint8_t>(p.g);
      d[2] = static_cast<uint8_t>(bgr ? p.r : p.b);
    }
}

void toCMYK(Samp s, bool fast, const Blocks& b, uint8_t* dst, int step) {
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const RGB p = pixelOf(b, s, x, y, fast);
      const int k = b.k[lumaAt(x, y)];
      uint8_t* d = dst + static_cast<long>(y) * step + 4 * x;
      d[0] = static_cast<uint8_t>(255 - p.r);
      d[1] = static_cast<uint8_t>(255 - p.g);
      d[2] = static_cast<uint8_t>(255 - p.b);
      d[3] = static_cast<uint8_t>(fast ? clip(k + 128) : ((k - 128) & 0xFF));
    }
}

void toPacked(Samp s, bool is565, const Blocks& b, uint8_t* dst, int step) {
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const RGB p = pixelOf(b, s, x, y, true);
      const unsigned v = is565 ? (unsigned(p.b >> 3) | unsigned(p.g >> 2) << 5 | unsigned(p.r >> 3) << 11)
                               : (unsigned(p.b >> 3) | unsigned(p.g >> 3) << 5 | unsigned(p.r >> 3) << 10);
      uint8_t* d = dst + static_cast<long>(y) * step + 2 * x;
      d[0] = static_cast<uint8_t>(v & 0xFF);
      d[1] = static_cast<uint8_t>(v >> 8);
    }
}

void sampleUp(Samp s, const Blocks& b, uint8_t* dst, int step) {
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const int c = chromaAt(s, x, y);
      uint8_t* d = dst + static_cast<long>(y) * step + 3 * x;
      d[0] = static_cast<uint8_t>(clip(b.y[lumaAt(x, y)] + 128));
      d[1] = static_cast<uint8_t>(clip(b.cb[c] + 128));
      d[2] = static_cast<uint8_t>(clip(b.cr[c] + 128));
    }
}

void join422(const Blocks& b, uint8_t* dst, int step) {
  for (int y = 0; y < 8; ++y)
    for (int pr = 0; pr < 8; ++pr) {
      uint8_t* d = dst + static_cast<long>(y) * step + 4 * pr;
      d[0] = static_cast<uint8_t>(clip(b.y[lumaAt(2 * pr, y)] + 128));
      d[1] = static_cast<uint8_t>(clip(b.cb[8 * y + pr] + 128));
      d[2] = static_cast<uint8_t>(clip(b.y[lumaAt(2 * pr + 1, y)] + 128));
      d[3] = static_cast<uint8_t>(clip(b.cr[8 * y + pr] + 128));
    }
}

namespace {

// Encoding of pixels given as channels c0 c1 c2 (R G B) by a reader.
template <class Read>
void encode(Samp s, bool fast, bool cmykRound, Read read, Blocks& out) {
  const int n = sx(s) * sy(s), m = n == 1 ? 0 : (n == 2 ? 1 : 2);
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const RGB p = read(x, y);
      out.y[lumaAt(x, y)] = static_cast<int16_t>(fast ? (4899 * p.r + 9617 * p.g + 1868 * p.b - 2088960) >> 14
                                                      : ((19595 * p.r + 38470 * p.g + 7471 * p.b) >> 16) - 128);
    }
  for (int cy = 0; cy < 8; ++cy)
    for (int cx = 0; cx < 8; ++cx) {
      int sr = 0, sg = 0, sb = 0;
      for (int dy = 0; dy < sy(s); ++dy)
        for (int dx = 0; dx < sx(s); ++dx) {
          const RGB p = read(cx * sx(s) + dx, cy * sy(s) + dy);
          sr += p.r;
          sg += p.g;
          sb += p.b;
        }
      int cb, cr;
      if (fast) {
        const int rnd = cmykRound ? 8133 : 8192 * n;
        cb = (-2764 * sr - 5428 * sg + 8192 * sb + rnd) >> (14 + m);
        cr = (8192 * sr - 6860 * sg - 1332 * sb + rnd) >> (14 + m);
      } else {
        cb = (-11059 * sr - 21709 * sg + 32768 * sb) >> 18;
        cr = (32768 * sr - 27439 * sg - 5329 * sb) >> 18;
      }
      out.cb[8 * cy + cx] = static_cast<int16_t>(cb);
      out.cr[8 * cy + cx] = static_cast<int16_t>(cr);
    }
}

}  // namespace

void fromRGB(Samp s, bool fast, bool bgr, const uint8_t* src, int step, Blocks& out) {
  encode(
      s, fast, false,
      [&](int x, int y) {
        const uint8_t* p = src + static_cast<long>(y) * step + 3 * x;
        return bgr ? RGB{p[2], p[1], p[0]} : RGB{p[0], p[1], p[2]};
      },
      out);
}

void fromCMYK(Samp s, bool fast, const uint8_t* src, int step, Blocks& out) {
  auto px = [&](int x, int y) { return src + static_cast<long>(y) * step + 4 * x; };
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) out.k[lumaAt(x, y)] = static_cast<int16_t>(px(x, y)[3] - 128);
  if (fast) {
    encode(
        s, true, s == Samp::S444,
        [&](int x, int y) {
          const uint8_t* p = px(x, y);
          return RGB{255 - p[0], 255 - p[1], 255 - p[2]};
        },
        out);
    return;
  }
  // Scalar body: Y on the inverted channels, chroma on the source bytes.
  const int shift = s == Samp::S444 ? 16 : (s == Samp::S422 ? 17 : 18);
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) {
      const uint8_t* p = px(x, y);
      out.y[lumaAt(x, y)] = static_cast<int16_t>(((16711680 - 19595 * p[0] - 38470 * p[1] - 7471 * p[2]) >> 16) - 128);
    }
  for (int cy = 0; cy < 8; ++cy)
    for (int cx = 0; cx < 8; ++cx) {
      int sc = 0, sm = 0, sy_ = 0;
      for (int dy = 0; dy < sy(s); ++dy)
        for (int dx = 0; dx < sx(s); ++dx) {
          const uint8_t* p = px(cx * sx(s) + dx, cy * sy(s) + dy);
          sc += p[0];
          sm += p[1];
          sy_ += p[2];
        }
      out.cb[8 * cy + cx] = static_cast<int16_t>((11059 * sc + 21709 * sm - 32768 * sy_) >> shift);
      out.cr[8 * cy + cx] = static_cast<int16_t>((-32768 * sc + 27439 * sm + 5329 * sy_) >> shift);
    }
}

void fromPacked(Samp s, bool is565, const uint8_t* src, int step, Blocks& out) {
  encode(
      s, true, false,
      [&](int x, int y) {
        const uint8_t* p = src + static_cast<long>(y) * step + 2 * x;
        const unsigned v = p[0] | unsigned(p[1]) << 8;
        if (is565) return RGB{int((v >> 11) & 31) << 3, int((v >> 5) & 63) << 2, int(v & 31) << 3};
        return RGB{int((v >> 10) & 31) << 3, int((v >> 5) & 31) << 3, int(v & 31) << 3};
      },
      out);
}

void sampleDown(Samp s, const uint8_t* src, int step, Blocks& out) {
  auto px = [&](int x, int y) { return src + static_cast<long>(y) * step + 3 * x; };
  for (int y = 0; y < height(s); ++y)
    for (int x = 0; x < width(s); ++x) out.y[lumaAt(x, y)] = static_cast<int16_t>(px(x, y)[0] - 128);
  for (int cy = 0; cy < 8; ++cy)
    for (int cx = 0; cx < 8; ++cx) {
      int b = 0, r = 0;
      for (int dy = 0; dy < sy(s); ++dy)
        for (int dx = 0; dx < sx(s); ++dx) {
          b += px(cx * sx(s) + dx, cy * sy(s) + dy)[1];
          r += px(cx * sx(s) + dx, cy * sy(s) + dy)[2];
        }
      const int n = sx(s) * sy(s);
      out.cb[8 * cy + cx] = static_cast<int16_t>(b / n - 128);  // sums are non-negative: division truncates down
      out.cr[8 * cy + cx] = static_cast<int16_t>(r / n - 128);
    }
}

void split422(const uint8_t* src, int step, Blocks& out) {
  for (int y = 0; y < 8; ++y)
    for (int pr = 0; pr < 8; ++pr) {
      const uint8_t* p = src + static_cast<long>(y) * step + 4 * pr;
      out.y[lumaAt(2 * pr, y)] = static_cast<int16_t>(p[0] - 128);
      out.cb[8 * y + pr] = static_cast<int16_t>(p[1] - 128);
      out.y[lumaAt(2 * pr + 1, y)] = static_cast<int16_t>(p[2] - 128);
      out.cr[8 * y + pr] = static_cast<int16_t>(p[3] - 128);
    }
}

}  // namespace ref::mcu
