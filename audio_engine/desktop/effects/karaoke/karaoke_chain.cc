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
  if (!m_compressorEnabled) {
    m_compressorRate = 0;
    return;
  }
  if (sampleRate != m_compressorRate) {
    m_compressor.Reset(sampleRate);
    m_compressorRate = sampleRate;
  }
  for (size_t i = 0; i < frames; ++i) {
    float level = 0;
    for (int c = 0; c < channels; ++c) level = std::max(level, std::abs(rows[c][i]));
    const float gain = m_compressor.Gain(level);
    for (int c = 0; c < channels; ++c) rows[c][i] *= gain;
  }
}

void KaraokeChain::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  equalizer.Process(rows, channels, frames, sampleRate);
  reverb.Process(rows, channels, frames, sampleRate);
  Compress(rows, channels, frames, sampleRate);
  if (m_limiterEnabled) {
    limiter.Process(rows, channels, frames, sampleRate);
  } else {
    limiter.Flush();
  }
}

}  // namespace desktop
