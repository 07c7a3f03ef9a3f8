#include "desktop/effects/karaoke/karaoke_chain.h"

#include <algorithm>
#include <cmath>

namespace desktop {

void KaraokeChain::EnableEqReverb(bool enabled) {
  m_eqReverbEnabled = enabled;
  EnableEqualizer(m_equalizerEnabled);
  EnableReverb(m_reverbEnabled);
}

void KaraokeChain::EnableEqualizer(bool enabled) {
  m_equalizerEnabled = enabled;
  equalizer.SetEnabled(enabled && m_eqReverbEnabled);
}

void KaraokeChain::EnableReverb(bool enabled) {
  m_reverbEnabled = enabled;
  reverb.SetEnabled(enabled && m_eqReverbEnabled);
}

void KaraokeChain::Compress(float* const* rows, int channels, size_t frames, int sampleRate) {
  if (!m_compressorEnabled && m_compressorShare == 0) return;
  if (m_compressorShare == 0 || sampleRate != m_compressorRate) {
    m_compressor.Reset(sampleRate);
    m_compressorRate = sampleRate;
    m_compressorShare = 1;
  }
  // Switched off it goes within 20 ms; switched on it needs no fade, for it begins at a gain of 1.
  const float step = (m_compressorEnabled ? 50.0F : -50.0F) / static_cast<float>(sampleRate);
  for (size_t i = 0; i < frames; ++i) {
    float level = 0;
    for (int c = 0; c < channels; ++c) level = std::max(level, std::abs(rows[c][i]));
    m_compressorShare = std::clamp(m_compressorShare + step, 0.0F, 1.0F);
    const float gain = 1 + m_compressorShare * (m_compressor.Gain(level) - 1);
    for (int c = 0; c < channels; ++c) rows[c][i] *= gain;
  }
}

void KaraokeChain::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  equalizer.Process(rows, channels, frames, sampleRate);
  reverb.Process(rows, channels, frames, sampleRate);
  Compress(rows, channels, frames, sampleRate);
  limiter.Process(rows, channels, frames, sampleRate);
}

}  // namespace desktop
