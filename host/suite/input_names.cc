#include "suite/input_names.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace.h"

namespace host {

namespace {

bool Answers(const FilePlace& place, const std::string& name) {
  return place.name == name || place.use.name == "{" + name + "}" ||
         place.name.substr(place.name.find_last_of("/\\") + 1) == name;
}

}  // namespace

void CheckInputNames(const SuiteCase& one) {
  const CatalogueRow& row = FindRow(one.routine);
  const std::vector<std::string_view> words(one.arguments.begin(), one.arguments.end());
  const std::vector<FilePlace> places =
      PlaceFiles(harness::Inputs(row, words), row.declared.words.parameters, words, ".");
  std::vector<std::string_view> names;
  for (const FilePlace& place : places) names.push_back(place.name);
  for (const auto& [name, source] : one.inputs) {
    const bool known = std::any_of(places.begin(), places.end(), [&, wanted = name](const auto& p) {
      return Answers(p, wanted);
    });
    if (known) continue;
    const auto alike = NamesAlike(name, names);
    throw UsageError{
        "in: " + one.routine + " reads no \"" + name + "\" with these arguments" +
        (alike.empty() ? "" : "; did you mean \"" + std::string(alike.front()) + "\"?")};
  }
}

}  // namespace host
