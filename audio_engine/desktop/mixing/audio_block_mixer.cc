#include "engine_api/mixing/audio_block_mixer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "desktop/dsp/dynamics/sum_limiter.h"

struct CAudioBlockMixer::State {
  size_t channels;
  desktop::SumLimiter limiter;
  std::vector<int32_t> sums;
};

CAudioBlockMixer::CAudioBlockMixer(int samples, int channels) : m_state(std::make_unique<State>()) {
  m_state->channels = static_cast<size_t>(std::clamp(channels, 1, 64));
  m_state->sums.reserve(static_cast<size_t>(std::clamp(samples, 0, 48000)) * m_state->channels);
}

CAudioBlockMixer::~CAudioBlockMixer() = default;

void CAudioBlockMixer::Process(const AudioBlockList& blocks, std::string& outMix) {
  size_t bytes = SIZE_MAX;
  for (const std::string* block : blocks) {
    if (block != nullptr) bytes = std::min(bytes, block->size());
  }
  if (bytes == SIZE_MAX) bytes = 0;
  const size_t frameBytes = m_state->channels * sizeof(int16_t);
  const size_t frames = bytes / frameBytes;

  std::vector<int32_t>& sums = m_state->sums;
  sums.assign(frames * m_state->channels, 0);
  for (const std::string* block : blocks) {
    if (block == nullptr) continue;
    for (size_t i = 0; i < sums.size(); ++i) {
      int16_t sample;
      memcpy(&sample, block->data() + i * sizeof sample, sizeof sample);
      sums[i] += sample;
    }
  }
  // A part of a frame at the end cannot be mixed; it is silent.
  outMix.assign(bytes, '\0');
  if (frames == 0) return;
  m_state->limiter.Process(sums.data(), frames, m_state->channels,
                           reinterpret_cast<int16_t*>(outMix.data()));
}
