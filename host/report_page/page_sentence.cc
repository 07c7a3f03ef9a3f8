#include <array>

#include "report_page/json_values.h"
#include "report_page/page_data.h"

namespace host {

namespace {

struct Counted {
  const char* key;
  const char* one;   // "1 fails"
  const char* many;  // "2 fail"
};

constexpr std::array<Counted, 7> kVerdicts = {{{"pass", "passes", "pass"},
                                               {"warn", "warns", "warn"},
                                               {"fail", "fails", "fail"},
                                               {"error", "ends in an error", "end in an error"},
                                               {"known", "fails as known", "fail as known"},
                                               {"skip", "is skipped", "are skipped"},
                                               {"not_run", "has not run", "have not run"}}};

constexpr std::array<Counted, 5> kChanges = {{{"worse", "is worse than", "are worse than"},
                                              {"changed", "has changed from", "have changed from"},
                                              {"gone", "is only in", "are only in"},
                                              {"new", "is not in", "are not in"},
                                              {"better", "is better than", "are better than"}}};

size_t CountOf(const std::map<std::string, size_t>& counts, const char* key) {
  const auto found = counts.find(key);
  return found == counts.end() ? 0 : found->second;
}

// The counts that are not zero, each with its word and `after` it.
template <size_t size>
std::string Listed(const std::array<Counted, size>& all,
                   const std::map<std::string, size_t>& counts, const std::string& after) {
  std::string text;
  for (const Counted& each : all) {
    const size_t count = CountOf(counts, each.key);
    if (count == 0) continue;
    text += text.empty() ? "" : ", ";
    text += std::to_string(count) + " " + (count == 1 ? each.one : each.many) + after;
  }
  return text;
}

std::string Subject(const PageRun& run) {
  const bool routines = TextOf(run.header, "suite").empty();
  const std::string noun = routines ? "routine" : "case";
  return std::to_string(run.total) + " " + noun + (run.total == 1 ? "" : "s");
}

}  // namespace

std::string PageSentence(const PageRun& run) {
  std::string text = run.report ? TextOf(run.header, "routine") : Subject(run);
  const std::string verdicts = Listed(kVerdicts, run.counts, "");
  if (!verdicts.empty()) text += ": " + verdicts;
  if (run.against.empty()) return text;
  const std::string changes = Listed(kChanges, run.changes, " " + run.against);
  return text + ", " + (changes.empty() ? "none is worse than " + run.against : changes);
}

}  // namespace host
