#include "fake_engine/enhancement/voice_detection.h"

#include "fake_engine/fake_engine.h"

struct CVoiceDetectionEx::Impl {};

CVoiceDetectionEx::CVoiceDetectionEx(unsigned int sampleRate, unsigned int channels) {
  FakeEngine::Current().Born(this, "CVoiceDetectionEx", "%u, %u", sampleRate, channels);
}

CVoiceDetectionEx::~CVoiceDetectionEx() { FakeEngine::Current().Died(this); }

bool CVoiceDetectionEx::SetVoiceDetectionMode(VoiceDetectionMode mode) {
  FakeEngine::Current().Call(this, "SetVoiceDetectionMode(%d)", static_cast<int>(mode));
  return !FakeEngine::Current().Fails();
}

VADResultKind CVoiceDetectionEx::Detect(short* samples, unsigned int count) {
  FakeEngine& engine = FakeEngine::Current();
  const VADResultKind answer = engine.Answer(
      engine.script<VoiceDetectionScript>().detect(samples, count), vadResultIsUnknown);
  engine.Call(this, "Detect(%u) = %d", count, static_cast<int>(answer));
  return answer;
}
