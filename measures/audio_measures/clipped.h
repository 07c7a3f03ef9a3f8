#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kClippedVersion = 1;

// clipped: the share of the samples of one channel that stand in a run of three or more in a row at
// or beyond full scale, all of one sign. A share from 0 to 1. Meant for what was made from
// integers: floats go beyond full scale without harm. Any rate; what is not finite counts as not
// clipped.
class Clipped {
 public:
  static constexpr uint64_t kShortestRun = 3;

  // fullScale: the largest value that samples can have, 1 - 2^(1 - bits) for integers; above 0.
  explicit Clipped(float fullScale) : m_fullScale(fullScale) {}

  void Add(std::span<const float> samples);

  Figure Share() const;
  uint64_t Samples() const { return m_clipped; }  // That stand in runs.
  uint64_t Runs() const { return m_runs; }
  std::optional<uint64_t> First() const {
    return m_first;
  }  // Sample at which the first run starts.

 private:
  void AddEach(std::span<const float> samples);

  float m_fullScale;
  uint64_t m_samples = 0;
  uint64_t m_clipped = 0;
  uint64_t m_runs = 0;
  uint64_t m_run = 0;  // Samples of the run that the last one is in.
  bool m_positive = false;
  std::optional<uint64_t> m_first = {};
};

}  // namespace audio_measures
