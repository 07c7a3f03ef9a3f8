#pragma once

#include "dsp.h"

// An eleven-band graphic equaliser for mono and stereo from 8 to 192 kHz. Its gains are set before
// any rate is known; the filters are designed for the rate of a block when it comes. Other formats
// pass unchanged, with one line in the log. Belongs to one thread at a time.
class ENGINE_API IEqualizer : public IDSP {
 public:
  // Sets the gain of a band: 0 to 10 for 16, 31.5, 63, 125, 250, 500 Hz, 1, 2, 4, 8, 16 kHz, in dB,
  // clamped to -24..24; a new equaliser has 0 dB in all. The response meets the gains at the band
  // centres; a band at or above 0.45 times the rate is left out. A change fades in over 20 ms.
  // Another band number, or a gain that is no number, is ignored with one line in the log.
  virtual void SetEqGain(int band, float gain) = 0;
};

// A new equaliser, owned by the caller until Destroy; null when there is no memory.
ENGINE_API IEqualizer* CreateEqualizer();
