#include <algorithm>
#include <vector>

#include "audio_measures/beats.h"
#include "audio_measures/groups.h"
#include "audio_measures/length_factor.h"
#include "audio_measures/pitch.h"
#include "audio_measures/tempo.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "length_factor",
     .unit = "",
     .definition = "Length of the output over that of the input.",
     .source = "ratio of lengths",
     .version = kLengthFactorVersion,
     .margin = 0.001,
     .needs = kInput},
    {.name = "pitch_cents",
     .unit = "cents",
     .definition = "By how much the output is higher than the reference.",
     .source = "A. de Cheveigne, H. Kawahara, YIN, J. Acoust. Soc. Am. 111(4), 2002",
     .version = kPitchCentsVersion,
     .margin = 5,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "tempo",
     .unit = "BPM",
     .definition = "Beats per minute, of the mean of all channels.",
     .source = "D. Ellis, J. New Music Research 36(1), 2007, autocorrelation of onsets",
     .version = kTempoVersion,
     .margin = 1,
     .leastSeconds = kTempoLeastSeconds},
    {.name = "beat_f",
     .unit = "",
     .better = Better::kHigher,
     .definition =
         "F-measure of the beats within 70 ms of the reference's, the first 5 s left out.",
     .source = "S. Dixon, J. New Music Research 36(1), 2007",
     .version = kBeatFVersion,
     .margin = 0.02,
     .needs = kBeats},
};

// A beat is the programme's.
std::vector<float> MeanOfChannels(const Signal& signal) {
  std::vector<float> mean(signal.Frames());
  for (const std::span<const float> channel : signal.channels) {
    for (size_t i = 0; i < mean.size(); ++i) mean[i] += channel[i];
  }
  for (float& sample : mean) sample /= static_cast<float>(signal.channels.size());
  return mean;
}

void ComputeTimes(const Inputs& inputs, Collector& collector) {
  if (collector.Wants("length_factor")) {
    collector.Add("length_factor", std::nullopt,
                  LengthFactor(inputs.input.Frames(), inputs.output.Frames()));
  }
  if (collector.Wants("pitch_cents")) {
    std::vector<Figure> cents;
    for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
      cents.push_back(PitchCents(ChannelFor(inputs.reference, i), inputs.output.channels[i],
                                 inputs.output.rate));
    }
    collector.AddWithMean("pitch_cents", cents);
  }
  if (collector.Wants("tempo")) {
    const bool finite = std::ranges::all_of(inputs.output.channels, AreFinite);
    collector.Add(
        "tempo", std::nullopt,
        finite ? Tempo(MeanOfChannels(inputs.output), inputs.output.rate) : Unknown(kNotFinite));
  }
  if (collector.Wants("beat_f")) {
    collector.Add("beat_f", std::nullopt, BeatF(*inputs.trueBeats, *inputs.beats));
  }
}

}  // namespace

Group TimeGroup() { return {kMeasures, ComputeTimes}; }

}  // namespace audio_measures
