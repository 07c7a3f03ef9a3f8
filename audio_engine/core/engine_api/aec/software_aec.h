#pragma once

#include <memory>

#include "aec_module.h"

// The engine's own canceller, at 16 kHz mono until set otherwise; what a frame has above half the
// processing rate is lost. Threads and results are those of AecModule.
class ENGINE_API SoftwareAec : public AecModule {
 public:
  SoftwareAec();
  ~SoftwareAec() override;

  int ProcessCaptureAudio(zuwebrtc::AudioFrame& frame, bool played, bool sent) override;
  int ProcessRenderAudio(zuwebrtc::AudioFrame& frame, bool played) override;
  bool SetVadMode(VoiceDetectionMode mode) override;
  bool SetFsAndCh(unsigned int rate, unsigned int channels, PlatFormFsChSel select) override;
  bool GetFsAndCh(unsigned int& rate, unsigned int& channels, PlatFormFsChSel select) override;
  bool IsSoftAecEnabled() override;
  bool EnableAGC(bool on) override;
  bool EnableDenoise(bool on) override;
  bool IsKalaokEnabled() override;
  bool EnableKalaok(bool on) override;
  int GetKalaokDelay() override;
  void NotifySpeekerRouting() override;
  bool ResetPreProc(unsigned int rate) override;
  bool SetNewNsOn(bool on) override;
  bool EnableLogSoftAecData(bool on, const char* tag) override;

 private:
  struct Chain;
  std::unique_ptr<Chain> m_chain;
};

// The platform's canceller, owned by the caller; null when there is no memory. On a desktop no
// device cancels, so it is the same chain as SoftwareAec with the same defaults; IsSoftAecEnabled
// is false.
ENGINE_API AecModule* CreateHardwareAec();
