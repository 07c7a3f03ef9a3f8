#include "run/absence.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

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

bool LeftNothing(const RunReport& report, const Problems& problems) {
  for (size_t i = 0; i < report.outputs.size(); ++i) {
    const FileReport& output = report.outputs[i];
    if (CouldNotBeWritten(output, *report.outcome)) continue;
    const auto comesOfNoInput = [&](const Problem& each) { return ComesOfNoInput(output, each); };
    const std::vector<Problem>& own = problems.outputs[i];
    if (std::any_of(own.begin(), own.end(), comesOfNoInput)) return true;
  }
  return false;
}

void JudgeAbsence(const RunReport& report, Problems& problems) {
  const bool leftNothing = LeftNothing(report, problems);
  for (size_t i = 0; i < report.inputs.size(); ++i) {
    const FilePlace& place = report.inputs[i].place;
    if (!report.inputs[i].absent || !problems.inputs[i].empty()) continue;
    const bool isCause = leftNothing && !place.use.dispensable;
    if (!isCause && !place.use.needed && !IsNamedByArgument(place.use)) continue;
    problems.inputs[i].push_back(
        {Cause::kMissingInput,
         "input " + FileName(place) + ": " + strerror(ENOENT) + MissingInputRemedy(place)});
  }
}

}  // namespace host
