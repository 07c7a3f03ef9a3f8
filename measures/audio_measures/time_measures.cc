#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "length_factor",
     .unit = "",
     .definition = "Length of the output over that of the input.",
     .source = "",
     .margin = 0.001,
     .needs = kInput},
    {.name = "pitch_cents",
     .unit = "cents",
     .definition = "By how much the output is higher than the reference.",
     .source = "A. de Cheveigne, H. Kawahara, YIN, J. Acoust. Soc. Am. 111(4), 2002",
     .margin = 5,
     .needs = kReference},
    {.name = "tempo", .unit = "BPM", .definition = "Beats per minute.", .source = "", .margin = 1},
    {.name = "beat_f",
     .unit = "",
     .better = Better::kHigher,
     .definition =
         "F-measure of the beats within 70 ms of the reference's, the first 5 s left out.",
     .source = "S. Dixon, J. New Music Research 36(1), 2007",
     .margin = 0.02,
     .needs = kReference},
};

}  // namespace

Group TimeGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
