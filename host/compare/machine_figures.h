#pragma once

#include "compare/result_set.h"

namespace host {

// Whether figures tell of the machine and its load rather than of the sound: times, memory, and how
// the audio devices kept up. They are compared as ratios.
bool IsOfTheMachine(const MeasureKind& kind);

}  // namespace host
