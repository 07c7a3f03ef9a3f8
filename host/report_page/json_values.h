#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"

namespace host {

// What an object of results or of a report holds, whatever its types are: files that others may
// have written.

// Empty for what is no text.
std::string TextOf(const Json& json, const char* key);

// The text or number in an object of a report: {"value": 0.5, "unit": "s"}.
std::string FactText(const Json& json, const char* key);
std::optional<double> FactNumber(const Json& json, const char* key);

std::optional<double> NumberOf(const Json& json, const char* key);
bool FlagOf(const Json& json, const char* key);

// An empty list for what is none. What is in it may be no object; nothing is in what is none.
const Json::array_t& ListOf(const Json& json, const char* key);

// Its texts only.
std::vector<std::string> TextsOf(const Json& json, const char* key);

// The value as it is, null where there is none.
const Json& ValueOf(const Json& json, const char* key);

Json TextOrNull(const std::string& text);

// Words as one line that a shell reads as them.
std::string CommandLineOf(const std::vector<std::string>& words);

}  // namespace host
