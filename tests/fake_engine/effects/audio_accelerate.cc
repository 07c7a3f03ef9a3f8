#include "fake_engine/effects/audio_accelerate.h"

#include "engine_api/effects/audio_accelerate.h"
#include "fake_engine/effects/fake_dsp.h"

namespace {

class FakeAccelerate final : public FakeDsp<IAudioAccelerate> {
 public:
  using FakeDsp<IAudioAccelerate>::Process;

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string buffer = engine.Buffer(samples);
    auto* const values = reinterpret_cast<short*>(samples);
    const int left = engine.Fails() ? -1
                                    : engine.script<AudioAccelerateScript>().process(
                                          values, samplesPerChannel, channels);
    engine.Call(this, "Process(%s, %d, %d, %d, %d) = %d", buffer.c_str(), samplesPerChannel,
                sampleRate, channels, sampleSize, left);
    return left;
  }

  void SetAccelerateRate(double percent) override {
    FakeEngine::Current().Call(this, "SetAccelerateRate(%g)", percent);
  }

 private:
  ~FakeAccelerate() override = default;
};

}  // namespace

IAudioAccelerate* CreateAudioAccelerate() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const accelerate = new FakeAccelerate;
  engine.Record("CreateAudioAccelerate() = %s",
                engine.Identify(accelerate, "IAudioAccelerate").c_str());
  return accelerate;
}
