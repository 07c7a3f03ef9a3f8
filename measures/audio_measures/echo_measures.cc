#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "erle",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Median echo return loss enhancement while only the far end talks.",
     .source = "ITU-T G.168 (2015)",
     .margin = 0.5,
     .needs = kFar | kInput},
    {.name = "convergence",
     .unit = "s",
     .better = Better::kLower,
     .definition = "Time of far-end talk until the echo is 20 dB down.",
     .source = "ITU-T G.168 (2015)",
     .margin = 0.1,
     .needs = kFar | kInput},
    {.name = "near_sdr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Energy of the near end over that of the difference, in double talk.",
     .source = "10 log10(|s|^2 / |s - y|^2)",
     .margin = 0.2,
     .needs = kFar | kNear},
};

}  // namespace

Group EchoGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
