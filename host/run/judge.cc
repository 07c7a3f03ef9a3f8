#include "run/judge.h"

#include <sys/stat.h>

#include <cstring>

#include "base/units.h"

namespace host {

namespace {

// "/sdcard/x (bench_work/sdcard/x)"
std::string Name(const FilePlace& place) {
  return place.path.empty() ? place.name : place.name + " (" + place.path + ")";
}

// The first one, and how many more there are.
std::string Summary(const std::vector<std::string>& problems) {
  if (problems.size() < 2) return problems.empty() ? "" : problems.front();
  return problems.front() + ", and " + std::to_string(problems.size() - 1) + " more like it";
}

std::string TooShort(const FilePlace& input) {
  struct stat status;
  if (stat(input.path.c_str(), &status) != 0) return "";  // Judged as unreadable.
  if (status.st_size >= input.use.blockBytes) return "";
  return "input " + Name(input) + " holds no whole block of " +
         std::to_string(input.use.blockBytes) +
         " bytes: " + Bytes(static_cast<uint64_t>(status.st_size));
}

// What is wrong with the content of an output that was written.
std::string ContentProblem(const FileReport& output) {
  const std::string name = "output " + Name(output.place);
  if (output.place.use.encoding == Encoding::kWave) {
    if (!output.audio) return name + " is not a WAVE file";
    if (output.audio->bytes == 0) return name + " holds no samples";
  }
  uint64_t notFinite = 0;
  if (output.channels) {
    for (const ChannelFigures& figures : *output.channels) notFinite += figures.notFinite;
  }
  if (notFinite > 0) return std::to_string(notFinite) + " samples are not finite in " + name;
  if (output.copy && !output.copy->problem.empty()) {
    return "no copy " + output.copy->path + ": " + output.copy->problem;
  }
  return "";
}

}  // namespace

Judgement JudgeInputs(std::span<const FilePlace> inputs) {
  std::vector<std::string> unreadable;
  std::vector<std::string> tooShort;
  for (const FilePlace& input : inputs) {
    const std::string problem = InputProblem(input);
    if (!problem.empty()) {
      unreadable.push_back("input " + Name(input) + ": " + problem);
    } else if (const std::string shortage = TooShort(input); !shortage.empty()) {
      tooShort.push_back(shortage);
    }
  }
  if (!unreadable.empty()) return Error(exit_code::kInput, Summary(unreadable));
  if (!tooShort.empty()) return Fail(Summary(tooShort));
  return {};
}

Judgement JudgeOutcome(const ChildOutcome& outcome, double timeout) {
  switch (outcome.end) {
    case ChildOutcome::End::kCrashed:
      return Error(exit_code::kCrash, outcome.how);
    case ChildOutcome::End::kTimedOut:
      return Error(exit_code::kCrash, "timed out after " + Seconds(timeout));
    case ChildOutcome::End::kInterrupted:
      return Error(exit_code::kSignal + outcome.interruption,
                   std::string("interrupted (") + strsignal(outcome.interruption) + ")");
    case ChildOutcome::End::kReturned:
      break;
  }
  if (outcome.writeFailure == 0) return {};
  return Fail(std::string("a file could not be written whole: ") + strerror(outcome.writeFailure));
}

Judgement JudgeOutputs(std::span<const FileReport> outputs, std::span<const std::string> problems) {
  std::vector<std::string> found;
  for (size_t i = 0; i < outputs.size(); ++i) {
    const std::string problem = problems[i].empty()
                                    ? ContentProblem(outputs[i])
                                    : "output " + Name(outputs[i].place) + " " + problems[i];
    if (!problem.empty()) found.push_back(problem);
  }
  return found.empty() ? Judgement() : Fail(Summary(found));
}

}  // namespace host
