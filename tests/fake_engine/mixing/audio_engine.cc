#include "engine_api/mixing/audio_engine.h"

#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_engine.h"

namespace {

class FakeAudioCapture : public IAudioCapture {
 public:
  ~FakeAudioCapture() override = default;

  bool Open(uint32_t sampleRate, uint32_t channels, uint32_t bitsPerSample) override {
    FakeEngine::Current().Call(this, "Open(%u, %u, %u)", sampleRate, channels, bitsPerSample);
    return !FakeEngine::Current().Fails();
  }

  bool Start(IAudioCaptureNotify* notify) override {
    FakeEngine::Current().Call(this, "Start(%s)", notify != nullptr ? "notify" : "null");
    return !FakeEngine::Current().Fails();
  }

  void Stop() override { FakeEngine::Current().Call(this, "Stop()"); }
  void Close() override { FakeEngine::Current().Call(this, "Close()"); }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

class FakeAudioEngine : public IAudioEngine {
 public:
  ~FakeAudioEngine() override = default;

  bool Start(AudioEngineFeature_t feature) override {
    FakeEngine::Current().Call(this, "Start(%d)", feature);
    return !FakeEngine::Current().Fails();
  }

  IAudioCapture* CreateAudioCapture() override {
    FakeEngine& engine = FakeEngine::Current();
    auto* const capture = new FakeAudioCapture;
    const std::string name = engine.Identify(capture, "IAudioCapture");
    engine.Call(this, "CreateAudioCapture() = %s", name.c_str());
    return capture;
  }

  bool StartAudioSaver(char* file, AudioSaverMode mode, AudioSaverWfMode writing) override {
    FakeEngine& engine = FakeEngine::Current();
    const bool started = engine.Answer(engine.script<AudioEngineScript>().saver, false);
    engine.Call(this, "StartAudioSaver(%s, %d, %d) = %d", file, mode, writing, started);
    return started;
  }

  void StopAudioSaver() override { FakeEngine::Current().Call(this, "StopAudioSaver()"); }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

}  // namespace

IAudioEngine* CreateAudioEngine(const char* path, int flags, const char* device,
                                void (*log)(const char*)) {
  FakeEngine& engine = FakeEngine::Current();
  engine.script<AudioEngineScript>().log = log;
  auto* const made = new FakeAudioEngine;
  engine.Record("CreateAudioEngine(%s, %d, %s, %s) = %s", path != nullptr ? path : "null", flags,
                device != nullptr ? device : "null", log != nullptr ? "log" : "null",
                engine.Identify(made, "IAudioEngine").c_str());
  return made;
}
