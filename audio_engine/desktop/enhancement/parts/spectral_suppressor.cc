#include "desktop/enhancement/parts/spectral_suppressor.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

// How much of the hop before goes into the a-priori ratio: more is smoother, less is quicker.
constexpr float kMemory = 0.93f;

// The least a-priori ratio, -25 dB, keeps musical noise down.
constexpr float kLowestPriorRatio = 0.00316f;

constexpr NoiseTracker::Speed kSpeed = {31.6f, 0.95f, 0.95f};

// Returns the exponential integral E1 for x > 0, to about 1e-4 of itself (Abramowitz and Stegun,
// "Handbook of Mathematical Functions", 1964, 5.1.53 and 5.1.54).
float ExponentialIntegral(float x) {
  if (x < 1.0f) {
    const float sum =
        -0.57721566f +
        x * (0.99999193f +
             x * (-0.24991055f + x * (0.05519968f + x * (-0.00976004f + x * 0.00107857f))));
    return sum - std::log(x);
  }
  return (x * x + 2.334733f * x + 0.250621f) /
         ((x * x + 3.330657f * x + 1.681534f) * x * std::exp(x));
}

// Returns the gain of the estimator for an a-priori and an a-posteriori ratio.
float LogSpectralGain(float prior, float posterior) {
  const float wiener = prior / (1.0f + prior);
  const float v = std::clamp(wiener * posterior, 1e-6f, 80.0f);
  return std::min(wiener * std::exp(0.5f * ExponentialIntegral(v)), 1.0f);
}

}  // namespace

SpectralSuppressor::SpectralSuppressor(int rate, size_t hop)
    : m_spectrum(hop),
      m_steady(rate, hop),
      m_noise(m_spectrum.BinOf(0.5) + 1, kSpeed),
      m_power(m_noise.Noise().size()),
      m_speech(m_power.size()) {}

void SpectralSuppressor::Process(std::span<float> samples, float lowestGain) {
  const bool steady = m_steady.Process(samples);
  const std::span<kiss_fft_cpx> bins = m_spectrum.Analyse(samples);
  std::transform(bins.begin(), bins.end(), m_power.begin(), Power);
  m_noise.Update(m_power, steady);

  for (size_t i = 0; i < bins.size(); ++i) {
    const float noise = m_noise.Noise()[i];
    const float posterior = std::max(m_power[i], NoiseTracker::kFloor) / noise;
    const float prior = std::max(
        kMemory * m_speech[i] / noise + (1.0f - kMemory) * std::max(posterior - 1.0f, 0.0f),
        kLowestPriorRatio);
    const float gain = LogSpectralGain(prior, posterior);
    m_speech[i] = gain * gain * m_power[i];
    const float applied = std::max(gain, lowestGain);
    bins[i].r *= applied;
    bins[i].i *= applied;
  }
  m_spectrum.Synthesise(samples);
}

}  // namespace desktop
