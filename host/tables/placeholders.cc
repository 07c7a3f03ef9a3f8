#include "tables/placeholders.h"

#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"

namespace host {

namespace {

std::string Unknown(const std::string& name, const PlaceholderValues& values) {
  std::vector<std::string_view> names;
  for (const auto& [each, value] : values) names.push_back(each);
  std::string text = "{" + name + "} stands for nothing";
  if (const auto alike = NamesAlike(name, names); !alike.empty()) {
    return text + "; did you mean {" + std::string(alike.front()) + "}?";
  }
  text += names.empty() ? ": there is no each in this case" : "; there are ";
  for (const std::string_view each : names) {
    text += (each == names.front() ? "{" : ", {") + std::string(each) + "}";
  }
  return text + " (a brace itself is written twice)";
}

}  // namespace

std::string FillIn(const PlacedText& text, const PlaceholderValues& values) {
  std::string filled;
  const std::string& from = text.text;
  for (size_t at = 0; at < from.size(); ++at) {
    const char letter = from[at];
    const bool twice = at + 1 < from.size() && from[at + 1] == letter;
    if (letter != '{' && letter != '}') {
      filled += letter;
    } else if (twice) {
      filled += letter;
      ++at;
    } else {
      const size_t end = letter == '{' ? from.find('}', at) : std::string::npos;
      if (end == std::string::npos) {
        throw UsageError{text.at + "\"" + from +
                         "\" has a brace without its other one (a brace itself is written twice)"};
      }
      const std::string name = from.substr(at + 1, end - at - 1);
      const auto value = values.find(name);
      if (value == values.end()) throw UsageError{text.at + Unknown(name, values)};
      filled += value->second;
      at = end;
    }
  }
  return filled;
}

}  // namespace host
