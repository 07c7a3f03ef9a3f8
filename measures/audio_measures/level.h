#pragma once

#include <cstdint>
#include <limits>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kPeakVersion = 1;
inline constexpr int kRmsVersion = 1;
inline constexpr int kCrestVersion = 2;
inline constexpr int kDcVersion = 1;
inline constexpr int kSwingVersion = 1;

// peak, rms, crest, dc and swing of one channel, in one pass. Any rate, one sample or more, all of
// them finite.
//   peak  20 log10(max |x|), dBFS.
//   rms   10 log10(mean x^2), dBFS: a square wave of full scale has 0, a sine -3.01 (not the scale
//         of AES17, which gives the sine 0).
//   crest peak less rms, dB: a sine has 3.01. What is below 1e-23 throughout has squares that
//         no float holds, so that it has a peak, but no rms and no crest.
//   dc    mean x, as a share of full scale.
//   swing max x - min x, as a share of full scale.
class Level {
 public:
  void Add(std::span<const float> samples);
  void Add(const Level& next);  // What was measured of the samples that follow.

  Figure Peak() const;  // Unknown for silence, as are Rms and Crest.
  Figure Rms() const;
  Figure Crest() const;
  Figure Dc() const;
  Figure Swing() const;  // From the lowest sample to the highest.

 private:
  const char* Fault() const;

  uint64_t m_samples = 0;
  float m_lowest = std::numeric_limits<float>::infinity();
  float m_highest = -std::numeric_limits<float>::infinity();
  double m_sum = 0;
  double m_squares = 0;
};

}  // namespace audio_measures
