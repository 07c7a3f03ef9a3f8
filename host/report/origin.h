#pragma once

#include "base/json_parts.h"
#include "engines/engine.h"

namespace host {

// The versions of bench and engine and the processor of this machine, which figures depend on:
// {"bench": ..., "engine": ..., "host": ...}. Of the engine it says who answers for which facility.
Json OriginJson(const Engine& engine);

}  // namespace host
