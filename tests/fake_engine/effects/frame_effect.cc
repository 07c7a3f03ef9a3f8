#include "fake_engine/effects/frame_effect.h"

#include "fake_engine/fake_engine.h"

std::string FloatList(const float* values, int count) {
  std::string list;
  for (int i = 0; i < count; ++i) {
    char text[32];
    snprintf(text, sizeof text, "%s%g", i > 0 ? ", " : "", static_cast<double>(values[i]));
    list += text;
  }
  return list;
}

uint32_t ProcessFakeFrame(const void* object, zuwebrtc::AudioFrame& frame) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(object, "Process(%d Hz, %d, %d)", frame.sample_rate_hz_, frame.num_channels_,
              frame.samples_per_channel_);
  return engine.Fails() ? 0 : engine.script<FrameEffectScript>().process(frame);
}

void RecordEqGains(const void* object, const float* gains, bool flag) {
  FakeEngine::Current().Call(object, "SetEqGains({%s}, %s)", FloatList(gains, 11).c_str(),
                             flag ? "true" : "false");
}
