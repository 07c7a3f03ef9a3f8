#include "fake_engine/effects/beat_track.h"

#include "engine_api/effects/beat_track.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeBeatTrack final : public IBeatTrack {
 public:
  void Destroy() override {
    FakeEngine::Current().Died(this);
    delete this;
  }

  void Start(int mode, IBeatTrackNotify* notify, int delayDecision) override {
    FakeEngine::Current().Call(this, "Start(%d, %s, %d)", mode,
                               notify != nullptr ? "notify" : "null", delayDecision);
    m_notify = notify;
  }

  int Detectbeat(short* block, int samples) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string from = engine.Buffer(block);
    const int status =
        engine.Fails() ? -1 : engine.script<BeatTrackScript>().detect(m_notify, block, samples);
    engine.Call(this, "Detectbeat(%s, %d) = %d", from.c_str(), samples, status);
    return status;
  }

  void Stop() override {
    FakeEngine& engine = FakeEngine::Current();
    if (!engine.Fails()) engine.script<BeatTrackScript>().stop(m_notify);
    engine.Call(this, "Stop()");
  }

 private:
  ~FakeBeatTrack() override = default;

  IBeatTrackNotify* m_notify = nullptr;
};

}  // namespace

IBeatTrack* CreateBeatTrack(int rate, int channels) {
  FakeEngine& engine = FakeEngine::Current();
  auto* const tracker = new FakeBeatTrack;
  engine.Record("CreateBeatTrack(%d, %d) = %s", rate, channels,
                engine.Identify(tracker, "IBeatTrack").c_str());
  return tracker;
}
