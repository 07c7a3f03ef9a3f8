#pragma once

#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"

// Tells music from speech and from silence by the last seconds of a sound, mono or stereo at 8 to
// 192 kHz; solo singing may count as either. Belongs to one thread at a time.
class ENGINE_API AudioMusicDetector {
 public:
  AudioMusicDetector();
  ~AudioMusicDetector();
  AudioMusicDetector(const AudioMusicDetector&) = delete;
  AudioMusicDetector& operator=(const AudioMusicDetector&) = delete;

  // Switches it; it is off at first. Switching it on starts anew, as a change of the rate does.
  void Enable(bool enabled);

  // Listens to a frame of any length and leaves it as it is. A frame whose format or length cannot
  // be is passed over, with one line in the log.
  void Process(zuwebrtc::AudioFrame& frame);

  // The decision after the last frame: false while switched off, in silence, and until there is
  // enough to decide on, at most 3 s.
  bool IsMusic() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
