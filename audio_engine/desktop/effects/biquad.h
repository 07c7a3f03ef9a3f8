#pragma once

namespace desktop {

enum class BiquadKind { kNone, kLowPass, kHighPass, kPeak, kLowShelf, kHighShelf };

// What a second-order filter shall do. frequency: Hz. q: for shelves 0.707 is the steepest without
// a bump. gainDb: of peaks and shelves.
struct BiquadShape {
  BiquadKind kind = BiquadKind::kNone;
  double frequency = 1000;
  double q = 0.707;
  double gainDb = 0;
  bool operator==(const BiquadShape&) const = default;
};

// A second-order filter for one channel, in the transposed direct form II.
class Biquad {
 public:
  // Designs by the bilinear transform (R. Bristow-Johnson, Cookbook formulae for audio equalizer
  // biquad filter coefficients). A frequency above 0.45 * rate leaves the samples as they are.
  void Design(const BiquadShape& shape, int rate);

  void Process(float* samples, int count);

 private:
  double m_b0 = 1, m_b1 = 0, m_b2 = 0, m_a1 = 0, m_a2 = 0;
  double m_state1 = 0, m_state2 = 0;
};

}  // namespace desktop
