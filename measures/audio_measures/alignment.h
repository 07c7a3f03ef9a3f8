#pragma once

#include <cstdint>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kDelayVersion = 2;
inline constexpr int kGainVersion = 2;
inline constexpr int kPolarityVersion = 2;

// By how much a signal is later than its reference: whole samples by GCC-PHAT (delay_finder.h), the
// rest by the phase of the cross-spectrum (phase_fit.h).
struct Alignment {
  Figure delay;        // Seconds by which the signal is later; below 0: earlier.
  Figure correlation;  // From 0 to 1, once delay and polarity are taken out.
  int64_t peak = 0;    // Samples: where the correlation that the delay was fitted from is highest.
};

// One channel each, of one rate, finite, at least 4096 samples in common. least, most: seconds
// between which the delay is looked for. Unknown for silence, for what is too short, and without a
// clear delay, as between two signals that have nothing to do with each other.
Alignment Align(std::span<const float> reference, std::span<const float> signal, int rate,
                double least, double most);

}  // namespace audio_measures
