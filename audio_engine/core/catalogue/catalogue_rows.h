#pragma once

#include <vector>

#include "catalogue/catalogue.h"

namespace harness {

// The rows of each group; Catalogue() puts the groups together and fills in `group`.
std::vector<CatalogueRow> HarnessRows();
std::vector<CatalogueRow> AecRows();
std::vector<CatalogueRow> EnhancementRows();
std::vector<CatalogueRow> CodecRows();
std::vector<CatalogueRow> EffectsRows();
std::vector<CatalogueRow> MixingRows();

}  // namespace harness
