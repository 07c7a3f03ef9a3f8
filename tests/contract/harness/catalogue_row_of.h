#pragma once

#include <algorithm>
#include <string_view>

#include "catalogue/catalogue.h"

// The row of a routine that the catalogue has.
inline const harness::CatalogueRow& Row(std::string_view routine) {
  const auto rows = harness::Catalogue();
  return *std::find_if(rows.begin(), rows.end(), [routine](const harness::CatalogueRow& row) {
    return row.declared.words.name == routine;
  });
}
