#include "cli/compare_words.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <iterator>
#include <string_view>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "cli/color_option.h"
#include "engines/engine.h"
#include "results/numbers.h"

namespace host {

namespace {

constexpr int kMinResamples = 100;
constexpr int kMaxResamples = 10000000;

// Adds the margin in "si_sdr=0.2". Throws UsageError.
void AddMargin(const std::string& word, std::map<std::string, double>& margins) {
  const size_t equals = word.find('=');
  std::string_view text =
      equals == std::string::npos ? "" : std::string_view(word).substr(equals + 1);
  const auto margin = TakeNumber(text);
  if (!margin || !text.empty() || equals == 0 || !std::isfinite(*margin) || *margin < 0) {
    throw UsageError{"--margin takes NAME=X with X a number from 0 on, not " + word};
  }
  margins[word.substr(0, equals)] = *margin;
}

struct Action {
  std::string_view name;
  BaselineOptions::Action action;
  size_t words;  // After the name.
  std::string_view usage;
};

constexpr Action kActions[] = {
    {"save", BaselineOptions::Action::kSave, 2, "baseline save NAME DIR"},
    {"list", BaselineOptions::Action::kList, 0, "baseline list"},
    {"show", BaselineOptions::Action::kShow, 1, "baseline show NAME"},
    {"remove", BaselineOptions::Action::kRemove, 1, "baseline remove NAME"},
    {"export", BaselineOptions::Action::kExport, 2, "baseline export NAME|DIR FILE"},
};

const Action& ActionCalled(const std::string& word) {
  std::vector<std::string_view> names;
  for (const Action& each : kActions) {
    if (each.name == word) return each;
    names.push_back(each.name);
  }
  const auto alike = NamesAlike(word, names);
  throw UsageError{"baseline cannot \"" + word + "\"; " +
                   (alike.empty() ? "there are save, list, show, remove and export"
                                  : "did you mean " + std::string(alike.front()) + "?")};
}

}  // namespace

CompareWords::CompareWords(CLI::App& app, CompareOptions& compare, BaselineOptions& baseline)
    : m_compare(compare), m_baseline(baseline) {
  AddCompare(app);
  AddBaseline(app);
}

void CompareWords::AddCompare(CLI::App& app) {
  CLI::App& compare = *app.add_subcommand("compare", "Whether B is better or worse than A");
  compare.footer(
      "A and B: the folders of two suites' results, results.json, the reports of two runs, a file\n"
      "of baseline export, or baseline:NAME. With --bench or --engine the words are those of a "
      "suite,\n"
      "which runs first on both; what follows \"--\" is handed on to it as it is.\n"
      "Exit codes: 0 nothing is worse, 1 something is, 2 they cannot be compared.");
  compare.add_option("SETS", m_sets, "What to compare, the reference first")->type_name("");
  compare.add_option("--margin", m_margins, "A difference of this measure that does not matter")
      ->type_name("NAME=X")
      ->allow_extra_args(false);
  compare.add_option("--resamples", m_compare.rules.resamples, "Of the bootstrap (10000)")
      ->type_name("N")
      ->check(CLI::Range(kMinResamples, kMaxResamples));
  compare.add_flag("--times", m_compare.rules.times, "Times decide as well");
  compare.add_flag("--record-missing", m_compare.recordMissing,
                   "A reference that is not there is made of B");
  compare
      .add_option("--bench", m_benches,
                  "Run the suite with this audio_bench (twice: A, then B; once: B is this one)")
      ->type_name("FILE")
      ->allow_extra_args(false);
  compare
      .add_option(
          "--engine", m_engines,
          "Run the suite on this engine library, or on \"desktop\" (twice: A, then B; once: "
          "A is \"desktop\")")
      ->type_name("LIB.so")
      ->allow_extra_args(false);
  compare.add_option("--out", m_compare.out, "Keep what the suite leaves in DIR/a and DIR/b")
      ->type_name("DIR");
  for (const auto& [name, path] : {std::pair{"--json", &m_compare.json},
                                   {"--csv", &m_compare.csv},
                                   {"--junit", &m_compare.junit}}) {
    compare.add_option(name, *path, "Also write the comparison in this form; - is stdout")
        ->type_name("FILE");
  }
  AddColor(compare, m_compare.color);
}

void CompareWords::AddBaseline(CLI::App& app) {
  CLI::App& baseline =
      *app.add_subcommand("baseline", "Results kept under a name, to compare with");
  std::string usages = "Figures, verdicts, guards and hashes are kept, no audio:\n";
  for (const Action& each : kActions) usages += "  audio_bench " + std::string(each.usage) + "\n";
  usages.pop_back();
  baseline.footer(usages);
  baseline.add_option("WORDS", m_action, "What to do, and with what")->type_name("");
}

void CompareWords::TakeCompare(std::span<const std::string> literal) {
  for (const std::string& word : m_margins) AddMargin(word, m_compare.rules.margins);
  if (m_benches.empty() && m_engines.empty()) {
    if (!literal.empty()) throw UsageError{"unexpected " + literal.front()};
    if (!m_compare.out.empty()) throw UsageError{"--out goes with --bench or --engine"};
    if (m_sets.size() != 2) {
      throw UsageError{"compare takes two results, the reference first, not " +
                       std::to_string(m_sets.size()) + " (audio_bench compare --help)"};
    }
    m_compare.sets = m_sets;
    return;
  }
  if (!m_benches.empty() && !m_engines.empty()) {
    throw UsageError{
        "--bench and --engine exclude each other; words for the suite of both, such as "
        "--engine, follow \"--\""};
  }
  TakeBenches();
  m_compare.suite = m_sets;
  m_compare.suite.insert(m_compare.suite.end(), literal.begin(), literal.end());
}

void CompareWords::TakeBenches() {
  const bool engines = m_benches.empty();
  const std::string option = engines ? "--engine" : "--bench";
  std::vector<std::string>& given = engines ? m_engines : m_benches;
  if (given.size() > 2) throw UsageError{option + " is there more than twice"};
  if (m_compare.recordMissing) {
    throw UsageError{"--record-missing and " + option + " exclude each other"};
  }
  const std::string self = "/proc/self/exe";
  if (engines && given.size() == 1) given.emplace(given.begin(), kDesktopEngine);
  if (!engines && given.size() == 1) given.push_back(self);
  for (const std::string& each : given) {
    m_compare.benches.push_back(engines ? SuiteBench{self, each} : SuiteBench{each});
  }
}

void CompareWords::TakeBaseline() {
  if (m_action.empty()) throw UsageError{"baseline what? (audio_bench baseline --help)"};
  const Action& action = ActionCalled(m_action.front());
  if (m_action.size() != action.words + 1) {
    throw UsageError{"it is: audio_bench " + std::string(action.usage)};
  }
  m_baseline.action = action.action;
  if (action.words > 0) m_baseline.name = m_action[1];
  if (action.words > 1) m_baseline.path = m_action[2];
}

}  // namespace host
