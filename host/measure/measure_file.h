#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "measure/measured_figure.h"
#include "recording/recording.h"

namespace host {

// The recordings that an output is measured against; empty for those that there are not.
struct MeasuredAgainst {
  std::string reference = {};
  std::string far = {};
  std::string near = {};
  std::string input = {};
};

// A recording that was brought to the rate of the output.
struct BroughtToRate {
  std::string path;
  int from;  // Hz
  int to;
};

// All names, in the order of the list.
std::vector<std::string_view> MeasureNames();

// Throws UsageError, with a suggestion, when there is no measure of that name.
void CheckMeasureName(const std::string& name);

// The names of those that say something of an output beside these recordings. Tempo is none of
// them, because most recordings have none.
std::vector<std::string> FittingMeasures(const MeasuredAgainst& against);

// What was measured in one file.
struct MeasuredFile {
  RecordingFormat format = {};
  std::vector<MeasuredFigure> figures = {};
  std::vector<BroughtToRate> brought = {};
  std::string unreadable = {};  // The file that could not be read, and why; else empty.
};

// The figures of one output, in the order of the names. Levels alone are measured block by block,
// in memory that hardly grows with the file; all else holds the files whole.
MeasuredFile MeasureFile(const std::string& path, const MeasuredAgainst& against,
                         std::span<const std::string> names, const std::optional<RawForm>& raw);

}  // namespace host
