#pragma once

#include <optional>
#include <string>
#include <vector>

#include "measure/measure_file.h"

namespace host {

// What `measure` is asked to do.
struct MeasureOptions {
  std::vector<std::string> files = {};
  MeasuredAgainst against = {};
  std::vector<std::string> measures = {};  // Names; empty for those that fit what is given.
  std::optional<RawForm> raw = {};         // Of samples without a header.
  std::string json = {};                   // Where each form goes: a file, "-", or empty.
  std::string csv = {};
  std::string plot = {};  // The picture of the one file.
  bool list = false;      // Explain all measures instead.
};

// Measures, prints and returns the exit code: kInput when a file could not be read. Throws
// UsageError when that cannot be done as asked.
int MeasureFiles(const MeasureOptions& options);

// What `measure --list` prints.
std::string MeasureList(const Scorers& scorers);

}  // namespace host
