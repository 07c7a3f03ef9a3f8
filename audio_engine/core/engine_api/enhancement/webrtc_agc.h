#pragma once

#include <memory>

#include "../common/visibility.h"

namespace ZUAudio {

// Gain control for the capture side of a call. It brings speech to one level and leaves pauses
// quiet. One gain for all channels, no lag, never at full scale. Belongs to one thread at a time.
class ENGINE_API WebrtcAgc {
 public:
  // rate: 8000 to 48000 Hz; channels: 1 or 2. With other values audio passes unchanged, with one
  // line in the log.
  WebrtcAgc(int rate, int channels);
  ~WebrtcAgc();
  WebrtcAgc(const WebrtcAgc&) = delete;
  WebrtcAgc& operator=(const WebrtcAgc&) = delete;

  // Off, as at first, every bit passes unchanged.
  void EnableAGC(bool on);

  // Works on 10 ms in place: exactly trunc(rate * channels / 100) interleaved samples. echo: the
  // block may be echo, which teaches nothing.
  void ProcessCapture(short* samples, bool echo);

 private:
  struct Control;
  std::unique_ptr<Control> m_control;
};

}  // namespace ZUAudio
