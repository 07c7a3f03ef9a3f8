#pragma once

#include "guards/track.h"

namespace host {

// Whether a channel of a signal is all but its own negative some time later, as a steady tone is
// half a period later: then nobody can tell upside down from late.
bool InvertsItself(const Track& track, int channel);

}  // namespace host
