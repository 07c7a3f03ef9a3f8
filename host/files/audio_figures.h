#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/audio_layout.h"

namespace host {

// What can be said of one channel. Levels are relative to full scale (1); samples that are not
// finite are counted and left out of both.
struct ChannelFigures {
  // The greatest absolute value, and the sum of the squares, of the finite samples.
  double peak = 0;
  double sumOfSquares = 0;

  // How many samples there are, and how many of them are not finite.
  uint64_t samples = 0;
  uint64_t notFinite = 0;

  // Return the level in dBFS; nothing for silence.
  std::optional<double> PeakLevel() const;
  std::optional<double> RmsLevel() const;
};

// The fault of a pass over samples that was given up.
inline constexpr const char* kStopped = "stopped";

// Passes the samples of a file on, as floats with full scale at 1, in blocks of whole frames that
// are overwritten by the next one, until `use` returns false. Returns why the end was not reached:
// kStopped, or what kept the file from being read; empty when it was.
std::string ForEachSampleBlock(FILE* file, const AudioLayout& layout,
                               const std::function<bool(std::span<const float>)>& use);

struct Measurement {
  std::optional<std::vector<ChannelFigures>> channels = {};

  // Why there are none; kStopped when it was given up.
  std::string fault = {};
};

// Returns the figures of each channel, in one pass and in memory that does not grow with the file.
// Gives up as soon as `goOn` returns false.
Measurement MeasureAudio(FILE* file, const AudioLayout& layout, const std::function<bool()>& goOn);

// The greatest peak of all channels.
double Peak(std::span<const ChannelFigures> channels);

}  // namespace host
