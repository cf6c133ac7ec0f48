// Forward photo core transform, eight blocks at a time (AVX2), then four.
#include "hdphoto/pjxrpct_vec.h"

void zvp::pct::fwdBlocksAVX2(Zvp32s* const* blocks, int count, int step) {
  int done = blocksVector<AvxOps, true>(blocks, count, step);
  done += blocksVector<SseOps, true>(blocks + done, count - done, step);
  fwdBlocksScalar(blocks + done, count - done, step);
}
