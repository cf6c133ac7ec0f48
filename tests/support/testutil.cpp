#include "support/testutil.h"

#include <algorithm>

namespace zt {

std::vector<int> interestingWidths() {
  std::vector<int> w;
  for (int i = 1; i <= 40; ++i) w.push_back(i);
  for (int g : {48, 64, 96, 128, 256, 1024}) {
    w.push_back(g - 1);
    w.push_back(g);
    w.push_back(g + 1);
  }
  w.push_back(1919);
  std::sort(w.begin(), w.end());
  w.erase(std::unique(w.begin(), w.end()), w.end());
  return w;
}

}  // namespace zt
