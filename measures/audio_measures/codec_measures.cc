#include <vector>

#include "audio_measures/alignment.h"
#include "audio_measures/band_limit.h"
#include "audio_measures/bit_rate.h"
#include "audio_measures/groups.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "bit_rate",
     .unit = "bit/s",
     .definition = "Bits of the stream over the time that it decodes to.",
     .source = "8 * bytes / s",
     .version = kBitRateVersion,
     .margin = 100,
     .needs = kBytes},
    {.name = "frames",
     .unit = "",
     .definition = "Frames in the stream.",
     .source = "count",
     .version = kFramesVersion,
     .margin = 0.5,
     .needs = kFrames},
    {.name = "codec_delay",
     .unit = "s",
     .better = Better::kLower,
     .definition = "By how much the decoded signal is later than what was encoded.",
     .source = "as delay",
     .version = kDelayVersion,
     .margin = 5e-6,
     .needs = kInput,
     .leastSeconds = 0.2},
    {.name = "band_limit",
     .unit = "Hz",
     .better = Better::kHigher,
     .definition = "The frequency above which what was encoded is lost.",
     .source = "P. Welch, IEEE Trans. AU 15(2), 1967",
     .version = kBandLimitVersion,
     .margin = 100,
     .needs = kInput,
     .leastSeconds = 0.6},
};

std::vector<Figure> Delays(const Inputs& inputs) {
  std::vector<Figure> delays;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    delays.push_back(Align(ChannelFor(inputs.input, i), inputs.output.channels[i],
                           inputs.output.rate, -inputs.searchSeconds, inputs.searchSeconds)
                         .delay);
  }
  return delays;
}

std::vector<Figure> BandLimits(const Inputs& inputs) {
  std::vector<Figure> limits;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    limits.push_back(
        BandLimit(ChannelFor(inputs.input, i), inputs.output.channels[i], inputs.output.rate));
  }
  return limits;
}

void ComputeCodec(const Inputs& inputs, Collector& collector) {
  if (collector.Wants("bit_rate")) {
    const Signal& output = inputs.output;
    collector.Add("bit_rate", std::nullopt,
                  BitRate(*inputs.codedBytes, output.Frames(), output.rate));
  }
  if (collector.Wants("frames")) {
    collector.Add("frames", std::nullopt, Frames(*inputs.codedFrames));
  }
  if (collector.Wants("codec_delay")) collector.AddWithMean("codec_delay", Delays(inputs));
  if (collector.Wants("band_limit")) collector.AddWithMean("band_limit", BandLimits(inputs));
}

}  // namespace

Group CodecGroup() { return {kMeasures, ComputeCodec}; }

}  // namespace audio_measures
