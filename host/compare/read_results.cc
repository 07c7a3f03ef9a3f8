#include "compare/read_results.h"

#include <filesystem>
#include <limits>
#include <unordered_set>

#include "base/usage_error.h"
#include "compare/results_parser.h"
#include "files/regular_file.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// Results of 100,000 cases have some 400 MB.
constexpr size_t kMaxBytes = size_t{1} << 32;

void CheckIds(const ResultSet& set) {
  std::unordered_set<std::string_view> ids;
  for (const ComparedCase& one : set.cases) {
    if (ids.insert(one.id).second) continue;
    throw UsageError{set.origin.path + ": two cases are called " + one.id};
  }
}

}  // namespace

ResultSet ParseResultSet(const std::string& text, const std::string& path) {
  ResultSet set = {.origin = {.path = path}};
  ResultsParser parser(set);
  // The whole text or nothing: what follows a document is a fault as well.
  const bool whole = Json::sax_parse(text, &parser);
  if (!whole || !parser.fault().empty()) throw UsageError{path + ": " + parser.fault()};
  parser.Finish();
  if (!parser.fault().empty()) throw UsageError{path + ": " + parser.fault()};
  CheckIds(set);
  return set;
}

ResultSet ReadResultSet(const std::string& path) {
  std::error_code error;
  std::string file = path;
  if (fs::is_directory(path, error)) {
    file = (fs::path(path) / "results.json").string();
    if (!fs::exists(file, error)) throw UsageError{path + " holds no results.json of a suite"};
  }
  const TextRead read = ReadText(file, kMaxBytes, [] { return true; });
  if (!read.fault.empty()) throw UsageError{"cannot read " + file + ": " + read.fault};
  ResultSet set = ParseResultSet(read.text, file);
  set.origin.path = path;
  return set;
}

}  // namespace host
