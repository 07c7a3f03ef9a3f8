#include "fake_engine/mixing/karaoke_recorder.h"

#include "fake_engine/fake_engine.h"

namespace {

class FakeKaraokeRecorder : public IKaraokeRecorder {
 public:
  ~FakeKaraokeRecorder() override = default;

  bool OpenInputFile(char* guideFile, char* accompanyFile) override {
    FakeEngine::Current().Call(this, "OpenInputFile(%s, %s)", guideFile, accompanyFile);
    return !FakeEngine::Current().Fails();
  }

  bool OpenOutputFile(char* voiceFile, char* mixFile) override {
    FakeEngine::Current().Call(this, "OpenOutputFile(%s, %s)", voiceFile, mixFile);
    return !FakeEngine::Current().Fails();
  }

  void SetLineInfo(ScoreLineInfo* lines, int count) override {
    FakeEngine& engine = FakeEngine::Current();
    engine.Call(this, "SetLineInfo(%d)", count);
    engine.script<KaraokeRecorderScript>().lines.assign(lines, lines + count);
  }

  // The whole of pitchVisual is the recorder's to write.
  void SetScoreTimeRange(ScoreTimeRange* notes, uint32_t count, int8_t* pitchVisual) override {
    FakeEngine& engine = FakeEngine::Current();
    engine.Call(this, "SetScoreTimeRange(%u)", count);
    engine.script<KaraokeRecorderScript>().notes.assign(notes, notes + count);
    std::fill_n(pitchVisual, 8000, static_cast<int8_t>(127));
  }

  bool Start() override {
    FakeEngine::Current().Call(this, "Start()");
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

void UseAndroidOpenSlEs(bool use) { FakeEngine::Current().Record("UseAndroidOpenSlEs(%d)", use); }

IKaraokeRecorder* IKaraokeRecorder::Create() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const recorder = new FakeKaraokeRecorder;
  engine.Record("IKaraokeRecorder::Create() = %s",
                engine.Identify(recorder, "IKaraokeRecorder").c_str());
  return recorder;
}
