#include "report/result_lines.h"

#include "base/printable.h"
#include "base/units.h"

namespace host {

namespace {

constexpr size_t kMaxLines = 20;

std::string Line(const Result& result) {
  std::string line = "  result  " + Printable(result.name) + "  ";
  if (result.value) line += Amount(*result.value, result.unit);
  if (!result.reason.empty()) line += (result.value ? ", " : "none: ") + result.reason;
  return line + "\n";
}

}  // namespace

std::string ResultLines(const std::vector<Result>& results, const std::string& others) {
  std::vector<const Result*> told;
  for (const Result& result : results) {
    if (result.name != kLength) told.push_back(&result);
  }
  const size_t first = told.size() > kMaxLines ? told.size() - kMaxLines : 0;
  std::string lines;
  for (size_t i = first; i < told.size(); ++i) lines += Line(*told[i]);
  if (first > 0) lines += "          and " + std::to_string(first) + " more " + others + "\n";
  return lines;
}

}  // namespace host
