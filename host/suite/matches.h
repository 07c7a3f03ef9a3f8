#pragma once

#include <string>
#include <vector>

#include "tables/placeholders.h"
#include "tables/suite_table.h"

namespace host {

// All combinations of what the names go through; the first name changes last. Patterns are looked
// up in `folder`, in the order of their bytes. Throws UsageError when a pattern matches nothing.
std::vector<PlaceholderValues> Combinations(const std::vector<Each>& names,
                                            const std::string& folder);

}  // namespace host
