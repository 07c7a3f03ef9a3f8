#include "audio_measures/measure.h"

#include <gmock/gmock.h>

#include <string_view>
#include <vector>

namespace audio_measures {
namespace {

TEST(AllMeasures, AreTheseInThisOrder) {
  std::vector<std::string_view> names;
  for (const Measure& measure : AllMeasures()) names.push_back(measure.name);
  EXPECT_EQ(names, (std::vector<std::string_view>{"peak",
                                                  "true_peak",
                                                  "rms",
                                                  "loudness",
                                                  "loudness_range",
                                                  "active_level",
                                                  "activity",
                                                  "dc",
                                                  "noise_floor",
                                                  "crest",
                                                  "clipped",
                                                  "bandwidth",
                                                  "bandwidth_40db",
                                                  "delay",
                                                  "delay_track",
                                                  "drift",
                                                  "gain",
                                                  "polarity",
                                                  "snr",
                                                  "si_sdr",
                                                  "seg_snr",
                                                  "fw_seg_snr",
                                                  "cepstral_distance",
                                                  "lsd",
                                                  "band_difference",
                                                  "band_difference_worst",
                                                  "stoi",
                                                  "estoi",
                                                  "noise_reduction",
                                                  "speech_retained",
                                                  "delta_snr",
                                                  "musical",
                                                  "erle",
                                                  "convergence",
                                                  "near_sdr",
                                                  "bit_rate",
                                                  "frames",
                                                  "codec_delay",
                                                  "band_limit",
                                                  "length_factor",
                                                  "pitch_cents",
                                                  "tempo",
                                                  "beat_f",
                                                  "rtf",
                                                  "cpu",
                                                  "peak_memory",
                                                  "block_p50",
                                                  "block_p99",
                                                  "underruns",
                                                  "overruns"}));
}

TEST(AllMeasures, AreDescribedAndHaveAMargin) {
  for (const Measure& measure : AllMeasures()) {
    EXPECT_THAT(measure.definition, testing::EndsWith(".")) << measure.name;
    EXPECT_GT(measure.margin, 0) << measure.name;
    EXPECT_LT(measure.lowestRate, measure.highestRate) << measure.name;
    EXPECT_GE(measure.version, 0) << measure.name;
    const bool ofRun = (measure.needs & kRun) != 0;
    EXPECT_TRUE(measure.version == 0 || !measure.source.empty()) << measure.name;
    EXPECT_TRUE(measure.version == 0 || !ofRun) << measure.name;
  }
}

TEST(FindMeasure, FindsByTheWholeName) {
  ASSERT_NE(FindMeasure("si_sdr"), nullptr);
  EXPECT_EQ(FindMeasure("si_sdr")->unit, "dB");
  EXPECT_EQ(FindMeasure("si_sdr")->better, Better::kHigher);
  EXPECT_EQ(FindMeasure("si_"), nullptr);
}

}  // namespace
}  // namespace audio_measures
