#pragma once

#include <optional>
#include <string_view>

namespace host {

// Takes the number that `text` begins with off it: "12", "-0.5", "1e-3", "nan", "inf". Nothing when
// it begins with none; one that no double holds counts as infinite.
std::optional<double> TakeNumber(std::string_view& text);

}  // namespace host
