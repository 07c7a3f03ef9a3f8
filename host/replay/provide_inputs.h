#pragma once

#include <functional>

#include "replay/recorded_run.h"
#include "run/case.h"

namespace host {

// Puts the inputs of a recorded run into the workspace of `what`, each with the bytes that it had:
// a copy of the file where that is still there, or else made again by the run itself from the
// recording that it was staged from, which `what` says then. Throws ReplayFault, with the name of
// the input, for one that is gone or has changed; and when `goOn` returns false.
void ProvideInputs(const RecordedRun& run, const std::function<bool()>& goOn, Case& what);

}  // namespace host
