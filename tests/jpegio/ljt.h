// libjpeg-turbo helpers of the interoperability tests and benchmarks:
// compress generated images to memory, read and write coefficient arrays.
#pragma once

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>

namespace ljt {

struct ErrorMgr {
  jpeg_error_mgr pub;
  jmp_buf jump;
};
inline void onError(j_common_ptr c) { longjmp(reinterpret_cast<ErrorMgr*>(c->err)->jump, 1); }
inline void quiet(j_common_ptr, int) {}

struct Options {
  int quality = 75;
  bool optimize = false;
  int restart = 0;      // MCUs per interval
  int lumaH = 1, lumaV = 1;
  bool grey = false;
};

// Smooth gradients plus noise: realistic coefficient statistics.
inline std::vector<uint8_t> makeImage(int w, int h, int comps, unsigned seed) {
  std::vector<uint8_t> px(static_cast<size_t>(w) * h * comps);
  unsigned s = seed;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < comps; ++c) {
        s = s * 1103515245u + 12345u;
        int v = (x * (c + 1) + y * (3 - c)) / 3 + ((x / 17 + y / 11) % 2) * 40 + static_cast<int>((s >> 16) % 24);
        px[(static_cast<size_t>(y) * w + x) * comps + c] = static_cast<uint8_t>(v & 255);
      }
  return px;
}

inline std::vector<uint8_t> compress(const std::vector<uint8_t>& px, int w, int h, const Options& o) {
  jpeg_compress_struct ci;
  ErrorMgr err;
  ci.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = onError;
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  if (setjmp(err.jump)) {
    jpeg_destroy_compress(&ci);
    free(mem);
    return {};
  }
  jpeg_create_compress(&ci);
  jpeg_mem_dest(&ci, &mem, &size);
  ci.image_width = static_cast<JDIMENSION>(w);
  ci.image_height = static_cast<JDIMENSION>(h);
  ci.input_components = o.grey ? 1 : 3;
  ci.in_color_space = o.grey ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&ci);
  jpeg_set_quality(&ci, o.quality, TRUE);
  ci.optimize_coding = o.optimize ? TRUE : FALSE;
  ci.restart_interval = static_cast<unsigned>(o.restart);
  if (!o.grey) {
    ci.comp_info[0].h_samp_factor = o.lumaH;
    ci.comp_info[0].v_samp_factor = o.lumaV;
  }
  jpeg_start_compress(&ci, TRUE);
  int stride = w * ci.input_components;
  while (ci.next_scanline < ci.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(px.data() + static_cast<size_t>(ci.next_scanline) * stride);
    jpeg_write_scanlines(&ci, &row, 1);
  }
  jpeg_finish_compress(&ci);
  jpeg_destroy_compress(&ci);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

struct Coeffs {
  struct Comp {
    int wib = 0, hib = 0;
    std::vector<int16_t> blocks;  // wib * hib blocks of 64, natural order
  };
  std::vector<Comp> comps;
  bool ok = false;
};

// Decodes the entropy data with jpeg_read_coefficients.
inline Coeffs readCoefficients(const std::vector<uint8_t>& file) {
  Coeffs out;
  jpeg_decompress_struct ci;
  ErrorMgr err;
  ci.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = onError;
  err.pub.emit_message = quiet;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&ci);
    out.ok = false;
    return out;
  }
  jpeg_create_decompress(&ci);
  jpeg_mem_src(&ci, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&ci, TRUE);
  jvirt_barray_ptr* arr = jpeg_read_coefficients(&ci);
  for (int c = 0; c < ci.num_components; ++c) {
    jpeg_component_info* cp = &ci.comp_info[c];
    Coeffs::Comp comp;
    comp.wib = static_cast<int>(cp->width_in_blocks);
    comp.hib = static_cast<int>(cp->height_in_blocks);
    comp.blocks.resize(static_cast<size_t>(comp.wib) * comp.hib * 64);
    for (int by = 0; by < comp.hib; ++by) {
      JBLOCKARRAY rows = (*ci.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&ci), arr[c],
                                                       static_cast<JDIMENSION>(by), 1, FALSE);
      for (int bx = 0; bx < comp.wib; ++bx)
        for (int i = 0; i < 64; ++i) comp.blocks[(static_cast<size_t>(by) * comp.wib + bx) * 64 + i] = rows[0][bx][i];
    }
    out.comps.push_back(std::move(comp));
  }
  out.ok = true;
  jpeg_finish_decompress(&ci);
  jpeg_destroy_decompress(&ci);
  return out;
}

// Entropy-codes coefficient arrays with jpeg_write_coefficients (the arrays
// are taken from a decompressor reading `like`, then overwritten); returns the file.
inline std::vector<uint8_t> writeCoefficients(const std::vector<uint8_t>& like, const Coeffs& co, bool optimize) {
  jpeg_decompress_struct di;
  jpeg_compress_struct ci;
  ErrorMgr err;
  di.err = jpeg_std_error(&err.pub);
  ci.err = di.err;
  err.pub.error_exit = onError;
  err.pub.emit_message = quiet;
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  if (setjmp(err.jump)) {
    jpeg_destroy_compress(&ci);
    jpeg_destroy_decompress(&di);
    free(mem);
    return {};
  }
  jpeg_create_decompress(&di);
  jpeg_create_compress(&ci);
  jpeg_mem_src(&di, like.data(), static_cast<unsigned long>(like.size()));
  jpeg_read_header(&di, TRUE);
  jvirt_barray_ptr* arr = jpeg_read_coefficients(&di);
  for (int c = 0; c < di.num_components; ++c) {
    const Coeffs::Comp& comp = co.comps[static_cast<size_t>(c)];
    for (int by = 0; by < comp.hib; ++by) {
      JBLOCKARRAY rows = (*di.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&di), arr[c],
                                                       static_cast<JDIMENSION>(by), 1, TRUE);
      for (int bx = 0; bx < comp.wib; ++bx)
        for (int i = 0; i < 64; ++i) rows[0][bx][i] = comp.blocks[(static_cast<size_t>(by) * comp.wib + bx) * 64 + i];
    }
  }
  jpeg_copy_critical_parameters(&di, &ci);
  ci.optimize_coding = optimize ? TRUE : FALSE;
  jpeg_mem_dest(&ci, &mem, &size);
  jpeg_write_coefficients(&ci, arr);
  jpeg_finish_compress(&ci);
  jpeg_destroy_compress(&ci);
  jpeg_finish_decompress(&di);
  jpeg_destroy_decompress(&di);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

}  // namespace ljt
