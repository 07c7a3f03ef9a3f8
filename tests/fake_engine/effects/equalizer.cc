#include "fake_engine/effects/equalizer.h"

#include "engine_api/effects/equalizer.h"
#include "fake_engine/effects/fake_dsp.h"

namespace {

class FakeEqualizer final : public FakeDsp<IEqualizer> {
 public:
  using FakeDsp<IEqualizer>::Process;

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string buffer = engine.Buffer(samples);
    engine.Call(this, "Process(%s, %d, %d, %d, %d)", buffer.c_str(), samplesPerChannel, sampleRate,
                channels, sampleSize);
    if (engine.Fails()) return -1;
    engine.script<EqualizerScript>().process(reinterpret_cast<short*>(samples),
                                             samplesPerChannel * channels);
    return samplesPerChannel;
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
