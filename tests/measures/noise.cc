#include "measures/noise.h"

#include <cmath>
#include <complex>
#include <random>

namespace audio_measures {

namespace {

// From 0 to 1.
double Even(std::mt19937& random) { return static_cast<double>(random()) / 4294967296.0; }

}  // namespace

std::vector<float> Noise(size_t samples, double rms, unsigned seed) {
  // Twelve even distributions: unlike std::normal_distribution the same everywhere.
  std::mt19937 random(seed);
  std::vector<float> noise(samples);
  for (float& sample : noise) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += Even(random);
    sample = static_cast<float>(rms * sum);
  }
  return noise;
}

std::vector<float> Between(size_t samples, double rms, unsigned seed, double later) {
  constexpr int kCosines = 200;
  std::mt19937 random(seed);
  std::vector<double> sum(samples);
  for (int i = 0; i < kCosines; ++i) {
    const double angle = 2 * M_PI * 0.4 * (i + Even(random)) / kCosines;
    const double phase = 2 * M_PI * Even(random);
    const std::complex<double> turn = std::polar(1.0, angle);
    std::complex<double> now = std::polar(rms * std::sqrt(2.0 / kCosines), phase - angle * later);
    for (double& sample : sum) {
      sample += now.real();
      now *= turn;
    }
  }
  return {sum.begin(), sum.end()};
}

std::vector<float> Bursts(std::vector<float> samples, size_t on, size_t off) {
  for (size_t i = 0; i < samples.size(); ++i) {
    if (i % (on + off) >= on) samples[i] = 0;
  }
  return samples;
}

std::vector<float> Later(const std::vector<float>& samples, size_t later, double gain) {
  std::vector<float> moved(samples.size());
  for (size_t i = later; i < moved.size(); ++i) {
    moved[i] = static_cast<float>(gain * static_cast<double>(samples[i - later]));
  }
  return moved;
}

std::vector<float> Sum(std::vector<float> a, const std::vector<float>& b) {
  for (size_t i = 0; i < a.size(); ++i) a[i] += b[i];
  return a;
}

}  // namespace audio_measures
