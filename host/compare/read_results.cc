#include "compare/read_results.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <unordered_set>

#include "base/usage_error.h"
#include "files/file_bytes.h"
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

// The rest of what is checked after a document has been read; `whole` is false where it was not.
void Finish(bool whole, ResultsParser& parser, const ResultSet& set) {
  if (whole && parser.fault().empty()) parser.Finish();
  if (!parser.fault().empty()) throw UsageError{set.origin.path + ": " + parser.fault()};
  CheckIds(set);
}

ResultSet ReadFile(const std::string& path, Json::json_sax_t* listener, KeptResults kept) {
  const std::string file = ResultsFile(path);
  const std::unique_ptr<FILE, int (*)(FILE*)> open(OpenRegular(file), fclose);
  if (open == nullptr) throw UsageError{"cannot read " + file + ": " + FaultText(errno)};
  ResultSet set = {.origin = {.path = file}};
  ResultsParser parser(set, kept, listener);
  FileBytes bytes(open.get(), kMaxBytes);
  const bool whole = Json::sax_parse(bytes.begin(), FileBytes::end(), &parser);
  if (!bytes.fault().empty()) throw UsageError{"cannot read " + file + ": " + bytes.fault()};
  Finish(whole, parser, set);
  set.origin.path = path;
  return set;
}

}  // namespace

std::string ResultsFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) return path;
  std::string file = (fs::path(path) / "results.json").string();
  if (!fs::exists(file, error)) throw UsageError{path + " holds no results.json of a suite"};
  return file;
}

ResultSet ParseResultSet(const std::string& text, const std::string& path) {
  ResultSet set = {.origin = {.path = path}};
  ResultsParser parser(set);
  // The whole text or nothing: what follows a document is a fault as well.
  Finish(Json::sax_parse(text, &parser), parser, set);
  return set;
}

ResultSet ReadResultSet(const std::string& path) {
  return ReadFile(path, nullptr, KeptResults::kAll);
}

ResultSet ReadResultSet(const std::string& path, Json::json_sax_t& listener, KeptResults kept) {
  return ReadFile(path, &listener, kept);
}

}  // namespace host
