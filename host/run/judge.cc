#include "run/judge.h"

#include <sys/stat.h>

#include <cstring>
#include <optional>

#include "base/units.h"

namespace host {

namespace {

// "/sdcard/x (bench_work/sdcard/x)"
std::string Name(const FilePlace& place) {
  return place.path.empty() ? place.name : place.name + " (" + place.path + ")";
}

std::string TooShort(const FilePlace& input) {
  struct stat status;
  if (stat(input.path.c_str(), &status) != 0) return "";  // Judged as unreadable.
  if (status.st_size >= input.use.blockBytes) return "";
  return "input " + Name(input) + " holds no whole block of " +
         std::to_string(input.use.blockBytes) +
         " bytes: " + Bytes(static_cast<uint64_t>(status.st_size));
}

// Why an output is not one that the run wrote; nothing when it is.
std::optional<Problem> NotWritten(const FileReport& output) {
  const std::string name = "output " + Name(output.place);
  switch (output.state) {
    case OutputState::kWritten:
      return std::nullopt;
    case OutputState::kOutside:
      return Problem{Cause::kOutputAbsent, name + " leads out of the workspace"};
    case OutputState::kAbsent:
      return Problem{Cause::kOutputAbsent, name + " is absent"};
    case OutputState::kNotAFile:
      return Problem{Cause::kOutputFormat, name + " is not a regular file"};
    case OutputState::kStale:
      return Problem{Cause::kOutputStale, name + " was not written; what is there is from before"};
    case OutputState::kEmpty:
      return Problem{Cause::kOutputEmpty, name + " is empty"};
  }
  return std::nullopt;
}

// What is wrong with the content of an output that was written.
void AddContentProblems(const FileReport& output, std::vector<Problem>& problems) {
  const std::string name = "output " + Name(output.place);
  if (output.place.use.container == Container::kWave) {
    if (!output.audio) {
      problems.push_back({Cause::kOutputFormat, name + " is not a WAVE file"});
    } else if (output.audio->bytes == 0) {
      problems.push_back({Cause::kOutputEmpty, name + " holds no samples"});
    }
  }
  uint64_t notFinite = 0;
  if (output.channels) {
    for (const ChannelFigures& figures : *output.channels) notFinite += figures.notFinite;
  }
  if (notFinite > 0) {
    problems.push_back({Cause::kSamplesNotFinite,
                        std::to_string(notFinite) + " samples are not finite in " + name});
  }
  if (output.copy && !output.copy->problem.empty()) {
    problems.push_back(
        {Cause::kCopyFailed, "no copy " + output.copy->path + ": " + output.copy->problem});
  }
}

}  // namespace

std::vector<Problem> InputProblems(std::span<const FilePlace> inputs) {
  std::vector<Problem> problems;
  for (const FilePlace& input : inputs) {
    if (const auto fault = FindInputFault(input)) {
      problems.push_back({fault->missing ? Cause::kMissingInput : Cause::kUnreadableInput,
                          "input " + Name(input) + ": " + fault->text});
    } else if (const std::string shortage = TooShort(input); !shortage.empty()) {
      problems.push_back({Cause::kInputTooShort, shortage});
    }
  }
  return problems;
}

std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout) {
  switch (outcome.end) {
    case ChildOutcome::End::kCrashed:
      return {{Cause::kCrash, outcome.how, outcome.crashSignal}};
    case ChildOutcome::End::kTimedOut:
      return {{Cause::kTimeout, "timed out after " + Seconds(timeout)}};
    case ChildOutcome::End::kInterrupted:
      return {{Cause::kInterrupted,
               std::string("interrupted (") + strsignal(outcome.interruption) + ")",
               outcome.interruption}};
    case ChildOutcome::End::kReturned:
      break;
  }
  if (outcome.writeFailure == 0) return {};
  return {{Cause::kWriteError,
           std::string("a file could not be written whole: ") + strerror(outcome.writeFailure)}};
}

std::vector<Problem> OutputProblems(std::span<const FileReport> outputs) {
  std::vector<Problem> problems;
  for (const FileReport& output : outputs) {
    if (const auto problem = NotWritten(output)) {
      problems.push_back(*problem);
    } else {
      AddContentProblems(output, problems);
    }
  }
  return problems;
}

}  // namespace host
