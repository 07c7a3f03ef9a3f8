#pragma once

#include <memory>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kTruePeakVersion = 1;

// true_peak: the largest value between the samples, dBTP, by the interpolation of ITU-R BS.1770-4
// annex 2 as libebur128 has it: by 4 below 96 kHz, by 2 below 192 kHz. Valid
// from 16 Hz to 2.8 MHz, 1 to 64 channels, finite samples.
class TruePeak {
 public:
  TruePeak(int channels, int rate);
  ~TruePeak();
  TruePeak(TruePeak&&) noexcept;
  TruePeak& operator=(TruePeak&&) noexcept;

  // Interleaved whole frames.
  void Add(std::span<const float> frames);

  Figure Peak(int channel) const;
  Figure LastPeak(int channel) const;  // Of what the last Add brought.

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace audio_measures
