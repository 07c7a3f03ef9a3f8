#include "engine_api/aec/software_aec.h"

#include <new>

#include "desktop/aec/parts/capture_chain.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

// The desktop's chain, and what the module itself remembers.
struct SoftwareAec::Chain {
  desktop::CaptureChain capture;
};

SoftwareAec::SoftwareAec() : m_chain(std::make_unique<Chain>()) {}

SoftwareAec::~SoftwareAec() = default;

int SoftwareAec::ProcessCaptureAudio(zuwebrtc::AudioFrame& frame, bool, bool) {
  return m_chain->capture.ProcessCapture(frame) ? 0 : -1;
}

int SoftwareAec::ProcessRenderAudio(zuwebrtc::AudioFrame& frame, bool) {
  return m_chain->capture.ProcessRender(frame) ? 0 : -1;
}

bool SoftwareAec::SetVadMode(VoiceDetectionMode mode) { return m_chain->capture.SetVadMode(mode); }

bool SoftwareAec::SetFsAndCh(unsigned int rate, unsigned int channels, PlatFormFsChSel) {
  if ((rate != 8000 && rate != 16000) || channels != 1) {
    desktop::LogRefusal("the echo canceller cannot work at %u Hz with %u channels", rate, channels);
    return false;
  }
  m_apmFs = rate;
  m_apmCh = channels;
  m_chain->capture.SetRate(desktop::Count(rate));
  return true;
}

bool SoftwareAec::GetFsAndCh(unsigned int& rate, unsigned int& channels, PlatFormFsChSel) {
  rate = m_apmFs;
  channels = m_apmCh;
  return true;
}

bool SoftwareAec::IsSoftAecEnabled() { return true; }

bool SoftwareAec::EnableAGC(bool on) {
  m_chain->capture.EnableGainControl(on);
  return true;
}

bool SoftwareAec::EnableDenoise(bool on) {
  m_chain->capture.EnableDenoise(on);
  return true;
}

bool SoftwareAec::IsKalaokEnabled() { return m_chain->capture.IsBypassed(); }

bool SoftwareAec::EnableKalaok(bool on) {
  m_chain->capture.Bypass(on);
  return true;
}

int SoftwareAec::GetKalaokDelay() { return 0; }

void SoftwareAec::NotifySpeekerRouting() { m_chain->capture.ForgetEchoPath(); }

bool SoftwareAec::ResetPreProc(unsigned int rate) {
  if (rate < 8000 || rate > 48000) {
    desktop::LogRefusal("the echo canceller cannot prepare for %u Hz", rate);
    return false;
  }
  m_chain->capture.SetRate(desktop::Count(m_apmFs));
  return true;
}

bool SoftwareAec::SetNewNsOn(bool on) {
  m_chain->capture.StrongDenoise(on);
  return true;
}

bool SoftwareAec::EnableLogSoftAecData(bool on, const char* tag) {
  return m_chain->capture.Record(on ? tag : nullptr) == on;
}

namespace {

// The desktop's devices cancel no echo, so this chain does.
class HardwareAec final : public SoftwareAec {
 public:
  bool IsSoftAecEnabled() override { return false; }
};

}  // namespace

AecModule* CreateHardwareAec() {
  try {
    return new HardwareAec;
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory for an echo canceller");
    return nullptr;
  }
}
