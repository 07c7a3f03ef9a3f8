#pragma once

#include <string>
#include <vector>

namespace host {

// What `controls` is asked to do.
struct ControlOptions {
  std::vector<std::string> faults = {};  // By name; empty for all.
  std::string engines = {};              // Their folder; empty for those of this program.
  std::string json = {};                 // A file, "-" for stdout, or empty.
};

// Runs engines with one known fault each, and the clean one again, and says by which guards and
// measures each was found. Returns kPass when every fault is found on every kind of sound and the
// clean engine on none, else kFail. Throws UsageError when that cannot be done.
int RunControls(const ControlOptions& options);

}  // namespace host
