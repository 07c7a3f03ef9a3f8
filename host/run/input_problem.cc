#include "run/input_problem.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "base/units.h"
#include "files/beneath.h"
#include "files/foreign_audio.h"
#include "files/regular_file.h"
#include "run/remedy.h"
#include "run/wave_input.h"

namespace host {

namespace {

// What is wrong with the content of a file that is there, by the kind that is declared of it.
std::optional<Problem> ContentProblem(const FilePlace& input) {
  const Container container = input.use.container;
  if (container != Container::kHeaderless && container != Container::kWave) return std::nullopt;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenRegular(input.path), fclose);
  if (file == nullptr) return std::nullopt;  // Judged as unreadable.
  struct stat status = {};
  fstat(fileno(file.get()), &status);
  if (container == Container::kWave) {
    return WaveProblem(input, file.get(), static_cast<uint64_t>(status.st_size));
  }
  const std::string kind(ForeignAudio(file.get()));
  if (kind.empty()) return std::nullopt;
  const bool sound = kind != kText && kind != kProgram;
  return Problem{
      Cause::kInputFormat,
      "input " + FileName(input) + " is " + kind + ", not headerless samples" +
          (sound ? "; to convert it: " + HeaderlessConversion(input) : MissingInputRemedy(input))};
}

std::string TooShort(const FilePlace& input) {
  struct stat status;
  if (input.use.optional || stat(input.path.c_str(), &status) != 0) return "";
  if (input.use.container == Container::kWave) {
    if (status.st_size > 0) return "";  // Judged by its samples.
    return "input " + FileName(input) + " holds no samples: " + Bytes(0);
  }
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
  if (auto problem = ContentProblem(input)) return problem;
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
