#include "selftest/sounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {

uint64_t Random::Bits() {
  uint64_t bits = m_state += 0x9E3779B97F4A7C15U;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
  return bits ^ (bits >> 31);
}

double Random::Uniform() { return (static_cast<double>(Bits() >> 11) + 0.5) * 0x1p-53; }

double Random::Normal() {
  // G. Box, M. Muller, 1958.
  const double radius = std::sqrt(-2 * std::log(Uniform()));
  return radius * std::cos(2 * std::numbers::pi * Uniform());
}

size_t Frames(int rate, double seconds) {
  return static_cast<size_t>(std::llround(rate * seconds));
}

Waveform Sine(int rate, double seconds, double hz, double amplitude, double phase) {
  Waveform samples(Frames(rate, seconds));
  for (size_t i = 0; i < samples.size(); ++i) {
    const double turns = std::fmod(hz * static_cast<double>(i) / rate, 1.0);
    samples[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns + phase));
  }
  return samples;
}

Waveform WhiteNoise(size_t count, double rms, uint64_t seed) {
  Random random(seed);
  Waveform samples(count);
  for (float& sample : samples) sample = static_cast<float>(rms * random.Normal());
  return samples;
}

void AddBell(Waveform& samples, int rate, double time, double hz, double amplitude) {
  constexpr double kDeviation = 0.02;  // s
  const size_t end = std::min(samples.size(), Frames(rate, time + 5 * kDeviation));
  for (size_t i = Frames(rate, std::max(0.0, time - 5 * kDeviation)); i < end; ++i) {
    const double away = static_cast<double>(i) / rate - time;
    const double bell = std::exp(-away * away / (2 * kDeviation * kDeviation));
    samples[i] += static_cast<float>(amplitude * bell * std::sin(2 * std::numbers::pi * hz * away));
  }
}

Waveform Impulses(int rate, size_t apart, double height) {
  Waveform samples(Frames(rate, 2));
  for (size_t i = apart / 2; i < samples.size(); i += apart) {
    samples[i] = static_cast<float>(height);
  }
  return samples;
}

Waveform Scaled(std::span<const float> samples, double gain) {
  Waveform scaled(samples.begin(), samples.end());
  for (float& sample : scaled) sample = static_cast<float>(sample * gain);
  return scaled;
}

Waveform Sum(std::span<const float> a, std::span<const float> b) {
  Waveform sum(a.begin(), a.end());
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) sum[i] += b[i];
  return sum;
}

void Append(Waveform& to, std::span<const float> samples) {
  to.insert(to.end(), samples.begin(), samples.end());
}

namespace {

double Product(std::span<const float> a, std::span<const float> b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += static_cast<double>(a[i]) * b[i];
  return sum;
}

constexpr int kHalfWindow = 64;  // Waveform.
constexpr double kPassed = 0.8;  // Of half the rate.

}  // namespace

double Energy(std::span<const float> samples) { return Product(samples, samples); }

TimedNoise::TimedNoise(size_t count, double rms, uint64_t seed)
    : m_numbers(WhiteNoise(count + 2 * kHalfWindow, rms, seed)) {}

double TimedNoise::At(double place) const {
  const double floor = std::floor(place);
  const double part = place - floor;
  // Both sines and cosines go on by one sample through the sum of angles.
  const double angle = std::numbers::pi * kPassed;
  const double turn = std::numbers::pi / kHalfWindow;
  const double stepSin = std::sin(angle);
  const double stepCos = std::cos(angle);
  const double turnSin = std::sin(turn);
  const double turnCos = std::cos(turn);
  const double start = part + kHalfWindow - 1;
  double s = std::sin(angle * start);
  double c = std::cos(angle * start);
  double w = std::cos(turn * start);
  double v = std::sin(turn * start);
  double sum = 0;
  const auto first = static_cast<std::ptrdiff_t>(floor) + 1;
  for (int i = 0; i < 2 * kHalfWindow; ++i) {
    const double away = start - i;
    const double sinc = std::abs(away) < 1e-6 ? kPassed : s / (std::numbers::pi * away);
    const std::ptrdiff_t index = first + i;
    if (index >= 0 && index < static_cast<std::ptrdiff_t>(m_numbers.size())) {
      sum += m_numbers[static_cast<size_t>(index)] * sinc * (1 + w) / 2;
    }
    const double nextS = s * stepCos - c * stepSin;
    c = c * stepCos + s * stepSin;
    s = nextS;
    const double nextV = v * turnCos - w * turnSin;
    w = w * turnCos + v * turnSin;
    v = nextV;
  }
  return sum;
}

Waveform TimedNoise::At(double first, double step, size_t count) const {
  Waveform samples(count);
  for (size_t i = 0; i < count; ++i) {
    samples[i] = static_cast<float>(At(first + step * static_cast<double>(i)));
  }
  return samples;
}

Waveform NoiseBelow(std::span<const float> signal, double snr, size_t block, uint64_t seed) {
  Waveform noise = WhiteNoise(signal.size(), 1, seed);
  for (size_t start = 0; start < signal.size(); start += block) {
    const size_t count = std::min(block, signal.size() - start);
    const auto from = signal.subspan(start, count);
    const auto to = std::span(noise).subspan(start, count);
    const double share = Product(to, from) / Energy(from);
    for (size_t i = 0; i < count; ++i) to[i] -= static_cast<float>(share * from[i]);
    const double gain = std::sqrt(Energy(from) / Energy(to) * std::pow(10, -snr / 10));
    for (float& sample : to) sample = static_cast<float>(sample * gain);
  }
  return noise;
}

}  // namespace host
