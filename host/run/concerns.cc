#include "run/concerns.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

using OwnProblems = std::vector<Problem>;

bool HasContent(const FileReport& output) {
  if (output.place.use.mayBeEmpty) return true;
  return output.state == OutputState::kWritten && (!output.audio || output.audio->bytes > 0);
}

bool CameToItsEnd(const RunReport& report) {
  const ChildOutcome::End end = report.outcome->end;
  return end == ChildOutcome::End::kReturned || end == ChildOutcome::End::kStopped;
}

OwnProblems::iterator Find(Cause cause, OwnProblems& problems) {
  return std::find_if(problems.begin(), problems.end(),
                      [&](const Problem& problem) { return problem.cause == cause; });
}

// Whether the routine has ended its process because of the concern.
void JudgeAbort(const Concern& concern, OwnProblems& input, OwnProblems& run) {
  const auto crash = Find(Cause::kCrash, run);
  if (crash == run.end()) {
    input.push_back({Cause::kInputAsItIs, concern.text});
  } else {
    crash->text += "; " + concern.text;
  }
}

// A routine that ends its process because a file is no mono WAVE does so without content too: then
// that is what is wrong.
void JudgeEmpty(const FileReport& input, OwnProblems& own, OwnProblems& run) {
  if (input.place.use.otherFormat != OtherFormat::kAborts || input.bytes != 0) return;
  const auto crash = Find(Cause::kCrash, run);
  const auto empty = Find(Cause::kInputTooShort, own);
  if (crash == run.end() || empty == own.end()) return;
  empty->text += "; the routine was " + crash->text;
  run.erase(crash);
}

void JudgeNoOutput(const Concern& concern, const RunReport& report, OwnProblems& input) {
  const bool all = std::all_of(report.outputs.begin(), report.outputs.end(), HasContent);
  input.push_back(
      {all || !CameToItsEnd(report) ? Cause::kInputAsItIs : Cause::kInputFormat, concern.text});
}

// The input is to blame for outputs that it made no WAVE, not they.
void JudgeHeader(const Concern& concern, const RunReport& report, OwnProblems& input,
                 std::vector<OwnProblems>& outputs) {
  Cause cause = Cause::kInputAsItIs;
  for (size_t i = 0; i < report.outputs.size(); ++i) {
    const FileReport& output = report.outputs[i];
    const bool written = output.state == OutputState::kWritten && CameToItsEnd(report);
    if (!output.place.use.foreignHeader || !written || output.audio) continue;
    cause = Cause::kInputFormat;
    std::erase_if(outputs[i],
                  [](const Problem& problem) { return problem.cause == Cause::kOutputFormat; });
  }
  input.push_back({cause, concern.text});
}

}  // namespace

void JudgeConcerns(const RunReport& report, Problems& problems) {
  for (size_t i = 0; i < report.inputs.size(); ++i) {
    const FileReport& input = report.inputs[i];
    JudgeEmpty(input, problems.inputs[i], problems.run);
    for (const Concern& concern : input.concerns) {
      switch (concern.kind) {
        case Concern::Kind::kAborts:
          JudgeAbort(concern, problems.inputs[i], problems.run);
          break;
        case Concern::Kind::kNoOutput:
          JudgeNoOutput(concern, report, problems.inputs[i]);
          break;
        case Concern::Kind::kHeader:
          JudgeHeader(concern, report, problems.inputs[i], problems.outputs);
          break;
      }
    }
  }
}

}  // namespace host
