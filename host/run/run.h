#pragma once

#include <string>
#include <vector>

namespace host {

struct RunOptions {
  std::string routine = "RunTestCase";
  std::vector<std::string> arguments;
  std::string work = "bench_work";
  double timeout = 600;  // Seconds
  std::string json;      // Where the report goes as JSON; empty for nowhere.
  bool wait = false;     // For the end of another run in the workspace.
  bool wav = false;      // Also write WAVE copies of headerless audio outputs.
};

// Runs one routine, reports, and returns the host's exit code. Throws UsageError when it cannot be
// run as asked, and std::system_error when the machine has no room for another process; the report
// of such a run says so.
int Run(const RunOptions& options);

// Writes the report of a run whose command line was refused to `path`, which may be all that is
// known of it. Throws UsageError when it cannot be written.
void ReportRefusal(const std::string& path, const std::string& message);

}  // namespace host
