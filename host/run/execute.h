#pragma once

#include <string_view>
#include <vector>

#include "files/beneath.h"
#include "files/workspace.h"
#include "process/limits.h"
#include "report/report.h"
#include "run/run.h"

namespace host {

using ArgumentList = std::vector<std::string_view>;

// The files of a run.
struct Files {
  std::vector<FilePlace> inputs;
  std::vector<FilePlace> outputs;
  WorkFile log;
};

// Runs the routine in a process of its own, looks at what it has left and judges it; the report
// knows the inputs and the time limit. Throws UsageError when the log cannot be written, Ended when
// the limits are reached before the routine starts.
void RunAndExamine(const CatalogueRow& row, const RunOptions& options, const ArgumentList& words,
                   const Files& files, Limits& limits, RunReport& report);

}  // namespace host
