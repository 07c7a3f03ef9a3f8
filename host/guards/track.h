#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "guards/signal.h"

namespace host {

// A signal as if it had been recorded at another rate, one channel at a time and from any place on,
// so that two signals can be held against each other. Samples that are not finite read as 0. Keeps
// what it has resampled last, so that reading a little at a time is cheap.
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
  void ReadKept(int channel, int64_t first, std::span<float> to) const;

  struct Kept {
    int channel = 0;
    int64_t first = 0;
    std::vector<float> samples = {};
  };

  const Signal& m_signal;
  int m_rate;
  mutable Kept m_kept = {};
};

}  // namespace host
