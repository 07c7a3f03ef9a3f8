#pragma once

#include <span>

#include "catalogue/row.h"

// The catalogue: one row per routine of the bench, in one table that the host, the documents and
// the tests share.

namespace harness {

// All rows, group by group.
std::span<const CatalogueRow> Catalogue();

}  // namespace harness
