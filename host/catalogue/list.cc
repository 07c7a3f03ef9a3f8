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

std::string RowLines(const CatalogueRow& row, const ListFilter& filter, size_t width,
                     const Paint& paint) {
  std::string head = "  " + Padded(row.declared.words.name, kNameWidth);
  const std::string status = LackingHere(row, filter.only).empty() ? Availability(row) : "lacking";
  const size_t at = head.size();
  if (!row.helper) head += Padded(status, kAvailabilityWidth);
  std::string lines = WrapText(row.exercises, head, head.size(), width);
  // Coloured at the end: a colour takes no column.
  return row.helper ? lines : lines.replace(at, status.size(), paint.Word(status));
}

template <typename Belongs>
std::string Section(std::string_view title, Belongs belongs, const ListFilter& filter, size_t width,
                    const Paint& paint) {
  std::string lines;
  for (const CatalogueRow& row : Catalogue()) {
    if (belongs(row)) lines += RowLines(row, filter, width, paint);
  }
  return lines.empty() ? "" : std::string(title) + "\n" + lines + "\n";
}

}  // namespace

std::string ListAsText(const ListFilter& filter, size_t width, const Paint& paint) {
  const auto passes = Selector(filter);
  std::string text;
  for (const Group group : kGroups) {
    const auto belongs = [&](const CatalogueRow& row) {
      return passes(row) && row.group == group && !row.helper;
    };
    text += Section(GroupName(group), belongs, filter, width, paint);
  }
  text += Section(
      "Helpers (called by routines, not run by themselves)",
      [&](const CatalogueRow& row) { return passes(row) && row.helper; }, filter, width, paint);

  const auto rows = Catalogue();
  const auto count = [&](auto belongs) {
    return std::count_if(rows.begin(), rows.end(), [&](const CatalogueRow& row) {
      return passes(row) && !row.helper && belongs(row);
    });
  };
  const auto routines = count([](const CatalogueRow&) { return true; });
  const auto available = count([&](const CatalogueRow& row) { return CanBeRun(row, filter.only); });
  const std::string summary = std::to_string(routines) +
                              (routines == 1 ? " routine, " : " routines, ") +
                              std::to_string(available) +
                              " available. Parameters and files of one: audio_bench describe "
                              "ROUTINE";
  return text + WrapText(summary, "", 0, width);
}

}  // namespace host
