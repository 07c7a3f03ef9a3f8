#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace desktop {

// Whether there is a pitch of 80 to 400 Hz, as a voice has: the normalised autocorrelation over
// 20 ms (Rabiner, "On the use of autocorrelation analysis for pitch detection", 1977), at about
// 4 kHz and with the lowest frequencies turned down. Takes frames of 10 ms; no look-ahead;
// allocates in the constructor only.
class VoicingDetector {
 public:
  // rate in Hz; frames are `hop` samples long.
  VoicingDetector(int rate, size_t hop);

  // Takes the next frame; true when it is voiced.
  bool Process(std::span<const float> samples);

 private:
  float Correlation(size_t lag) const;

  size_t m_decimation;           // Samples of the input in one of the history.
  std::vector<float> m_history;  // The last 40 ms.
  float m_before = 0.0f;         // The sample before the next one.
  size_t m_shortestLag;
  size_t m_longestLag;
};

}  // namespace desktop
