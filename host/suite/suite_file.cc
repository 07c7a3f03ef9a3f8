#include "suite/suite_file.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

#include "base/usage_error.h"
#include "measure/measure_file.h"
#include "measure/scorer_tables.h"
#include "suite/matches.h"
#include "tables/placeholders.h"
#include "tables/suite_table.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSections[] = {"defaults", "margins", "measure", "case"};
// What a case says, and what `defaults` may say for all of them.
constexpr std::string_view kCaseKeys[] = {
    "id",       "routine",   "arguments", "in",       "each",   "tags",   "known",
    "after",    "cluster",   "timeout_s", "linger_s", "strict", "repeat", "same_bytes",
    "measures", "reference", "far",       "near",     "truth"};
constexpr std::string_view kDefaultKeys[] = {
    "routine", "arguments",  "in",       "tags",      "cluster", "timeout_s", "linger_s", "strict",
    "repeat",  "same_bytes", "measures", "reference", "far",     "near",      "truth"};

// A table, and another one that speaks where it is silent.
struct CaseTables {
  const SuiteTable& own;
  const SuiteTable* defaults;

  template <typename Reader>
  auto Get(Reader reader) const {
    auto value = reader(own);
    if (!value && defaults != nullptr) value = reader(*defaults);
    return value;
  }
  auto Text(std::string_view key) const {
    return Get([key](const SuiteTable& table) { return table.Text(key); });
  }
  auto Texts(std::string_view key) const {
    return Get([key](const SuiteTable& table) { return table.Texts(key); });
  }
  auto TextsByName(std::string_view key) const {
    return Get([key](const SuiteTable& table) { return table.TextsByName(key); });
  }
  auto Seconds(std::string_view key) const {
    return Get([key](const SuiteTable& table) { return table.Seconds(key); });
  }
  bool Flag(std::string_view key) const {
    return Get([key](const SuiteTable& table) { return table.Flag(key); }).value_or(false);
  }
};

PlacedText Needed(const std::optional<PlacedText>& text, const CaseTables& tables,
                  const char* key) {
  if (text && !text->text.empty()) return *text;
  throw UsageError{tables.own.at() + "this case is without its " + key};
}

// Why an id cannot be the name of a folder; empty when it can.
std::string IdFault(const std::string& id) {
  constexpr size_t kMaxIdBytes = 200;
  if (id.empty()) return "an id is empty";
  if (id.size() > kMaxIdBytes) {
    return "an id is longer than " + std::to_string(kMaxIdBytes) + " bytes: " + id;
  }
  const bool control = std::any_of(id.begin(), id.end(),
                                   [](unsigned char byte) { return byte < ' ' || byte == 127; });
  if (control || id.find('/') != std::string::npos || id.starts_with('.')) {
    return "the id \"" + id +
           "\" is no name of a folder: it begins with a dot, or holds / or a "
           "control character";
  }
  return "";
}

std::string InFolder(const std::string& folder, const std::string& path) {
  return path.starts_with('/') ? path : (fs::path(folder) / path).string();
}

// Names of measures, each of which there is. `scorers` are those of the suite; where they are not
// enough, those of the user are added.
std::vector<std::string> MeasuresOf(const CaseTables& tables, Scorers& scorers) {
  std::vector<std::string> names;
  for (const PlacedText& name : tables.Texts("measures").value_or(std::vector<PlacedText>{})) {
    const auto all = MeasureNames();
    const bool own = std::ranges::find(all, name.text) != all.end();
    if (!own && FindScorer(scorers, name.text) == nullptr) {
      scorers = Together(UserScorers(), scorers);
    }
    try {
      CheckMeasureName(name.text, scorers);
    } catch (const UsageError& error) {
      throw UsageError{name.at + error.message};
    }
    names.push_back(name.text);
  }
  return names;
}

Scorers NamedOnes(const Scorers& scorers, const std::vector<std::string>& names) {
  Scorers named;
  for (const Scorer& each : scorers) {
    if (std::ranges::find(names, each.name) != names.end()) named.push_back(each);
  }
  return named;
}

Truth TruthOf(const std::string& name, const PlacedText& text) {
  if (auto truth = ParseTruth(name, text.text)) return *truth;
  throw UsageError{text.at + "the truth of " + name +
                   " must be a number and its unit, \"60 ms\", not \"" + text.text + "\""};
}

using TextsWithNames = std::vector<std::pair<PlacedText, PlacedText>>;

// The cases of one table [[case]].
class Expansion {
 public:
  Expansion(const CaseTables& tables, const std::string& folder, Scorers& scorers)
      : m_folder(folder),
        m_each(tables.own.AllOf("each")),
        m_id(Needed(tables.own.Text("id"), tables, "id")),
        m_routine(Needed(tables.Text("routine"), tables, "routine")),
        m_known(tables.own.Text("known")),
        m_cluster(tables.Text("cluster")),
        m_inputs(tables.TextsByName("in")),
        m_measures(MeasuresOf(tables, scorers)),
        m_scorers(NamedOnes(scorers, m_measures)),
        m_reference(tables.TextsByName("reference")),
        m_far(tables.TextsByName("far")),
        m_near(tables.TextsByName("near")),
        m_truths(tables.TextsByName("truth")),
        m_arguments(tables.Texts("arguments")),
        m_tags(tables.Texts("tags")),
        m_after(tables.own.Texts("after")),
        m_timeout(tables.Seconds("timeout_s")),
        m_linger(tables.Seconds("linger_s")),
        m_strict(tables.Flag("strict")),
        m_sameBytes(tables.Flag("same_bytes")),
        m_repeat(tables.Get([](const SuiteTable& table) { return table.Count("repeat"); })) {}

  // Adds the cases at the end of the list.
  void AddTo(std::vector<SuiteCase>& cases) const {
    auto combinations = Combinations(m_each, m_folder);
    // At once, because while a list grows there are two of it.
    const size_t size =
        cases.size() + combinations.size() * static_cast<size_t>(m_repeat.value_or(1));
    if (size > cases.capacity()) cases.reserve(std::max(size, 2 * cases.capacity()));
    for (PlaceholderValues& values : combinations) {
      SuiteCase one = Case(values);
      values = {};  // Makes room for the next ones.
      if (!m_repeat) {
        cases.push_back(std::move(one));
        continue;
      }
      for (int i = 1; i <= *m_repeat; ++i) {
        cases.push_back(one);
        cases.back().id = one.id + "-" + std::to_string(i);
        if (m_sameBytes && i > 1) cases.back().sameAs = one.id + "-1";
      }
    }
  }

 private:
  SuiteCase Case(const PlaceholderValues& values) const {
    const auto fill = [&](const std::optional<PlacedText>& text) {
      return text ? FillIn(*text, values) : std::string();
    };
    const auto fillAll = [&](const std::optional<std::vector<PlacedText>>& texts) {
      std::vector<std::string> filled;
      if (!texts) return filled;
      for (const PlacedText& text : *texts) filled.push_back(FillIn(text, values));
      return filled;
    };
    SuiteCase one = {.id = fill(m_id), .routine = fill(m_routine)};
    if (const std::string fault = IdFault(one.id); !fault.empty()) {
      throw UsageError{m_id.at + fault};
    }
    one.arguments = fillAll(m_arguments);
    const auto fillFiles = [&](const std::optional<TextsWithNames>& files) {
      NamedSources filled;
      for (const auto& [name, file] : files.value_or(TextsWithNames{})) {
        filled.emplace_back(FillIn(name, values), InFolder(m_folder, FillIn(file, values)));
      }
      return filled;
    };
    one.inputs = fillFiles(m_inputs);
    one.measures = m_measures;
    one.scorers = m_scorers;
    one.reference = fillFiles(m_reference);
    one.far = fillFiles(m_far);
    one.near = fillFiles(m_near);
    for (const auto& [name, text] : m_truths.value_or(TextsWithNames{})) {
      one.truths.push_back(TruthOf(FillIn(name, values), {FillIn(text, values), text.at}));
    }
    one.tags = fillAll(m_tags);
    one.known = fill(m_known);
    one.cluster = fill(m_cluster);
    one.after = fillAll(m_after);
    one.timeout = m_timeout;
    one.linger = m_linger;
    one.strict = m_strict;
    one.at = m_id.at;
    return one;
  }

  std::string m_folder;
  std::vector<Each> m_each;
  PlacedText m_id;
  PlacedText m_routine;
  std::optional<PlacedText> m_known;
  std::optional<PlacedText> m_cluster;
  std::optional<TextsWithNames> m_inputs;
  std::vector<std::string> m_measures;
  Scorers m_scorers;
  std::optional<TextsWithNames> m_reference;
  std::optional<TextsWithNames> m_far;
  std::optional<TextsWithNames> m_near;
  std::optional<TextsWithNames> m_truths;
  std::optional<std::vector<PlacedText>> m_arguments;
  std::optional<std::vector<PlacedText>> m_tags;
  std::optional<std::vector<PlacedText>> m_after;
  std::optional<double> m_timeout;
  std::optional<double> m_linger;
  bool m_strict;
  bool m_sameBytes;
  std::optional<int> m_repeat;
};

// The tables [[case]] of a suite.
const toml::array& CaseTablesOf(const toml::table& suite, const std::string& path) {
  const toml::node* const node = suite.get("case");
  if (node == nullptr) throw UsageError{path + ":1:1: expected at least one [[case]]"};
  const toml::array* const cases = node->as_array();
  if (cases == nullptr || cases->empty() || !cases->is_homogeneous<toml::table>()) {
    throw UsageError{PlaceOf(path, node->source()) + "expected tables [[case]]"};
  }
  return *cases;
}

}  // namespace

std::vector<SuiteCase> ReadSuite(const std::string& path) {
  const toml::table suite = ParseSuite(path);
  const SuiteTable top(suite, path, kSections);
  const std::string folder =
      fs::path(path).parent_path().empty() ? "." : fs::path(path).parent_path();

  std::optional<SuiteTable> defaults;
  if (const toml::node* const node = suite.get("defaults")) {
    if (!node->is_table()) {
      throw UsageError{PlaceOf(path, node->source()) + "expected a table [defaults]"};
    }
    defaults.emplace(*node->as_table(), path, kDefaultKeys);
  }
  Scorers scorers = ReadScorers(path);
  std::vector<SuiteCase> cases;
  for (const toml::node& node : CaseTablesOf(suite, path)) {
    const SuiteTable own(*node.as_table(), path, kCaseKeys);
    Expansion({own, defaults ? &*defaults : nullptr}, folder, scorers).AddTo(cases);
  }
  for (size_t i = 0; i < cases.size(); ++i) cases[i].index = i;
  return cases;
}

}  // namespace host
