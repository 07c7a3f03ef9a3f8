#include "run/absence.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "run/remedy.h"

namespace host {

namespace {

// Whether an argument alone is the name: "{inFile}".
bool IsNamedByArgument(const FileUse& use) {
  return use.name.starts_with('{') && use.name.find('}') == use.name.size() - 1;
}

// Whether this is what a routine leaves that had nothing to read. One that copies the header of an
// input leaves no WAVE then.
bool ComesOfNoInput(const FileReport& output, const Problem& problem) {
  switch (problem.cause) {
    case Cause::kOutputAbsent:
    case Cause::kOutputStale:
    case Cause::kOutputEmpty:
      return true;
    case Cause::kOutputFormat:
      return output.place.use.foreignHeader;
    default:
      return false;
  }
}

// Whether the output itself could not be written, for which no input is to blame.
bool CouldNotBeWritten(const FileReport& output, const ChildOutcome& outcome) {
  const std::string& place = output.place.place;
  return output.state == OutputState::kOutside || outcome.writeFault.error != 0 ||
         std::any_of(outcome.openFaults.begin(), outcome.openFaults.end(),
                     [&](const FileProblem& fault) { return fault.name == place; });
}

}  // namespace

bool LeftNothing(const RunReport& report) {
  return std::any_of(report.outputs.begin(), report.outputs.end(), [&](const FileReport& output) {
    return !CouldNotBeWritten(output, *report.outcome) &&
           std::any_of(output.problems.begin(), output.problems.end(),
                       [&](const Problem& problem) { return ComesOfNoInput(output, problem); });
  });
}

void JudgeAbsence(RunReport& report) {
  const bool leftNothing = LeftNothing(report);
  for (FileReport& input : report.inputs) {
    const FileUse& use = input.place.use;
    if (!input.absent || !input.problems.empty()) continue;
    const bool isCause = leftNothing && !use.dispensable;
    if (!isCause && !use.needed && !IsNamedByArgument(use)) continue;
    input.problems.push_back({Cause::kMissingInput, "input " + FileName(input.place) + ": " +
                                                        strerror(ENOENT) +
                                                        MissingInputRemedy(input.place)});
  }
}

}  // namespace host
