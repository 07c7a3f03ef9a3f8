#include <algorithm>

#include "audio_measures/active_level.h"
#include "audio_measures/bandwidth.h"
#include "audio_measures/clipped.h"
#include "audio_measures/groups.h"
#include "audio_measures/level.h"
#include "audio_measures/level_meter.h"
#include "audio_measures/loudness.h"
#include "audio_measures/noise_floor.h"
#include "audio_measures/true_peak.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    {.name = "peak",
     .unit = "dBFS",
     .definition = "The largest sample.",
     .source = "AES17-2020, full scale",
     .version = kPeakVersion,
     .margin = 0.1,
     .lowestRate = 100},
    {.name = "true_peak",
     .unit = "dBTP",
     .definition = "The largest value between the samples too.",
     .source = "ITU-R BS.1770-4, annex 2",
     .version = kTruePeakVersion,
     .margin = 0.1,
     .lowestRate = 100},
    {.name = "rms",
     .unit = "dBFS",
     .definition = "The root of the mean square; a sine of full scale has -3.01.",
     .source = "AES17-2020, without its 3.01 dB for sines",
     .version = kRmsVersion,
     .margin = 0.05,
     .lowestRate = 100},
    {.name = "loudness",
     .unit = "LUFS",
     .definition = "The gated loudness of the whole programme.",
     .source = "ITU-R BS.1770-4; EBU R 128",
     .version = kLoudnessVersion,
     .margin = 0.1,
     .leastSeconds = 0.4},
    {.name = "loudness_range",
     .unit = "LU",
     .definition = "How far soft and loud passages of the programme lie apart.",
     .source = "EBU Tech 3342",
     .version = kLoudnessRangeVersion,
     .margin = 0.5,
     .leastSeconds = 3},
    {.name = "active_level",
     .unit = "dBFS",
     .definition = "The level of speech over the time that it is active.",
     .source = "ITU-T P.56 (12/2011), method B",
     .version = kActiveLevelVersion,
     .margin = 0.1,
     .lowestRate = 100},
    {.name = "activity",
     .unit = "",
     .definition = "The share of the time that speech is active, from 0 to 1.",
     .source = "ITU-T P.56 (12/2011), method B",
     .version = kActivityVersion,
     .margin = 0.01,
     .lowestRate = 100},
    {.name = "dc",
     .unit = "FS",
     .definition = "The mean of the samples, as a share of full scale.",
     .source = "arithmetic mean",
     .version = kDcVersion,
     .margin = 0.0005,
     .lowestRate = 100},
    {.name = "noise_floor",
     .unit = "dBFS",
     .better = Better::kLower,
     .definition = "The RMS that a tenth of the blocks of 20 ms stay below.",
     .source = "10th percentile, linear between ranks (R. Hyndman, Y. Fan, 1996, type 7)",
     .version = kNoiseFloorVersion,
     .margin = 0.5,
     .leastSeconds = 0.2},
    {.name = "crest",
     .unit = "dB",
     .definition = "How far the largest sample stands above the root of the mean square.",
     .source = "IEC 60268-1",
     .version = kCrestVersion,
     .margin = 0.1,
     .lowestRate = 100},
    {.name = "clipped",
     .unit = "",
     .better = Better::kLower,
     .definition = "The share of the samples, from 0 to 1, in runs of three or more at full scale.",
     .source = "run lengths at full scale",
     .version = kClippedVersion,
     .margin = 1e-5,
     .lowestRate = 100},
    {.name = "bandwidth",
     .unit = "Hz",
     .definition = "The frequency below which 99 % of the energy lies.",
     .source = "P. Welch, IEEE Trans. AU 15(2), 1967; ITU-R SM.328, occupied bandwidth",
     .version = kBandwidthVersion,
     .margin = 50,
     .leastSeconds = 0.6},
    {.name = "bandwidth_40db",
     .unit = "Hz",
     .definition = "The highest frequency at which the long-term spectrum is within 40 dB of its "
                   "maximum.",
     .source = "P. Welch, IEEE Trans. AU 15(2), 1967",
     .version = kBandwidth40DbVersion,
     .margin = 100,
     .leastSeconds = 0.6},
};

constexpr size_t kBlock = 4096;  // Frames.

void ComputeLevels(const Inputs& inputs, Collector& collector) {
  const Signal& output = inputs.output;
  const size_t channels = output.channels.size();
  LevelMeter meter(static_cast<int>(channels), output.rate, inputs.fullScale, collector.Wanted());
  std::vector<float> frames;
  for (size_t start = 0; start < output.Frames(); start += kBlock) {
    const size_t count = std::min(kBlock, output.Frames() - start);
    frames.resize(count * channels);
    for (size_t i = 0; i < frames.size(); ++i) {
      frames[i] = output.channels[i % channels][start + i / channels];
    }
    meter.Add(frames);
  }
  for (const NamedFigure& figure : meter.Figures()) {
    collector.Add(figure.name, figure.channel, figure.figure);
  }
}

}  // namespace

Group LevelGroup() { return {kMeasures, ComputeLevels}; }

}  // namespace audio_measures
