#include "run/judge.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "base/counted.h"
#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "files/beneath.h"
#include "run/absence.h"
#include "run/concerns.h"
#include "run/remedy.h"

namespace host {

namespace {

// Why the routine could not open a file; empty when it could, or did not try.
std::string OpenFault(const FilePlace& place, const ChildOutcome& outcome) {
  for (const FileProblem& fault : outcome.openFaults) {
    if (fault.name == place.place) return WriteFault(fault.error);
  }
  return "";
}

// Why the engine could not use a file; empty when it could, or did not say.
std::string Refusal(const FilePlace& place, const ChildOutcome& outcome) {
  for (const EngineRefusal& refusal : outcome.refusals) {
    if (refusal.place == place.place) return refusal.reason;
  }
  return "";
}

// Why an output is not one that the run wrote; nothing when it is.
std::optional<Problem> NotWritten(const FileReport& output, const ChildOutcome& outcome) {
  const std::string name = "output " + FileName(output.place);
  const std::string fault = OpenFault(output.place, outcome);
  const std::string why = fault.empty() ? "" : ", it could not be opened: " + fault;
  switch (output.state) {
    case OutputState::kWritten:
      return std::nullopt;
    case OutputState::kOutside:
      return Problem{Cause::kOutputAbsent, name + " leads out of the workspace"};
    case OutputState::kAbsent:
      return Problem{Cause::kOutputAbsent, name + " is absent" + why};
    case OutputState::kNotAFile:
      return Problem{Cause::kOutputFormat, name + " is not a regular file"};
    case OutputState::kStale:
      return Problem{Cause::kOutputStale,
                     name + " was not written; what is there is from before" + why};
    case OutputState::kEmpty:
      if (output.place.use.mayBeEmpty) return std::nullopt;
      return Problem{Cause::kOutputEmpty, name + " is empty"};
  }
  return std::nullopt;
}

// What is wrong with an output because it could not be looked at whole.
void AddLookProblems(const FileReport& output, std::vector<Problem>& problems) {
  const std::string name = "output " + FileName(output.place);
  if (output.changed) {
    problems.push_back({Cause::kOutputChanged, name + " changed while it was measured"});
  } else if (!output.unreadable.empty()) {
    problems.push_back(
        {Cause::kOutputUnreadable, name + " cannot be read back: " + output.unreadable});
  } else if (!output.unmeasured.empty() && !output.givenUp) {
    problems.push_back(
        {Cause::kOutputNotMeasured, name + " could not be measured: " + output.unmeasured});
  }
  if (!output.uncompared.empty()) {
    problems.push_back({Cause::kReferenceUnreadable,
                        name + " could not be measured against " + output.uncompared});
  }
}

// What is wrong with the content of an output that was written.
void AddContentProblems(const FileReport& output, std::vector<Problem>& problems) {
  const std::string name = "output " + FileName(output.place);
  if (output.place.use.container == Container::kWave) {
    if (!output.audio) {
      problems.push_back({Cause::kOutputFormat, name + " is not a WAVE file"});
    } else if (output.audio->bytes == 0 && !output.place.use.mayBeEmpty) {
      problems.push_back({Cause::kOutputEmpty, name + " holds no samples"});
    }
  }
  if (output.audio && !output.audio->flaw.empty() && !output.place.use.foreignHeader) {
    problems.push_back({Cause::kOutputNotWhole, name + " is not whole: " + output.audio->flaw});
  }
  const uint64_t bytes = output.audio ? output.audio->bytes : output.bytes.value_or(0);
  if (const uint64_t full = output.place.use.fullBytes; full > 0 && bytes >= full) {
    problems.push_back(
        {Cause::kOutputNotWhole, name + " is full with " + Bytes(bytes) +
                                     ": the routine leaves out what more there was in its input"});
  }
  uint64_t notFinite = 0;
  if (output.channels) {
    for (const ChannelFigures& figures : *output.channels) notFinite += figures.notFinite;
  }
  if (notFinite > 0) {
    problems.push_back({Cause::kSamplesNotFinite, Counted(notFinite, "sample") +
                                                      (notFinite == 1 ? " is" : " are") +
                                                      " not finite in " + name});
  }
  if (output.copy && !output.copy->problem.empty() && !output.givenUp) {
    problems.push_back(
        {Cause::kCopyFailed, "no copy " + output.copy->path + ": " + output.copy->problem});
  }
}

// Whether that was known before the run.
bool CouldNotBeRead(const FileReport& input) {
  return std::any_of(input.problems.begin(), input.problems.end(), [](const Problem& problem) {
    return problem.cause == Cause::kMissingInput || problem.cause == Cause::kUnreadableInput;
  });
}

// What became of an input during the run.
std::optional<Problem> InputProblemAfter(const FileReport& input, const ChildOutcome& outcome) {
  const std::string name = "input " + FileName(input.place);
  const std::string fault = OpenFault(input.place, outcome);
  if (input.changed) return Problem{Cause::kInputChanged, name + " changed during the run"};
  if (CouldNotBeRead(input)) return std::nullopt;  // Nothing new.
  if (!fault.empty()) return Problem{Cause::kReadError, name + " could not be opened: " + fault};
  if (const std::string refusal = Refusal(input.place, outcome);
      !refusal.empty() && !input.absent) {
    return Problem{Cause::kInputFormat, name + " could not be opened by the engine: " + refusal +
                                            "; it takes " + FileFormat(input.place.use)};
  }
  const bool unmeasured =
      !input.unmeasured.empty() && !input.givenUp && input.audio && input.audio->samples;
  const std::string& reason =
      input.unreadable.empty() && unmeasured ? input.unmeasured : input.unreadable;
  if (reason.empty()) return std::nullopt;
  return Problem{Cause::kReadError, name + " could not be read: " + reason};
}

void AddGuardProblem(const GuardHit& hit, const std::string& text, std::vector<Problem>& problems) {
  problems.push_back({hit.fails ? Cause::kGuard : Cause::kGuardWarning, text});
}

// "clipped: 40 % of the samples"
std::string GuardText(const GuardHit& hit) { return std::string(hit.Name()) + ": " + hit.text; }

// What the guards say of an input, whose text names it.
void AddInputGuards(const FileReport& input, std::vector<Problem>& problems) {
  for (const GuardHit& hit : input.guards) AddGuardProblem(hit, GuardText(hit), problems);
}

// What the guards say of an output.
void AddOutputGuards(const FileReport& output, std::vector<Problem>& problems) {
  for (const GuardHit& hit : output.guards) {
    std::string text = "output " + FileName(output.place) + ": " + GuardText(hit);
    if (hit.at) text += ", at " + Seconds(*hit.at);
    if (hit.channel && output.audio) {
      text += ", " + ChannelName(*hit.channel, output.audio->channels);
    }
    AddGuardProblem(hit, text, problems);
  }
}

// Takes warnings for failures.
Problems Strict(Problems problems) {
  const auto take = [](std::vector<Problem>& own) {
    for (Problem& problem : own) {
      if (IsWarning(problem.cause)) problem.cause = Cause::kGuard;
    }
  };
  take(problems.run);
  for (std::vector<Problem>& own : problems.inputs) take(own);
  for (std::vector<Problem>& own : problems.outputs) take(own);
  return problems;
}

void JudgeOutput(const FileReport& output, const ChildOutcome& outcome,
                 std::vector<Problem>& problems) {
  if (const auto problem = NotWritten(output, outcome)) {
    problems.push_back(*problem);
  } else {
    AddLookProblems(output, problems);
    AddContentProblems(output, problems);
    AddOutputGuards(output, problems);
  }
}

// What is added to a time-out of a process that stood still.
std::string Stopped(const ChildOutcome& outcome) {
  if (outcome.stopSignal == 0) return "";
  return std::string(", while its process was stopped (") + strsignal(outcome.stopSignal) + ")";
}

}  // namespace

std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout) {
  std::vector<Problem> problems;
  switch (outcome.end) {
    case ChildOutcome::End::kCrashed:
      problems.push_back({Cause::kCrash, outcome.how, outcome.crashSignal});
      break;
    case ChildOutcome::End::kTimedOut:
      problems.push_back(
          {Cause::kTimeout, "timed out after " + Seconds(timeout) + Stopped(outcome)});
      break;
    case ChildOutcome::End::kInterrupted:
      problems.push_back({Cause::kInterrupted,
                          std::string("interrupted (") + strsignal(outcome.interruption) + ")",
                          outcome.interruption});
      break;
    case ChildOutcome::End::kReturned:
    case ChildOutcome::End::kStopped:
      break;
  }
  if (const FileProblem& fault = outcome.readFault; fault.error != 0) {
    problems.push_back(
        {Cause::kReadError, fault.name + " could not be read: " + strerror(fault.error)});
  }
  if (const FileProblem& fault = outcome.writeFault; fault.error != 0) {
    problems.push_back(
        {Cause::kWriteError, fault.name + " could not be written whole: " + strerror(fault.error)});
  }
  if (!outcome.delivered) {
    problems.push_back(
        {Cause::kNotDelivered, "what the routine printed could not be written to standard output"});
  }
  if (outcome.logFault != 0) {
    problems.push_back({Cause::kLogIncomplete, std::string("the log file is not complete: ") +
                                                   strerror(outcome.logFault)});
  }
  return problems;
}

Problems RunProblems(const RunReport& report, double timeout) {
  const ChildOutcome& outcome = *report.outcome;
  Problems problems = KnownProblems(report);
  problems.run = OutcomeProblems(outcome, timeout);
  for (size_t i = 0; i < report.inputs.size(); ++i) {
    if (auto problem = InputProblemAfter(report.inputs[i], outcome)) {
      problems.inputs[i].push_back(*problem);
    }
    AddInputGuards(report.inputs[i], problems.inputs[i]);
  }
  using End = ChildOutcome::End;
  if (outcome.end == End::kReturned || outcome.end == End::kStopped) {
    if (report.lookEnded) problems.run.push_back(*report.lookEnded);
    for (const GuardHit& hit : report.guards) AddGuardProblem(hit, GuardText(hit), problems.run);
    for (size_t i = 0; i < report.outputs.size(); ++i) {
      JudgeOutput(report.outputs[i], outcome, problems.outputs[i]);
    }
    JudgeAbsence(report, problems);
    if (!report.fruitless.empty() && LeftNothing(report, problems)) {
      problems.run.push_back({Cause::kArgument, report.fruitless});
    }
  }
  JudgeConcerns(report, problems);
  return problems;
}

RunReport Judged(RunReport report) {
  if (report.stop) {
    report.judgement = Judge({report.stop->problem});
    return report;
  }
  Problems problems = report.outcome ? RunProblems(report, report.timeout) : KnownProblems(report);
  if (report.strict) problems = Strict(std::move(problems));
  report.judgement = Judge(problems.All());
  for (size_t i = 0; i < report.inputs.size(); ++i) report.inputs[i].problems = problems.inputs[i];
  for (size_t i = 0; i < report.outputs.size(); ++i) {
    report.outputs[i].problems = problems.outputs[i];
  }
  return report;
}

}  // namespace host
