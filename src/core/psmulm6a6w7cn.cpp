// Scaled multiplication of unsigned by signed 16-bit values: the product
// divided by 2^scaleFactor, rounded to nearest with ties to even, saturated.
#include "core/cpu.h"
#include "core/primitives.h"
#include "core/pjls.h"

namespace zvp::prim {

void mulSfsScalar(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor) {
  for (int i = 0; i < len; ++i) {
    Zvp16u a;
    __builtin_memcpy(&a, pSrc1 + i, 2);
    zvp::ls::store16s(pDst + i, mulPosSfs(a, zvp::ls::load16s(pSrc2 + i), scaleFactor));
  }
}

MulSfsFn mulSfs() {
#if !defined(ZVP_NO_X86)
  if (cpuIsa() >= Isa::SSE41) return mulSfsSSE41;
#endif
  return mulSfsScalar;
}

}  // namespace zvp::prim

void ownsMul_16u16s_PosSfs(const Zvp16u* pSrc1, const Zvp16s* pSrc2, Zvp16s* pDst, int len, int scaleFactor) {
  zvp::prim::mulSfs()(pSrc1, pSrc2, pDst, len, scaleFactor);
}
