#include "fake_engine/mixing/karaoke_file_mixer.h"

#include "fake_engine/fake_engine.h"

namespace {

// Values as they arrive, separated by ", ": nine digits tell any two floats apart, and -0 from 0.
std::string Listed(std::initializer_list<float> values) {
  std::string text;
  for (const float value : values) {
    char one[32];
    snprintf(one, sizeof one, "%s%.9g", text.empty() ? "" : ", ", static_cast<double>(value));
    text += one;
  }
  return text;
}

class FakeKaraokeFileMixer : public IKaraokeFileMixer {
 public:
  ~FakeKaraokeFileMixer() override = default;

  void SetKaraokeFileMixerNotify(IKaraokeFileMixerNotify* notify) override {
    m_notify = notify;
    FakeEngine::Current().Call(this, "SetKaraokeFileMixerNotify(%s)",
                               notify != nullptr ? "notify" : "null");
  }

  bool Open(char* voiceFile, char* accompanyFile) override {
    FakeEngine& engine = FakeEngine::Current();
    const bool open = engine.Answer(engine.script<KaraokeFileMixerScript>().open, false);
    engine.Call(this, "Open(%s, %s) = %d", voiceFile, accompanyFile, open);
    return open;
  }

  void SetVoiceOffset(int offset) override {
    FakeEngine::Current().Call(this, "SetVoiceOffset(%d)", offset);
  }

  void EnableEqualizer(bool enable) override {
    FakeEngine::Current().Call(this, "EnableEqualizer(%d)", enable);
  }

  void SetEqGains(float* g) override {
    const std::string list =
        Listed({g[0], g[1], g[2], g[3], g[4], g[5], g[6], g[7], g[8], g[9], g[10]});
    FakeEngine::Current().Call(this, "SetEqGains(%s)", list.c_str());
  }

  void EnableReverbNew(bool enable) override {
    FakeEngine::Current().Call(this, "EnableReverbNew(%d)", enable);
  }

  void SetReverbFv3Param(NreverbFv3Parameter p) override {
    const std::string list = Listed({p.Factor, p.Wet, p.Dry, p.Feedback, p.Damp1, p.Damp2, p.Damp3,
                                     p.ReverbTime, p.Width, p.Delay});
    FakeEngine::Current().Call(this, "SetReverbFv3Param(%s)", list.c_str());
  }

  void EnableLimiter(bool enable) override {
    FakeEngine::Current().Call(this, "EnableLimiter(%d)", enable);
  }

  void SetLimiterParam(LimiterParam p) override {
    const std::string list = Listed({p.fCeiling, p.fThreshold, p.fPreGain, p.fRelease, p.fAttack,
                                     p.fLookahead, p.fLookaheadRatio, p.fRMS, p.fStLink});
    FakeEngine::Current().Call(this, "SetLimiterParam(%s)", list.c_str());
  }

  bool Start(char* outputFile) override {
    FakeEngine& engine = FakeEngine::Current();
    engine.Call(this, "Start(%s)", outputFile);
    return !engine.Fails() && engine.script<KaraokeFileMixerScript>().start(m_notify);
  }

  void Stop() override {
    FakeEngine& engine = FakeEngine::Current();
    engine.Call(this, "Stop()");
    if (!engine.Fails()) engine.script<KaraokeFileMixerScript>().stop(m_notify);
  }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }

 private:
  IKaraokeFileMixerNotify* m_notify = nullptr;
};

}  // namespace

IKaraokeFileMixer* IKaraokeFileMixer::Create() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const mixer = new FakeKaraokeFileMixer;
  engine.Record("IKaraokeFileMixer::Create() = %s",
                engine.Identify(mixer, "IKaraokeFileMixer").c_str());
  return mixer;
}
