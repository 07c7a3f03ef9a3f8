#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "noise_reduction",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "By how much the output is softer than the input while the reference pauses.",
     .source = "ITU-T G.160 (2012), appendix II, noise reduction in pauses",
     .margin = 0.5,
     .needs = kReference | kInput},
    {.name = "speech_retained",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Gain of the speech from the input to the output while the reference is active.",
     .source = "projection by least squares",
     .margin = 0.2,
     .needs = kReference | kInput},
    {.name = "delta_snr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "By how much the output's SNR is above the input's, both against the reference.",
     .source = "ITU-T G.160 (2012), appendix II, SNR improvement",
     .margin = 0.2,
     .needs = kReference | kInput},
    {.name = "musical",
     .unit = "",
     .better = Better::kLower,
     .definition = "Log ratio of the kurtosis of the noise's power spectrum, output over input.",
     .source = "Y. Uemura et al., IWAENC 2008",
     .margin = 0.05,
     .needs = kReference | kInput},
};

}  // namespace

Group EnhancementGroup() { return {kMeasures, nullptr}; }

}  // namespace audio_measures
