#pragma once

#include <cstdint>
#include <span>

#include "guards/signal.h"

namespace host {

// A signal as if it had been recorded at another rate, one channel at a time and from any place on,
// so that two signals can be held against each other. Samples that are not finite read as 0.
class Track {
 public:
  static constexpr int kMean = -1;  // Of all channels, in place of a channel.

  Track(const Signal& signal, int rate) : m_signal(signal), m_rate(rate) {}

  int64_t Frames() const;  // At the rate of the track.

  // As many frames as `to` has, from `first` on; 0 beyond the ends.
  void Read(int channel, int64_t first, std::span<float> to) const;

 private:
  void Copy(int channel, int64_t first, std::span<float> to) const;
  void Resample(int channel, int64_t first, std::span<float> to) const;

  const Signal& m_signal;
  int m_rate;
};

}  // namespace host
