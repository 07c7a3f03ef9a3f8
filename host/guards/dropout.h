#pragma once

#include "guards/hits.h"
#include "guards/level_guards.h"
#include "guards/pairing.h"

namespace host {

// dropout: zeros in the output while the input has signal.
void CheckDropout(const GuardInput& input, const Surveys& surveys, const Pairing& pairing,
                  GuardHits& hits);

}  // namespace host
