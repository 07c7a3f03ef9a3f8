#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    // A quarter of a sample at 48 kHz: the same build gives the same delay again.
    {.name = "delay",
     .unit = "s",
     .definition = "By how much the output is later than the reference, to a fraction of a sample.",
     .source = "C. Knapp, G. Carter, IEEE Trans. ASSP 24(4), 1976; A. Piersol, ibid. 29(3), 1981",
     .margin = 5e-6,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "delay_track",
     .unit = "s",
     .better = Better::kLower,
     .definition = "How far the delays of its pieces of 2 s lie apart.",
     .source = "as delay",
     .margin = 2e-5,
     .needs = kReference,
     .leastSeconds = 4},
    {.name = "drift",
     .unit = "ppm",
     .definition = "By how much the output is longer than the reference.",
     .source = "least squares through the delays of pieces",
     .margin = 2,
     .needs = kReference,
     .leastSeconds = 4},
    {.name = "gain",
     .unit = "dB",
     .definition = "The gain from the reference to what the output has in common with it.",
     .source = "projection by least squares",
     .margin = 0.05,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "polarity",
     .unit = "",
     .definition = "1, or -1 when the output is upside down.",
     .source = "sign of the correlation",
     .margin = 0.5,
     .needs = kReference,
     .leastSeconds = 0.2},
};

}  // namespace

Group AlignmentGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
