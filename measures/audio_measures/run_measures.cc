#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "rtf",
     .unit = "",
     .better = Better::kLower,
     .definition = "Processing time over the length of the audio.",
     .source = "",
     .margin = 0.001,
     .needs = kRun},
    {.name = "cpu",
     .unit = "s",
     .better = Better::kLower,
     .definition = "Processor time of the process.",
     .source = "",
     .margin = 0.01,
     .needs = kRun},
    {.name = "peak_memory",
     .unit = "byte",
     .better = Better::kLower,
     .definition = "The most memory that was resident.",
     .source = "",
     .margin = 1 << 20,
     .needs = kRun},
    {.name = "block_p50",
     .unit = "s",
     .better = Better::kLower,
     .definition = "Median of the processing times of the blocks.",
     .source = "",
     .margin = 1e-5,
     .needs = kRun},
    {.name = "block_p99",
     .unit = "s",
     .better = Better::kLower,
     .definition = "The processing time that one block in a hundred exceeds.",
     .source = "",
     .margin = 1e-4,
     .needs = kRun},
    {.name = "underruns",
     .unit = "",
     .better = Better::kLower,
     .definition = "How often a player had nothing to play.",
     .source = "",
     .margin = 0.5,
     .needs = kRun},
    {.name = "overruns",
     .unit = "",
     .better = Better::kLower,
     .definition = "How often a recorder's samples were not taken in time.",
     .source = "",
     .margin = 0.5,
     .needs = kRun},
};

}  // namespace

Group RunGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
