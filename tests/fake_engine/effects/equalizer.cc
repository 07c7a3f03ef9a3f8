#include "fake_engine/effects/equalizer.h"

#include "engine_api/effects/equalizer.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeEqualizer final : public IEqualizer {
 public:
  void Destroy() override {
    FakeEngine::Current().Died(this);
    delete this;
  }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string buffer = engine.Buffer(samples);
    engine.Call(this, "Process(%s, %d, %d, %d, %d)", buffer.c_str(), samplesPerChannel, sampleRate,
                channels, sampleSize);
    engine.script<EqualizerScript>().process(reinterpret_cast<short*>(samples),
                                             samplesPerChannel * channels);
    return samplesPerChannel;
  }

  int Process(int*, int samplesPerChannel, int, int, int, int) override {
    FakeEngine::Current().Call(this, "Process(ints, %d)", samplesPerChannel);
    return samplesPerChannel;
  }

  void Flush() override { FakeEngine::Current().Call(this, "Flush()"); }

  bool GetEnabled() override {
    FakeEngine::Current().Call(this, "GetEnabled()");
    return false;
  }

  void SetEnabled(bool enabled) override {
    FakeEngine::Current().Call(this, "SetEnabled(%s)", enabled ? "true" : "false");
  }

  bool IsActive() override {
    FakeEngine::Current().Call(this, "IsActive()");
    return false;
  }

  void SetEqGain(int band, float gain) override {
    FakeEngine::Current().Call(this, "SetEqGain(%d, %g)", band, static_cast<double>(gain));
  }

 private:
  ~FakeEqualizer() override = default;
};

}  // namespace

IEqualizer* CreateEqualizer() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const equalizer = new FakeEqualizer;
  engine.Record("CreateEqualizer() = %s", engine.Identify(equalizer, "IEqualizer").c_str());
  return equalizer;
}
