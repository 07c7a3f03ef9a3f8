#pragma once

#include <span>

namespace statistics {

// Wilcoxon's signed-rank test, two-sided: how likely differences are that lie at least as much on
// one side as these, where neither side is favoured. Zeros are dropped, equal ones share their mean
// rank. Of up to 50 that are left the distribution over all signs is exact; above that it is the
// normal one, corrected for ties and not for continuity. 1 when none is left.
double WilcoxonP(std::span<const double> differences);

}  // namespace statistics
