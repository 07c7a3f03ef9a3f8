#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Follows the pitch of a singing voice, mono at 16 kHz: the first period at which the sound repeats
// itself (de Cheveigné and Kawahara, YIN, a fundamental frequency estimator, 2002). Allocates
// nothing after construction.
class PitchTracker {
 public:
  static constexpr int kRate = 16000;   // Hz
  static constexpr size_t kHop = 160;   // Samples from one answer to the next.
  static constexpr double kLagMs = 28;  // By how much an answer is later than the sound it is for.

  PitchTracker();

  // Takes the next kHop samples. The pitch in Hz, 65 to 1050; 0 where there is none.
  double Track(const short* samples);

 private:
  double Power() const;

  std::vector<float> m_samples;   // The last ones.
  std::vector<float> m_distance;  // Of the sound from itself, by period.
};

}  // namespace desktop
