#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace host {

// What the JSON documents have in common.

// Members stay in the order in which they are added.
using Json = nlohmann::ordered_json;

// A figure with its unit: {"value": 0.5, "unit": "s"}. Without a finite value it is null, and
// "reason" says why.
Json Figure(std::optional<double> value, const char* unit, const std::string& reason);

// A text that may be unknown: {"value": "text"}. Null, with the reason, when it is empty.
Json Fact(const std::string& value, const std::string& reason);

// Any other value that is unknown: {"value": null, "reason": "..."}.
Json NoFact(const std::string& reason);

// A figure that is a whole number.
Json Count(uint64_t value, const char* unit);

// The document, ending in a newline. Bytes that are not UTF-8 are replaced.
std::string JsonText(const Json& json);

}  // namespace host
