#include "fake_engine/aec/aec_module.h"

#include <string>

#include "engine_api/aec/software_aec.h"
#include "fake_engine/aec/aec_frame_text.h"
#include "fake_engine/fake_engine.h"

namespace {

const char* Word(bool flag) { return flag ? "true" : "false"; }

int Capture(AecModule* module, zuwebrtc::AudioFrame& frame, bool played, bool sent) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(module, "ProcessCaptureAudio(%s, %s, %s)", FrameText(frame).c_str(), Word(played),
              Word(sent));
  if (!engine.Fails()) engine.script<AecModuleScript>().capture(frame);
  return engine.Answer(0, -1);
}

int Render(AecModule* module, zuwebrtc::AudioFrame& frame, bool played) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(module, "ProcessRenderAudio(%s, %s)", FrameText(frame).c_str(), Word(played));
  if (!engine.Fails()) engine.script<AecModuleScript>().render(frame);
  return engine.Answer(0, -1);
}

bool SetFsAndChOf(AecModule* module, unsigned rate, unsigned channels, PlatFormFsChSel select) {
  FakeEngine::Current().Call(module, "SetFsAndCh(%u, %u, %d)", rate, channels,
                             static_cast<int>(select));
  return !FakeEngine::Current().Fails();
}

bool Enable(AecModule* module, const char* what, bool on) {
  FakeEngine::Current().Call(module, "Enable%s(%s)", what, Word(on));
  return !FakeEngine::Current().Fails();
}

// The operations of a module that no routine calls.
bool Uncalled() {
  RequireOrDie(false, "an operation that a routine uses");
  return false;
}

class FakeHardwareAec : public AecModule {
 public:
  ~FakeHardwareAec() override { FakeEngine::Current().Died(this); }
  int ProcessCaptureAudio(zuwebrtc::AudioFrame& frame, bool played, bool sent) override {
    return Capture(this, frame, played, sent);
  }
  int ProcessRenderAudio(zuwebrtc::AudioFrame& frame, bool played) override {
    return Render(this, frame, played);
  }
  bool SetVadMode(VoiceDetectionMode) override { return Uncalled(); }
  bool SetFsAndCh(unsigned rate, unsigned channels, PlatFormFsChSel select) override {
    return SetFsAndChOf(this, rate, channels, select);
  }
  bool GetFsAndCh(unsigned&, unsigned&, PlatFormFsChSel) override { return Uncalled(); }
  bool IsSoftAecEnabled() override { return Uncalled(); }
  bool EnableAGC(bool on) override { return Enable(this, "AGC", on); }
  bool EnableDenoise(bool on) override { return Enable(this, "Denoise", on); }
  bool IsKalaokEnabled() override { return Uncalled(); }
  bool EnableKalaok(bool) override { return Uncalled(); }
  int GetKalaokDelay() override { return Uncalled() ? 1 : 0; }
  void NotifySpeekerRouting() override { Uncalled(); }
  bool ResetPreProc(unsigned) override { return Uncalled(); }
  bool SetNewNsOn(bool) override { return Uncalled(); }
  bool EnableLogSoftAecData(bool, const char*) override { return Uncalled(); }
};

}  // namespace

AecModule* CreateHardwareAec() {
  FakeEngine& engine = FakeEngine::Current();
  auto* const module = new FakeHardwareAec;
  const std::string name = engine.Identify(static_cast<AecModule*>(module), "HardwareAec");
  engine.Record("CreateHardwareAec() = %s", name.c_str());
  return module;
}

struct SoftwareAec::Chain {};

SoftwareAec::SoftwareAec() {
  FakeEngine::Current().Born(static_cast<AecModule*>(this), "SoftwareAec", "%s", "");
}

SoftwareAec::~SoftwareAec() { FakeEngine::Current().Died(static_cast<AecModule*>(this)); }

int SoftwareAec::ProcessCaptureAudio(zuwebrtc::AudioFrame& frame, bool played, bool sent) {
  return Capture(this, frame, played, sent);
}
int SoftwareAec::ProcessRenderAudio(zuwebrtc::AudioFrame& frame, bool played) {
  return Render(this, frame, played);
}
bool SoftwareAec::SetFsAndCh(unsigned rate, unsigned channels, PlatFormFsChSel select) {
  return SetFsAndChOf(this, rate, channels, select);
}
bool SoftwareAec::EnableAGC(bool on) { return Enable(this, "AGC", on); }
bool SoftwareAec::EnableDenoise(bool on) { return Enable(this, "Denoise", on); }
bool SoftwareAec::SetVadMode(VoiceDetectionMode) { return Uncalled(); }
bool SoftwareAec::GetFsAndCh(unsigned&, unsigned&, PlatFormFsChSel) { return Uncalled(); }
bool SoftwareAec::IsSoftAecEnabled() { return Uncalled(); }
bool SoftwareAec::IsKalaokEnabled() { return Uncalled(); }
bool SoftwareAec::EnableKalaok(bool) { return Uncalled(); }
int SoftwareAec::GetKalaokDelay() { return Uncalled() ? 1 : 0; }
void SoftwareAec::NotifySpeekerRouting() { Uncalled(); }
bool SoftwareAec::ResetPreProc(unsigned) { return Uncalled(); }
bool SoftwareAec::SetNewNsOn(bool) { return Uncalled(); }
bool SoftwareAec::EnableLogSoftAecData(bool, const char*) { return Uncalled(); }
