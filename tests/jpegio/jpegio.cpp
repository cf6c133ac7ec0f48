// Marker reader and writer (see jpegio.h).
#include "jpegio/jpegio.h"

#include <algorithm>

namespace jpegio {

namespace {
int be16(const std::vector<uint8_t>& f, size_t p) { return (f[p] << 8) | f[p + 1]; }
}  // namespace

std::string read(const std::vector<uint8_t>& f, Image& img) {
  if (f.size() < 4 || f[0] != 0xFF || f[1] != 0xD8) return "no SOI";
  size_t p = 2;
  while (p + 4 <= f.size()) {
    if (f[p] != 0xFF) return "marker expected";
    int m = f[p + 1];
    if (m == 0xFF) {
      ++p;
      continue;
    }
    if (m == 0xD9) return "EOI before SOS";
    size_t len = static_cast<size_t>(be16(f, p + 2));
    size_t seg = p + 4, end = p + 2 + len;
    if (end > f.size()) return "segment past end";
    switch (m) {
      case 0xDB:
        for (size_t q = seg; q < end;) {
          int pq = f[q] >> 4, tq = f[q] & 15;
          ++q;
          for (int i = 0; i < 64; ++i) {
            img.quant[tq & 3][i] = pq ? static_cast<uint16_t>(be16(f, q)) : f[q];
            q += pq ? 2 : 1;
          }
        }
        break;
      case 0xC0:
      case 0xC1: {
        if (f[seg] != 8) return "not 8-bit";
        img.height = be16(f, seg + 1);
        img.width = be16(f, seg + 3);
        int n = f[seg + 5];
        img.comps.resize(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
          size_t q = seg + 6 + 3 * static_cast<size_t>(i);
          img.comps[i].id = f[q];
          img.comps[i].h = f[q + 1] >> 4;
          img.comps[i].v = f[q + 1] & 15;
          img.comps[i].tq = f[q + 2];
        }
        break;
      }
      case 0xC4:
        for (size_t q = seg; q < end;) {
          int tc = f[q] >> 4, th = f[q] & 3;
          HuffTable& t = tc ? img.ac[th] : img.dc[th];
          t.present = true;
          int n = 0;
          for (int i = 0; i < 16; ++i) n += t.bits[i] = f[q + 1 + i];
          t.vals.assign(f.begin() + static_cast<long>(q + 17), f.begin() + static_cast<long>(q + 17 + n));
          q += 17 + static_cast<size_t>(n);
        }
        break;
      case 0xDD:
        img.restartInterval = be16(f, seg);
        break;
      case 0xDA: {
        int n = f[seg];
        img.scanComps.clear();
        for (int i = 0; i < n; ++i) {
          int id = f[seg + 1 + 2 * i], sel = f[seg + 2 + 2 * i];
          for (size_t c = 0; c < img.comps.size(); ++c)
            if (img.comps[c].id == id) {
              img.comps[c].td = sel >> 4;
              img.comps[c].ta = sel & 15;
              img.scanComps.push_back(static_cast<int>(c));
            }
        }
        // Entropy data up to the first marker that is not RSTn.
        size_t q = end;
        while (q + 1 < f.size()) {
          if (f[q] == 0xFF && f[q + 1] != 0 && !(f[q + 1] >= 0xD0 && f[q + 1] <= 0xD7) && f[q + 1] != 0xFF) break;
          ++q;
        }
        img.entropy.assign(f.begin() + static_cast<long>(end), f.begin() + static_cast<long>(q));
        return "";
      }
      default:
        if (m >= 0xC2 && m <= 0xCF && m != 0xC4 && m != 0xC8 && m != 0xCC) return "not sequential Huffman";
        break;
    }
    p = end;
  }
  return "no SOS";
}

namespace {
void put16(std::vector<uint8_t>& o, int v) {
  o.push_back(static_cast<uint8_t>(v >> 8));
  o.push_back(static_cast<uint8_t>(v));
}
}  // namespace

std::vector<uint8_t> write(const Image& img) {
  std::vector<uint8_t> o = {0xFF, 0xD8};
  for (int t = 0; t < 4; ++t) {
    bool used = false;
    for (const Component& c : img.comps) used |= c.tq == t;
    if (!used) continue;
    o.insert(o.end(), {0xFF, 0xDB});
    put16(o, 67);
    o.push_back(static_cast<uint8_t>(t));
    for (int i = 0; i < 64; ++i) o.push_back(static_cast<uint8_t>(img.quant[t][i]));
  }
  o.insert(o.end(), {0xFF, 0xC0});
  put16(o, 8 + 3 * static_cast<int>(img.comps.size()));
  o.push_back(8);
  put16(o, img.height);
  put16(o, img.width);
  o.push_back(static_cast<uint8_t>(img.comps.size()));
  for (const Component& c : img.comps) {
    o.push_back(static_cast<uint8_t>(c.id));
    o.push_back(static_cast<uint8_t>((c.h << 4) | c.v));
    o.push_back(static_cast<uint8_t>(c.tq));
  }
  for (int cls = 0; cls < 2; ++cls)
    for (int t = 0; t < 4; ++t) {
      const HuffTable& h = cls ? img.ac[t] : img.dc[t];
      if (!h.present) continue;
      o.insert(o.end(), {0xFF, 0xC4});
      put16(o, 2 + 17 + static_cast<int>(h.vals.size()));
      o.push_back(static_cast<uint8_t>((cls << 4) | t));
      o.insert(o.end(), h.bits, h.bits + 16);
      o.insert(o.end(), h.vals.begin(), h.vals.end());
    }
  if (img.restartInterval) {
    o.insert(o.end(), {0xFF, 0xDD});
    put16(o, 4);
    put16(o, img.restartInterval);
  }
  o.insert(o.end(), {0xFF, 0xDA});
  put16(o, 6 + 2 * static_cast<int>(img.scanComps.size()));
  o.push_back(static_cast<uint8_t>(img.scanComps.size()));
  for (int ci : img.scanComps) {
    const Component& c = img.comps[static_cast<size_t>(ci)];
    o.push_back(static_cast<uint8_t>(c.id));
    o.push_back(static_cast<uint8_t>((c.td << 4) | c.ta));
  }
  o.insert(o.end(), {0, 63, 0});
  o.insert(o.end(), img.entropy.begin(), img.entropy.end());
  o.insert(o.end(), {0xFF, 0xD9});
  return o;
}

Geometry geometry(const Image& img) {
  Geometry g;
  for (const Component& c : img.comps) {
    g.hmax = std::max(g.hmax, c.h);
    g.vmax = std::max(g.vmax, c.v);
  }
  g.interleaved = img.scanComps.size() > 1;
  for (const Component& c : img.comps) {
    int cw = (img.width * c.h + g.hmax - 1) / g.hmax;
    int ch = (img.height * c.v + g.vmax - 1) / g.vmax;
    g.widthInBlocks.push_back((cw + 7) / 8);
    g.heightInBlocks.push_back((ch + 7) / 8);
  }
  if (g.interleaved) {
    g.mcusX = (img.width + 8 * g.hmax - 1) / (8 * g.hmax);
    g.mcusY = (img.height + 8 * g.vmax - 1) / (8 * g.vmax);
  } else {
    int c = img.scanComps.empty() ? 0 : img.scanComps[0];
    g.mcusX = g.widthInBlocks[static_cast<size_t>(c)];
    g.mcusY = g.heightInBlocks[static_cast<size_t>(c)];
  }
  return g;
}

}  // namespace jpegio
