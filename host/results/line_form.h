#pragma once

#include <optional>
#include <string_view>

namespace host {

// What a line of a known form says.
struct LineFigures {
  double figure = 0;  // Not finite where the line says so.
  double sum = 0;     // Of all numbers in it.
};

// Reads a whole line of this form (see harness::ResultLine); nothing when it has another one. A
// word counts as a number: "yes" is 1, "no" is 0, any other is none.
std::optional<LineFigures> ReadLine(std::string_view form, std::string_view line);

// A line of the log without the time of day that the engine may put in front of it.
std::string_view WithoutTime(std::string_view line);

}  // namespace host
