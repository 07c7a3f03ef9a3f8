#pragma once

#include "base/json_parts.h"

namespace host {

// The environment variables that are set and that the bench, its libraries or the linker read, with
// their values: {"TMPDIR": "/scratch", ...}.
Json EnvironmentJson();

}  // namespace host
