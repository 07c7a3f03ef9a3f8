// A control that does not hold is seen, whatever is wrong with the figure.

#include "selftest/run_controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace host {
namespace {

constexpr std::string_view kDc[] = {"dc"};

// Two channels whose mean is 0.25 and -0.5.
Scene Constants() { return {.output = {16000, {Waveform(100, 0.25F), Waveform(100, -0.5F)}}}; }

Outcome OutcomeOf(const Expected& expected) {
  static std::vector<Control> controls;
  controls = {{.name = "constants", .theory = "", .make = Constants, .expected = {expected}}};
  const std::vector<Outcome> outcomes = RunControls(controls, kDc);
  return outcomes.size() == 1 ? outcomes.front() : Outcome{};
}

TEST(RunControls, AFigureHoldsWithinItsTolerance) {
  const auto at = [](double value, double tolerance) {
    return OutcomeOf({.measure = "dc", .value = value, .tolerance = tolerance, .channel = 0});
  };
  EXPECT_TRUE(at(0.25, 1e-9).holds);
  EXPECT_EQ(at(0.25, 1e-9).deviation, 0);
  EXPECT_EQ(at(0.25, 1e-9).value, 0.25);
  EXPECT_TRUE(at(0.375, 0.125).holds);
  EXPECT_EQ(at(0.375, 0.125).deviation, 1);
  EXPECT_TRUE(at(0.125, 0.125).holds);
  EXPECT_FALSE(at(0.375, 0.124).holds);
  EXPECT_FALSE(at(0.125, 0.124).holds);
  EXPECT_FALSE(at(-0.25, 0.1).holds);
  EXPECT_EQ(at(0.75, 0.25).deviation, 2);
}

TEST(RunControls, EveryFigureOfAMeasureHasToHold) {
  const auto all = [](double value) {
    return OutcomeOf({.measure = "dc", .value = value, .tolerance = 0.1});
  };
  EXPECT_FALSE(all(0.25).holds);
  EXPECT_EQ(all(0.25).value, -0.5);
  EXPECT_FALSE(all(-0.5).holds);
  EXPECT_EQ(all(-0.5).value, 0.25);
  // Of those that hold, the one that is farthest off is told.
  const Outcome both = OutcomeOf({.measure = "dc", .value = -0.25, .tolerance = 0.5});
  EXPECT_TRUE(both.holds);
  EXPECT_EQ(both.value, 0.25);
  EXPECT_EQ(both.deviation, 1);
}

TEST(RunControls, AChannelThatIsNotThereDoesNotHold) {
  const Outcome outcome = OutcomeOf({.measure = "dc", .value = 0.25, .tolerance = 1, .channel = 2});
  EXPECT_FALSE(outcome.holds);
  EXPECT_EQ(outcome.reason, "no such figure");
}

TEST(RunControls, AReasonIsExpectedToTheLetter) {
  // There is a value.
  const Outcome valued = OutcomeOf({.measure = "dc", .reason = "no samples"});
  EXPECT_FALSE(valued.holds);
  const auto empty = [](const std::string& reason, double tolerance) {
    static std::vector<Control> controls;
    controls = {{.name = "empty",
                 .theory = "",
                 .make =
                     [] {
                       return Scene{.output = {16000, {Waveform()}}};
                     },
                 .expected = {{.measure = "dc", .tolerance = tolerance, .reason = reason}}}};
    return RunControls(controls, kDc).front();
  };
  EXPECT_TRUE(empty("no samples", 0).holds);
  EXPECT_FALSE(empty("silence", 0).holds);
  // There is none.
  EXPECT_FALSE(empty("", 1e9).holds);
}

TEST(RunControls, OnlyTheMeasuresThatAreAskedForAreComputed) {
  const std::vector<Control> controls = {
      {"of dc", "", Constants, {{.measure = "dc", .value = 0.25, .tolerance = 1, .channel = 0}}},
      {"of peak", "", [] { return ADD_FAILURE(), Scene(); }, {{.measure = "peak"}}},
      {"of both", "", Constants, {{.measure = "peak"}, {.measure = "dc", .tolerance = 1}}}};
  const std::vector<Outcome> outcomes = RunControls(controls, kDc);
  ASSERT_EQ(outcomes.size(), 2U);
  EXPECT_EQ(outcomes[0].control, &controls[0]);
  EXPECT_EQ(outcomes[1].control, &controls[2]);
  EXPECT_EQ(outcomes[1].expected.measure, "dc");
}

TEST(AllHold, IsFalseForOneThatDoesNotAndForNone) {
  const auto outcome = [](std::string_view measure, bool holds) {
    return Outcome{.expected = {.measure = measure}, .holds = holds};
  };
  const std::vector<Outcome> outcomes = {outcome("dc", true), outcome("dc", false),
                                         outcome("rms", true), outcome("peak", false)};
  EXPECT_FALSE(AllHold(outcomes, "dc"));
  EXPECT_TRUE(AllHold(outcomes, "rms"));
  EXPECT_FALSE(AllHold(outcomes, "peak"));
  EXPECT_FALSE(AllHold(outcomes, "crest"));
}

// A scene hands over all that it has.
TEST(Scene, GivesTheMeasuresWhatItHas) {
  const Scene scene = {.output = {8000, {{1}}},
                       .reference = {8001, {{2}}},
                       .far = {8002, {{3}}},
                       .near = {8003, {{4}}},
                       .input = {8004, {{5}, {6}}},
                       .fullScale = 0.5F,
                       .searchSeconds = 0.25,
                       .codedBytes = 7,
                       .codedFrames = 8,
                       .beats = std::vector<double>{9},
                       .trueBeats = std::vector<double>{10, 11}};
  const audio_measures::Inputs inputs = scene.Inputs();
  EXPECT_EQ(inputs.output.rate, 8000);
  EXPECT_EQ(inputs.output.channels[0][0], 1);
  EXPECT_EQ(inputs.reference.rate, 8001);
  EXPECT_EQ(inputs.reference.channels[0][0], 2);
  EXPECT_EQ(inputs.far.rate, 8002);
  EXPECT_EQ(inputs.far.channels[0][0], 3);
  EXPECT_EQ(inputs.near.rate, 8003);
  EXPECT_EQ(inputs.near.channels[0][0], 4);
  EXPECT_EQ(inputs.input.rate, 8004);
  EXPECT_EQ(inputs.input.channels[1][0], 6);
  EXPECT_EQ(inputs.fullScale, 0.5F);
  EXPECT_EQ(inputs.searchSeconds, 0.25);
  EXPECT_EQ(inputs.codedBytes, 7U);
  EXPECT_EQ(inputs.codedFrames, 8U);
  ASSERT_TRUE(inputs.beats && inputs.trueBeats);
  EXPECT_EQ(inputs.beats->front(), 9);
  EXPECT_EQ(inputs.trueBeats->back(), 11);
  EXPECT_FALSE(Scene{}.Inputs().beats || Scene{}.Inputs().trueBeats);
}

}  // namespace
}  // namespace host
