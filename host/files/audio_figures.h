#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "files/audio_layout.h"

namespace host {

// What can be said of one channel. Levels are relative to full scale (1); samples that are not
// finite are counted and left out of both.
struct ChannelFigures {
  double peak = 0;          // Of the absolute value.
  double sumOfSquares = 0;  // Of the finite samples.
  uint64_t samples = 0;     // Finite and not.
  uint64_t notFinite = 0;

  // In dBFS; nothing for silence.
  std::optional<double> PeakLevel() const;
  std::optional<double> RmsLevel() const;
};

// Passes the samples of a file on, as floats with full scale at 1, in blocks of whole frames that
// are overwritten by the next one. False when the file cannot be read to its end.
bool ForEachSampleBlock(FILE* file, const AudioLayout& layout,
                        const std::function<void(std::span<const float>)>& use);

// The figures of each channel, in one pass and in memory that does not grow with the file. Nothing
// when it cannot be read or its samples cannot be decoded.
std::optional<std::vector<ChannelFigures>> MeasureAudio(FILE* file, const AudioLayout& layout);

// The greatest peak of all channels.
double Peak(std::span<const ChannelFigures> channels);

}  // namespace host
