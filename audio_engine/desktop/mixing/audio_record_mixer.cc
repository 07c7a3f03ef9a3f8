#include "engine_api/mixing/audio_record_mixer.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "desktop/common/counts.h"
#include "desktop/dsp/dynamics/sum_limiter.h"
#include "desktop/mixing/parts/block_converter.h"

namespace {

constexpr size_t kMaxWaiting = 50;

// The frames that were pushed with one id.
struct Source {
  std::deque<std::unique_ptr<zuwebrtc::AudioFrame>> frames;
  desktop::BlockConverter converter;
};

}  // namespace

struct AudioRecordMixer::State {
  std::mutex mutex;
  AudioSourceType mode = AudioSourceTypeMix;
  std::map<unsigned, Source> sources;
  desktop::SumLimiter limiter;
  std::vector<int32_t> sums;
};

AudioRecordMixer::AudioRecordMixer() : m_state(std::make_unique<State>()) {}

AudioRecordMixer::~AudioRecordMixer() = default;

void AudioRecordMixer::SetMixerMode(AudioSourceType mode) {
  const std::lock_guard lock(m_state->mutex);
  m_state->mode = mode;
}

void AudioRecordMixer::PushAudioFrame(zuwebrtc::AudioFrame* frame, unsigned sourceId) {
  if (frame == nullptr) return;
  const std::lock_guard lock(m_state->mutex);
  auto& frames = m_state->sources[sourceId].frames;
  frames.emplace_back(frame);
  if (frames.size() > kMaxWaiting) frames.pop_front();
}

void AudioRecordMixer::GetMixedAudioFrame(zuwebrtc::AudioFrame& frame) {
  const std::lock_guard lock(m_state->mutex);
  const int channels = frame.num_channels_;
  if (channels <= 0 || frame.samples_per_channel_ <= 0) return;
  const int maxFrames = zuwebrtc::AudioFrame::kMaxDataSizeSamples / channels;
  const size_t frames = desktop::Size(std::min(frame.samples_per_channel_, maxFrames));
  const size_t samples = frames * desktop::Size(channels);
  if (m_state->mode == AudioSourceTypeMic) return;

  std::vector<int32_t>& sums = m_state->sums;
  sums.assign(samples, 0);
  if (m_state->mode == AudioSourceTypeMix) std::copy_n(frame.data_, samples, sums.begin());
  for (auto& [id, source] : m_state->sources) {
    while (source.converter.Waiting() < samples && !source.frames.empty()) {
      source.converter.Put(*source.frames.front(), frame.sample_rate_hz_, channels);
      source.frames.pop_front();
    }
    source.converter.AddTo(sums.data(), samples);
  }
  m_state->limiter.Process(sums.data(), frames, desktop::Size(channels), frame.data_);
}
