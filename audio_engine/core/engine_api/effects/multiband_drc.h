#pragma once

#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"

// A compressor in three bands, split at 200 Hz and 3 kHz, for mono and stereo at 8 to 192 kHz: each
// band from -24 dBFS on at 3:1 (low 10 ms attack and 200 ms release, middle 5 and 150, high 2 and
// 80), without make-up gain. A sound below the thresholds keeps its spectrum within 0.1 dB; its
// phase turns as the split needs. Belongs to one thread at a time.
class ENGINE_API MultibandDrc {
 public:
  MultibandDrc();
  ~MultibandDrc();
  MultibandDrc(const MultibandDrc&) = delete;
  MultibandDrc& operator=(const MultibandDrc&) = delete;

  // Makes it as new: forgets all that it heard. Without it a new one is ready as well.
  void Init();

  // Compresses the frame in place; the channels share the gain of each band. A frame whose format
  // or length cannot be is left alone, with one line in the log.
  void Process(zuwebrtc::AudioFrame& frame);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
