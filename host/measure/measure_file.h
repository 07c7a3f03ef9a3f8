#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "measure/scorer.h"
#include "recording/recording.h"
#include "results/measured_figure.h"

namespace host {

// A recording; of samples without a header with their form.
struct MeasuredSource {
  std::string path = {};
  std::optional<RawForm> raw = {};
};

// The recordings that an output is measured against; without a path those that there are not.
struct MeasuredAgainst {
  MeasuredSource reference = {};
  MeasuredSource far = {};
  MeasuredSource near = {};
  MeasuredSource input = {};
};

// A recording that was brought to the rate of the output.
struct BroughtToRate {
  std::string path;
  int from;  // Hz
  int to;
};

// All names, in the order of the list.
std::vector<std::string_view> MeasureNames();

// The unit of a measure, empty for a bare number; nothing when there is none of that name.
std::optional<std::string_view> UnitOfMeasure(std::string_view name);

// Throws UsageError, with a suggestion, when neither a measure nor a scorer has that name.
void CheckMeasureName(const std::string& name, const Scorers& scorers);

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

// What is asked of an output, in this order: measures, and scorers by their names.
struct MeasureChoice {
  std::span<const std::string> names;
  const Scorers& scorers;
};

// The figures of one output. Levels alone are measured block by block, in memory that hardly grows
// with the file; all else holds the files whole. Scorers are stopped when `goOn` returns false.
MeasuredFile MeasureFile(const MeasuredSource& output, const MeasuredAgainst& against,
                         const MeasureChoice& choice, const std::function<bool()>& goOn);

// One figure of each name without a value, and why.
std::vector<MeasuredFigure> NoFigures(const MeasureChoice& choice, const std::string& reason);

// The figure of a measure that a run gives, not samples; without a value the reason why.
MeasuredFigure RunFigure(std::string_view name, std::optional<double> value,
                         const std::string& reason);

}  // namespace host
