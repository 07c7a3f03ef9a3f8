#include "audio_measures/compute.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "audio_measures/measure.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 16000;

// "name channel", with - for the programme or the mean, and the reason where there is no figure.
std::vector<std::string> Told(const Inputs& inputs, std::vector<std::string_view> names) {
  std::vector<std::string> told;
  for (const NamedFigure& figure : Compute(inputs, names)) {
    told.push_back(std::string(figure.name) + ' ' +
                   (figure.channel ? std::to_string(*figure.channel) : "-"));
    if (!figure.figure.value) told.back() += std::string(": ") + figure.figure.reason;
  }
  return told;
}

TEST(Compute, GivesAFigureForEachChannelInTheOrderOfTheNames) {
  const std::vector<float> left(kRate, 0.5F);
  const std::vector<float> right(kRate, -0.25F);
  const Inputs inputs = {.output = {kRate, {left, right}}};
  EXPECT_THAT(Told(inputs, {"dc", "peak"}),
              testing::ElementsAre("dc 0", "dc 1", "peak 0", "peak 1"));
  const std::vector<NamedFigure> figures = Compute(inputs, std::vector<std::string_view>{"dc"});
  EXPECT_DOUBLE_EQ(figures[0].figure.value.value_or(0), 0.5);
  EXPECT_DOUBLE_EQ(figures[1].figure.value.value_or(0), -0.25);
}

TEST(Compute, SaysWhyThereIsNoFigure) {
  const std::vector<float> silence(kRate, 0.0F);
  const std::vector<float> none;
  std::vector<float> broken(kRate, 0.1F);
  broken[7] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_THAT(Told({.output = {kRate, {silence}}}, {"rms", "loudest", "rtf"}),
              testing::ElementsAre("rms 0: silence", "loudest -: no such measure",
                                   "rtf -: not to be had from samples, but from a run"));
  EXPECT_THAT(Told({.output = {kRate, {broken}}}, {"rms"}),
              testing::ElementsAre("rms 0: samples that are not finite"));
  EXPECT_THAT(Told({.output = {kRate, {none}}}, {"rms"}),
              testing::ElementsAre("rms -: no samples"));
  EXPECT_THAT(Told({.output = {99, {broken}}}, {"rms"}),
              testing::ElementsAre("rms -: a rate that it is not defined for"));
}

// Two channels of half a minute, and all else that measures ask for.
struct Everything {
  std::vector<float> reference = Between(size_t{30} * kRate, 0.1, 1, 0);
  std::vector<float> output = Between(size_t{30} * kRate, 0.1, 1, 0.5);
  std::vector<double> beats = {6, 7, 8};
  Inputs inputs = {.output = {kRate, {output, output}},
                   .reference = {kRate, {reference, reference}},
                   .far = {kRate, {reference, reference}},
                   .near = {kRate, {reference, reference}},
                   .input = {kRate, {reference, reference}},
                   .codedBytes = 60000,
                   .codedFrames = 1500,
                   .beats = beats,
                   .trueBeats = beats};
};

// What the list says is computed is computed, or refused for a reason of its own.
TEST(Compute, KnowsAllThatTheListSaysIsComputed) {
  const Everything everything;
  std::vector<std::string_view> names;
  for (const Measure& measure : AllMeasures()) {
    if (measure.version > 0) names.push_back(measure.name);
  }
  const std::vector<NamedFigure> figures = Compute(everything.inputs, names);
  for (const std::string_view name : names) {
    EXPECT_THAT(figures, testing::Contains(testing::Field(&NamedFigure::name, name)));
  }
  for (const auto& [name, channel, figure] : figures) {
    EXPECT_NE(figure.value.has_value(), figure.reason[0] != '\0') << name;
    EXPECT_TRUE(std::isfinite(figure.value.value_or(0))) << name;
  }
}

TEST(Compute, SaysWhichSignalIsMissing) {
  Everything everything;
  everything.inputs.reference = everything.inputs.far = everything.inputs.near =
      everything.inputs.input = {};
  everything.inputs.codedBytes = everything.inputs.codedFrames = std::nullopt;
  everything.inputs.beats = everything.inputs.trueBeats = std::nullopt;
  for (const Measure& measure : AllMeasures()) {
    if (measure.version == 0 || measure.needs == kNothing) continue;
    const std::vector<NamedFigure> figures =
        Compute(everything.inputs, std::vector<std::string_view>{measure.name});
    ASSERT_EQ(figures.size(), 1U) << measure.name;
    EXPECT_THAT(figures[0].figure.reason, testing::StartsWith("no ")) << measure.name;
  }
}

}  // namespace
}  // namespace audio_measures
