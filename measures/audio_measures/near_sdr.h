#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kNearSdrVersion = 2;

// near_sdr, dB, higher is better: how much of the near end an echo canceller leaves while both
// talk: 10 log10(|g s|^2 / |g s - y|^2) over the blocks in which near and far end talk
// (activity.h), with the output y moved to the time of the near end s, to a fraction of a sample
// (alignment.h) unless a whole one fits better, and g = <y, s> / |s|^2; 120 at most. What a
// canceller takes off the near end counts as well as the echo that it leaves; one gain for all of
// it does not. One channel each, of one rate, from 8 kHz, finite. The far end is taken at its own
// time: its echo comes within the hang-over of 0.2 s. Unknown without a clear delay, without double
// talk, and where the output is silent in it.
Figure NearSdr(std::span<const float> near, std::span<const float> far,
               std::span<const float> output, int rate, double searchSeconds);

}  // namespace audio_measures
