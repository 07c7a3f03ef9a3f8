#pragma once

#include "base/json_parts.h"
#include "results/measured_figure.h"

namespace host {

// A figure as every report has it.
Json FigureJson(const MeasuredFigure& figure);

}  // namespace host
