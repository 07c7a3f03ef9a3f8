#include "fake_engine/effects/voice_beautify.h"

#include "engine_api/effects/voice_beautify.h"
#include "fake_engine/effects/fake_dsp.h"

namespace {

class FakeVoiceBeautify final : public FakeDsp<IAudioVoiceBeautify> {
 public:
  using FakeDsp<IAudioVoiceBeautify>::Process;

  int Process(char*, int samplesPerChannel, int, int, int) override {
    FakeEngine::Current().Call(this, "Process(samples, %d)", samplesPerChannel);
    return samplesPerChannel;
  }

  int VoiceBeautifyProcess(unsigned short* samples, int count, int rate, int channels) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string buffer = engine.Buffer(samples);
    auto* const values = reinterpret_cast<short*>(samples);
    const int answer =
        engine.Fails() ? -1 : engine.script<VoiceBeautifyScript>().process(values, count);
    engine.Call(this, "VoiceBeautifyProcess(%s, %d, %d, %d) = %d", buffer.c_str(), count, rate,
                channels, answer);
    return answer;
  }

  void SetVoiceBeautifyOption(VoiceBeautifyOption option, float strength,
                              float semitones) override {
    FakeEngine::Current().Call(this, "SetVoiceBeautifyOption(%d, %g, %g)", option,
                               static_cast<double>(strength), static_cast<double>(semitones));
  }

 private:
  ~FakeVoiceBeautify() override = default;
};

}  // namespace

IAudioVoiceBeautify* IAudioVoiceBeautify::Create() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const beautify = new FakeVoiceBeautify;
  engine.Record("IAudioVoiceBeautify::Create() = %s",
                engine.Identify(beautify, "IAudioVoiceBeautify").c_str());
  return beautify;
}
