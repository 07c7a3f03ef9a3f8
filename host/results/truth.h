#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What a figure or a result should be: that of this name, in this unit.
struct Truth {
  std::string name = {};
  std::string unit = {};  // Empty for a bare number.
  double value = 0;

  bool operator==(const Truth&) const = default;
};

using Truths = std::vector<Truth>;

// The truth in a text like "60 ms" or "1"; nothing when it is none.
std::optional<Truth> ParseTruth(const std::string& name, std::string_view text);

// Nothing where none is of that name and unit.
std::optional<double> FindTruth(const Truths& truths, std::string_view name, std::string_view unit);

}  // namespace host
