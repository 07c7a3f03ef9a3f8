#include "fake_engine/effects/voice_changer.h"

#include "engine_api/effects/voice_changer.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeVoiceChanger final : public IVoiceChangerToolbox {
 public:
  ~FakeVoiceChanger() override { FakeEngine::Current().Died(this); }

  int Process(short* samples, short* count) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string buffer = engine.Buffer(samples);
    const int before = *count;
    const int answer =
        engine.Fails() ? -1 : engine.script<VoiceChangerScript>().process(samples, count);
    engine.Call(this, "Process(%s, %d) = %d, %d", buffer.c_str(), before, answer, *count);
    return answer;
  }

  void SetVoiceEffectOption(VoiceEffectOption option) override {
    FakeEngine::Current().Call(this, "SetVoiceEffectOption(%d)", option);
  }
};

}  // namespace

IVoiceChangerToolbox* IVoiceChangerToolbox::Create(int rate, int channels) {
  FakeEngine& engine = FakeEngine::Current();
  auto* const toolbox = new FakeVoiceChanger;
  engine.Record("IVoiceChangerToolbox::Create(%d, %d) = %s", rate, channels,
                engine.Identify(toolbox, "IVoiceChangerToolbox").c_str());
  return toolbox;
}
