#include "suite/input_names.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace.h"
#include "measure/measure_file.h"
#include "results/result.h"
#include "run/source_of_output.h"

namespace host {

namespace {

constexpr size_t kMaxNames = 5;

// What to write instead: the name that is like it, or all names where they are few.
std::string Instead(const std::string& name, const std::vector<std::string_view>& names,
                    const std::string& doing) {
  const auto alike = NamesAlike(name, names);
  if (!alike.empty()) return "; did you mean \"" + std::string(alike.front()) + "\"?";
  if (names.empty() || names.size() > kMaxNames) return "";
  std::string text = "; it " + doing;
  for (const std::string_view each : names) {
    text.append(each == names.front() ? " \"" : ", \"").append(each).append("\"");
  }
  return text;
}

// Throws UsageError when the routine has no file of one of the names. `doing`: "reads", "writes".
void CheckNames(const SuiteCase& one, const std::vector<FilePlace>& places,
                const NamedSources& sources, const std::string& key, const std::string& doing) {
  std::vector<std::string_view> names;
  for (const FilePlace& place : places) names.push_back(place.name);
  for (const auto& [name, source] : sources) {
    const bool known =
        std::any_of(places.begin(), places.end(),
                    [wanted = name](const auto& place) { return IsCalled(place, wanted); });
    if (known) continue;
    std::string text = key + ": " + one.routine;
    text.append(" ").append(doing).append(" no \"").append(name);
    text.append("\" with these arguments").append(Instead(name, names, doing));
    throw UsageError{text};
  }
}

// Throws UsageError when no figure of that name and unit comes out of the routine. The names in its
// tables are known only when they are there.
void CheckTruths(const SuiteCase& one, const CatalogueRow& row,
                 std::span<const std::string_view> words) {
  if (row.tables != nullptr && !row.tables(harness::Outputs(row, words)).empty()) return;
  for (const Truth& truth : one.truths) {
    std::string units;
    bool known = false;
    const auto consider = [&](std::string_view name, std::string_view unit) {
      if (name != truth.name) return;
      known = known || unit == truth.unit;
      units += (units.empty() ? "" : " or ") + (unit.empty() ? "a bare number" : std::string(unit));
    };
    if (const auto unit = UnitOfMeasure(truth.name)) consider(truth.name, *unit);
    for (const Scorer& each : one.scorers) consider(each.name, each.unit);
    for (const harness::ResultLine& each : row.results) consider(each.name, each.unit);
    consider(kLength, "s");
    consider("speech_share", "%");
    if (known) continue;
    std::string text = "truth: " + one.routine + " has no figure \"" + truth.name + "\"";
    if (!units.empty()) {
      const std::string unit = truth.unit.empty() ? "without a unit" : "in " + truth.unit;
      text.append(" ").append(unit).append("; ").append(truth.name).append(" is in ").append(units);
    }
    throw UsageError{text};
  }
}

}  // namespace

void CheckFileNames(const SuiteCase& one) {
  const CatalogueRow& row = FindRow(one.routine);
  const std::vector<std::string_view> words(one.arguments.begin(), one.arguments.end());
  const auto places = [&](const std::vector<FileUse>& uses) {
    return PlaceFiles(uses, row.declared.words.parameters, words, ".");
  };
  CheckNames(one, places(harness::Inputs(row, words)), one.inputs, "in", "reads");
  const std::vector<FilePlace> outputs = places(harness::Outputs(row, words));
  CheckNames(one, outputs, one.reference, "reference", "writes");
  CheckNames(one, outputs, one.far, "far", "writes");
  CheckNames(one, outputs, one.near, "near", "writes");
  CheckTruths(one, row, words);
}

}  // namespace host
