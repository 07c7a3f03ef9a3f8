#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "measure/measure_file.h"

namespace host {

// A part of a recording, as it is heard and looked at.
struct SoundPart {
  int rate = 0;         // Hz
  int bits = 24;        // That hold every sample: 16, or 24 for all that has more, and for floats.
  uint64_t first = 0;   // Frame of the recording at which the part starts,
  uint64_t frames = 0;  // and how many the recording has.
  std::vector<std::vector<float>> channels = {};
  uint64_t notFinite = 0;  // Samples that are no numbers, which stand here as 0.

  size_t Size() const { return channels.empty() ? 0 : channels.front().size(); }
  double Start() const { return static_cast<double>(first) / rate; }
  double Whole() const { return static_cast<double>(frames) / rate; }
};

// Reads a recording; of one that is longer than what is held of it the part around `place`, in
// seconds. Throws UnreadableSound.
SoundPart ReadSoundPart(const MeasuredSource& source, double place);

// What a part holds at most, samples of all channels.
inline constexpr uint64_t kMostPartSamples = 16'000'000;

// The same part at another rate; at its own a copy. Throws UnreadableSound.
SoundPart AtRate(const SoundPart& part, int rate);

// `count` frames from `first` on, counted from the start of the recording; silence beyond its ends.
std::vector<std::vector<float>> CutFrames(const SoundPart& part, int64_t first, size_t count);

// The channel with the most energy.
size_t LoudestChannel(const SoundPart& part);

}  // namespace host
