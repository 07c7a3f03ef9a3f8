#include "desktop/common/resampler.h"

#include <speex/speex_resampler.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace desktop {
namespace {

// Beyond these an argument is taken for damage, not for audio.
constexpr uint32_t kMostRate = 1000000;
constexpr uint32_t kMostChannels = 64;
constexpr uint32_t kMostFrames = 1 << 16;
constexpr uint64_t kMostTargetFrames = 1 << 20;

// Aliases 90 dB down and a pass band up to 0.9 of the lower rate's half.
constexpr int kQuality = 8;

short ToSample(float value) {
  return static_cast<short>(std::lrintf(std::clamp(value, -32768.0F, 32767.0F)));
}

bool IsWithin(uint64_t value, uint64_t most) { return value > 0 && value <= most; }

// The most frames that come out for `frames` frames.
uint64_t MostFrames(uint64_t frames, uint32_t sourceRate, uint32_t targetRate) {
  return sourceRate > 0 ? (frames * targetRate + sourceRate - 1) / sourceRate : 0;
}

// Interleaved floats of `channels` channels from those of `sourceChannels`, at least as many.
void Gather(const short* source, uint32_t sourceChannels, uint32_t frames, uint32_t channels,
            float* gathered) {
  const bool mix = channels == 1 && sourceChannels > 1;
  for (uint32_t i = 0; i < frames; ++i, source += sourceChannels) {
    if (mix) {
      int sum = 0;
      for (uint32_t c = 0; c < sourceChannels; ++c) sum += source[c];
      *gathered++ = static_cast<float>(sum) / static_cast<float>(sourceChannels);
    } else {
      gathered = std::copy_n(source, channels, gathered);
    }
  }
}

// Interleaved samples of `targetChannels` channels from floats of `channels`, at most as many.
void Spread(const float* gathered, uint32_t channels, uint32_t frames, uint32_t targetChannels,
            short* target) {
  for (uint32_t i = 0; i < frames; ++i, gathered += channels) {
    target = std::transform(gathered, gathered + channels, target, ToSample);
    const short further = channels == 1 ? target[-1] : short{0};
    target = std::fill_n(target, targetChannels - channels, further);
  }
}

}  // namespace

void Resampler::Close::operator()(SpeexResamplerState_* state) const {
  speex_resampler_destroy(state);
}

Resampler::Resampler(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
                     uint32_t targetChannels, uint32_t maxFrames)
    : m_sourceRate(sourceRate),
      m_sourceChannels(sourceChannels),
      m_targetRate(targetRate),
      m_targetChannels(targetChannels),
      m_maxFrames(maxFrames),
      m_channels(std::min(sourceChannels, targetChannels)) {
  if (!IsWithin(sourceRate, kMostRate) || !IsWithin(targetRate, kMostRate) ||
      !IsWithin(sourceChannels, kMostChannels) || !IsWithin(targetChannels, kMostChannels) ||
      !IsWithin(maxFrames, kMostFrames) ||
      MostFrames(maxFrames, sourceRate, targetRate) > kMostTargetFrames) {
    return;
  }
  try {
    m_before.resize(size_t{m_channels} * maxFrames);
    m_after.resize(size_t{m_channels} * MostFramesFor(maxFrames));
  } catch (const std::exception&) {
    return;
  }
  if (sourceRate != targetRate) {
    m_state.reset(speex_resampler_init_frac(m_channels, sourceRate, targetRate, sourceRate,
                                            targetRate, kQuality, nullptr));
  }
  m_open = sourceRate == targetRate || m_state != nullptr;
}

Resampler::~Resampler() = default;

uint32_t Resampler::MostFramesFor(uint32_t frames) const {
  return static_cast<uint32_t>(MostFrames(frames, m_sourceRate, m_targetRate));
}

uint32_t Resampler::Convert(const short* source, uint32_t frames, short* target) {
  if (!m_open || frames > m_maxFrames) return 0;
  Gather(source, m_sourceChannels, frames, m_channels, m_before.data());
  if (m_state == nullptr) {
    Spread(m_before.data(), m_channels, frames, m_targetChannels, target);
    return frames;
  }
  spx_uint32_t taken = frames;
  spx_uint32_t given = MostFramesFor(frames);
  speex_resampler_process_interleaved_float(m_state.get(), m_before.data(), &taken, m_after.data(),
                                            &given);
  Spread(m_after.data(), m_channels, given, m_targetChannels, target);
  return given;
}

uint32_t Resampler::LagFrames() const {
  if (m_state == nullptr) return 0;
  return static_cast<uint32_t>(speex_resampler_get_output_latency(m_state.get()));
}

}  // namespace desktop
