#include "engine_api/mixing/speech_msg_player.h"

#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/speech_msg_player.h"

namespace {

class FakeSpeechMsgPlayer : public ISpeechMsgPlayer {
 public:
  ~FakeSpeechMsgPlayer() override = default;

  bool Init() override {
    FakeEngine& engine = FakeEngine::Current();
    const bool ready = engine.Answer(engine.script<SpeechMsgPlayerScript>().init, false);
    engine.Call(this, "Init() = %d", ready);
    return ready;
  }

  uint32_t GetRecordFileTime() override {
    FakeEngine& engine = FakeEngine::Current();
    const uint32_t time =
        engine.Answer(engine.script<SpeechMsgPlayerScript>().recordFileTime, uint32_t{0});
    engine.Call(this, "GetRecordFileTime() = %u", time);
    return time;
  }

  bool Start(ISpeechMsgPlayerNotify* notify) override {
    FakeEngine& engine = FakeEngine::Current();
    engine.script<SpeechMsgPlayerScript>().notify = notify;
    engine.Call(this, "Start(%s)", notify != nullptr ? "notify" : "null");
    return !FakeEngine::Current().Fails();
  }

  void Stop() override { FakeEngine::Current().Call(this, "Stop()"); }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

}  // namespace

ISpeechMsgPlayer* ISpeechMsgPlayer::CreateAudioPlayer(const char* file) {
  FakeEngine& engine = FakeEngine::Current();
  auto* const player = new FakeSpeechMsgPlayer;
  engine.Record("ISpeechMsgPlayer::CreateAudioPlayer(%s) = %s", file,
                engine.Identify(player, "ISpeechMsgPlayer").c_str());
  return player;
}
