#include "engine_api/mixing/audio_file_player.h"

#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_engine.h"

namespace {

class FakeAudioFilePlayer : public IAudioFilePlayer {
 public:
  ~FakeAudioFilePlayer() override = default;

  FilePlayerOpenStatus Open(char* file) override {
    FakeEngine& engine = FakeEngine::Current();
    const int status = engine.Answer(engine.script<AudioEngineScript>().openPlayer, -1);
    engine.Call(this, "Open(%s) = %d", file, status);
    return static_cast<FilePlayerOpenStatus>(status);
  }

  void Play() override { FakeEngine::Current().Call(this, "Play()"); }
  void Pause() override { FakeEngine::Current().Call(this, "Pause()"); }
  void Stop() override { FakeEngine::Current().Call(this, "Stop()"); }

  void SetFeedBackToMicMode(AudioSourceType mode) override {
    FakeEngine::Current().Call(this, "SetFeedBackToMicMode(%d)", mode);
  }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

}  // namespace

IAudioFilePlayer* IAudioFilePlayer::Create() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const player = new FakeAudioFilePlayer;
  engine.Record("IAudioFilePlayer::Create() = %s",
                engine.Identify(player, "IAudioFilePlayer").c_str());
  return player;
}
