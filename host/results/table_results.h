#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "results/result.h"

namespace host {

using harness::ResultTable;

// A table, and what was read of it.
struct TableText {
  ResultTable table;
  std::optional<std::string> text = {};
  std::string reason = {};  // Why there is no text.
};

// The cells of all tables in their order, then the means of their groups.
std::vector<Result> TableResults(std::span<const TableText> tables);

}  // namespace host
