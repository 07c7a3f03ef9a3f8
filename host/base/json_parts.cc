#include "base/json_parts.h"

#include <cmath>

namespace host {

Json Figure(std::optional<double> value, const char* unit, const std::string& reason) {
  if (!value || !std::isfinite(*value)) {
    return {{"value", nullptr}, {"unit", unit}, {"reason", reason}};
  }
  return {{"value", *value}, {"unit", unit}};
}

Json Fact(const std::string& value, const std::string& reason) {
  if (value.empty()) return NoFact(reason);
  return {{"value", value}};
}

Json NoFact(const std::string& reason) { return {{"value", nullptr}, {"reason", reason}}; }

Json Count(uint64_t value, const char* unit) { return {{"value", value}, {"unit", unit}}; }

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace host
