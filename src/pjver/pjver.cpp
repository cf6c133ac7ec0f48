// The version records of this build.
#include "zvpj.h"

namespace {

// The two records differ in `name` alone: the "+" one is reported when the
// processor has the feature selected by ZVP_FEATURE_AVX2.
constexpr ZvpLibraryVersion kVersionPlus = {6, 1, 137, 823, {'p', '8', '\0', '\0'},
                                            "libzvpjp8.so.6.1+", "6.1 build 137.56", "Mar 17 2010"};
constexpr ZvpLibraryVersion kVersion = {6, 1, 137, 823, {'p', '8', '\0', '\0'},
                                        "libzvpjp8.so.6.1", "6.1 build 137.56", "Mar 17 2010"};

}  // namespace

extern "C" ZVPJ_API const ZvpLibraryVersion* zvpjGetLibVersion(void) {
  // Asked on every call; nothing is cached.
  return ownGetFeature(ZVP_FEATURE_AVX2) != 0 ? &kVersionPlus : &kVersion;
}
