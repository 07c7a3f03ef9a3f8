#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "desktop/dsp/aligned_sum.h"
#include "engine_api/enhancement/voice_activity.h"

namespace desktop {

class ActivityDetector;
class SteadyNoise;

// Says what there is in each 10 ms of interleaved audio: nothing, voice, or a sound without voice.
// It mixes the channels down, none against another, and does not look ahead. Allocates in the
// constructor only. Belongs to one thread at a time.
class VoiceDetector {
 public:
  // 4000 to 192000 Hz, 1 to 64 channels.
  static bool Accepts(unsigned rate, unsigned channels);

  // Throws what memory throws.
  VoiceDetector(unsigned rate, unsigned channels);
  ~VoiceDetector();

  // False, with one line in the log, for a mode that does not exist.
  static bool HasMode(VoiceDetectionMode mode);

  // How readily sound is taken for voice; unknown is the mode of the start. Returns HasMode(mode).
  bool SetMode(VoiceDetectionMode mode);

  // Takes `count` samples and returns the strongest of what the 10 ms that end in them are: voice,
  // sound, or nothing. Where none ends in them it returns the result before.
  VADResultKind Detect(const short* samples, size_t count);

 private:
  bool Push(short sample);
  VADResultKind Judge();

  const size_t m_hop;
  const std::unique_ptr<ActivityDetector> m_activity;
  const std::unique_ptr<SteadyNoise> m_steadiness;

  // The next 10 ms, mixed down, as far as they have come.
  std::vector<float> m_block;

  AlignedSum m_mix;

  // The next frame, of which m_channel samples have come.
  std::vector<short> m_frame;
  size_t m_channel = 0;
  VADResultKind m_last = vadResultIsUnknown;
};

}  // namespace desktop
