#include "results/truth.h"

#include <charconv>
#include <cmath>

namespace host {

std::optional<Truth> ParseTruth(const std::string& name, std::string_view text) {
  Truth truth = {.name = name};
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), truth.value);
  if (error != std::errc() || !std::isfinite(truth.value)) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(rest - text.data()));
  if (text.empty()) return truth;
  if (text.front() != ' ' || text.size() < 2 || text[1] == ' ') return std::nullopt;
  truth.unit = text.substr(1);
  return truth;
}

std::optional<double> FindTruth(const Truths& truths, std::string_view name,
                                std::string_view unit) {
  for (const Truth& each : truths) {
    if (each.name == name && each.unit == unit) return each.value;
  }
  return std::nullopt;
}

}  // namespace host
