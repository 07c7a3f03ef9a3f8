#include "desktop/dsp/dynamics/limiter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"

namespace desktop {

namespace {

constexpr double kHoldSeconds = 0.012;

}  // namespace

LimiterParameter Limiter::ToParameter(const LimiterParam& parameter) {
  return {parameter.fCeiling,
          parameter.fThreshold,
          parameter.fPreGain,
          parameter.fRelease,
          parameter.fAttack,
          parameter.fLookahead,
          parameter.fLookaheadRatio,
          parameter.fRMS,
          0,
          parameter.fStLink,
          0};
}

LimiterParameter Limiter::InRange(const LimiterParameter& parameter) {
  using desktop::InRange;
  LimiterParameter p{};
  p.fCeiling = InRange(parameter.fCeiling, -60, 0);
  p.fThreshold = InRange(parameter.fThreshold, -60, p.fCeiling);
  p.fPreGain = InRange(parameter.fPreGain, -40, 40);
  p.fRelease = InRange(parameter.fRelease, 1, 5000);
  p.fAttack = InRange(parameter.fAttack, 0, 100);
  p.fLookahead = InRange(parameter.fLookahead, 0, 20);
  p.fLookaheadRatio = InRange(parameter.fLookaheadRatio, 0, 1);
  p.fRMS = InRange(parameter.fRMS, 0, 300);
  p.fStLink = InRange(parameter.fStLink, 0, 1);
  return p;
}

void Limiter::SetParameter(const LimiterParameter& parameter) {
  m_parameter = InRange(parameter);
  m_changed = true;
}

int Limiter::Latency(int sampleRate) const {
  return static_cast<int>(std::lround(double{m_parameter.fLookahead} * sampleRate / 1000));
}

void Limiter::Prepare(int channels, int sampleRate) {
  const LimiterParameter& p = m_parameter;
  m_preGain = FromDecibels(p.fPreGain);
  m_threshold = FromDecibels(p.fThreshold);
  m_ceiling = FromDecibels(p.fCeiling);
  m_attack = SmoothingStep(p.fAttack, sampleRate);
  m_release = SmoothingStep(p.fRelease, sampleRate);
  m_rms = p.fRMS > 0 ? SmoothingStep(p.fRMS, sampleRate) : 0;
  m_changed = false;
  const int latency = Latency(sampleRate);
  const size_t average = Size(std::max(1L, std::lround(double{p.fLookaheadRatio} * latency)));
  // The curve may have changed.
  for (Channel& channel : m_channel) channel.level = -1;
  if (sampleRate == m_sampleRate && channels == m_channels && latency == m_latency &&
      average == m_channel[0].gains.size()) {
    return;
  }
  for (Channel& channel : m_channel) {
    channel = {};
    channel.peak.Reset(latency + 1 + static_cast<int>(kHoldSeconds * sampleRate));
    channel.gains.assign(average, 1.0);
    channel.sum = Real(average);
    channel.delay.assign(Size(latency) + 1, 0.0f);
  }
  m_at = m_gainAt = 0;
  m_latency = latency;
  m_channels = channels;
  m_sampleRate = sampleRate;
}

// Above the threshold the level bends with slope 1 at first and towards the ceiling, both in dB.
double Limiter::GainFor(float level) const {
  if (level <= m_threshold) return 1;
  const double over = 20 * std::log10(level / m_threshold);
  const double room = 20 * std::log10(m_ceiling / m_threshold);
  const double rise = room > 0 ? room * (1 - std::exp(-over / room)) : 0;
  return FromDecibels(rise - over);
}

float Limiter::LevelOf(Channel& channel, float sample) const {
  if (m_rms == 0) return std::abs(sample);
  const double value = sample;
  channel.power += m_rms * (value * value - channel.power);
  // This is the peak of a sine of that power.
  return static_cast<float>(std::numbers::sqrt2 * std::sqrt(channel.power));
}

double Limiter::NextGain(Channel& channel, float level) {
  const float held = channel.peak.Push(level);
  if (held != channel.level) {
    channel.level = held;
    channel.needed = GainFor(held);
  }
  const double way = channel.needed - channel.gain;
  channel.gain = way < 0 && m_attack == 1 ? channel.needed
                                          : channel.gain + way * (way < 0 ? m_attack : m_release);
  double& oldest = channel.gains[m_gainAt];
  channel.sum += channel.gain - oldest;
  oldest = channel.gain;
  return channel.sum / Real(channel.gains.size());
}

void Limiter::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  if (m_changed || sampleRate != m_sampleRate || channels != m_channels) {
    Prepare(channels, sampleRate);
  }
  const float link = m_parameter.fStLink;
  const auto preGain = static_cast<float>(m_preGain);
  const auto ceiling = static_cast<float>(m_ceiling);
  const size_t length = m_channel[0].delay.size();
  for (size_t i = 0; i < frames; ++i) {
    float level[kMaxEffectChannels] = {};
    float loudest = 0;
    for (int c = 0; c < channels; ++c) {
      const float in = rows[c][i] * preGain;
      m_channel[c].delay[m_at] = in;
      level[c] = LevelOf(m_channel[c], in);
      loudest = std::max(loudest, level[c]);
    }
    m_at = m_at + 1 == length ? 0 : m_at + 1;
    for (int c = 0; c < channels; ++c) {
      const double gain = NextGain(m_channel[c], level[c] + link * (loudest - level[c]));
      const float out = m_channel[c].delay[m_at] * static_cast<float>(gain);
      rows[c][i] = std::clamp(out, -ceiling, ceiling);
    }
    m_gainAt = m_gainAt + 1 == m_channel[0].gains.size() ? 0 : m_gainAt + 1;
  }
}

}  // namespace desktop
