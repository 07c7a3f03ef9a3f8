#include "desktop/dsp/dynamics/compressor.h"

#include <cmath>

#include "desktop/dsp/effect_math.h"

namespace desktop {

namespace {

constexpr double kHoldSeconds = 0.012;

// A reduction that has come so near to its target, in dB, has reached it.
constexpr double kNothing = 1e-4;

}  // namespace

void Compressor::Reset(int sampleRate) {
  m_peak.Reset(static_cast<int>(kHoldSeconds * sampleRate));
  m_attack = SmoothingStep(m_settings.attackMs, sampleRate);
  m_release = SmoothingStep(m_settings.releaseMs, sampleRate);
  m_level = 0;
  m_target = m_reduction = 0;
  m_gain = 1;
}

double Compressor::Reduction(double levelDb) const {
  const double over = levelDb - m_settings.threshold;
  if (over <= 0) return 0;
  const double slope = 1 - 1 / m_settings.ratio;
  if (over < m_settings.knee) return slope * over * over / (2 * m_settings.knee);
  return slope * (over - m_settings.knee / 2);
}

float Compressor::Gain(float level) {
  const float peak = m_peak.Push(level);
  if (peak != m_level) {
    m_level = peak;
    m_target = peak > 0 ? Reduction(20 * std::log10(double{peak})) : 0;
  }
  const double missing = m_target - m_reduction;
  if (missing == 0) return m_gain;
  m_reduction += missing * (missing > 0 ? m_attack : m_release);
  if (std::abs(m_target - m_reduction) < kNothing) m_reduction = m_target;
  // This is 10^(-x / 20).
  m_gain = static_cast<float>(std::exp(-0.11512925464970229 * m_reduction));
  return m_gain;
}

}  // namespace desktop
