#include "desktop/enhancement/parts/noise_tracker.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

constexpr int kFirstBlocks = 5;

// A bin whose smoothed probability of speech stays above the maximum is noise that has grown: some
// of it is let in.
constexpr float kProbabilitySmoothing = 0.9f;
constexpr float kMaxProbability = 0.99f;

// Steady noise that is louder than the estimate by this factor takes its place; a smaller
// difference goes away by itself.
constexpr float kMuch = 2.0f;

// How many blocks m_recent stands for.
constexpr int kRecentBlocks = 10;

// e^-80 is as good as 0, and much smaller powers of e are beyond a float.
constexpr float kMaxExponent = 80.0f;

}  // namespace

NoiseTracker::NoiseTracker(size_t bins, const Speed& speed)
    : m_speed(speed),
      m_noise(bins, kFloor),
      m_recent(bins, kFloor),
      m_meanProbability(bins, 0.5f) {}

void NoiseTracker::Update(std::span<const float> power, bool steady) {
  m_blocks = std::min(m_blocks + 1, kRecentBlocks);
  for (size_t i = 0; i < m_noise.size(); ++i) {
    m_recent[i] += (power[i] - m_recent[i]) / static_cast<float>(m_blocks);
    m_recent[i] = std::max(m_recent[i], kFloor);
  }
  if (m_blocks <= kFirstBlocks) {
    m_noise = m_recent;
    return;
  }
  Learn(power);
  if (steady && RiseOverNoise() > kMuch) m_noise = m_recent;
}

// Returns the rise over all bins: a single one is louder than its mean at times, and to follow it
// then would overestimate the noise.
float NoiseTracker::RiseOverNoise() const {
  float sum = 0.0f;
  for (size_t i = 0; i < m_noise.size(); ++i) sum += m_recent[i] / m_noise[i];
  return sum / static_cast<float>(m_noise.size());
}

void NoiseTracker::Learn(std::span<const float> power) {
  const float speech = m_speed.speechSnr;
  for (size_t i = 0; i < m_noise.size(); ++i) {
    const float noise = m_noise[i];
    const float exponent = power[i] / noise * speech / (1.0f + speech);
    float probability =
        1.0f / (1.0f + (1.0f + speech) * std::exp(-std::min(exponent, kMaxExponent)));
    m_meanProbability[i] += (1.0f - kProbabilitySmoothing) * (probability - m_meanProbability[i]);
    if (m_meanProbability[i] > kMaxProbability) {
      probability = std::min(probability, kMaxProbability);
    }
    const float expected = probability * noise + (1.0f - probability) * power[i];
    const float keep = expected > noise ? m_speed.rise : m_speed.fall;
    m_noise[i] = std::max(keep * noise + (1.0f - keep) * expected, kFloor);
  }
}

}  // namespace desktop
