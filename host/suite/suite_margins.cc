#include "suite/suite_margins.h"

#include <cmath>

#include "base/usage_error.h"
#include "tables/suite_table.h"

namespace host {

SuiteMargins ReadSuiteMargins(const std::string& path) {
  const toml::table suite = ParseSuite(path);
  const toml::node* const node = suite.get("margins");
  if (node == nullptr) return {};
  const toml::table* const table = node->as_table();
  if (table == nullptr) {
    throw UsageError{PlaceOf(path, node->source()) + "expected a table [margins]"};
  }
  SuiteMargins margins;
  for (const auto& [name, value] : *table) {
    const double margin = value.is_number() ? value.value<double>().value_or(-1) : -1;
    if (!std::isfinite(margin) || margin < 0) {
      throw UsageError{PlaceOf(path, value.source()) + "the margin of " + std::string(name.str()) +
                       " must be a number from 0 on"};
    }
    margins.emplace_back(name.str(), margin);
  }
  return margins;
}

}  // namespace host
