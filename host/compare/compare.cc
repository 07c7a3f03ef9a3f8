#include "compare/compare.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <unordered_set>

#include "base/counted.h"
#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "compare/baseline.h"
#include "compare/comparison_forms.h"
#include "compare/read_results.h"
#include "engines/engine.h"
#include "process/limits.h"
#include "process/signals.h"
#include "report/output.h"
#include "report/result_file.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr double kPatience = 600;  // Seconds for the reader of a pipe.

ResultSet ReadSet(const std::string& name) {
  ResultSet set = ReadResultSet(ExistingResults(name));
  set.origin.path = name;
  return set;
}

// The files that the forms go to, made sure of before the work.
class Forms {
 public:
  explicit Forms(const CompareOptions& options) {
    const std::pair<const std::string&, Form> all[] = {{options.json, JsonComparison},
                                                       {options.csv, CsvComparison},
                                                       {options.junit, JunitComparison}};
    bool stdoutTaken = false;
    for (const auto& [path, form] : all) {
      if (path.empty()) continue;
      if (path == "-" && stdoutTaken) {
        throw UsageError{"only one of --json, --csv and --junit can go to standard output"};
      }
      stdoutTaken = stdoutTaken || path == "-";
      m_outputs.push_back({std::make_unique<ResultFile>(path, Now() + kPatience), form});
    }
  }

  int Write(const Comparison& comparison) {
    const HostSignals signals;
    Limits limits(signals, kPatience);
    int exitCode = exit_code::kPass;
    for (const Output& each : m_outputs) {
      const int written = each.file->Write(each.form(comparison), limits);
      if (written != exit_code::kPass) exitCode = written;
    }
    return exitCode;
  }

 private:
  using Form = std::string (*)(const Comparison&);
  struct Output {
    std::unique_ptr<ResultFile> file;
    Form form;
  };
  std::vector<Output> m_outputs;
};

// A reference that is not there at all is made of B; then there is nothing to compare with.
bool RecordWhole(const std::string& name, const ResultSet& b) {
  const std::string place = PlaceOfResults(name);
  std::error_code error;
  if (fs::exists(place, error)) return false;
  if (place != name) fs::create_directories(fs::path(place).parent_path(), error);
  WriteBaseline(b, place);
  return true;
}

// Adds the cases that only B has to a reference that is one file.
size_t RecordNew(const std::string& name, ResultSet reference, const ResultSet& b) {
  std::unordered_set<std::string> there;
  for (const ComparedCase& one : reference.cases) there.insert(one.id);
  // Both texts and kinds of B get numbers of the reference.
  std::vector<int> kinds;
  for (const MeasureKind& kind : b.kinds) {
    kinds.push_back(static_cast<int>(reference.kinds.size()));
    reference.kinds.push_back(kind);
  }
  const auto text = [&](int number) {
    return number == TextTable::kNone ? number : reference.texts.Number(b.texts.Text(number));
  };
  size_t added = 0;
  for (const ComparedCase& one : b.cases) {
    if (there.contains(one.id)) continue;
    ComparedCase copy = one;
    for (ComparedFigure& each : copy.figures) {
      each.kind = kinds[static_cast<size_t>(each.kind)];
      each.file = text(each.file);
    }
    for (ComparedGuard& each : copy.guards) each = {text(each.name), text(each.file)};
    for (ComparedOutput& each : copy.outputs) each.name = text(each.name);
    reference.cases.push_back(std::move(copy));
    ++added;
  }
  if (added > 0) WriteBaseline(reference, PlaceOfResults(name));
  return added;
}

// Whether cases can be added: a baseline, or a file that is one. The results of a suite stay as its
// run has left them.
bool CanRecordIn(const std::string& name) {
  std::error_code error;
  return !fs::is_directory(PlaceOfResults(name), error) &&
         fs::path(name).filename() != "results.json";
}

}  // namespace

int Compare(const CompareOptions& options) {
  Forms forms(options);
  std::optional<BenchSuites> suites;
  std::vector<std::string> sets = options.sets;
  if (!options.benches.empty()) {
    // One that cannot be taken is refused before the other one has run for hours.
    for (const SuiteBench& bench : options.benches) FindEngine(bench.engine);
    suites.emplace(options.benches, options.suite, options.out);
    sets = {suites->a(), suites->b()};
  }
  const ResultSet b = ReadSet(sets[1]);
  if (options.recordMissing && RecordWhole(sets[0], b)) {
    return PrintResults("recorded: " + Printable(sets[0]) + " is now what " + Printable(sets[1]) +
                        " holds, " + Counted(b.cases.size(), "case") + "\n");
  }
  const ResultSet a = ReadSet(sets[0]);
  const Comparison comparison = CompareResults(a, b, options.rules);
  std::string text = TextComparison(comparison, Paint(options.color, STDOUT_FILENO));
  if (options.recordMissing && CanRecordIn(sets[0])) {
    const size_t added = RecordNew(sets[0], a, b);
    if (added > 0) {
      text += "recorded: " + std::to_string(added) + " more cases in " + Printable(sets[0]) + "\n";
    }
  }
  const int printed = PrintResults(text);
  if (suites) suites->EndTemporary(IsWorse(comparison.verdict));
  const int written = forms.Write(comparison);
  if (written != exit_code::kPass) return written;
  if (printed != exit_code::kPass) return printed;
  return IsWorse(comparison.verdict) ? exit_code::kFail : exit_code::kPass;
}

}  // namespace host
