#include "desktop/dsp/dynamics/fading_limiter.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// As long as the longest look-ahead and the time for which a peak counts.
constexpr int kPastMs = 40;
constexpr int kFadeMs = 20;

}  // namespace

int FadingLimiter::Latency(int sampleRate) const {
  if (!m_wanted.enabled) return 0;
  Limiter limiter;
  limiter.SetParameter(m_wanted.parameter);
  return limiter.Latency(sampleRate);
}

// While both are off their parameters make no difference.
bool FadingLimiter::Alike(const Setting& a, const Setting& b) {
  if (a.enabled != b.enabled) return false;
  const auto fields = [](const LimiterParameter& p) {
    return std::array{p.fCeiling,   p.fThreshold,      p.fPreGain, p.fRelease, p.fAttack,
                      p.fLookahead, p.fLookaheadRatio, p.fRMS,     p.fStLink};
  };
  return !a.enabled || fields(a.parameter) == fields(b.parameter);
}

void FadingLimiter::Start(int channels, int sampleRate) {
  // Should there be no memory, the next call tries again.
  m_sampleRate = 0;
  for (std::vector<float>& past : m_past) past.assign(Size(sampleRate * kPastMs / 1000), 0.0f);
  m_at = 0;
  m_fading = false;
  m_channels = channels;
  m_setting[m_playing] = m_wanted;
  m_limiter[m_playing] = Limiter();
  m_limiter[m_playing].SetParameter(m_wanted.parameter);
  m_sampleRate = sampleRate;
}

void FadingLimiter::BeginFade() {
  const size_t next = 1 - m_playing;
  m_setting[next] = m_wanted;
  m_limiter[next] = Limiter();
  m_limiter[next].SetParameter(m_wanted.parameter);
  float planar[kMaxEffectChannels][kMaxEffectFrames];
  float* const rows[kMaxEffectChannels] = {planar[0], planar[1]};
  const size_t length = m_past[0].size();
  for (size_t done = 0; done < length; done += kMaxEffectFrames) {
    const size_t frames = std::min(kMaxEffectFrames, length - done);
    for (size_t c = 0; c < Size(m_channels); ++c) {
      for (size_t i = 0; i < frames; ++i) planar[c][i] = m_past[c][(m_at + done + i) % length];
    }
    Run(next, rows, frames);
  }
  m_faded = 0;
  m_fading = true;
}

void FadingLimiter::Remember(float* const* rows, size_t frames) {
  for (size_t i = 0; i < frames; ++i) {
    for (size_t c = 0; c < Size(m_channels); ++c) m_past[c][m_at] = rows[c][i];
    m_at = m_at + 1 == m_past[0].size() ? 0 : m_at + 1;
  }
}

void FadingLimiter::Run(size_t which, float* const* rows, size_t frames) {
  if (m_setting[which].enabled) m_limiter[which].Process(rows, m_channels, frames, m_sampleRate);
}

void FadingLimiter::Fade(float* const* rows, size_t frames) {
  float planar[kMaxEffectChannels][kMaxEffectFrames];
  float* const coming[kMaxEffectChannels] = {planar[0], planar[1]};
  for (int c = 0; c < m_channels; ++c) std::copy_n(rows[c], frames, coming[c]);
  Run(m_playing, rows, frames);
  Run(1 - m_playing, coming, frames);
  const size_t length = Size(m_sampleRate * kFadeMs / 1000);
  for (size_t i = 0; i < frames; ++i) {
    const double phase = std::min((Real(m_faded++) + 0.5) / Real(length), 1.0);
    const auto share = static_cast<float>(0.5 - 0.5 * std::cos(M_PI * phase));
    for (int c = 0; c < m_channels; ++c) rows[c][i] += share * (coming[c][i] - rows[c][i]);
  }
  if (m_faded < length) return;
  m_fading = false;
  m_playing = 1 - m_playing;
}

void FadingLimiter::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  if (sampleRate != m_sampleRate || channels != m_channels) Start(channels, sampleRate);
  for (size_t done = 0; done < frames; done += kMaxEffectFrames) {
    float* part[kMaxEffectChannels] = {};
    for (int c = 0; c < channels; ++c) part[c] = rows[c] + done;
    const size_t count = std::min(frames - done, kMaxEffectFrames);
    if (!m_fading && !Alike(m_wanted, m_setting[m_playing])) BeginFade();
    Remember(part, count);
    if (m_fading) {
      Fade(part, count);
    } else {
      Run(m_playing, part, count);
    }
  }
}

}  // namespace desktop
