#pragma once

#include "guards/hits.h"

namespace host {

// The guards that go by what the caller knows of the run: appended, argument_unused, input_unread,
// engine_said.
void CheckFacts(const GuardInput& input, GuardHits& hits);

}  // namespace host
