#pragma once

#include <span>
#include <string>

#include "base/json_parts.h"
#include "measure/measure_file.h"

namespace host {

// A figure as every report has it.
Json FigureJson(const MeasuredFigure& figure);

// The forms of what `measure` has found.
std::string TextFigures(std::span<const MeasuredFile> files);
std::string JsonFigures(std::span<const MeasuredFile> files);
std::string CsvFigures(std::span<const MeasuredFile> files);

}  // namespace host
