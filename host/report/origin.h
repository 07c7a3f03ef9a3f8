#pragma once

#include "base/json_parts.h"

namespace host {

// The versions of bench and engine and the processor of this machine, which figures depend on:
// {"bench": ..., "engine": ..., "host": ...}.
Json OriginJson();

}  // namespace host
