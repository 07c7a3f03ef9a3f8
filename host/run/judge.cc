#include "run/judge.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "files/audio_layout.h"
#include "files/beneath.h"
#include "files/foreign_audio.h"

namespace host {

namespace {

// "/sdcard/x (bench_work/sdcard/x)"
std::string Name(const FilePlace& place) {
  return place.path.empty() ? place.name : place.name + " (" + place.path + ")";
}

// As a shell takes it for one word.
std::string Quoted(const std::string& word) {
  const bool plain = word.find_first_not_of(
                         "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./-") ==
                     std::string::npos;
  if (plain && !word.empty()) return word;
  std::string quoted = "'";
  for (const char letter : word) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

// The options of ffmpeg for those that are given.
std::string RateAndChannels(const FileUse& use) {
  std::string options;
  if (use.rate > 0) options += " -ar " + std::to_string(use.rate);
  if (use.channels > 0) options += " -ac " + std::to_string(use.channels);
  return options;
}

// How to make headerless samples of an audio file.
std::string Conversion(const FileUse& use, const std::string& from, const std::string& to) {
  return "ffmpeg -i " + from + (use.samples == SampleType::kPcm16 ? " -f s16le" : " -f f32le") +
         RateAndChannels(use) + " " + Quoted(to);
}

// What to do about an input that is missing.
std::string Remedy(const FilePlace& input) {
  if (input.path.empty()) return "";
  switch (input.use.container) {
    case Container::kOther:
      return "; put a stream or text of yours there";
    case Container::kWave:
      return "; put a 16-bit WAVE file of yours there";
    case Container::kRecording:
      return "; put an audio file of yours there (" + FileFormat(input.use) + ")";
    case Container::kHeaderless:
      break;
  }
  const std::filesystem::path folder = std::filesystem::path(input.path).parent_path();
  std::error_code error;
  const bool there = std::filesystem::is_directory(folder, error);
  return "; it takes " + FileFormat(input.use) + ": " +
         (there ? "" : "mkdir -p " + Quoted(folder) + " && ") +
         Conversion(input.use, "YOUR_FILE", input.path);
}

// What is said of a file that should be a WAVE that the routine takes and is none; empty when it is
// one, or when a routine has an outcome for it: without content, or optional.
std::string NoWave(const FilePlace& input, FILE* file, uint64_t bytes) {
  const FileUse& use = input.use;
  if (use.optional || bytes == 0) return "";
  const std::optional<AudioLayout> found = FindAudio(use, file, bytes);
  const bool anyFormat = use.rate == 0;
  if (found && (anyFormat || (found->rate == use.rate && found->channels == use.channels))) {
    return "";
  }
  const std::string fault = found ? "is " + Hertz(found->rate) + ", " + Channels(found->channels) +
                                        ", where only " + Hertz(use.rate) + ", " +
                                        Channels(use.channels) + " is taken"
                                  : "is no WAVE file that can be read";
  const std::string converted = input.path + ".16.wav";
  return "input " + Name(input) + " " + fault + "; to convert it: ffmpeg -i " + Quoted(input.path) +
         " -c:a pcm_s16le" + RateAndChannels(use) + " " + Quoted(converted) + " && mv " +
         Quoted(converted) + " " + Quoted(input.path);
}

// What is said of a file that is of another kind than declared; empty when it may well be of that.
std::string WrongFormat(const FilePlace& input) {
  const Container container = input.use.container;
  if (container == Container::kOther || container == Container::kRecording) return "";
  FILE* const file = fopen(input.path.c_str(), "rbe");
  if (file == nullptr) return "";  // Judged as unreadable.
  struct stat status = {};
  fstat(fileno(file), &status);
  const bool wave = container == Container::kWave;
  std::string noWave = wave ? NoWave(input, file, static_cast<uint64_t>(status.st_size)) : "";
  const std::string kind(wave ? "" : ForeignAudio(file));
  fclose(file);
  if (kind.empty()) return noWave;
  const std::string converted = input.path + ".raw";
  return "input " + Name(input) + " is " + kind + ", not headerless samples; to convert it: " +
         Conversion(input.use, Quoted(input.path), converted) + " && mv " + Quoted(converted) +
         " " + Quoted(input.path);
}

std::string TooShort(const FilePlace& input) {
  struct stat status;
  if (input.use.optional || stat(input.path.c_str(), &status) != 0) return "";
  if (status.st_size >= input.use.blockBytes) return "";
  return "input " + Name(input) + " holds no whole block of " +
         std::to_string(input.use.blockBytes) +
         " bytes: " + Bytes(static_cast<uint64_t>(status.st_size));
}

// Why the routine could not open a file; empty when it could, or did not try.
std::string OpenFault(const FilePlace& place, const ChildOutcome& outcome) {
  for (const FileProblem& fault : outcome.openFaults) {
    if (fault.name == place.place) return WriteFault(fault.error);
  }
  return "";
}

// Why an output is not one that the run wrote; nothing when it is.
std::optional<Problem> NotWritten(const FileReport& output, const ChildOutcome& outcome) {
  const std::string name = "output " + Name(output.place);
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
void AddLookProblems(const FileReport& output, bool cut, std::vector<Problem>& problems) {
  const std::string name = "output " + Name(output.place);
  if (output.changed) {
    problems.push_back({Cause::kOutputChanged, name + " changed while it was measured"});
  } else if (!output.unreadable.empty()) {
    problems.push_back(
        {Cause::kOutputUnreadable, name + " cannot be read back: " + output.unreadable});
  } else if (!output.unmeasured.empty() && !cut) {
    problems.push_back(
        {Cause::kOutputNotMeasured, name + " could not be measured: " + output.unmeasured});
  }
}

// What is wrong with the content of an output that was written.
void AddContentProblems(const FileReport& output, bool cut, std::vector<Problem>& problems) {
  const std::string name = "output " + Name(output.place);
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
  uint64_t notFinite = 0;
  if (output.channels) {
    for (const ChannelFigures& figures : *output.channels) notFinite += figures.notFinite;
  }
  if (notFinite > 0) {
    problems.push_back({Cause::kSamplesNotFinite,
                        std::to_string(notFinite) + " samples are not finite in " + name});
  }
  if (output.copy && !output.copy->problem.empty() && !cut) {
    problems.push_back(
        {Cause::kCopyFailed, "no copy " + output.copy->path + ": " + output.copy->problem});
  }
}

// What became of an input during the run.
std::optional<Problem> InputProblemAfter(const FileReport& input, const RunReport& report) {
  const std::string name = "input " + Name(input.place);
  const std::string fault = OpenFault(input.place, *report.outcome);
  if (input.changed) return Problem{Cause::kInputChanged, name + " changed during the run"};
  if (!input.problems.empty() && input.problems[0].cause >= Cause::kReadError) {
    return std::nullopt;  // Nothing new.
  }
  if (!fault.empty()) return Problem{Cause::kReadError, name + " could not be opened: " + fault};
  const bool unmeasured =
      !input.unmeasured.empty() && !report.cut && input.audio && input.audio->samples;
  const std::string& reason =
      input.unreadable.empty() && unmeasured ? input.unmeasured : input.unreadable;
  if (reason.empty()) return std::nullopt;
  return Problem{Cause::kReadError, name + " could not be read: " + reason};
}

void JudgeOutput(const RunReport& report, FileReport& output) {
  if (const auto problem = NotWritten(output, *report.outcome)) {
    output.problems.push_back(*problem);
  } else {
    AddLookProblems(output, report.cut.has_value(), output.problems);
    AddContentProblems(output, report.cut.has_value(), output.problems);
  }
}

}  // namespace

std::optional<Problem> InputProblem(const FilePlace& input) {
  if (const auto fault = FindInputFault(input)) {
    if (fault->missing && input.use.optional) return std::nullopt;
    const std::string text = "input " + Name(input) + ": " + fault->text;
    if (!fault->missing) return Problem{Cause::kUnreadableInput, text};
    return Problem{Cause::kMissingInput, text + Remedy(input)};
  }
  if (const std::string format = WrongFormat(input); !format.empty()) {
    return Problem{Cause::kInputFormat, format};
  }
  if (const std::string shortage = TooShort(input); !shortage.empty()) {
    return Problem{Cause::kInputTooShort, shortage};
  }
  return std::nullopt;
}

bool MayRun(std::span<const FileReport> inputs) {
  const auto fits = [](const FileReport& input) {
    return input.problems.empty() || input.problems[0].cause == Cause::kInputTooShort;
  };
  return std::all_of(inputs.begin(), inputs.end(), [&](const FileReport& input) {
    const std::string& pattern = input.place.use.pattern;
    if (pattern.empty() || fits(input)) return fits(input);
    return std::any_of(inputs.begin(), inputs.end(), [&](const FileReport& other) {
      return other.place.use.pattern == pattern && fits(other);
    });
  });
}

std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout) {
  std::vector<Problem> problems;
  switch (outcome.end) {
    case ChildOutcome::End::kCrashed:
      problems.push_back({Cause::kCrash, outcome.how, outcome.crashSignal});
      break;
    case ChildOutcome::End::kTimedOut:
      problems.push_back({Cause::kTimeout, "timed out after " + Seconds(timeout)});
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

std::vector<Problem> FileProblems(const RunReport& report) {
  std::vector<Problem> problems;
  for (const std::vector<FileReport>* files : {&report.inputs, &report.outputs}) {
    for (const FileReport& file : *files) {
      problems.insert(problems.end(), file.problems.begin(), file.problems.end());
    }
  }
  return problems;
}

std::vector<Problem> RunProblems(RunReport& report, double timeout) {
  const ChildOutcome& outcome = *report.outcome;
  for (FileReport& input : report.inputs) {
    if (auto problem = InputProblemAfter(input, report)) input.problems.push_back(*problem);
  }
  std::vector<Problem> problems = OutcomeProblems(outcome, timeout);
  using End = ChildOutcome::End;
  if (outcome.end == End::kReturned || outcome.end == End::kStopped) {
    if (report.cut) problems.push_back(*report.cut);
    for (FileReport& output : report.outputs) JudgeOutput(report, output);
  }
  const std::vector<Problem> more = FileProblems(report);
  problems.insert(problems.end(), more.begin(), more.end());
  return problems;
}

}  // namespace host
