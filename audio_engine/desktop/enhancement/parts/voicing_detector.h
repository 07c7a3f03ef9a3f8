#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace desktop {

// Whether there is a pitch of 80 to 400 Hz, as a voice has: the normalised autocorrelation over
// 20 ms (Rabiner, "On the use of autocorrelation analysis for pitch detection", 1977), at about
// 4 kHz and with the lowest frequencies turned down. Takes blocks of 10 ms; no look-ahead;
// allocates in the constructor only.
class VoicingDetector {
 public:
  // rate in Hz; blocks are `hop` samples long.
  VoicingDetector(int rate, size_t hop);

  // Takes the next block; true when it is voiced.
  bool Process(std::span<const float> samples);

 private:
  float Correlation(size_t lag) const;

  // So many samples of the input make one of the history, which is the last 40 ms.
  size_t m_decimation;
  std::vector<float> m_history;

  // The sample before the next one.
  float m_before = 0.0f;
  size_t m_shortestLag;
  size_t m_longestLag;
};

}  // namespace desktop
