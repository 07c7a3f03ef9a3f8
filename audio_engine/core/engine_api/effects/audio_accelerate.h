#pragma once

#include "dsp.h"

// Plays a stream faster without a change of pitch, as to catch up with a delay. Until it is enabled
// for the first time each call gives back its own bytes. From then on samples wait inside: while it
// is enabled a call may return fewer than were passed, none even, but never more; when it is
// disabled again the stream goes on at its normal speed, without a jump, and what waits stays
// waiting. All channels are shortened at the same places. 8 to 48 kHz, one or two channels; other
// formats pass unchanged. Belongs to one thread at a time.
class ENGINE_API IAudioAccelerate : public IDSP {
 public:
  // Speeds the stream up by `percent`, 0 to 100 (clamped; a new object has 0): at 25 a minute takes
  // 60 s / 1.25. May be called at any time; applies from the next join on.
  virtual void SetAccelerateRate(double percent) = 0;
};

// A new accelerator, disabled, owned by the caller until Destroy; null when there is no memory.
ENGINE_API IAudioAccelerate* CreateAudioAccelerate();
