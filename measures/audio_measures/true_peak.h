#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kTruePeakVersion = 1;

// true_peak: the largest value between the samples, dBTP, by oversampling as in ITU-R BS.1770-4
// annex 2: by 4 below 96 kHz, by 2 below 192 kHz, with a sinc under a Hann window of 49 taps, as
// libebur128 has it. Valid from 16 Hz to 2.8 MHz, 1 to 64 channels, finite samples.
class TruePeak {
 public:
  TruePeak(int channels, int rate);

  // Interleaved whole frames.
  void Add(std::span<const float> frames);

  Figure Peak(int channel) const;
  Figure LastPeak(int channel) const;  // Of what the last Add brought.

  // Frames by which a value that is made between samples is later than its place.
  size_t Delay() const { return m_taps / 2; }

 private:
  struct Channel {
    std::vector<float> samples = {};  // Before() last ones of what was before, then a run.
    float peak = 0;
    float last = 0;
  };

  Figure Read(int channel, float Channel::*peak) const;
  void AddRun(std::span<const float> samples, Channel& channel);
  size_t Before() const {
    return m_taps > 0 ? m_taps - 1 : 0;
  }  // Samples that a filter looks back.

  bool m_valid;
  size_t m_taps = 0;                  // Of each filter; none where no value is made between.
  std::vector<float> m_weights = {};  // Of a filter after the other, for the oldest sample first.
  std::vector<Channel> m_channels = {};
  bool m_any = false;
  bool m_finite = true;
};

}  // namespace audio_measures
