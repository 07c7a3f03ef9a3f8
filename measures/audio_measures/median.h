#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace audio_measures {

// The middle one, or the mean of the middle two. values: at least one.
inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  if (values.size() % 2 != 0) return *middle;
  return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

}  // namespace audio_measures
