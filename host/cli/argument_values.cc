#include "cli/argument_values.h"

#include <algorithm>
#include <string_view>

#include "catalogue/rows.h"

namespace host {

namespace {

using harness::Parameter;

constexpr int kNumbers = 256;  // Those that are tried.

bool IsName(const Parameter& parameter) { return parameter.type.ends_with('*'); }

// A word that fits the type.
std::string AnyWord(const Parameter& parameter) {
  if (parameter.type == "bool") return "true";
  return IsName(parameter) ? "x" : "1";
}

// Whether something comes of these words.
bool IsGood(const CatalogueRow& row, const Arguments& words) {
  const std::vector<std::string_view> views(words.begin(), words.end());
  return harness::ArgumentFault(row, views).empty() && harness::Fruitless(row, views).empty() &&
         harness::Lacking(row, views).empty();
}

}  // namespace

std::vector<std::string> ArgumentValues(const std::string& routine, const Arguments& before) {
  const auto rows = Catalogue();
  const auto row = std::ranges::find(
      rows, routine, [](const CatalogueRow& each) { return each.declared.words.name; });
  if (row == rows.end() || row->declared.run == nullptr) return {};
  const std::vector<Parameter> parameters = harness::Parameters(row->declared.words);
  if (before.size() >= parameters.size()) return {};
  const Parameter& parameter = parameters[before.size()];
  if (parameter.type == "bool") return {"true", "false"};
  if (IsName(parameter)) return {};

  Arguments words;
  for (const Parameter& each : parameters) words.push_back(AnyWord(each));
  std::copy(before.begin(), before.end(), words.begin());
  std::vector<std::string> good;
  for (int number = 0; number < kNumbers; ++number) {
    words[before.size()] = std::to_string(number);
    if (IsGood(*row, words)) good.push_back(words[before.size()]);
  }
  // Where all are taken there is no choice to show.
  return good.size() < kNumbers ? good : std::vector<std::string>();
}

}  // namespace host
