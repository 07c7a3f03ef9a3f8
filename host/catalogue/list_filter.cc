#include "catalogue/list_filter.h"

#include <fnmatch.h>

#include <algorithm>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"

namespace host {

namespace {

bool Passes(const CatalogueRow& row, const ListFilter& filter) {
  if (filter.available && !CanBeRun(row, filter.only)) return false;
  if (!filter.group.empty() && GroupWord(row.group) != filter.group) return false;
  const std::string name(row.declared.words.name);
  return filter.glob.empty() || fnmatch(filter.glob.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

}  // namespace

void CheckGroup(const std::string& group) {
  std::string words;
  for (const Group each : kGroups) {
    if (group.empty() || GroupWord(each) == group) return;
    words += words.empty() ? "" : ", ";
    words += GroupWord(each);
  }
  throw UsageError{"no group is called \"" + group + "\"; there are " + words};
}

std::function<bool(const CatalogueRow&)> Selector(const ListFilter& filter) {
  CheckGroup(filter.group);
  const auto passes = [filter](const CatalogueRow& row) { return Passes(row, filter); };
  const auto rows = Catalogue();
  if (std::any_of(rows.begin(), rows.end(), passes)) return passes;
  if (filter.glob.empty()) throw UsageError{"no routine is like that"};
  throw UsageError{"no routine is like \"" + filter.glob + "\"" + Suggestion(filter.glob)};
}

}  // namespace host
