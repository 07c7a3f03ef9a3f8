#include "desktop/dsp/filters/biquad.h"

#include <cmath>

namespace desktop {

void Biquad::Design(const BiquadShape& shape, int rate) {
  *this = Biquad();
  if (shape.kind == BiquadKind::kNone || shape.frequency > 0.45 * rate) return;
  const double w = 2 * M_PI * shape.frequency / rate;
  const double c = std::cos(w);
  const double alpha = std::sin(w) / (2 * shape.q);
  const double a = std::pow(10, shape.gainDb / 40);
  double b0 = 1, b1 = 0, b2 = 0, a0 = 1, a1 = 0, a2 = 0;
  if (shape.kind == BiquadKind::kLowPass || shape.kind == BiquadKind::kHighPass) {
    const bool low = shape.kind == BiquadKind::kLowPass;
    b1 = low ? 1 - c : -1 - c;
    b0 = b2 = std::fabs(b1) / 2;
    a0 = 1 + alpha;
    a1 = -2 * c;
    a2 = 1 - alpha;
  } else if (shape.kind == BiquadKind::kPeak) {
    b0 = 1 + alpha * a;
    b1 = a1 = -2 * c;
    b2 = 1 - alpha * a;
    a0 = 1 + alpha / a;
    a2 = 1 - alpha / a;
  } else {
    // The high shelf is the low one with the cosine turned round.
    const double s = shape.kind == BiquadKind::kLowShelf ? 1 : -1;
    const double slope = 2 * std::sqrt(a) * alpha;
    b0 = a * (a + 1 - s * (a - 1) * c + slope);
    b1 = s * 2 * a * (a - 1 - s * (a + 1) * c);
    b2 = a * (a + 1 - s * (a - 1) * c - slope);
    a0 = a + 1 + s * (a - 1) * c + slope;
    a1 = s * -2 * (a - 1 + s * (a + 1) * c);
    a2 = a + 1 + s * (a - 1) * c - slope;
  }
  m_filter = {b0 / a0, b1 / a0, b2 / a0, a1 / a0, a2 / a0};
}

void Biquad::Process(float* samples, size_t count) {
  for (size_t i = 0; i < count; ++i) samples[i] = static_cast<float>(Run(samples[i]));
}

}  // namespace desktop
