#pragma once

#include <functional>
#include <string>

#include "measure/measure_file.h"
#include "measure/scorer.h"

namespace host {

// The figure without a value, and why.
MeasuredFigure NoScore(const Scorer& scorer, const std::string& reason);

// Hands the recordings that the command names to the scorer, as WAVE of 16 bits in a rate that it
// takes, and reads its figure of all channels. Gives up when `goOn` returns false. Throws
// UnreadableSound where a recording cannot be read.
MeasuredFigure Score(const Scorer& scorer, const MeasuredSource& output,
                     const MeasuredAgainst& against, const std::function<bool()>& goOn);

}  // namespace host
