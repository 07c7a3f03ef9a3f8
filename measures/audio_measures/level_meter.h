#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"

namespace audio_measures {

// The measures of level of a file of any length, in one pass: those of the list from peak to
// bandwidth_40db. Memory grows by 200 bytes for each second of a channel.
class LevelMeter {
 public:
  // names: the measures that are wanted, views that outlive the figures; others of the list have no
  // figure here. fullScale: the largest value that samples can have, 1 - 2^(1 - bits) for integers.
  LevelMeter(int channels, int rate, float fullScale, std::span<const std::string_view> names);
  ~LevelMeter();
  LevelMeter(LevelMeter&&) noexcept;
  LevelMeter& operator=(LevelMeter&&) noexcept;

  // Interleaved whole frames.
  void Add(std::span<const float> frames);

  // As Compute has them, in the order of the list.
  std::vector<NamedFigure> Figures() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace audio_measures
