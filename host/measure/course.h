#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"

namespace host {

// How a measure goes in the course of a recording.
struct Course {
  std::string name = {};
  std::string unit = {};
  double step = 0;                                  // Seconds from one figure to the next.
  double first = 0;                                 // Seconds at the middle of the first one.
  std::vector<std::optional<double>> figures = {};  // Of all channels.
  std::string reason = {};                          // Why there is not one.
};

// The figures of a measure over stretches of a second, or of the least that it takes, four of which
// begin in the time of one, of long recordings fewer. What lies beside the output is moved by its
// delay as a whole first, so that short stretches need not find it.
Course CourseOf(const audio_measures::Inputs& inputs, std::string_view name);

}  // namespace host
