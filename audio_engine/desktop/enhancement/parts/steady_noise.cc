#include "desktop/enhancement/parts/steady_noise.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

// The standard deviation of the levels of a steady noise, dB: white noise has 0.7.
constexpr float kSteady = 1.5f;

// How far the level of a clap falls, dB.
constexpr float kFall = 12.0f;

// Returns the level of the differences between samples, because the level of rumble wavers, however
// steady it sounds.
float LevelOf(std::span<const float> samples) {
  float energy = 0.0f;
  for (size_t i = 1; i < samples.size(); ++i) {
    const float difference = samples[i] - samples[i - 1];
    energy += difference * difference;
  }
  return 10.0f * std::log10(energy / static_cast<float>(samples.size()) + 1.0f);
}

}  // namespace

bool SteadyNoise::Process(std::span<const float> samples) {
  m_withoutVoice = m_voicing.Process(samples) ? 0 : m_withoutVoice + 1;
  m_levels[m_next] = LevelOf(samples);
  m_next = (m_next + 1) % m_levels.size();
  return WithoutVoice() && Deviation() < kSteady;
}

bool SteadyNoise::Rattles() const {
  if (!WithoutVoice()) return false;
  float peak = 0.0f;
  float fall = 0.0f;
  for (size_t i = 0; i < m_levels.size(); ++i) {
    const float level = m_levels[(m_next + i) % m_levels.size()];
    peak = std::max(peak, level);
    fall = std::max(fall, peak - level);
  }
  return fall > kFall;
}

float SteadyNoise::Deviation() const {
  float sum = 0.0f;
  float squares = 0.0f;
  for (const float level : m_levels) {
    sum += level;
    squares += level * level;
  }
  const float mean = sum / static_cast<float>(m_levels.size());
  return std::sqrt(std::max(squares / static_cast<float>(m_levels.size()) - mean * mean, 0.0f));
}

}  // namespace desktop
