#include "desktop/enhancement/noise_tracker.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

constexpr int kFirstFrames = 5;

// A bin that has been speech for this long on end is noise that has grown: some of it is let in.
constexpr float kProbabilitySmoothing = 0.9f;
constexpr float kMostProbability = 0.99f;

// e^-80 is as good as nothing; much beyond, it is no number that a float can hold.
constexpr float kMostExponent = 80.0f;

}  // namespace

NoiseTracker::NoiseTracker(size_t bins, const Speed& speed)
    : m_speed(speed), m_noise(bins, kFloor), m_meanProbability(bins, 0.5f) {}

void NoiseTracker::Update(std::span<const float> power) {
  if (*std::max_element(power.begin(), power.end()) <= kFloor) return;
  if (m_frames == kFirstFrames) {
    Learn(power);
    return;
  }
  ++m_frames;
  for (size_t i = 0; i < m_noise.size(); ++i) {
    const float mean = m_noise[i] + (power[i] - m_noise[i]) / static_cast<float>(m_frames);
    m_noise[i] = std::max(mean, kFloor);
  }
}

void NoiseTracker::Learn(std::span<const float> power) {
  const float speech = m_speed.speechSnr;
  for (size_t i = 0; i < m_noise.size(); ++i) {
    const float noise = m_noise[i];
    const float exponent = power[i] / noise * speech / (1.0f + speech);
    float probability =
        1.0f / (1.0f + (1.0f + speech) * std::exp(-std::min(exponent, kMostExponent)));
    m_meanProbability[i] += (1.0f - kProbabilitySmoothing) * (probability - m_meanProbability[i]);
    if (m_meanProbability[i] > kMostProbability) {
      probability = std::min(probability, kMostProbability);
    }
    const float expected = probability * noise + (1.0f - probability) * power[i];
    const float keep = expected > noise ? m_speed.rise : m_speed.fall;
    m_noise[i] = std::max(keep * noise + (1.0f - keep) * expected, kFloor);
  }
}

}  // namespace desktop
