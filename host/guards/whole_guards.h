#pragma once

#include "guards/hits.h"

namespace host {

// The guards that look at the output as a whole: length and not_finite.
void CheckLength(const GuardInput& input, GuardHits& hits);
void CheckFinite(const GuardInput& input, GuardHits& hits);

}  // namespace host
