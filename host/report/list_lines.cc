#include "report/list_lines.h"

#include <algorithm>
#include <map>
#include <vector>

#include "base/printable.h"
#include "base/units.h"

namespace host {

namespace {

constexpr size_t kMaxNames = 5;

// The cause of a file's worst problem in a few words: "output absent".
std::string Words(Cause cause) {
  std::string words = CauseName(cause);
  std::replace(words.begin(), words.end(), '_', ' ');
  return words;
}

Cause WorstCause(const FileReport& file) { return Worst(file.problems)->cause; }

struct WorseFirst {
  bool operator()(Cause a, Cause b) const { return IsWorse(a, b); }
};

bool IsThere(const FileReport& file) {
  const auto missing = [](const Problem& problem) {
    return problem.cause == Cause::kMissingInput || problem.cause == Cause::kOutputAbsent;
  };
  return !file.absent && std::none_of(file.problems.begin(), file.problems.end(), missing);
}

// "958 of 960 there, 2 missing input, 1 input too short, 2510.00 s, 40.2 MB"
std::string Summary(std::span<const FileReport* const> files) {
  std::map<Cause, size_t, WorseFirst> counts;
  uint64_t bytes = 0;
  double seconds = 0;
  size_t there = 0;
  for (const FileReport* const file : files) {
    if (!file->problems.empty()) ++counts[WorstCause(*file)];
    if (IsThere(*file)) ++there;
    bytes += file->bytes.value_or(0);
    if (file->audio) seconds += file->audio->Seconds();
  }
  std::string summary = std::to_string(there) + " of " + std::to_string(files.size()) + " there";
  for (const auto& [cause, count] : counts) {
    summary += ", " + std::to_string(count) + " " + Words(cause);
  }
  if (seconds > 0) summary += ", " + Seconds(seconds);
  if (bytes > 0) summary += ", " + Bytes(bytes);
  return summary;
}

std::string NameLines(std::span<const FileReport* const> files) {
  std::vector<const FileReport*> bad;
  std::copy_if(files.begin(), files.end(), std::back_inserter(bad),
               [](const FileReport* file) { return !file->problems.empty(); });
  std::stable_sort(bad.begin(), bad.end(), [](const FileReport* a, const FileReport* b) {
    return IsWorse(WorstCause(*a), WorstCause(*b));
  });
  std::string lines;
  for (size_t i = 0; i < std::min(bad.size(), kMaxNames); ++i) {
    lines +=
        "          " + Words(WorstCause(*bad[i])) + "  " + Printable(bad[i]->place.path) + "\n";
  }
  if (bad.size() > kMaxNames) {
    lines += "          and " + std::to_string(bad.size() - kMaxNames) + " more\n";
  }
  return lines;
}

std::string LoudestLine(std::span<const FileReport* const> files) {
  const FileReport* loudest = nullptr;
  for (const FileReport* const file : files) {
    if (!file->channels) continue;
    if (loudest == nullptr || Peak(*file->channels) > Peak(*loudest->channels)) loudest = file;
  }
  if (loudest == nullptr) return "";
  const ChannelFigures figures = {.peak = Peak(*loudest->channels)};
  return "          highest peak " + Decibels(figures.PeakLevel()) + "  " +
         Printable(loudest->place.path) + "\n";
}

}  // namespace

std::string ListLines(const std::string& kind, std::span<const FileReport* const> files) {
  return "  " + kind + Printable(files.front()->place.use.pattern) + "  " + Summary(files) + "\n" +
         NameLines(files) + LoudestLine(files);
}

}  // namespace host
