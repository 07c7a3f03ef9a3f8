#pragma once

#include "guards/hits.h"
#include "guards/level_guards.h"

namespace host {

// true_peak: the output goes over full scale between its samples, and the input less.
void CheckTruePeak(const GuardInput& input, const Surveys& surveys, GuardHits& hits);

}  // namespace host
