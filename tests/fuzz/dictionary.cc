#include "fuzz/dictionary.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::string_view kDigits = "0123456789abcdefABCDEF";

// What a text in quotes stands for; nothing when it is none, or has no byte.
std::optional<std::string> Unquote(std::string_view quoted) {
  if (quoted.size() < 3 || quoted.front() != '"' || quoted.back() != '"') return std::nullopt;
  quoted = quoted.substr(1, quoted.size() - 2);
  std::string word;
  for (size_t at = 0; at < quoted.size(); ++at) {
    if (quoted[at] == '"') return std::nullopt;
    if (quoted[at] != '\\') {
      word += quoted[at];
      continue;
    }
    const std::string_view rest = quoted.substr(at + 1);
    if (rest.starts_with('\\') || rest.starts_with('"')) {
      word += rest.front();
      at += 1;
    } else if (rest.size() >= 3 && rest[0] == 'x' &&
               rest.substr(1, 2).find_first_not_of(kDigits) == std::string_view::npos) {
      word += static_cast<char>(std::stoi(std::string(rest.substr(1, 2)), nullptr, 16));
      at += 3;
    } else {
      return std::nullopt;
    }
  }
  return word;
}

}  // namespace

std::vector<std::string> ReadDictionary(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": cannot be read");
  std::vector<std::string> words;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line.starts_with('#')) continue;
    const std::optional<std::string> word =
        Unquote(line.substr(std::min(line.find('"'), line.size())));
    if (!word) throw std::runtime_error(path + ", line " + std::to_string(number) + ": no word");
    words.push_back(*word);
  }
  return words;
}
