#include "statistics/holm.h"

#include <algorithm>
#include <numeric>

namespace statistics {

std::vector<double> HolmCorrected(std::span<const double> p) {
  std::vector<size_t> order(p.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return p[a] < p[b]; });
  std::vector<double> corrected(p.size());
  double least = 0;
  for (size_t rank = 0; rank < order.size(); ++rank) {
    const size_t at = order[rank];
    least = std::max(least, p[at] * static_cast<double>(p.size() - rank));
    corrected[at] = std::min(least, 1.0);
  }
  return corrected;
}

}  // namespace statistics
