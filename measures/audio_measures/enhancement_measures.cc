#include <vector>

#include "audio_measures/groups.h"
#include "audio_measures/noise_suppression.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "noise_reduction",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "By how much the output is softer than the input in pauses of speech.",
     .source = "ITU-T G.160 (2012), appendix II, noise reduction in pauses",
     .version = kNoiseReductionVersion,
     .margin = 0.5,
     .needs = kInput,
     .uses = kReference,
     .leastSeconds = 1},
    {.name = "speech_retained",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Gain of the speech from the input to the output while it is active.",
     .source = "projection by least squares",
     .version = kSpeechRetainedVersion,
     .margin = 0.2,
     .needs = kInput,
     .uses = kReference,
     .leastSeconds = 1},
    {.name = "delta_snr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition =
         "By how much the output's SNR is above the input's, of active speech against pauses.",
     .source = "ITU-T G.160 (2012), appendix II, SNR improvement",
     .version = kDeltaSnrVersion,
     .margin = 0.2,
     .needs = kReference | kInput,
     .leastSeconds = 1},
    {.name = "musical",
     .unit = "",
     .better = Better::kLower,
     .definition = "Log ratio of the kurtosis of the noise's power spectrum, output over input.",
     .source = "Y. Uemura et al., IWAENC 2008",
     .version = kMusicalVersion,
     .margin = 0.05,
     .needs = kInput,
     .uses = kReference,
     .leastSeconds = 1},
};

void ComputeEnhancement(const Inputs& inputs, Collector& collector) {
  std::vector<Figure> noiseReduction;
  std::vector<Figure> speechRetained;
  std::vector<Figure> deltaSnr;
  std::vector<Figure> musical;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    const std::span<const float> reference =
        inputs.reference.Empty() ? std::span<const float>() : ChannelFor(inputs.reference, i);
    const Suppression figures =
        MeasureSuppression(reference, ChannelFor(inputs.input, i), inputs.output.channels[i],
                           inputs.output.rate, inputs.searchSeconds);
    noiseReduction.push_back(figures.noiseReduction);
    speechRetained.push_back(figures.speechRetained);
    deltaSnr.push_back(figures.deltaSnr);
    musical.push_back(figures.musical);
  }
  collector.AddWithMean("noise_reduction", noiseReduction);
  collector.AddWithMean("speech_retained", speechRetained);
  collector.AddWithMean("delta_snr", deltaSnr);
  collector.AddWithMean("musical", musical);
}

}  // namespace

Group EnhancementGroup() { return {kMeasures, ComputeEnhancement}; }

}  // namespace audio_measures
