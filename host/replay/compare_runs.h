#pragma once

#include <functional>
#include <string>
#include <vector>

#include "replay/recorded_run.h"
#include "report/report.h"

namespace host {

// How a run that was done again differs from what it was: one line for each output, and one for its
// end. Empty when nothing differs. Gives up looking for places as soon as `goOn` returns false.
std::vector<std::string> Differences(const RecordedRun& before, const RunReport& now,
                                     const std::function<bool()>& goOn);

// What differs between the programs and machines of the two runs, which may be why: "opus is
// libopus 1.4, was libopus 1.3.1".
std::vector<std::string> OtherOrigins(const Json& before, const Json& now);

}  // namespace host
