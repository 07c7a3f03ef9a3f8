#include "desktop/dsp/filters/linkwitz_riley.h"

#include <cmath>
#include <numbers>

namespace desktop {

namespace {

struct Corner {
  double cosine;
  double alpha;
};

Corner CornerAt(double corner, double sampleRate) {
  const double w = 2 * std::numbers::pi * corner / sampleRate;
  // The Q is 1 / sqrt(2).
  return {std::cos(w), std::sin(w) / std::numbers::sqrt2};
}

// Scales all coefficients so that a0 is 1.
BiquadCoefficients Scaled(double b0, double b1, double b2, const Corner& corner) {
  const double a0 = 1 + corner.alpha;
  return {b0 / a0, b1 / a0, b2 / a0, -2 * corner.cosine / a0, (1 - corner.alpha) / a0};
}

}  // namespace

BiquadCoefficients ButterworthLowPass(double corner, double sampleRate) {
  const Corner c = CornerAt(corner, sampleRate);
  const double b = (1 - c.cosine) / 2;
  return Scaled(b, 2 * b, b, c);
}

BiquadCoefficients ButterworthHighPass(double corner, double sampleRate) {
  const Corner c = CornerAt(corner, sampleRate);
  const double b = (1 + c.cosine) / 2;
  return Scaled(b, -2 * b, b, c);
}

BiquadCoefficients ButterworthAllPass(double corner, double sampleRate) {
  const Corner c = CornerAt(corner, sampleRate);
  return Scaled(1 - c.alpha, -2 * c.cosine, 1 + c.alpha, c);
}

void ThreeBandSplit::Reset(double lowEdge, double highEdge, double sampleRate) {
  Channel channel;
  for (int i = 0; i < 2; ++i) {
    channel.low[i] = Biquad(ButterworthLowPass(lowEdge, sampleRate));
    channel.rest[i] = Biquad(ButterworthHighPass(lowEdge, sampleRate));
    channel.middle[i] = Biquad(ButterworthLowPass(highEdge, sampleRate));
    channel.high[i] = Biquad(ButterworthHighPass(highEdge, sampleRate));
  }
  channel.turn = Biquad(ButterworthAllPass(highEdge, sampleRate));
  for (Channel& each : m_channels) each = channel;
}

}  // namespace desktop
