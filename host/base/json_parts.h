#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace host {

// What the JSON documents have in common.

inline constexpr int kSchemaVersion = 2;

// Members stay in the order in which they are added.
using Json = nlohmann::ordered_json;

// A figure with its unit; where it has no finite value, `reason` says why.
Json Figure(std::optional<double> value, const char* unit, const std::string& reason);

// A text that may not be known; where it is empty, `reason` says why.
Json Fact(const std::string& value, const std::string& reason);

// The same for anything else that has no value.
Json NoFact(const std::string& reason);

// A figure that is a whole number.
Json Count(uint64_t value, const char* unit);

// The document, ending in a newline. Bytes that are not UTF-8 are replaced.
std::string JsonText(const Json& json);

}  // namespace host
