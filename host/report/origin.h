#pragma once

#include "base/json_parts.h"

namespace host {

// What made a report, for whoever compares it with another one: {"bench": ..., "engine": ...,
// "host": ...}.
Json OriginJson();

}  // namespace host
