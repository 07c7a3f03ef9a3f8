#include "demo/demo.h"

#include <filesystem>
#include <span>

#include "base/printable.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "demo/placed_file.h"
#include "files/workspace.h"

namespace host {

std::string PlaceDemo(const std::string& workspace) {
  const CatalogueRow& row = FindRow("RunTestCase");
  const auto inputs = PlaceFiles(row.inputs, row.declared.words.parameters, {}, workspace);
  if (inputs.empty()) throw UsageError{"RunTestCase reads no recording"};
  const FilePlace& input = inputs.front();
  const std::vector<int16_t> recording = DemoRecording();
  const Placed placed = PlaceFile(workspace, input.place, std::as_bytes(std::span(recording)));
  if (placed == Placed::kKept || placed == Placed::kThere) {
    return "recording  " + Printable(input.path) + "  kept as it is, " +
           Bytes(std::filesystem::file_size(input.path)) + "\n";
  }
  return "recording  " + Printable(input.path) +
         (placed == Placed::kInPlaceOfAPart ? "  written in place of a part" : "  written") +
         ": a plucked melody, 8.00 s, " + FileFormat(input.use) + "\n";
}

}  // namespace host
