#include "run/input_problem.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "base/units.h"
#include "files/audio_layout.h"
#include "files/beneath.h"
#include "files/foreign_audio.h"
#include "files/regular_file.h"
#include "run/remedy.h"

namespace host {

namespace {

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
  return "input " + FileName(input) + " " + fault + "; to convert it: " + WaveConversion(input);
}

// What is said of a file that is of another kind than declared; empty when it may well be of that.
std::string WrongFormat(const FilePlace& input) {
  const Container container = input.use.container;
  if (container == Container::kOther || container == Container::kRecording) return "";
  FILE* const file = OpenRegular(input.path);
  if (file == nullptr) return "";  // Judged as unreadable.
  struct stat status = {};
  fstat(fileno(file), &status);
  const bool wave = container == Container::kWave;
  std::string noWave = wave ? NoWave(input, file, static_cast<uint64_t>(status.st_size)) : "";
  const std::string kind(wave ? "" : ForeignAudio(file));
  fclose(file);
  if (kind.empty()) return noWave;
  if (kind == kText || kind == kProgram) {
    return "input " + FileName(input) + " is " + kind + ", not headerless samples" +
           MissingInputRemedy(input);
  }
  return "input " + FileName(input) + " is " + kind +
         ", not headerless samples; to convert it: " + HeaderlessConversion(input);
}

std::string TooShort(const FilePlace& input) {
  struct stat status;
  if (input.use.optional || stat(input.path.c_str(), &status) != 0) return "";
  if (status.st_size >= input.use.blockBytes) return "";
  return "input " + FileName(input) + " holds no whole block of " +
         std::to_string(input.use.blockBytes) +
         " bytes: " + Bytes(static_cast<uint64_t>(status.st_size));
}

}  // namespace

std::optional<Problem> InputProblem(const FilePlace& input) {
  if (const auto fault = FindInputFault(input)) {
    if (fault->missing && input.use.optional) return std::nullopt;
    const std::string text = "input " + FileName(input) + ": " + fault->text;
    if (!fault->missing) return Problem{Cause::kUnreadableInput, text};
    return Problem{Cause::kMissingInput, text + MissingInputRemedy(input)};
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
    return std::all_of(input.problems.begin(), input.problems.end(), [](const Problem& problem) {
      return IsWarning(problem.cause) || problem.cause == Cause::kInputTooShort;
    });
  };
  return std::all_of(inputs.begin(), inputs.end(), [&](const FileReport& input) {
    const std::string& pattern = input.place.use.pattern;
    if (pattern.empty() || fits(input)) return fits(input);
    return std::any_of(inputs.begin(), inputs.end(), [&](const FileReport& other) {
      return other.place.use.pattern == pattern && fits(other);
    });
  });
}

}  // namespace host
