#include "run/inputs.h"

#include "files/file_state.h"
#include "files/regular_file.h"
#include "run/remedy.h"

namespace host {

namespace {

constexpr size_t kMaxListBytes = 4'000'000;  // Some ten thousand entries are the most in use.

}  // namespace

std::vector<FilePlace> DeclaredInputs(const CatalogueRow& row,
                                      std::span<const std::string_view> words,
                                      const std::string& workspace) {
  std::vector<FileUse> uses = harness::Inputs(row, words);
  const std::vector<harness::Parameter> parameters = harness::Parameters(row.declared.words);
  for (size_t i = 0; i < words.size() && !row.nullable.empty(); ++i) {
    if (parameters[i].name != row.nullable || words[i] != "none") continue;
    const std::string name = "{" + std::string(row.nullable) + "}";
    std::erase_if(uses, [&](const FileUse& use) { return use.name == name; });
  }
  return PlaceFiles(uses, row.declared.words.parameters, words, workspace);
}

ListedInputs ReadListedInputs(const CatalogueRow& row, std::span<const std::string_view> words,
                              const std::string& workspace, const FilePlace& list,
                              const std::function<void()>& goOn) {
  if (!FileState(list.path).status()) return {};
  const auto tell = [&goOn] {
    goOn();
    return true;
  };
  const TextRead read = ReadText(list.path, kMaxListBytes, tell);
  if (!read.fault.empty()) {
    return {.problem =
                Problem{Cause::kUnreadableInput, "input " + FileName(list) + ": " + read.fault}};
  }
  return {.places =
              PlaceFiles(row.listed(read.text), row.declared.words.parameters, words, workspace)};
}

}  // namespace host
