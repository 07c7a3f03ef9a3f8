#pragma once

#include <span>

#include "catalogue/row.h"

namespace harness {

// The table of each group; Catalogue() puts them together and fills in `group`.
std::span<const CatalogueRow> HarnessRows();
std::span<const CatalogueRow> AecRows();
std::span<const CatalogueRow> EnhancementRows();
std::span<const CatalogueRow> CodecRows();
std::span<const CatalogueRow> EffectsRows();
std::span<const CatalogueRow> MixingRows();

}  // namespace harness
