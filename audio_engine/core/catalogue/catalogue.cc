#include "catalogue/catalogue.h"

#include <utility>
#include <vector>

#include "catalogue/catalogue_rows.h"
#include "catalogue/tables.h"

namespace harness {

namespace {

std::vector<CatalogueRow> AllRows() {
  const std::pair<Group, std::span<const CatalogueRow>> groups[] = {
      {Group::kHarness, HarnessRows()},         {Group::kAec, AecRows()},
      {Group::kEnhancement, EnhancementRows()}, {Group::kCodec, CodecRows()},
      {Group::kEffects, EffectsRows()},         {Group::kMixing, MixingRows()}};
  std::vector<CatalogueRow> all;
  for (const auto& [group, rows] : groups) {
    for (CatalogueRow row : rows) {
      row.group = group;
      row.results = ResultLines(row.declared.words.name);
      row.tables = ResultTables;
      row.sounds = Sounds(row.declared.words.name);
      all.push_back(std::move(row));
    }
  }
  return all;
}

}  // namespace

std::span<const CatalogueRow> Catalogue() {
  static const std::vector<CatalogueRow> rows = AllRows();
  return rows;
}

}  // namespace harness
