#pragma once

#include <span>
#include <string>

#include "measure/measure_file.h"

namespace host {

// The picture of a recording as SVG, with the course of each measure that is named and the bench's
// own; without any, of its level and of what tells most beside what is given. Holds the files
// whole. Throws UnreadableSound.
std::string PlotFile(const MeasuredSource& output, const MeasuredAgainst& against,
                     std::span<const std::string> asked);

}  // namespace host
