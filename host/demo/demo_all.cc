#include "demo/demo_all.h"

#include <algorithm>

#include "catalogue/catalogue_text.h"
#include "demo/demo_cases.h"
#include "demo/demo_writer.h"

namespace host {

std::string PlaceAllDemos(const std::string& workspace) {
  DemoWriter writer(workspace);
  for (const DemoCase& each : DemoCases()) {
    writer.Want(FindRow(std::string(each.routine)), each.arguments);
  }
  writer.Write();
  for (const StreamMaker& each : StreamMakers()) writer.Make(each);
  writer.WriteText("demo/truth.json", DemoTruth());
  return writer.Lines();
}

std::optional<std::vector<std::string>> DemoWords(const CatalogueRow& row) {
  const auto& cases = DemoCases();
  const auto found = std::find_if(cases.begin(), cases.end(), [&](const DemoCase& each) {
    return each.routine == row.declared.words.name;
  });
  if (found == cases.end()) return std::nullopt;
  if (!harness::ArgumentFault(row, found->arguments).empty()) return std::nullopt;
  return std::vector<std::string>(found->arguments.begin(), found->arguments.end());
}

std::string TruthPlace(const std::string& place) { return "demo/truth/" + place + ".wav"; }

namespace {

// Wants what a routine reads, and what is coded for it. Returns who codes that.
std::vector<const StreamMaker*> WantAllOf(const CatalogueRow& row, DemoWriter& writer) {
  std::vector<const StreamMaker*> makers;
  const auto words = DemoWords(row);
  if (!words) return makers;
  const std::vector<std::string_view> views(words->begin(), words->end());
  writer.Want(row, views);
  for (const StreamMaker& maker : StreamMakers()) {
    if (!writer.Wants(maker.stream)) continue;
    makers.push_back(&maker);
    writer.Want(FindRow(std::string(maker.routine)), maker.arguments);
  }
  return makers;
}

}  // namespace

void RenderDemosOf(const CatalogueRow& row) {
  DemoWriter writer("");
  WantAllOf(row, writer);
  writer.Render();
}

void PlaceDemosOf(const CatalogueRow& row, const std::string& workspace) {
  DemoWriter writer(workspace, true);
  const std::vector<const StreamMaker*> makers = WantAllOf(row, writer);
  writer.Write();
  writer.WriteTruths();
  for (const StreamMaker* const maker : makers) writer.Make(*maker);
}

}  // namespace host
