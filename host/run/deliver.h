#pragma once

#include <string>

#include "base/paint.h"
#include "process/limits.h"
#include "report/report.h"
#include "report/result_file.h"

namespace host {

// The last step: prints the report and writes it to `json` where that is not null; their readers
// have as long as the limits allow. Returns the exit code, which is the one in the report where
// that could be written. Throws the UsageError of a run that could not be done as asked, after its
// report has been written.
int Deliver(RunReport report, Limits& limits, ResultFile* json, const Paint& paint = {});

// Writes the report of a run whose command line was refused to `path`, which may be all that is
// known of it. Throws UsageError when it cannot be written.
void ReportRefusal(const std::string& path, const std::string& message);

}  // namespace host
