#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "bit_rate",
     .unit = "bit/s",
     .definition = "Bits of the stream over the time that it decodes to.",
     .source = "",
     .margin = 100,
     .needs = kRun},
    {.name = "frames",
     .unit = "",
     .definition = "Frames in the stream.",
     .source = "",
     .margin = 0.5,
     .needs = kRun},
    {.name = "codec_delay",
     .unit = "s",
     .better = Better::kLower,
     .definition = "By how much the decoded signal is later than what was encoded.",
     .source = "as delay",
     .margin = 5e-6,
     .needs = kInput,
     .leastSeconds = 0.2},
    {.name = "band_limit",
     .unit = "Hz",
     .better = Better::kHigher,
     .definition = "The frequency above which what was encoded is lost.",
     .source = "P. Welch, IEEE Trans. AU 15(2), 1967",
     .margin = 100,
     .needs = kInput,
     .leastSeconds = 0.6},
};

}  // namespace

Group CodecGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
