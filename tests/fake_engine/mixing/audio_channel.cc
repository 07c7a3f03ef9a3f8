#include "fake_engine/mixing/audio_channel.h"

#include "fake_engine/fake_engine.h"

namespace {

class FakeAudioChannel : public IAudioChannel {
 public:
  ~FakeAudioChannel() override = default;

  void EnablePackerVad(bool enable) override {
    FakeEngine::Current().Call(this, "EnablePackerVad(%d)", enable);
  }

  bool StartPacker(IAudioFramePackerNotify* notify, int codecType, int captureRate, int processRate,
                   int channels, int bytesPerSample) override {
    FakeEngine& engine = FakeEngine::Current();
    const AudioChannelScript& script = engine.script<AudioChannelScript>();
    const bool started = engine.Answer(script.packer, false);
    engine.Call(this, "StartPacker(notify, %d, %d, %d, %d, %d) = %d", codecType, captureRate,
                processRate, channels, bytesPerSample, started);
    if (!engine.Fails()) engine.onSleep = [notify, &script] { script.pack(*notify); };
    return started;
  }

  bool OpenCapture() override {
    FakeEngine::Current().Call(this, "OpenCapture()");
    return !FakeEngine::Current().Fails();
  }

  void CloseCapture() override { FakeEngine::Current().Call(this, "CloseCapture()"); }

  void StopPacker() override {
    FakeEngine::Current().Call(this, "StopPacker()");
    FakeEngine::Current().onSleep = nullptr;
  }

  bool StartPlay(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t sampleRate,
                 uint32_t channels) override {
    FakeEngine& engine = FakeEngine::Current();
    const AudioChannelScript& script = engine.script<AudioChannelScript>();
    const bool started = engine.Answer(script.play, false);
    engine.Call(this, "StartPlay(notify, %u, %u, %u) = %d", stream, sampleRate, channels, started);
    if (!engine.Fails()) engine.onSleep = [notify, &script] { script.pull(*notify); };
    return started;
  }

  void StopPlay(uint32_t stream) override {
    FakeEngine::Current().Call(this, "StopPlay(%u)", stream);
    FakeEngine::Current().onSleep = nullptr;
  }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

}  // namespace

IAudioChannel* IAudioChannel::Create() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const channel = new FakeAudioChannel;
  engine.Record("IAudioChannel::Create() = %s", engine.Identify(channel, "IAudioChannel").c_str());
  return channel;
}
