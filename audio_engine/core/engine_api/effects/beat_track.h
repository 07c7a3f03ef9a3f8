#pragma once

#include "../common/visibility.h"
#include "beat_track_notify.h"

// Follows the beat of music while it plays. Belongs to one thread at a time; the slot order is
// fixed. The first beats come after 3 s where they are clear, else after up to 6 s; silence has
// none.
class ENGINE_API IBeatTrack {
 public:
  virtual ~IBeatTrack() = default;

  // Ends the tracker and frees it; beats that are pending are not told.
  virtual void Destroy() = 0;

  // Starts anew. mode: 0, every beat (others are taken as 0). notify: stays the caller's and must
  // live until Stop or Destroy; null detects without telling. delayDecision: ms by which each beat
  // is told later, 0 to 10000; 0 tells it in the block that reaches it.
  virtual void Start(int mode, IBeatTrackNotify* notify, int delayDecision) = 0;

  // Takes the next `samples` interleaved samples (of all channels together, any number). Returns 0:
  // nothing to report; 1: at least one beat was told; kBeatTrackNotStarted; kBeatTrackBadFormat on
  // every call of a tracker whose rate or channel count cannot be done; kBeatTrackBadBlock.
  virtual int Detectbeat(short* block, int samples) = 0;

  // Tells what `delayDecision` still held back, then ends; Start may follow.
  virtual void Stop() = 0;
};

constexpr int kBeatTrackNotStarted = -1;
constexpr int kBeatTrackBadFormat = -2;
constexpr int kBeatTrackBadBlock = -3;

// A new tracker, released by Destroy(). rate: Hz, 8000 to 192000. channels: 1 to 8. A
// format that cannot be done is one line in the log and a status of each Detectbeat. Null only when
// there is no memory.
ENGINE_API IBeatTrack* CreateBeatTrack(int rate, int channels);
