#pragma once

#include <span>
#include <vector>

namespace statistics {

// Each p corrected for there being several (Holm, A simple sequentially rejective multiple test
// procedure, 1979): what is below a level now errs in no more than this share of all families.
std::vector<double> HolmCorrected(std::span<const double> p);

}  // namespace statistics
