#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

struct RunOptions {
  std::string routine = "RunTestCase";
  std::vector<std::string> arguments;
  std::string work = "bench_work";
  // Seconds; when not given, that of the routine: ten when it never returns, ten minutes else.
  std::optional<double> timeout = {};
  // Seconds that what the routine started may run on; when not given, as its row says.
  std::optional<double> linger = {};
  std::string json;      // Where the report goes as JSON; empty for nowhere.
  bool wait = false;     // For the end of another run in the workspace.
  bool wav = false;      // Also write WAVE copies of headerless audio outputs.
  bool figures = false;  // Also measure the files of lists.
};

// Runs one routine, reports, and returns the host's exit code. Throws UsageError when it cannot be
// run as asked, and std::system_error when the machine has no room for another process; the report
// of such a run says so.
int Run(const RunOptions& options);

// Writes the report of a run whose command line was refused to `path`, which may be all that is
// known of it. Throws UsageError when it cannot be written.
void ReportRefusal(const std::string& path, const std::string& message);

}  // namespace host
