#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/rows.h"
#include "suite/suite_case.h"

namespace host {

// The recordings that the bench makes for its routines. Null: there are none.
struct DemoRecordings {
  // The words with which a routine runs on them; nothing when there are none for it. Null: those
  // that take no words have none.
  std::function<std::optional<std::vector<std::string>>(const CatalogueRow& row)> words = {};
  // Makes those that a routine reads, before the process of its case that places them: all cases
  // share them. Null: each makes its own.
  std::function<void(const CatalogueRow& row)> render = {};
  // Puts those that a routine reads into a workspace. Throws UsageError when it cannot be written.
  std::function<void(const CatalogueRow& row, const std::string& workspace)> place = {};
};

// The catalogue as a suite: a case for each routine that can be run by itself; its id is the
// routine's name.
std::vector<SuiteCase> CatalogueCases(const DemoRecordings& demo);

}  // namespace host
