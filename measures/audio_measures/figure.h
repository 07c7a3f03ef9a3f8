#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <span>

// Measures of audio: what can be said of samples in figures. Each header states the definition, its
// source in the literature, the unit, what input is valid, and the version, which is raised
// whenever a figure changes. One thread, no files, no state beside the objects; samples are floats
// with full scale at 1.
namespace audio_measures {

// A figure, or why there is none. What cannot be computed is never 0.
struct Figure {
  std::optional<double> value = {};
  const char* reason = "";  // Empty where there is a value.
};

inline Figure Known(double value) { return {.value = value}; }
// All bits of the exponent are set in what is not finite, and one more makes them overflow.
inline bool AreFinite(std::span<const float> samples) {
  uint32_t overflows = 0;
  for (const float sample : samples) {
    overflows |= (std::bit_cast<uint32_t>(sample) & 0x7F800000U) + 0x00800000U;
  }
  return (overflows & 0x80000000U) == 0;
}

inline Figure Unknown(const char* reason) { return {.reason = reason}; }

inline constexpr const char* kNoSamples = "no samples";
inline constexpr const char* kSilence = "silence";
inline constexpr const char* kNotFinite = "samples that are not finite";
inline constexpr const char* kBelowGate = "nothing above the gate";
inline constexpr const char* kTooShort = "too short";
inline constexpr const char* kWrongRate = "a rate that it is not defined for";
inline constexpr const char* kOtherRate = "signals of different rates";
inline constexpr const char* kOtherChannels = "signals of different channel counts";

}  // namespace audio_measures
