// Inverse photo core transform, eight blocks at a time (AVX2), then four.
#include "hdphoto/pjxrpct_vec.h"

void zvp::pct::invBlocksAVX2(Zvp32s* const* blocks, int count, int step) {
  int done = blocksVector<AvxOps, false>(blocks, count, step);
  done += blocksVector<SseOps, false>(blocks + done, count - done, step);
  invBlocksScalar(blocks + done, count - done, step);
}
