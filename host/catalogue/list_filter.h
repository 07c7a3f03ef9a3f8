#pragma once

#include <functional>
#include <string>

#include "catalogue/rows.h"

namespace host {

// Which routines to list: those that every given condition holds for.
struct ListFilter {
  std::string glob = {};   // Of the name, capitals aside: "Test*Reverb*"; empty for all.
  std::string group = {};  // "codec"; empty for all.
  bool available = false;  // Only those that can be run.
};

// Throws UsageError when there is no such group; empty stands for all.
void CheckGroup(const std::string& group);

// Whether a row passes the filter. Throws UsageError when the group is none, or no row passes.
std::function<bool(const CatalogueRow&)> Selector(const ListFilter& filter);

}  // namespace host
