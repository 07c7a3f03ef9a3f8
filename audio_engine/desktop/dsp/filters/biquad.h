#pragma once

#include <cstddef>

namespace desktop {

enum class BiquadKind { kNone, kLowPass, kHighPass, kPeak, kLowShelf, kHighShelf };

// What a second-order filter shall do. The frequency is in Hz. A q of 0.707 makes shelves as steep
// as they can be without a bump. The gain is for peaks and shelves.
struct BiquadShape {
  BiquadKind kind = BiquadKind::kNone;
  double frequency = 1000;
  double q = 0.707;
  double gainDb = 0;
  bool operator==(const BiquadShape&) const = default;
};

// The transfer function of a second-order filter, scaled so that a0 is 1.
struct BiquadCoefficients {
  double b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
};

// A second-order filter for one channel, in the transposed direct form II.
class Biquad {
 public:
  Biquad() = default;
  explicit Biquad(const BiquadCoefficients& coefficients) : m_filter(coefficients) {}

  // Designs by the bilinear transform (R. Bristow-Johnson, Cookbook formulae for audio equalizer
  // biquad filter coefficients). A frequency above 0.45 * rate leaves the samples as they are.
  void Design(const BiquadShape& shape, int rate);

  // Filters one sample.
  double Run(double in) {
    const double out = m_filter.b0 * in + m_state1;
    m_state1 = m_filter.b1 * in - m_filter.a1 * out + m_state2;
    m_state2 = m_filter.b2 * in - m_filter.a2 * out;
    return out;
  }

  // Filters samples in place.
  void Process(float* samples, size_t count);

 private:
  BiquadCoefficients m_filter;
  double m_state1 = 0, m_state2 = 0;
};

}  // namespace desktop
