#pragma once

#include <memory>

#include "../common/visibility.h"

namespace ZUAudio {

// Gain control that brings speech and music to one level, slowly. One gain for all channels, no
// lag, never at full scale. Belongs to one thread at a time.
class ENGINE_API AudioAgc {
 public:
  // rate: 8000 to 48000 Hz; channels: 1 or 2. With other values audio passes unchanged, with one
  // line in the log.
  AudioAgc(int rate, int channels);
  ~AudioAgc();
  AudioAgc(const AudioAgc&) = delete;
  AudioAgc& operator=(const AudioAgc&) = delete;

  // Off, as at first, every bit passes unchanged.
  void EnableAGC(bool on);

  // Works on 10 ms in place: exactly trunc(rate * channels / 100) interleaved samples.
  void Process(short* samples);

 private:
  struct Control;
  std::unique_ptr<Control> m_control;
};

}  // namespace ZUAudio
