#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "audio_measures/phase_fit.h"

namespace audio_measures {

// Where a signal is looked for beside its reference.
struct DelaySearch {
  int64_t least = 0;  // Samples by which the signal may be later.
  int64_t most = 0;
  std::optional<int64_t> likely = {};  // A delay that is tried in any case.
};

struct ChosenDelay {
  int64_t lag = 0;  // Samples.
  PhaseFit::Fit fit = {};
  double Later() const { return static_cast<double>(lag) + fit.later; }
};

// The delay of `count` samples of the reference from `start` on: of the peaks of the correlation,
// with its phase transform and without (delay_finder.h), the one at which both are most alike once
// the rest of the delay is fitted (phase_fit.h). Nothing, with a reason, where neither the peak
// with the phase transform is clear nor the correlation above kAlike.
struct DelayChoice {
  std::optional<ChosenDelay> delay = {};
  const char* reason = "";
};
DelayChoice ChooseDelay(std::span<const float> reference, std::span<const float> signal,
                        size_t start, size_t count, const DelaySearch& search);

inline constexpr double kAlike = 0.5;

}  // namespace audio_measures
