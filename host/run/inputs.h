#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"
#include "files/workspace.h"
#include "report/verdict.h"

namespace host {

// The inputs of a run.

// Those that a row declares, without the one that the word "none" stands for.
std::vector<FilePlace> DeclaredInputs(const CatalogueRow& row,
                                      std::span<const std::string_view> words,
                                      const std::string& workspace);

struct ListedInputs {
  std::vector<FilePlace> places = {};
  std::optional<Problem> problem = {};  // Why they are not known.
};

// Those that `list` names, the first of the declared inputs: a regular file, or absent. Calls
// `goOn` again and again, which may throw.
ListedInputs ReadListedInputs(const CatalogueRow& row, std::span<const std::string_view> words,
                              const std::string& workspace, const FilePlace& list,
                              const std::function<void()>& goOn);

}  // namespace host
