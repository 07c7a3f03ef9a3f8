#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kActiveLevelVersion = 1;
inline constexpr int kActivityVersion = 1;

// active_level and activity of one channel: ITU-T P.56 (12/2011), method B. The level of a signal
// over the time that it is active: that its envelope (two smoothings of 30 ms) stands above a
// threshold 15.9 dB below that very level, or did within the last 0.2 s.
//   active_level  dBFS on the scale of rms.
//   activity      share of the time, from 0 to 1.
// Any rate from 100 Hz; the thresholds reach from 2^-20 to 2^3 of full scale. Unknown for silence,
// for what is not finite, and for what is no more than a click.
class ActiveLevel {
 public:
  static constexpr double kMargin = 15.9;  // dB

  explicit ActiveLevel(int rate);

  void Add(std::span<const float> samples);

  Figure Level() const;
  Figure Activity() const;

 private:
  static constexpr size_t kThresholds = 24;
  static constexpr size_t kBlock = 32;  // Samples that are taken in at once.

  // How many thresholds an envelope reaches: all from the lowest one up to some other.
  size_t Reached(float envelope) const;

  // Takes in so many samples in a row whose envelope reaches as many thresholds.
  void Count(size_t reached, int64_t samples);

  // How many thresholds the envelope has reached, and for how many samples in a row.
  struct Stay {
    size_t reached = 0;
    int64_t samples = 0;
    float least = 0;   // The envelope stays where it is from here
    float beyond = 0;  // up to below here.
  };
  // Goes on with one sample after the other.
  void AddEach(std::span<const float> samples, Stay& stay);
  // Goes on with kBlock samples at once; false, and nothing is done, where the envelope may pass a
  // threshold meanwhile.
  bool AddBlock(std::span<const float, kBlock> samples, Stay& stay);

  struct Threshold {
    double value = 0;
    int64_t left = 0;     // Samples for which the signal is still active.
    uint64_t active = 0;  // And for which it was.
  };

  double m_smoothing;
  // Of each sample of a block, what of it is in the envelope after the block: after one smoothing,
  // and after two. Of the envelope before it so much is kept.
  std::array<double, kBlock> m_once;
  std::array<double, kBlock> m_twice;
  double m_kept;
  int64_t m_hangover;  // Samples.
  std::array<Threshold, kThresholds> m_thresholds = {};
  std::array<float, kThresholds + 2> m_edges;  // The thresholds, from minus to plus infinity.
  double m_first = 0;                          // The envelope after one smoothing,
  double m_second = 0;                         // and after two.
  double m_squares = 0;
  uint64_t m_samples = 0;
};

}  // namespace audio_measures
