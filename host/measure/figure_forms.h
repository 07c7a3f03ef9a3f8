#pragma once

#include <span>
#include <string>

#include "measure/measure_file.h"

namespace host {

// The forms of what `measure` has found.
std::string TextFigures(std::span<const MeasuredFile> files);
std::string JsonFigures(std::span<const MeasuredFile> files);
std::string CsvFigures(std::span<const MeasuredFile> files);

}  // namespace host
