#pragma once

#include "guards/hits.h"
#include "guards/pairing.h"

namespace host {

// click: samples that cannot be foretold from those before them, where those of the input can.
void CheckClicks(const GuardInput& input, const Pairing& pairing, GuardHits& hits);

}  // namespace host
