#include "suite/matches.h"

#include <glob.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/usage_error.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// A word that a name stands for, and its path; of a list of words both are the word.
using Value = std::pair<std::string, std::string>;

// The path with what the shell's patterns take for special taken as it is.
std::string Literal(const std::string& path) {
  std::string text;
  for (const char letter : path) {
    if (letter == '*' || letter == '?' || letter == '[' || letter == '\\') text += '\\';
    text += letter;
  }
  return text;
}

// A folder's name, or a file's without its extension.
std::string Word(const fs::path& path) {
  std::error_code error;
  const fs::path named = path.has_filename() ? path : path.parent_path();
  return fs::is_directory(path, error) ? named.filename() : named.stem();
}

std::vector<Value> Matches(const PlacedText& pattern, const std::string& folder) {
  const bool absolute = pattern.text.starts_with('/');
  const std::string start = absolute ? "" : folder + "/";
  glob_t found = {};
  const int status = glob((Literal(start) + pattern.text).c_str(), GLOB_NOSORT, nullptr, &found);
  std::vector<Value> values;
  for (size_t i = 0; status == 0 && i < found.gl_pathc; ++i) {
    const std::string path = found.gl_pathv[i];
    values.emplace_back(Word(path), path.substr(start.size()));
  }
  globfree(&found);
  std::sort(values.begin(), values.end(),
            [](const Value& a, const Value& b) { return a.second < b.second; });
  if (!values.empty()) return values;
  throw UsageError{pattern.at + "\"" + pattern.text + "\" matches nothing in " + folder};
}

std::vector<Value> ValuesOf(const Each& each, const std::string& folder) {
  if (!each.words) return Matches(each.values.front(), folder);
  std::vector<Value> values;
  for (const PlacedText& word : each.values) values.emplace_back(word.text, word.text);
  return values;
}

}  // namespace

std::vector<PlaceholderValues> Combinations(const std::vector<Each>& names,
                                            const std::string& folder) {
  std::vector<PlaceholderValues> all = {{}};
  for (const Each& each : names) {
    std::vector<PlaceholderValues> longer;
    const std::vector<Value> values = ValuesOf(each, folder);
    for (const PlaceholderValues& start : all) {
      for (const auto& [word, path] : values) {
        longer.push_back(start);
        longer.back()[each.name] = word;
        longer.back()[each.name + ".path"] = path;
      }
    }
    all = std::move(longer);
  }
  return all;
}

}  // namespace host
