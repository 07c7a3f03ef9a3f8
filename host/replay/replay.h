#pragma once

#include <functional>
#include <span>
#include <string>

#include "run/case.h"

namespace host {

// What `audio_bench replay` is asked to do.
struct ReplayOptions {
  std::string report = {};  // A file, or the folder of a case of a suite.
};

// The case that the words of a command line ask for, "audio_bench" left out. Throws UsageError.
using CaseOfWords = std::function<Case(std::span<const std::string>)>;

// Runs again what a report tells of, from the inputs that it recorded, in a temporary workspace,
// and says whether the outputs have the same bytes. Returns kPass when they have, kFail when not,
// and kInput when the run cannot be done again.
int Replay(const ReplayOptions& options, const CaseOfWords& caseOf);

}  // namespace host
