#pragma once

#include <cstdint>

#include "../common/visibility.h"

// What a karaoke file mixer tells its owner. The calls come on the mixer's thread; the slot order
// is fixed. From them Start, Stop, Destroy and SetKaraokeFileMixerNotify of that mixer are refused
// with one line in the log; the rest works.
class ENGINE_API IKaraokeFileMixerNotify {
 public:
  virtual ~IKaraokeFileMixerNotify() = default;

  // How far the mixer has come, in ms.
  virtual void OnFileMixerState(uint32_t current_time, uint32_t total_time) = 0;

  // Once for every start, whether it succeeded or not.
  virtual void OnFinishMixer() = 0;
};
