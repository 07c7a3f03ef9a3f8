#include "audio_measures/active_level.h"

#include <algorithm>
#include <cmath>

namespace audio_measures {

namespace {

constexpr double kTimeConstant = 0.03;  // s
constexpr double kHangover = 0.2;       // s
constexpr int kLowest = -20;            // Exponent of the lowest threshold.
constexpr size_t kRun = 1 << 16;        // Samples whose counts fit 32 bits.

double Decibels(double power) { return 10 * std::log10(power); }

}  // namespace

ActiveLevel::ActiveLevel(int rate)
    : m_smoothing(std::exp(-1 / (rate * kTimeConstant))),
      m_hangover(static_cast<int32_t>(std::ceil(rate * kHangover))) {
  for (size_t i = 0; i < kThresholds; ++i) {
    m_thresholds[i] = std::ldexp(1.0F, kLowest + static_cast<int>(i));
  }
  m_left.fill(-1);
}

void ActiveLevel::Add(std::span<const float> samples) {
  while (!samples.empty()) {
    const size_t count = std::min(kRun, samples.size());
    AddRun(samples.first(count));
    samples = samples.subspan(count);
  }
}

void ActiveLevel::AddRun(std::span<const float> samples) {
  std::array<int32_t, kThresholds> left = m_left;
  std::array<int32_t, kThresholds> active = {};
  const double keep = m_smoothing;
  for (const float sample : samples) {
    const auto value = static_cast<double>(sample);
    m_squares += value * value;
    m_first = keep * m_first + (1 - keep) * std::fabs(value);
    m_second = keep * m_second + (1 - keep) * m_first;
    const auto envelope = static_cast<float>(m_second);
    for (size_t i = 0; i < kThresholds; ++i) {
      left[i] = envelope >= m_thresholds[i] ? m_hangover : left[i] - 1;
      active[i] += left[i] >= 0 ? 1 : 0;
    }
  }
  m_samples += samples.size();
  for (size_t i = 0; i < kThresholds; ++i) {
    m_left[i] = std::max(left[i], -1);
    m_active[i] += static_cast<uint64_t>(active[i]);
  }
}

Figure ActiveLevel::Level() const {
  if (m_samples == 0) return Unknown(kNoSamples);
  if (!std::isfinite(m_squares)) return Unknown(kNotFinite);
  if (m_squares <= 0) return Unknown(kSilence);
  // The level over the time above each threshold rises more slowly than the threshold does: the
  // one sought lies where it is the margin above it, between two thresholds on a line in dB.
  double levelBefore = 0;
  double aboveBefore = 0;
  for (size_t i = 0; i < kThresholds && m_active[i] > 0; ++i) {
    const double level = Decibels(m_squares / static_cast<double>(m_active[i]));
    const double above = level - 20 * std::log10(static_cast<double>(m_thresholds[i]));
    if (above <= kMargin) {
      if (i == 0) return Unknown("below the lowest threshold");
      const double part = (aboveBefore - kMargin) / (aboveBefore - above);
      return Known(levelBefore + part * (level - levelBefore));
    }
    levelBefore = level;
    aboveBefore = above;
  }
  return Unknown("no activity as long as a sound");
}

Figure ActiveLevel::Activity() const {
  const Figure level = Level();
  if (!level.value) return level;
  const double mean = m_squares / static_cast<double>(m_samples);
  return Known(std::pow(10, (Decibels(mean) - *level.value) / 10));
}

}  // namespace audio_measures
