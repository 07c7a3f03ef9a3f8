#include "measure/scorer_tables.h"

#include <algorithm>
#include <filesystem>
#include <regex>
#include <system_error>

#include "audio_measures/measure.h"
#include "base/usage_error.h"
#include "base/user_folder.h"
#include "tables/placeholders.h"
#include "tables/suite_table.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kKeys[] = {"command", "pattern",          "unit",
                                      "rates",   "higher_is_better", "timeout_s"};

template <typename Value>
Value Needed(std::optional<Value> value, const SuiteTable& table, const char* key) {
  if (value) return *std::move(value);
  throw UsageError{table.at() + "this measure is without its " + key};
}

void CheckName(const std::string& at, const std::string& name) {
  const bool plain = std::ranges::all_of(name, [](unsigned char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '_';
  });
  if (name.empty() || !plain) {
    throw UsageError{at + "a measure is named by small letters, digits and _, not \"" + name +
                     "\""};
  }
  if (audio_measures::FindMeasure(name) != nullptr) {
    throw UsageError{at + name + " is a measure of the bench itself"};
  }
}

void CheckPattern(const PlacedText& pattern) {
  try {
    if (std::regex(pattern.text).mark_count() > 0) return;
  } catch (const std::regex_error&) {
    throw UsageError{pattern.at + "\"" + pattern.text + "\" is no regular expression"};
  }
  throw UsageError{pattern.at + "the pattern has no group () around the figure"};
}

Scorer ScorerOf(const std::string& name, const SuiteTable& table, const std::string& folder) {
  Scorer scorer = {.name = name, .folder = folder};
  const auto command = Needed(table.Texts("command"), table, "command");
  if (command.empty()) throw UsageError{table.at() + "its command is empty"};
  for (const PlacedText& word : command) {
    FillIn(word, ScorerWords(scorer, 0));  // Refuses what stands for nothing.
    scorer.command.push_back(word.text);
  }
  const PlacedText pattern = Needed(table.Text("pattern"), table, "pattern");
  CheckPattern(pattern);
  scorer.pattern = pattern.text;
  if (const auto unit = table.Text("unit")) scorer.unit = unit->text;
  if (const auto higher = table.Flag("higher_is_better")) {
    scorer.better = *higher ? "higher" : "lower";
  }
  scorer.rates = table.Rates("rates").value_or(std::vector<int>{});
  scorer.seconds = table.Seconds("timeout_s").value_or(scorer.seconds);
  return scorer;
}

Scorers ScorersIn(const toml::table& file, const std::string& path) {
  const toml::node* const node = file.get("measure");
  if (node == nullptr) return {};
  const toml::table* const tables = node->as_table();
  if (tables == nullptr) {
    throw UsageError{PlaceOf(path, node->source()) + "expected tables [measure.NAME]"};
  }
  const std::string folder = fs::absolute(path).parent_path();
  Scorers scorers;
  for (const auto& [name, value] : *tables) {
    const std::string at = PlaceOf(path, name.source());
    CheckName(at, std::string(name.str()));
    if (!value.is_table()) throw UsageError{at + "expected a table [measure.NAME]"};
    const SuiteTable table(*value.as_table(), path, kKeys);
    scorers.push_back(ScorerOf(std::string(name.str()), table, folder));
  }
  return scorers;
}

}  // namespace

Scorers ReadScorers(const std::string& path) { return ScorersIn(ParseSuite(path), path); }

Scorers UserScorers() {
  const std::string folder = UserFolder("XDG_CONFIG_HOME", ".config");
  if (folder.empty()) return {};
  const std::string path = folder + "/audio_bench/measures.toml";
  std::error_code error;
  if (!fs::exists(path, error)) return {};
  constexpr std::string_view kSections[] = {"measure"};
  const toml::table file = ParseSuite(path);
  const SuiteTable whole(file, path, kSections);  // Refuses all other keys.
  return ScorersIn(file, path);
}

Scorers Together(const Scorers& first, const Scorers& second) {
  Scorers all = second;
  for (const Scorer& each : first) {
    if (FindScorer(second, each.name) == nullptr) all.push_back(each);
  }
  return all;
}

}  // namespace host
