#include <vector>

#include "audio_measures/echo_loss.h"
#include "audio_measures/groups.h"
#include "audio_measures/near_sdr.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "erle",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Median echo return loss enhancement while only the far end talks.",
     .source = "ITU-T G.168 (2015)",
     .version = kErleVersion,
     .margin = 0.5,
     .needs = kFar | kInput,
     .uses = kNear,
     .leastSeconds = 0.2},
    {.name = "convergence",
     .unit = "s",
     .better = Better::kLower,
     .definition = "How long the far end has talked alone when the echo is first 20 dB down.",
     .source = "ITU-T G.168 (2015)",
     .version = kConvergenceVersion,
     .margin = 0.1,
     .needs = kFar | kInput,
     .uses = kNear,
     .leastSeconds = 0.2},
    {.name = "near_sdr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Energy of the near end over that of the difference, in double talk.",
     .source = "10 log10(|s|^2 / |s - y|^2)",
     .version = kNearSdrVersion,
     .margin = 0.2,
     .needs = kFar | kNear,
     .leastSeconds = 0.2},
};

void AddLoss(const Inputs& inputs, Collector& collector) {
  std::vector<Figure> erle;
  std::vector<Figure> convergence;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    const std::span<const float> near =
        inputs.near.Empty() ? std::span<const float>() : ChannelFor(inputs.near, i);
    const EchoLoss loss =
        MeasureEchoLoss(ChannelFor(inputs.far, i), ChannelFor(inputs.input, i), near,
                        inputs.output.channels[i], inputs.output.rate, inputs.searchSeconds);
    erle.push_back(loss.erle);
    convergence.push_back(loss.convergence);
  }
  collector.AddWithMean("erle", erle);
  collector.AddWithMean("convergence", convergence);
}

void ComputeEcho(const Inputs& inputs, Collector& collector) {
  if (collector.Wants("erle") || collector.Wants("convergence")) AddLoss(inputs, collector);
  if (!collector.Wants("near_sdr")) return;
  std::vector<Figure> retained;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    retained.push_back(NearSdr(ChannelFor(inputs.near, i), ChannelFor(inputs.far, i),
                               inputs.output.channels[i], inputs.output.rate,
                               inputs.searchSeconds));
  }
  collector.AddWithMean("near_sdr", retained);
}

}  // namespace

Group EchoGroup() { return {kMeasures, ComputeEcho}; }

}  // namespace audio_measures
