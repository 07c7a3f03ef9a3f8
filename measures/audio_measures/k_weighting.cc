#include "audio_measures/k_weighting.h"

#include <array>
#include <cmath>

namespace audio_measures {

namespace {

constexpr double kTrace = 1e-200;  // What is below it is nothing, and slow to reckon with.

// A section of second order at its frequency, taken from s to z by the bilinear transform, which is
// exact at that frequency.
class Prototype {
 public:
  Prototype(double frequency, double quality, int rate)
      : m_tangent(std::tan(M_PI * frequency / rate)), m_quality(quality) {}

  // Of a polynomial in s by its coefficients from the highest on, over what the denominator has at
  // the start.
  std::array<double, 3> Transform(double high, double middle, double low) const {
    const double first = m_tangent / m_quality;
    const double second = m_tangent * m_tangent;
    const double whole = 1 + first + second;
    return {(high + middle * first + low * second) / whole, 2 * (low * second - high) / whole,
            (high - middle * first + low * second) / whole};
  }

 private:
  double m_tangent;
  double m_quality;
};

}  // namespace

KWeighting::Section KWeighting::Section::Of(const Coefficients& numerator,
                                            const Coefficients& denominator) {
  Section section;
  section.now = numerator[0];
  section.keptFirst = -denominator[1];
  section.keptSecond = -denominator[2];
  section.toFirst = numerator[1] + section.keptFirst * numerator[0];
  section.toSecond = numerator[2] + section.keptSecond * numerator[0];
  return section;
}

inline KWeighting::Doubles KWeighting::Section::Next(const Doubles& sample) {
  const Doubles result = now * sample + first;
  const Doubles next = (toFirst * sample + second) + keptFirst * first;
  second = toSecond * sample + keptSecond * first;
  first = next;
  return result;
}

void KWeighting::Section::DropTraces() {
  for (Doubles* const state : {&first, &second}) {
    for (const size_t channel : {0U, 1U}) {
      if (std::fabs((*state)[channel]) < kTrace) (*state)[channel] = 0;
    }
  }
}

KWeighting::KWeighting(int rate) {
  const Prototype shelf(1681.974450955533, 0.7071752369554196, rate);
  const double gain = std::pow(10, 3.999843853973347 / 20);
  const double middle = std::pow(gain, 0.4996667741545416);
  m_shelf = Section::Of(shelf.Transform(gain, middle, 1), shelf.Transform(1, 1, 1));
  // The recommendation has the same numerator at any rate.
  const Prototype highPass(38.13547087602444, 0.5003270373238773, rate);
  m_highPass = Section::Of({1, -2, 1}, highPass.Transform(1, 1, 1));
}

void KWeighting::Add(const float* frames, size_t count, size_t stride, bool two) {
  if (two) {
    AddFrames<true>(frames, count, stride);
  } else {
    AddFrames<false>(frames, count, stride);
  }
}

template <bool kTwo>
void KWeighting::AddFrames(const float* frames, size_t count, size_t stride) {
  Section shelf = m_shelf;
  Section highPass = m_highPass;
  Doubles sums = m_sums;
  for (size_t i = 0; i < count; ++i, frames += stride) {
    const Doubles pair = {static_cast<double>(frames[0]),
                          kTwo ? static_cast<double>(frames[1]) : 0};
    const Doubles weighted = highPass.Next(shelf.Next(pair));
    sums += weighted * weighted;
  }
  m_shelf = shelf;
  m_highPass = highPass;
  m_sums = sums;
}

KWeighting::Sums KWeighting::Take() {
  const Sums sums = {m_sums[0], m_sums[1]};
  m_sums = Doubles{};
  m_shelf.DropTraces();
  m_highPass.DropTraces();
  return sums;
}

}  // namespace audio_measures
