#include "engine_api/mixing/audio_record_mixer.h"

#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_record_mixer.h"

// The frames that were handed over, the mixer's until it ends.
struct AudioRecordMixer::State {
  std::vector<std::unique_ptr<zuwebrtc::AudioFrame>> frames;
};

AudioRecordMixer::AudioRecordMixer() : m_state(std::make_unique<State>()) {
  FakeEngine::Current().Born(this, "AudioRecordMixer", "%s", "");
}

AudioRecordMixer::~AudioRecordMixer() { FakeEngine::Current().Died(this); }

void AudioRecordMixer::SetMixerMode(AudioSourceType mode) {
  FakeEngine::Current().Call(this, "SetMixerMode(%d)", mode);
}

void AudioRecordMixer::PushAudioFrame(zuwebrtc::AudioFrame* frame, unsigned sourceId) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "PushAudioFrame(%d x %d, %u)", frame->samples_per_channel_,
              frame->num_channels_, sourceId);
  engine.script<RecordMixerScript>().pushed.push_back(*frame);
  m_state->frames.emplace_back(frame);
}

void AudioRecordMixer::GetMixedAudioFrame(zuwebrtc::AudioFrame& frame) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "GetMixedAudioFrame(%d x %d)", frame.samples_per_channel_, frame.num_channels_);
  engine.script<RecordMixerScript>().voice.push_back(frame);
  const int samples = frame.samples_per_channel_ * frame.num_channels_;
  for (int i = 0; i < samples; ++i) ++frame.data_[i];
}
