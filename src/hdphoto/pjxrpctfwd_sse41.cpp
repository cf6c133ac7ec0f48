// Forward photo core transform, four blocks at a time (SSE4.1).
#include "hdphoto/pjxrpct_vec.h"

void zvp::pct::fwdBlocksSSE41(Zvp32s* const* blocks, int count, int step) {
  const int done = blocksVector<SseOps, true>(blocks, count, step);
  fwdBlocksScalar(blocks + done, count - done, step);
}
