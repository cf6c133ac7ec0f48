// Colour kernels: every member against the reference on the scalar and the
// SSE4.1 paths, and every SSE4.1 group kernel against its scalar twin at
// every length and alignment that matters.
#include <gtest/gtest.h>

#include "colour_cases.h"
#include "core/cpu.h"
#include "sample/colour.h"

namespace {

struct IsaCap {
  zvp::Isa saved;
  explicit IsaCap(zvp::Isa cap) : saved(zvp::setIsaCap(cap)) {}
  ~IsaCap() { zvp::setIsaCap(saved); }
};

TEST(ColourPaths, ScalarPathMatchesReference) {
  IsaCap cap(zvp::Isa::Scalar);
  cases::checkAllMembers();
}

TEST(ColourPaths, Sse41PathMatchesReference) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  IsaCap cap(zvp::Isa::SSE41);
  cases::checkAllMembers();
}

TEST(ColourPaths, Avx2PathMatchesReference) {
  if (zvp::cpuIsa() < zvp::Isa::AVX2) GTEST_SKIP();
  IsaCap cap(zvp::Isa::AVX2);
  cases::checkAllMembers();
}

#if !defined(ZVP_NO_X86)
using zvp::cc::DecKernels;
using zvp::cc::EncKernels;

// Runs a kernel twice (scalar twin, vector kernel) on equal inputs at every
// group length up to 48 and every source/destination misalignment.
template <class Run>
void twins(int maxN, int step, int inBpp, int outBpp, int inPlanes, int outPlanes, Run&& run) {
  zt::Rng rng(123);
  for (int n = step; n <= maxN; n += step)
    for (size_t offIn = 0; offIn < 4; ++offIn)
      for (size_t offOut = 0; offOut < 4; ++offOut) {
        std::vector<std::unique_ptr<zt::Guarded>> in, outA, outB;
        std::vector<const uint8_t*> pin;
        std::vector<uint8_t*> pa, pb;
        for (int p = 0; p < inPlanes; ++p) {
          in.push_back(std::make_unique<zt::Guarded>(size_t(n) * inBpp, offIn + 3 * p));
          rng.fill(in.back()->data(), in.back()->size());
          pin.push_back(in.back()->data());
        }
        for (int p = 0; p < outPlanes; ++p) {
          outA.push_back(std::make_unique<zt::Guarded>(size_t(n) * outBpp, offOut + p));
          outB.push_back(std::make_unique<zt::Guarded>(size_t(n) * outBpp, offOut + p));
          pa.push_back(outA.back()->data());
          pb.push_back(outB.back()->data());
        }
        run(true, pin.data(), pa.data(), n);
        run(false, pin.data(), pb.data(), n);
        for (int p = 0; p < outPlanes; ++p) {
          ASSERT_EQ(outA[p]->snapshot(), outB[p]->snapshot()) << "n " << n << " plane " << p;
          ASSERT_TRUE(outA[p]->intact() && outB[p]->intact()) << "n " << n;
        }
      }
}

// The vector tables under test: SSE4.1, then AVX2.
const DecKernels* gDec = &zvp::cc::kDecSSE41;
const EncKernels* gEnc = &zvp::cc::kEncSSE41;
const DecKernels& dec(bool scalar) { return scalar ? zvp::cc::kDecScalar : *gDec; }
const EncKernels& enc(bool scalar) { return scalar ? zvp::cc::kEncScalar : *gEnc; }

struct VectorSet {
  const char* name;
  zvp::Isa needs;
  const DecKernels* d;
  const EncKernels* e;
};
const VectorSet kSets[] = {{"sse41", zvp::Isa::SSE41, &zvp::cc::kDecSSE41, &zvp::cc::kEncSSE41},
                           {"avx2", zvp::Isa::AVX2, &zvp::cc::kDecAVX2, &zvp::cc::kEncAVX2}};

// Runs body once per vector table the processor has.
template <class Body>
void forEachVectorSet(Body&& body) {
  for (const VectorSet& v : kSets) {
    if (zvp::cpuIsa() < v.needs) continue;
    SCOPED_TRACE(v.name);
    gDec = v.d, gEnc = v.e;
    body();
  }
  gDec = &zvp::cc::kDecSSE41, gEnc = &zvp::cc::kEncSSE41;
}

TEST(ColourKernels, DecodingKernelsMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  forEachVectorSet([] {
  twins(64, 4, 1, 1, 3, 3, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).yccToRgbP3(i[0], i[1], i[2], o[0], o[1], o[2], n);
  });
  twins(64, 4, 1, 3, 3, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).yccToRgbC3(i[0], i[1], i[2], o[0], n);
  });
  twins(64, 4, 1, 3, 3, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).yccToBgrC3(i[0], i[1], i[2], o[0], n);
  });
  for (int f = 0; f < 4; ++f)
    twins(64, 4, 1, 2, 3, 1, [f](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
      dec(s).yccToPacked[f](i[0], i[1], i[2], reinterpret_cast<Zvp16u*>(o[0]), n);
    });
  twins(64, 4, 1, 1, 4, 4, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).ycckToCmykP4(i[0], i[1], i[2], i[3], o[0], o[1], o[2], o[3], n);
  });
  twins(64, 4, 1, 4, 4, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).ycckToCmykC4(i[0], i[1], i[2], i[3], o[0], n);
  });
  twins(80, 8, 2, 3, 1, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    dec(s).ycc422ToRgb(i[0], o[0], n);
  });
  });
}

TEST(ColourKernels, EncodingKernelsMatchScalarTwins) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  forEachVectorSet([] {
  twins(64, 4, 1, 1, 3, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).rgbToYP3(i[0], i[1], i[2], o[0], n);
  });
  // Whole-row kernels: every length, including the single-pixel lead and tail.
  twins(70, 1, 3, 1, 1, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).rgbToYC3(i[0], o[0], n);
  });
  twins(70, 1, 3, 1, 1, 1, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).bgrToYC3(i[0], o[0], n);
  });
  twins(64, 4, 1, 1, 3, 3, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).rgbToYccP3(i[0], i[1], i[2], o[0], o[1], o[2], n);
  });
  twins(64, 4, 3, 1, 1, 3, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).rgbToYccC3(i[0], o[0], o[1], o[2], n);
  });
  twins(64, 4, 3, 1, 1, 3, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).bgrToYccC3(i[0], o[0], o[1], o[2], n);
  });
  twins(64, 4, 1, 1, 4, 4, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).cmykToYcckP4(i[0], i[1], i[2], i[3], o[0], o[1], o[2], o[3], n);
  });
  twins(64, 4, 4, 1, 1, 4, [](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
    enc(s).cmykToYcckC4(i[0], o[0], o[1], o[2], o[3], n);
  });
  for (int f = 0; f < 4; ++f)
    twins(40, 1, 2, 1, 1, 3, [f](bool s, const uint8_t* const* i, uint8_t* const* o, int n) {
      enc(s).packedToYcc[f](reinterpret_cast<const Zvp16u*>(i[0]), o[0], o[1], o[2], n);
    });
  });
}

// Every pair of the first two channels with every third value of the last
// one (both ends included) through each vector set, against the scalar twins.
TEST(ColourKernels, DecodingSetsExhaustiveOverAllInputs) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  forEachVectorSet([] {
  std::vector<uint8_t> y(256 * 256), cb(256 * 256), cr(256 * 256), a(3 * 256 * 256), b(3 * 256 * 256);
  for (int c = 0; c < 256; c += 3) {  // 0, 3, ..., 255
    for (int i = 0; i < 256 * 256; ++i) y[i] = uint8_t(i & 255), cb[i] = uint8_t(i >> 8), cr[i] = uint8_t(c);
    const int n = 256 * 256;
    zvp::cc::kDecScalar.yccToRgbC3(y.data(), cb.data(), cr.data(), a.data(), n);
    dec(false).yccToRgbC3(y.data(), cb.data(), cr.data(), b.data(), n);
    ASSERT_EQ(a, b) << "cr " << c;
    zvp::cc::kDecScalar.yccToRgbP3(y.data(), cb.data(), cr.data(), a.data(), a.data() + n, a.data() + 2 * n, n);
    dec(false).yccToRgbP3(y.data(), cb.data(), cr.data(), b.data(), b.data() + n, b.data() + 2 * n, n);
    ASSERT_EQ(a, b) << "cr " << c;
  }
  });
}

TEST(ColourKernels, EncodingSetsExhaustiveOverAllInputs) {
  if (zvp::cpuIsa() < zvp::Isa::SSE41) GTEST_SKIP();
  forEachVectorSet([] {
  const int n = 256 * 256;
  std::vector<uint8_t> r(n), g(n), b(n), rgb(3 * n), a(3 * n), v(3 * n);
  for (int c = 0; c < 256; c += 3) {  // 0, 3, ..., 255
    for (int i = 0; i < n; ++i) {
      r[i] = uint8_t(i & 255), g[i] = uint8_t(i >> 8), b[i] = uint8_t(c);
      rgb[3 * i] = r[i], rgb[3 * i + 1] = g[i], rgb[3 * i + 2] = b[i];
    }
    zvp::cc::kEncScalar.rgbToYccP3(r.data(), g.data(), b.data(), a.data(), a.data() + n, a.data() + 2 * n, n);
    enc(false).rgbToYccP3(r.data(), g.data(), b.data(), v.data(), v.data() + n, v.data() + 2 * n, n);
    ASSERT_EQ(a, v) << "b " << c;
    zvp::cc::kEncScalar.rgbToYccC3(rgb.data(), a.data(), a.data() + n, a.data() + 2 * n, n);
    enc(false).rgbToYccC3(rgb.data(), v.data(), v.data() + n, v.data() + 2 * n, n);
    ASSERT_EQ(a, v) << "b " << c;
    zvp::cc::kEncScalar.rgbToYP3(r.data(), g.data(), b.data(), a.data(), n);
    enc(false).rgbToYP3(r.data(), g.data(), b.data(), v.data(), n);
    ASSERT_EQ(a, v) << "b " << c;
  }
  });
}
#endif

}  // namespace
