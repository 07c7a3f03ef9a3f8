#include "catalogue/tables.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "harness/noizeus_cases.h"

namespace harness {

namespace {

constexpr std::string_view kScores = "NOIZEUS/out/result_";
constexpr std::string_view kVadReport = "F:/Stream/vad/output/report_";

constexpr const char* kUntreated = "off";  // What all algorithms are held against.

struct Measure {
  std::string_view prefix;
  std::string_view name;
};
constexpr Measure kMeasures[] = {{"avg_snr_", "snr"}, {"speech_snr_", "speech_snr"}};

// What "result_avg_snr_denoise_car.txt" holds.
struct Scores {
  std::string measure;    // "snr"
  std::string algorithm;  // "denoise"
  std::string noise;      // "car"
};

Scores ScoresOf(const FileUse& use) {
  std::string_view rest = std::string_view(use.name).substr(kScores.size());
  Scores scores;
  for (const Measure& measure : kMeasures) {
    if (!rest.starts_with(measure.prefix)) continue;
    scores.measure = measure.name;
    rest.remove_prefix(measure.prefix.size());
    break;
  }
  rest.remove_suffix(std::min<size_t>(rest.size(), 4));
  const size_t end = rest.rfind('_');
  scores.algorithm = rest.substr(0, end);
  if (end != std::string_view::npos) scores.noise = rest.substr(end + 1);
  return scores;
}

bool IsScores(const FileUse& use) { return use.name.starts_with(kScores); }

ResultTable ScoreTable(const FileUse& use, bool severalAlgorithms) {
  const Scores scores = ScoresOf(use);
  const auto group = [&](const std::string& algorithm) {
    return scores.measure + (severalAlgorithms ? "." + algorithm : "");
  };
  ResultTable table = {.file = use.name,
                       .name = group(scores.algorithm) + "." + scores.noise,
                       .numbers = kNoizeusSentences,
                       .group = group(scores.algorithm),
                       .unit = "dB",
                       .better = Better::kHigher};
  for (const int level : kNoizeusLevels) table.rows.push_back(std::to_string(level));
  if (scores.algorithm == kUntreated) return table;
  table.against = kUntreated;
  if (severalAlgorithms) table.againstGroup = group(kUntreated);
  return table;
}

ResultTable VadTable(const FileUse& use) {
  const std::string none = "the routine computes no PESQ";
  ResultTable table = {.file = use.name, .headed = true};
  table.columns = {
      {"saving", "%", Better::kNone},         {"best_saving", "%", Better::kNone},
      {"pesq", "MOS", Better::kHigher, none}, {"best_pesq", "MOS", Better::kHigher, none},
      {"faulty_alarm", "dB", Better::kLower}, {"false_alarm", "dB", Better::kLower}};
  return table;
}

}  // namespace

std::vector<ResultTable> ResultTables(std::span<const FileUse> outputs) {
  std::set<std::string> algorithms;
  for (const FileUse& use : outputs) {
    if (IsScores(use)) algorithms.insert(ScoresOf(use).algorithm);
  }
  std::vector<ResultTable> tables;
  for (const FileUse& use : outputs) {
    if (IsScores(use)) tables.push_back(ScoreTable(use, algorithms.size() > 1));
    if (use.name.starts_with(kVadReport)) tables.push_back(VadTable(use));
  }
  return tables;
}

}  // namespace harness
