#include "catalogue/list.h"

#include <algorithm>
#include <array>

#include "base/wrap_text.h"
#include "catalogue/catalogue_text.h"

namespace host {

namespace {

constexpr size_t kNameWidth = 28;
constexpr size_t kAvailabilityWidth = 15;

std::string Padded(std::string_view text, size_t width) {
  std::string padded(text);
  padded.resize(std::max(width, padded.size() + 1), ' ');
  return padded;
}

std::string RowLines(const CatalogueRow& row, size_t width) {
  std::string head = "  " + Padded(row.declared.words.name, kNameWidth);
  if (!row.helper) head += Padded(Availability(row), kAvailabilityWidth);
  return WrapText(row.exercises, head, head.size(), width);
}

template <typename Belongs>
std::string Section(std::string_view title, Belongs belongs, size_t width) {
  std::string lines;
  for (const CatalogueRow& row : Catalogue()) {
    if (belongs(row)) lines += RowLines(row, width);
  }
  return lines.empty() ? "" : std::string(title) + "\n" + lines + "\n";
}

}  // namespace

std::string ListAsText(int width) {
  const auto columns = static_cast<size_t>(std::max(width, 70));
  std::string text;
  for (const Group group : kGroups) {
    const auto belongs = [group](const CatalogueRow& row) {
      return row.group == group && !row.helper;
    };
    text += Section(GroupName(group), belongs, columns);
  }
  text += Section(
      "Helpers (called by routines, not run by themselves)",
      [](const CatalogueRow& row) { return row.helper; }, columns);

  const auto rows = Catalogue();
  const auto count = [&rows](auto belongs) {
    return std::to_string(std::count_if(rows.begin(), rows.end(), belongs));
  };
  const std::string summary =
      count([](const CatalogueRow& row) { return !row.helper; }) + " routines, " +
      count([](const CatalogueRow& row) { return !row.helper && row.declared.built; }) +
      " available. Parameters and files of one: audio_bench describe ROUTINE";
  return text + WrapText(summary, "", 0, columns);
}

}  // namespace host
