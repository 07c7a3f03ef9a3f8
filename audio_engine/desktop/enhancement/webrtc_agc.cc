#include "engine_api/enhancement/webrtc_agc.h"

#include "desktop/enhancement/parts/block_gain.h"

namespace ZUAudio {

struct WebrtcAgc::Control {
  desktop::BlockGain gain;
};

WebrtcAgc::WebrtcAgc(int rate, int channels)
    : m_control(new Control{desktop::BlockGain(rate, channels)}) {}

WebrtcAgc::~WebrtcAgc() = default;

void WebrtcAgc::EnableAGC(bool on) { m_control->gain.Enable(on); }

void WebrtcAgc::ProcessCapture(short* samples, bool echo) {
  m_control->gain.Process(samples, !echo);
}

}  // namespace ZUAudio
