#pragma once

#include "guards/hits.h"

namespace host {

// The guards that go by the samples of the output, and of the input where it is known.
void CheckSignals(const GuardInput& input, GuardHits& hits);

}  // namespace host
