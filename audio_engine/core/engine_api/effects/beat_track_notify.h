#pragma once

#include "../common/visibility.h"

// What a beat tracker tells its owner. The calls come on the tracker's thread; the slot order is
// fixed.
class ENGINE_API IBeatTrackNotify {
 public:
  virtual ~IBeatTrackNotify() = default;

  // One beat of `bpm` beats a minute; power from 0 to 1.
  virtual void NotifyBeat(int bpm, float power) = 0;

  // The tracker has found the beat of the music and starts to follow it.
  virtual void NotifyStartFive() = 0;
};
