#include "desktop/dsp/filters/graphic_equalizer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "desktop/common/counts.h"

namespace desktop {

void GraphicEqualizer::Bell::Update() {
  const double k = 1 / (q * amplitude);
  a1 = 1 / (1 + tangent * (tangent + k));
  a2 = tangent * a1;
  a3 = tangent * a2;
  m1 = k * (amplitude * amplitude - 1);
}

void GraphicEqualizer::SetGain(int band, float gain, bool smooth) {
  if (std::isnan(gain)) return;
  m_wanted[Size(band)] = std::clamp(gain, -24.0f, 24.0f);
  m_changed = true;
  m_smooth = smooth;
}

void GraphicEqualizer::SetGains(const float* gains, bool smooth) {
  for (int band = 0; band < kEqualizerBands; ++band) SetGain(band, gains[band], smooth);
}

void GraphicEqualizer::SetEnabled(bool enabled) {
  if (enabled == m_enabled) return;
  m_enabled = enabled;
  m_changed = true;
  m_smooth = true;
}

bool GraphicEqualizer::IsActive() const {
  if (m_fadeFrames > 0) return true;
  return m_enabled &&
         std::any_of(m_wanted.begin(), m_wanted.end(), [](float gain) { return gain != 0; });
}

void GraphicEqualizer::Flush() {
  for (Bell& bell : m_bells) std::fill_n(&bell.state[0][0], 2 * kMaxEffectChannels, 0.0);
}

void GraphicEqualizer::Retarget(bool smooth) {
  const auto gains =
      m_enabled ? SolveBandGains(m_design, m_wanted) : std::array<double, kEqualizerBands>{};
  const int frames = std::max(1, m_sampleRate / 50);
  for (size_t i = 0; i < m_design.bands; ++i) {
    Bell& bell = m_bells[i];
    if (bell.IsIdle()) std::fill_n(&bell.state[0][0], 2 * kMaxEffectChannels, 0.0);
    bell.target = std::pow(10.0, gains[i] / 40);
    bell.growth = std::pow(bell.target / bell.amplitude, 1.0 / frames);
    if (!smooth) bell.amplitude = bell.target;
    bell.Update();
  }
  m_fadeFrames = smooth ? Size(frames) : 0;
}

void GraphicEqualizer::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  if (sampleRate != m_sampleRate || channels != m_channels) {
    m_sampleRate = sampleRate;
    m_channels = channels;
    m_design = DesignEqualizer(sampleRate);
    m_bells = {};
    for (size_t i = 0; i < m_bells.size(); ++i) {
      m_bells[i].tangent = m_design.band[i].centreTangent;
      m_bells[i].q = m_design.band[i].q;
    }
    m_changed = false;
    Retarget(false);
  }
  if (std::exchange(m_changed, false)) Retarget(m_smooth);

  const size_t fading = std::min(frames, m_fadeFrames);
  if (fading > 0) Fade(rows, channels, fading);
  for (Bell& bell : m_bells) {
    if (bell.IsIdle()) continue;
    for (int c = 0; c < channels; ++c) Run(bell, rows[c] + fading, c, frames - fading);
  }
}

// Moves the gains with every sample.
void GraphicEqualizer::Fade(float* const* rows, int channels, size_t frames) {
  for (size_t i = 0; i < frames; ++i) {
    --m_fadeFrames;
    for (Bell& bell : m_bells) {
      if (bell.IsIdle()) continue;
      bell.amplitude = m_fadeFrames > 0 ? bell.amplitude * bell.growth : bell.target;
      bell.Update();
      for (int c = 0; c < channels; ++c) Run(bell, rows[c] + i, c, 1);
    }
  }
}

void GraphicEqualizer::Run(Bell& bell, float* row, int channel, size_t frames) {
  double s1 = bell.state[channel][0];
  double s2 = bell.state[channel][1];
  const double a1 = bell.a1, a2 = bell.a2, a3 = bell.a3, m1 = bell.m1;
  for (size_t i = 0; i < frames; ++i) {
    const double in = row[i];
    const double v3 = in - s2;
    const double v1 = a1 * s1 + a2 * v3;
    const double v2 = s2 + a2 * s1 + a3 * v3;
    s1 = 2 * v1 - s1;
    s2 = 2 * v2 - s2;
    row[i] = static_cast<float>(in + m1 * v1);
  }
  bell.state[channel][0] = s1;
  bell.state[channel][1] = s2;
}

}  // namespace desktop
