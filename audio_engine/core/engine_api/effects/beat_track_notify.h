#pragma once

#include "../common/visibility.h"

// What a beat tracker tells its owner, on the thread that calls the tracker and before that call
// returns. The slot order is fixed. From them every operation of that tracker is refused with one
// line in the log; Detectbeat returns kBeatTrackBadBlock then.
class ENGINE_API IBeatTrackNotify {
 public:
  virtual ~IBeatTrackNotify() = default;

  // A beat is now (later by the delay that the tracker was started with). bpm: the tempo, beats a
  // minute. power: how clearly the music marks this beat, 0 (not at all) to 1.
  virtual void NotifyBeat(int bpm, float power) = 0;

  // Told once after Start, right before the fifth beat: from here the beats are steady.
  virtual void NotifyStartFive() = 0;
};
