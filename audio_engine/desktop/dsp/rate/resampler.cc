#include "desktop/dsp/rate/resampler.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>

#include "desktop/dsp/effect_math.h"

namespace desktop {
namespace {

// Beyond these an argument is taken for damage, not for audio. The ratio is that of the source rate
// to the target rate.
constexpr uint32_t kMaxRate = 1000000;
constexpr uint32_t kMaxChannels = 64;
constexpr uint32_t kMaxFrames = 1 << 16;
constexpr uint64_t kMaxTargetFrames = 1 << 20;
constexpr uint32_t kMaxRatio = 1000;

bool IsWithin(uint64_t value, uint64_t largest) { return value > 0 && value <= largest; }

float Mean(const short* samples, size_t count) {
  const int sum = std::accumulate(samples, samples + count, 0);
  return static_cast<float>(sum) / static_cast<float>(count);
}

// Returns the most frames that come out for `frames` frames.
size_t MaxFrames(size_t frames, uint32_t sourceRate, uint32_t targetRate) {
  return sourceRate > 0 ? (frames * targetRate + sourceRate - 1) / sourceRate : 0;
}

}  // namespace

Resampler::Resampler(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
                     uint32_t targetChannels, size_t maxFrames)
    : m_sourceRate(sourceRate / std::max(std::gcd(sourceRate, targetRate), 1U)),
      m_targetRate(targetRate / std::max(std::gcd(sourceRate, targetRate), 1U)),
      m_sourceChannels(sourceChannels),
      m_targetChannels(targetChannels),
      m_maxFrames(maxFrames),
      m_channels(std::min(sourceChannels, targetChannels)) {
  if (!IsWithin(sourceRate, kMaxRate) || !IsWithin(targetRate, kMaxRate) ||
      !IsWithin(sourceChannels, kMaxChannels) || !IsWithin(targetChannels, kMaxChannels) ||
      !IsWithin(maxFrames, kMaxFrames) || sourceRate / targetRate >= kMaxRatio ||
      MaxFrames(maxFrames, sourceRate, targetRate) > kMaxTargetFrames) {
    return;
  }
  try {
    if (sourceRate != targetRate) m_filter.emplace(m_sourceRate, m_targetRate);
    m_history = m_filter ? m_filter->Taps() - 1 : 0;
    m_samples.resize(m_channels * (m_history + maxFrames));
    m_open = true;
  } catch (const std::exception&) {
    m_filter.reset();
  }
}

size_t Resampler::BlockFrames(uint32_t sourceRate, uint32_t targetRate) {
  return std::clamp<size_t>(size_t{4096} * sourceRate / std::max(targetRate, 1U), 1, 1024);
}

size_t Resampler::MaxFramesFor(size_t frames) const {
  return MaxFrames(frames, m_sourceRate, m_targetRate);
}

size_t Resampler::LagFrames() const { return m_filter ? m_filter->Lag() : 0; }

size_t Resampler::Convert(const short* source, size_t frames, short* target) {
  if (!m_open || frames > m_maxFrames) return 0;
  Take(source, frames);
  size_t given = 0;
  for (; m_next < frames; ++given) {
    target = Give(target);
    m_phase += m_sourceRate;
    m_next += m_phase / m_targetRate;
    m_phase %= m_targetRate;
  }
  m_next -= frames;
  return given;
}

// Adds what is new to the history, which is what the filter needs of earlier calls.
void Resampler::Take(const short* source, size_t frames) {
  const bool mix = m_channels == 1 && m_sourceChannels > 1;
  for (size_t channel = 0; channel < m_channels; ++channel) {
    float* const history = Channel(channel);
    std::copy_n(history + m_taken, m_history, history);
    float* const samples = history + m_history;
    for (size_t i = 0; i < frames; ++i) {
      const short* const frame = source + i * m_sourceChannels;
      samples[i] = mix ? Mean(frame, m_sourceChannels) : frame[channel];
    }
  }
  m_taken = frames;
}

// Makes one target frame and returns where it ends.
short* Resampler::Give(short* target) {
  for (size_t channel = 0; channel < m_channels; ++channel) {
    const float* const samples = Channel(channel) + m_next;
    *target++ = ToSample(m_filter ? m_filter->At(samples, m_phase) : *samples);
  }
  const short further = m_channels == 1 ? target[-1] : short{0};
  return std::fill_n(target, m_targetChannels - m_channels, further);
}

}  // namespace desktop
