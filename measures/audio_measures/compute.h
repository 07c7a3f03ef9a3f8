#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

// One span of samples per channel, all of one length; full scale at 1.
struct Signal {
  int rate = 0;  // Hz
  std::vector<std::span<const float>> channels = {};

  bool Empty() const { return channels.empty(); }
  size_t Frames() const { return channels.empty() ? 0 : channels.front().size(); }
};

// The output, and what of the rest there is (measure.h says who needs what). A signal of one
// channel serves all channels of the output, otherwise the counts are the same.
struct Inputs {
  Signal output = {};
  Signal reference = {};
  Signal far = {};
  Signal near = {};
  Signal input = {};
  float fullScale = 1;       // The largest value that the output can have, for `clipped`.
  double searchSeconds = 1;  // How much earlier or later than its reference the output may be.
  std::optional<uint64_t> codedBytes = {};   // Of the stream that decodes to the output.
  std::optional<uint64_t> codedFrames = {};  // In that stream.
  // Seconds at which there are beats: as found in the output, and as they are.
  std::optional<std::span<const double>> beats = {};
  std::optional<std::span<const double>> trueBeats = {};
};

struct NamedFigure {
  std::string_view name;
  std::optional<int> channel;  // From 0; none for the programme, or the mean of the channels.
  Figure figure;
};

// The figures of the measures that are named, in that order: for each channel of the output, and of
// what is measured against another signal the mean after them. A name that cannot be computed has
// one figure without a value that says why. names: views that outlive what is returned.
std::vector<NamedFigure> Compute(const Inputs& inputs, std::span<const std::string_view> names);

}  // namespace audio_measures
