#include "support/signals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "support/seeded_noise.h"

namespace {

enum class Pass { kLow, kHigh };

// One Butterworth section in place.
void Filter(std::vector<double>& samples, Pass pass, double corner, int rate) {
  const double w = 2 * std::numbers::pi * corner / rate;
  const double alpha = std::sin(w) / std::numbers::sqrt2;
  const double sign = pass == Pass::kHigh ? 1 : -1;
  const double b0 = (1 + sign * std::cos(w)) / 2 / (1 + alpha);
  const double b1 = -sign * 2 * b0;
  const double a1 = -2 * std::cos(w) / (1 + alpha);
  const double a2 = (1 - alpha) / (1 + alpha);
  double s1 = 0, s2 = 0;
  for (double& sample : samples) {
    const double out = b0 * sample + s1;
    s1 = b1 * sample - a1 * out + s2;
    s2 = b0 * sample - a2 * out;
    sample = out;
  }
}

}  // namespace

std::vector<double> WhiteNoise(int count, double peak, unsigned seed) {
  SeededNoise white(seed);
  std::vector<double> noise(static_cast<size_t>(count));
  for (double& value : noise) value = peak * white();
  return noise;
}

std::vector<double> BurstNoise(int count, double peak, int rate, unsigned seed) {
  std::vector<double> noise = WhiteNoise(count, peak, seed);
  for (int i = 0; i < count; ++i) {
    if (i % (rate / 4) >= rate * 12 / 100) noise[static_cast<size_t>(i)] *= 0.0316;
  }
  return noise;
}

std::vector<short> ToShorts(std::span<const double> samples) {
  std::vector<short> shorts;
  for (const double sample : samples) {
    shorts.push_back(static_cast<short>(std::clamp(std::lrint(sample * 32768), -32768L, 32767L)));
  }
  return shorts;
}

std::vector<double> ToDoubles(std::span<const short> samples) {
  std::vector<double> doubles;
  for (const short sample : samples) doubles.push_back(sample / 32768.0);
  return doubles;
}

std::vector<short> Interleaved(const std::vector<short>& left, const std::vector<short>& right) {
  std::vector<short> samples;
  for (size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    samples.push_back(left[i]);
    samples.push_back(right[i]);
  }
  return samples;
}

std::vector<short> Opposed(std::vector<short> samples) {
  for (short& sample : samples) sample = static_cast<short>(std::max(-sample, -32767));
  return samples;
}

std::vector<short> Channel(const std::vector<short>& samples, int channels, int channel) {
  std::vector<short> one;
  for (auto i = static_cast<size_t>(channel); i < samples.size();
       i += static_cast<size_t>(channels)) {
    one.push_back(samples[i]);
  }
  return one;
}

double Decibels(double ratio) { return 20 * std::log10(std::max(ratio, 1e-12)); }

double Rms(std::span<const double> samples) {
  double sum = 0;
  for (const double sample : samples) sum += sample * sample;
  return samples.empty() ? 0 : std::sqrt(sum / static_cast<double>(samples.size()));
}

double Peak(std::span<const double> samples) {
  double peak = 0;
  for (const double sample : samples) peak = std::max(peak, std::abs(sample));
  return peak;
}

double AmplitudeAt(std::span<const double> samples, double frequency, int rate) {
  const double step = 2 * std::numbers::pi * frequency / rate;
  double cc = 0, ss = 0, cs = 0, xc = 0, xs = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    const double c = std::cos(step * static_cast<double>(i));
    const double s = std::sin(step * static_cast<double>(i));
    cc += c * c;
    ss += s * s;
    cs += c * s;
    xc += samples[i] * c;
    xs += samples[i] * s;
  }
  const double determinant = cc * ss - cs * cs;
  return std::hypot(xc * ss - xs * cs, xs * cc - xc * cs) / determinant;
}

double Thd(std::span<const double> samples, double frequency, int rate) {
  double square = 0;
  for (int k = 2; k <= 10 && k * frequency < 0.49 * rate; ++k) {
    square += std::pow(AmplitudeAt(samples, k * frequency, rate), 2);
  }
  return std::sqrt(square) / AmplitudeAt(samples, frequency, rate);
}

std::vector<double> HighPassed(std::vector<double> samples, double corner, int rate) {
  for (int i = 0; i < 3; ++i) Filter(samples, Pass::kHigh, corner, rate);
  return samples;
}

std::vector<double> OctaveBand(std::vector<double> samples, double centre, int rate) {
  for (int i = 0; i < 2; ++i) {
    Filter(samples, Pass::kHigh, centre / std::numbers::sqrt2, rate);
    Filter(samples, Pass::kLow, centre * std::numbers::sqrt2, rate);
  }
  return samples;
}
