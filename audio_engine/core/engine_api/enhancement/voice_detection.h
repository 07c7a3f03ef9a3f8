#pragma once

#include <memory>

#include "../common/visibility.h"
#include "voice_activity.h"

// Tells speech from background noise, for 8 to 48 kHz and any number of channels, which are mixed
// down, none against another. It decides by 10 ms frames and does not look ahead. Belongs to one
// thread at a time.
class ENGINE_API CVoiceDetectionEx {
 public:
  // sampleRate in Hz. A rate outside 4 to 192 kHz, or channels outside 1 to 64: every
  // answer is vadResultIsUnknown, with one line in the log.
  CVoiceDetectionEx(unsigned int sampleRate, unsigned int channels);
  ~CVoiceDetectionEx();
  CVoiceDetectionEx(const CVoiceDetectionEx&) = delete;
  CVoiceDetectionEx& operator=(const CVoiceDetectionEx&) = delete;

  // 0 is the strictest and 3 takes the most for speech; voiceDetectionUnknown stands for 1, as in a
  // new detector. May be called at any time. False, and nothing changes, for another value.
  bool SetVoiceDetectionMode(VoiceDetectionMode mode);

  // Takes `count` interleaved samples (of all channels together; any count, nothing is changed in
  // them) and answers for every 10 ms that they complete: active when any of these is speech,
  // active without voice when any is another sound above the background, else passive. When they
  // complete none, the previous answer; vadResultIsUnknown until the first 10 ms are there. Digital
  // silence is never active, and a steady noise is no sound above the background.
  VADResultKind Detect(short* samples, unsigned int count);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
