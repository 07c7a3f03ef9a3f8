#pragma once

#include <vector>

#include "guards/hits.h"
#include "guards/survey.h"

namespace host {

// What guards on levels go by: each channel of the output, and beside it the channel of the input
// that it was made from.
struct Surveys {
  std::vector<ChannelSurvey> output;
  std::vector<ChannelSurvey> input;  // As many, or none.
};

// silent, and digital_silence in its place.
void CheckSilence(const GuardInput& input, const Surveys& surveys, GuardHits& hits);
void CheckClipped(const GuardInput& input, const Surveys& surveys, GuardHits& hits);
void CheckDc(const Surveys& surveys, GuardHits& hits);
void CheckLevel(const GuardInput& input, const Surveys& surveys, GuardHits& hits);

}  // namespace host
