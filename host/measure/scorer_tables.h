#pragma once

#include <string>

#include "measure/scorer.h"

namespace host {

// The scorers in the tables [measure.NAME] of a suite file. Throws UsageError that begins with
// file, line and column.
Scorers ReadScorers(const std::string& path);

// Those of the user's own file, audio_bench/measures.toml in the folder for configurations; none
// without it.
Scorers UserScorers();

// The second list, and of the first what the second has none of the same name of.
Scorers Together(const Scorers& first, const Scorers& second);

}  // namespace host
