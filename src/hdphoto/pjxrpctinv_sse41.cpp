// Inverse photo core transform, four blocks at a time (SSE4.1).
#include "hdphoto/pjxrpct_vec.h"

void zvp::pct::invBlocksSSE41(Zvp32s* const* blocks, int count, int step) {
  const int done = blocksVector<SseOps, false>(blocks, count, step);
  invBlocksScalar(blocks + done, count - done, step);
}
