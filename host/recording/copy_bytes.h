#pragma once

#include <functional>
#include <optional>

#include "recording/rendering.h"

namespace host {

// Copies all bytes of an open file, from its beginning, in place of what another one holds. Gives
// up as soon as `goOn` returns false.
std::optional<RecordingFault> CopyBytes(int from, int to, const std::function<bool()>& goOn);

}  // namespace host
