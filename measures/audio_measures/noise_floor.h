#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kNoiseFloorVersion = 1;

// noise_floor of one channel: the 10th percentile of the RMS of its blocks of 20 ms, dBFS. The
// percentile is linear between ranks, on the RMS (R. Hyndman, Y. Fan, "Sample quantiles in
// statistical packages", The American Statistician 50(4), 1996, definition 7); a last part of a
// block does not count. Any rate from 100 Hz, finite samples, 10 blocks at least. Unknown where a
// tenth of the blocks is digital silence.
class NoiseFloor {
 public:
  explicit NoiseFloor(int rate);

  void Add(std::span<const float> samples);

  Figure Floor() const;

 private:
  size_t m_blockSamples;
  size_t m_inBlock = 0;
  double m_squares = 0;
  std::vector<float> m_rms = {};
};

}  // namespace audio_measures
