#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "guards/survey.h"

namespace host {

// The limits of the guards. docs/guards.md says why they stand where they do.

inline constexpr double kShortestJudged =
    0.25;                                   // s of input; below that a delay may be all there is.
inline constexpr double kHeardLevel = -60;  // dBFS RMS that an output must not lose entirely.
inline constexpr double kStill = 2.5 / 32768;  // A swing of two steps of 16 bits, and rounding.

inline constexpr double kGraveClipping = 1e-4;  // Share of the samples from which clipping fails.
inline constexpr double kMoreClipped = 1.1;  // Times the input's share that is still the input's.

inline constexpr double kMaxDc = 0.003;     // Of full scale, beyond the input's.
inline constexpr double kSureErrors = 4.0;  // Standard errors that an offset must stand out by.

inline constexpr double kMaxTruePeak = 0;            // dBTP
inline constexpr double kMoreTruePeak = 1;           // dB above that of the input.
inline constexpr double kSameSample = 0.51 / 32768;  // Half a step of 16 bits, and rounding.

inline constexpr double kShortestDropout = 0.002;  // s
inline constexpr double kEndsLeftOut = 0.1;        // s of zeros at either end that are padding.

// The same in frames.
inline size_t ShortestDropout(int rate) {
  return std::max<size_t>(1, static_cast<size_t>(std::ceil(kShortestDropout * rate)));
}

// Nothing but an offset and the noise of 16 bits.
inline bool IsStill(const ChannelSurvey& survey) {
  return survey.level.Swing().value.value_or(0) <= kStill;
}

}  // namespace host
