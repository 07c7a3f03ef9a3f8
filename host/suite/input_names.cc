#include "suite/input_names.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace.h"
#include "run/source_of_output.h"

namespace host {

namespace {

[[noreturn]] void Refuse(const SuiteCase& one, const std::string& key, const std::string& doing,
                         const std::string& name, const std::string& alike) {
  throw UsageError{key + ": " + one.routine + " " + doing + " no \"" + name +
                   "\" with these arguments" +
                   (alike.empty() ? "" : "; did you mean \"" + alike + "\"?")};
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
    const auto alike = NamesAlike(name, names);
    Refuse(one, key, doing, name, alike.empty() ? "" : std::string(alike.front()));
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
}

}  // namespace host
