#pragma once

#include "guards/hits.h"
#include "guards/level_guards.h"
#include "guards/pairing.h"

namespace host {

// Whether the output is as long as the input and has the same samples, within half a step of 16
// bits.
bool IsCopy(const Signal& in, const Signal& out);

// The guards that hold the output against its input, sample by sample. `pairing` is null where the
// two cannot be brought in time.

void CheckUnchanged(const GuardInput& input, const Surveys& surveys, const Pairing* pairing,
                    GuardHits& hits);
void CheckInverted(const Pairing& pairing, int channels, GuardHits& hits);
void CheckSwapped(const Pairing& pairing, GuardHits& hits);

}  // namespace host
