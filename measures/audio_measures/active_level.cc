#include "audio_measures/active_level.h"

#include <algorithm>
#include <cmath>

namespace audio_measures {

namespace {

constexpr double kTimeConstant = 0.03;  // s
constexpr double kHangover = 0.2;       // s
constexpr int kLowest = -20;            // Exponent of the lowest threshold.

double Decibels(double power) { return 10 * std::log10(power); }

}  // namespace

ActiveLevel::ActiveLevel(int rate)
    : m_smoothing(std::exp(-1 / (rate * kTimeConstant))),
      m_hangover(static_cast<int64_t>(std::ceil(rate * kHangover))) {
  for (size_t i = 0; i < kThresholds; ++i) {
    m_thresholds[i] = std::ldexp(1.0F, kLowest + static_cast<int>(i));
  }
}

size_t ActiveLevel::Reached(float envelope) const {
  size_t reached = 0;
  while (reached < kThresholds && envelope >= m_thresholds[reached]) ++reached;
  return reached;
}

void ActiveLevel::Count(size_t reached, int64_t samples) {
  m_samples += static_cast<uint64_t>(samples);
  for (size_t i = 0; i < reached; ++i) {
    m_left[i] = m_hangover;
    m_active[i] += static_cast<uint64_t>(samples);
  }
  for (size_t i = reached; i < kThresholds; ++i) {
    const int64_t active = std::min(m_left[i], samples);
    m_left[i] -= active;
    m_active[i] += static_cast<uint64_t>(active);
  }
}

// The envelope passes a threshold now and then only: what is in between is counted at once.
void ActiveLevel::Add(std::span<const float> samples) {
  const double keep = m_smoothing;
  size_t reached = 0;
  float least = INFINITY;
  float beyond = 0;
  size_t start = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    const auto value = static_cast<double>(samples[i]);
    m_squares += value * value;
    m_first = keep * m_first + (1 - keep) * std::fabs(value);
    m_second = keep * m_second + (1 - keep) * m_first;
    const auto envelope = static_cast<float>(m_second);
    if (envelope >= least && envelope < beyond) continue;
    Count(reached, static_cast<int64_t>(i - start));
    start = i;
    reached = Reached(envelope);
    least = reached > 0 ? m_thresholds[reached - 1] : -INFINITY;
    beyond = reached < kThresholds ? m_thresholds[reached] : INFINITY;
  }
  Count(reached, static_cast<int64_t>(samples.size() - start));
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
