#include "support/tone.h"

#include <cmath>
#include <cstddef>
#include <numbers>

std::vector<short> Tone(double frequency, double amplitude, int rate, int frames, int channels) {
  std::vector<short> samples;
  samples.reserve(static_cast<size_t>(frames) * static_cast<size_t>(channels));
  for (int i = 0; i < frames; ++i) {
    const double value = amplitude * std::sin(2 * std::numbers::pi * frequency * i / rate);
    samples.insert(samples.end(), static_cast<size_t>(channels),
                   static_cast<short>(std::lrint(value)));
  }
  return samples;
}

ToneFit FitTone(const std::vector<short>& samples, double frequency, int rate, int channels,
                int channel) {
  const std::vector<double> exact(samples.begin(), samples.end());
  return FitTone(exact, frequency, rate, channels, channel);
}

ToneFit FitTone(const std::vector<double>& samples, double frequency, int rate, int channels,
                int channel) {
  const auto stride = static_cast<size_t>(channels);
  const auto at = static_cast<size_t>(channel);
  const size_t frames = samples.size() / stride;
  const double step = 2 * std::numbers::pi * frequency / rate;
  double cc = 0, ss = 0, cs = 0, xc = 0, xs = 0;
  for (size_t i = frames / 4; i < frames * 3 / 4; ++i) {
    const double c = std::cos(step * static_cast<double>(i));
    const double s = std::sin(step * static_cast<double>(i));
    const double x = samples[i * stride + at];
    cc += c * c;
    ss += s * s;
    cs += c * s;
    xc += x * c;
    xs += x * s;
  }
  const double det = cc * ss - cs * cs;
  const double a = (xc * ss - xs * cs) / det;
  const double b = (xs * cc - xc * cs) / det;
  const double fitted = a * xc + b * xs;  // The energy of the least-squares sine.
  // Summed by itself: the difference of two energies has no more than about 150 dB of range.
  double rest = 0;
  for (size_t i = frames / 4; i < frames * 3 / 4; ++i) {
    const double phase = step * static_cast<double>(i);
    const double error = samples[i * stride + at] - a * std::cos(phase) - b * std::sin(phase);
    rest += error * error;
  }
  return {std::hypot(a, b), 10 * std::log10(rest / fitted)};
}
