#include "report_page/json_values.h"

#include "base/shell_word.h"

namespace host {

const Json& ValueOf(const Json& json, const char* key) {
  static const Json kNull;
  if (!json.is_object()) return kNull;
  const auto there = json.find(key);
  return there == json.end() ? kNull : *there;
}

std::string TextOf(const Json& json, const char* key) {
  const Json& value = ValueOf(json, key);
  return value.is_string() ? value.get<std::string>() : "";
}

std::string FactText(const Json& json, const char* key) {
  return TextOf(ValueOf(json, key), "value");
}

std::optional<double> FactNumber(const Json& json, const char* key) {
  return NumberOf(ValueOf(json, key), "value");
}

std::optional<double> NumberOf(const Json& json, const char* key) {
  const Json& value = ValueOf(json, key);
  return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

bool FlagOf(const Json& json, const char* key) {
  const Json& value = ValueOf(json, key);
  return value.is_boolean() && value.get<bool>();
}

const Json::array_t& ListOf(const Json& json, const char* key) {
  static const Json::array_t kEmpty;
  const Json& list = ValueOf(json, key);
  return list.is_array() ? list.get_ref<const Json::array_t&>() : kEmpty;
}

std::vector<std::string> TextsOf(const Json& json, const char* key) {
  std::vector<std::string> texts;
  for (const Json& each : ListOf(json, key)) {
    if (each.is_string()) texts.push_back(each.get<std::string>());
  }
  return texts;
}

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

std::string CommandLineOf(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + ShellWord(word);
  return line;
}

}  // namespace host
