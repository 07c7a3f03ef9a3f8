#pragma once

#include <vector>

#include "engine_api/mixing/karaoke_recorder.h"

// What the fake recorder was given.
struct KaraokeRecorderScript {
  std::vector<ScoreLineInfo> lines = {};
  std::vector<ScoreTimeRange> notes = {};
};
