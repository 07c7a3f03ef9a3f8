#include "results/line_form.h"

#include <limits>

#include "results/numbers.h"

namespace host {

namespace {

double TakeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(word.size());
  if (word == "yes") return 1;
  return word == "no" ? 0 : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

std::optional<LineFigures> ReadLine(std::string_view form, std::string_view line) {
  LineFigures figures;
  for (const char letter : form) {
    if (letter == '#' || letter == '*') {
      const std::optional<double> number = TakeNumber(line);
      if (!number) return std::nullopt;
      figures.sum += *number;
      if (letter == '#') figures.figure = *number;
    } else if (letter == '?') {
      figures.figure = TakeWord(line);
    } else if (line.starts_with(letter)) {
      line.remove_prefix(1);
    } else {
      return std::nullopt;
    }
  }
  if (!line.empty()) return std::nullopt;
  return figures;
}

std::string_view WithoutTime(std::string_view line) {
  constexpr std::string_view kTime = "00:00:00.000 ";
  if (line.size() < kTime.size()) return line;
  for (size_t i = 0; i < kTime.size(); ++i) {
    const bool digit = line[i] >= '0' && line[i] <= '9';
    if (kTime[i] == '0' ? !digit : line[i] != kTime[i]) return line;
  }
  return line.substr(kTime.size());
}

}  // namespace host
