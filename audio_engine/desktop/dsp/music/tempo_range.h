#pragma once

#include <cmath>
#include <cstddef>

#include "desktop/common/counts.h"

namespace desktop {

// The range of tempi in beats a minute, and the ratio of one that is tried to the next.
constexpr double kSlowest = 60;
constexpr double kFastest = 190;
constexpr double kTempoStep = 1.01;

inline size_t Tempi() {
  return static_cast<size_t>(std::log(kFastest / kSlowest) / std::log(kTempoStep)) + 1;
}

inline double TempoOf(size_t index) { return kSlowest * std::pow(kTempoStep, Real(index)); }

}  // namespace desktop
