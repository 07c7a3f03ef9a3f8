#include "desktop/enhancement/parts/spectral_suppressor.h"

#include <algorithm>
#include <cmath>

#include "desktop/enhancement/parts/exponential_integral.h"

namespace desktop {
namespace {

// How much of the hop before goes into the a-priori ratio: more is smoother, less is quicker.
constexpr float kMemory = 0.93f;

constexpr NoiseTracker::Speed kSpeed = {31.6f, 0.95f, 0.95f};

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
    const float prior =
        kMemory * m_speech[i] / noise + (1.0f - kMemory) * std::max(posterior - 1.0f, 0.0f);
    const float gain = LogSpectralGain(prior, posterior);
    m_speech[i] = gain * gain * m_power[i];
    const float applied = std::max(gain, lowestGain);
    bins[i].r *= applied;
    bins[i].i *= applied;
  }
  m_spectrum.Synthesise(samples);
}

}  // namespace desktop
