#pragma once

#include <string>

#include "compare/result_set.h"

namespace host {

// Results that are kept under a name, in $XDG_DATA_HOME/audio_bench/baselines or, without that, in
// ~/.local/share: figures, verdicts, guards and hashes, no audio.

inline constexpr const char* kBaselinePrefix = "baseline:";

// Where a baseline of this name is, or would be. Throws UsageError when it can be no name, or when
// there is no folder for it.
std::string BaselinePath(const std::string& name);

// The file or folder behind the name of results, which may be that of a baseline.
std::string PlaceOfResults(const std::string& name);

// The same of results that are to be read. Throws UsageError when there is no such baseline.
std::string ExistingResults(const std::string& name);

// The results as a file that is read like those of the suite.
std::string BaselineText(const ResultSet& set);

// Writes such a file. Throws UsageError when that fails, or for the report of a single run.
void WriteBaseline(const ResultSet& set, const std::string& path);

// What `baseline` is asked to do.
struct BaselineOptions {
  enum class Action { kSave, kList, kShow, kRemove, kExport };
  Action action = Action::kList;
  std::string name;  // For kExport also the folder of results.
  std::string path;  // kSave: the results; kExport: the file.
};

// Does it and returns the exit code. Throws UsageError.
int ManageBaselines(const BaselineOptions& options);

}  // namespace host
