#include "fake_engine/effects/audio_music_detector.h"

#include "engine_api/effects/audio_music_detector.h"
#include "fake_engine/fake_engine.h"

struct AudioMusicDetector::Impl {};

AudioMusicDetector::AudioMusicDetector() {
  FakeEngine::Current().Born(this, "AudioMusicDetector", "%s", "");
}

AudioMusicDetector::~AudioMusicDetector() { FakeEngine::Current().Died(this); }

void AudioMusicDetector::Enable(bool enabled) {
  FakeEngine::Current().Call(this, "Enable(%s)", enabled ? "true" : "false");
}

void AudioMusicDetector::Process(zuwebrtc::AudioFrame& frame) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "Process(%d Hz, %d, %d)", frame.sample_rate_hz_, frame.num_channels_,
              frame.samples_per_channel_);
  if (!engine.Fails()) engine.script<AudioMusicDetectorScript>().process(frame);
}

bool AudioMusicDetector::IsMusic() const {
  FakeEngine& engine = FakeEngine::Current();
  const bool music = engine.Answer(engine.script<AudioMusicDetectorScript>().isMusic(), false);
  engine.Call(this, "IsMusic() = %s", music ? "true" : "false");
  return music;
}
