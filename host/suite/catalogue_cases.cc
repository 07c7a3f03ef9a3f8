#include "suite/catalogue_cases.h"

#include "catalogue/catalogue_text.h"

namespace host {

namespace {

std::optional<std::vector<std::string>> WordsOf(const CatalogueRow& row,
                                                const DemoRecordings& demo) {
  if (demo.words) return demo.words(row);
  if (harness::ArgumentFault(row, {}).empty()) return std::vector<std::string>();
  return std::nullopt;
}

}  // namespace

std::vector<SuiteCase> CatalogueCases(const DemoRecordings& demo) {
  std::vector<SuiteCase> cases;
  for (const CatalogueRow& row : Catalogue()) {
    if (!CanBeRun(row)) continue;
    SuiteCase one = {.index = cases.size(),
                     .id = std::string(row.declared.words.name),
                     .routine = std::string(row.declared.words.name),
                     .demo = true};
    if (const auto words = WordsOf(row, demo)) {
      one.arguments = *words;
    } else {
      one.skip = "it takes arguments, and there is no recording with words for it";
    }
    for (const std::string_view before : row.after) one.after.emplace_back(before);
    cases.push_back(std::move(one));
  }
  return cases;
}

}  // namespace host
