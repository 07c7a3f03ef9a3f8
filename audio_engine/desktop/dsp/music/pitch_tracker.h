#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Follows the pitch of a singing voice, mono at 16 kHz: the first period at which the sound repeats
// itself (de Cheveigné and Kawahara, YIN, a fundamental frequency estimator, 2002). Allocates
// nothing after construction.
class PitchTracker {
 public:
  static constexpr int kRate = 16000;  // Hz

  // How many samples lie between two answers.
  static constexpr size_t kHop = 160;

  // By how much an answer is later than the sound it is for.
  static constexpr double kLagMs = 28;

  PitchTracker();

  // Takes the next kHop samples. The pitch in Hz, 65 to 1050; 0 where there is none.
  double Track(const short* samples);

 private:
  double Power() const;

  // The last samples.
  std::vector<float> m_samples;

  // How far the sound is from itself, by period.
  std::vector<float> m_distance;
};

}  // namespace desktop
