#include "suite/case_inputs.h"

#include <filesystem>
#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace.h"

namespace host {

namespace {

namespace fs = std::filesystem;

std::string LastComponent(const std::string& name) {
  return name.substr(name.find_last_of("/\\") + 1);
}

std::vector<FilePlace> Places(const SuiteCase& one, const std::string& workspace) {
  const CatalogueRow& row = FindRow(one.routine);
  const std::vector<std::string_view> words(one.arguments.begin(), one.arguments.end());
  return PlaceFiles(harness::Inputs(row, words), row.declared.words.parameters, words, workspace);
}

const FilePlace& Find(const std::string& name, const SuiteCase& one,
                      const std::vector<FilePlace>& places) {
  const FilePlace* found = nullptr;
  std::vector<std::string_view> names;
  for (const FilePlace& place : places) {
    if (place.name == name) return place;
    names.push_back(place.name);
    if (LastComponent(place.name) != name) continue;
    if (found != nullptr) {
      throw UsageError{"in: " + found->name + " and " + place.name + " both end in " + name};
    }
    found = &place;
  }
  if (found != nullptr) return *found;
  const auto alike = NamesAlike(name, names);
  throw UsageError{"in: " + one.routine + " reads no \"" + name + "\" with these arguments" +
                   (alike.empty() ? "" : "; did you mean \"" + std::string(alike.front()) + "\"?")};
}

}  // namespace

void CheckInputNames(const SuiteCase& one) {
  const std::vector<FilePlace> places = Places(one, ".");
  for (const auto& [name, source] : one.inputs) Find(name, one, places);
}

void PlaceInputs(const SuiteCase& one, const std::string& workspace) {
  const std::vector<FilePlace> places = Places(one, workspace);
  for (const auto& [name, source] : one.inputs) {
    const FilePlace& place = Find(name, one, places);
    std::error_code error;
    if (place.path.empty()) throw UsageError{place.name + " leads out of the workspace"};
    // A run on what is not there says which input is missing.
    if (!fs::exists(source, error)) continue;
    fs::create_directories(fs::path(place.path).parent_path(), error);
    fs::copy_file(source, place.path, fs::copy_options::overwrite_existing, error);
    if (error)
      throw UsageError{"cannot copy " + source + " to " + place.path + ": " + error.message()};
  }
}

}  // namespace host
