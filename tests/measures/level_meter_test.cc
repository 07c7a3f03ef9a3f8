#include "audio_measures/level_meter.h"

#include <gmock/gmock.h>
#include <malloc.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "audio_measures/active_level.h"
#include "audio_measures/bandwidth.h"
#include "audio_measures/clipped.h"
#include "audio_measures/level.h"
#include "audio_measures/loudness.h"
#include "audio_measures/measure.h"
#include "audio_measures/noise_floor.h"
#include "audio_measures/true_peak.h"
#include "measures/noise.h"

#ifdef __SANITIZE_ADDRESS__
// Of the sanitizer's library, whose header is not with every compiler.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace audio_measures {
namespace {

constexpr int kRate = 16000;

std::vector<std::string_view> NamesOfLevels() {
  std::vector<std::string_view> names;
  for (const Measure& measure : AllMeasures()) {
    names.push_back(measure.name);
    if (measure.name == "bandwidth_40db") break;
  }
  return names;
}

std::vector<float> Interleaved(const std::vector<float>& left, const std::vector<float>& right) {
  std::vector<float> frames;
  for (size_t i = 0; i < left.size(); ++i) frames.insert(frames.end(), {left[i], right[i]});
  return frames;
}

// What is read block by block has the figures of the whole.
TEST(LevelMeter, HasTheFiguresOfTheWhole) {
  const std::vector<float> left = Noise(size_t{5} * kRate, 0.1, 1);
  const std::vector<float> right = Noise(size_t{5} * kRate, 0.05, 2);
  const std::vector<std::string_view> names = NamesOfLevels();
  LevelMeter meter(2, kRate, 1, names);
  const std::vector<float> frames = Interleaved(left, right);
  for (size_t i = 0; i < frames.size(); i += 1234) {
    meter.Add(std::span(frames).subspan(i, std::min<size_t>(1234, frames.size() - i)));
  }
  const Inputs inputs = {.output = {kRate, {left, right}}};
  std::vector<NamedFigure> figures = meter.Figures();
  ASSERT_EQ(figures.size(), 11U * 2 + 2);
  for (const NamedFigure& figure : figures) {
    ASSERT_TRUE(figure.figure.value) << figure.name << figure.figure.reason;
    double expected = 0;
    for (const NamedFigure& whole : Compute(inputs, std::vector{figure.name})) {
      if (whole.channel == figure.channel) expected = whole.figure.value.value_or(0);
    }
    EXPECT_NEAR(*figure.figure.value, expected, 1e-6) << figure.name;
  }
}

double FigureOf(const LevelMeter& meter, std::string_view name, std::optional<int> channel) {
  for (const NamedFigure& figure : meter.Figures()) {
    if (figure.name == name && figure.channel == channel) return figure.figure.value.value_or(999);
  }
  return -999;
}

// Both channels have figures of their own, and none has the figure of another measure.
TEST(LevelMeter, HasTheFigureOfEachMeasure) {
  const std::vector<float> left = Between(size_t{5} * kRate, 0.1, 1, 0);
  std::vector<float> right = Between(size_t{5} * kRate, 0.2, 2, 0);
  for (float& sample : right) sample = std::clamp(sample + 0.01F, -0.4F, 0.4F);
  const std::vector<float> frames = Interleaved(left, right);
  LevelMeter meter(2, kRate, 0.4F, NamesOfLevels());
  meter.Add(frames);
  Level level;
  level.Add(right);
  TruePeak truePeak(1, kRate);
  truePeak.Add(right);
  ActiveLevel active(kRate);
  active.Add(right);
  NoiseFloor floor(kRate);
  floor.Add(right);
  Bandwidth bandwidth(kRate);
  bandwidth.Add(right);
  Clipped clipped(0.4F);
  clipped.Add(right);
  Loudness loudness(2, kRate);
  loudness.Add(frames);
  const std::pair<std::string_view, Figure> wanted[] = {{"peak", level.Peak()},
                                                        {"true_peak", truePeak.Peak(0)},
                                                        {"rms", level.Rms()},
                                                        {"active_level", active.Level()},
                                                        {"activity", active.Activity()},
                                                        {"dc", level.Dc()},
                                                        {"noise_floor", floor.Floor()},
                                                        {"crest", level.Crest()},
                                                        {"clipped", clipped.Share()},
                                                        {"bandwidth", bandwidth.OfEnergy()},
                                                        {"bandwidth_40db", bandwidth.Of40Db()}};
  for (const auto& [name, figure] : wanted) {
    ASSERT_TRUE(figure.value) << name;
    EXPECT_NEAR(FigureOf(meter, name, 1), *figure.value, 1e-6) << name;
    EXPECT_NE(FigureOf(meter, name, 0), *figure.value) << name;
  }
  EXPECT_GT(*clipped.Share().value, 0);
  EXPECT_EQ(FigureOf(meter, "loudness", std::nullopt), loudness.Integrated().value);
  EXPECT_EQ(FigureOf(meter, "loudness_range", std::nullopt), loudness.Range().value);
}

TEST(LevelMeter, MeasuresNothingElse) {
  LevelMeter meter(1, kRate, 1, std::vector<std::string_view>{"rms", "stoi"});
  meter.Add(Noise(kRate, 0.1, 1));
  const std::vector<NamedFigure> figures = meter.Figures();
  ASSERT_EQ(figures.size(), 1U);
  EXPECT_EQ(figures[0].name, "rms");
}

// On the heap, in use.
size_t HeldBytes() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
#endif
}

// By how much memory grows over the hours at the rate.
size_t Growth(std::vector<std::string_view> names, int rate, int hours) {
  const std::vector<float> minute = Noise(size_t{2} * 60 * static_cast<size_t>(rate), 0.1, 1);
  const size_t before = HeldBytes();
  LevelMeter meter(2, rate, 1, names);
  for (int i = 0; i < 60 * hours; ++i) meter.Add(minute);
  for (const NamedFigure& figure : meter.Figures()) {
    EXPECT_TRUE(figure.figure.value) << figure.name;
  }
  return HeldBytes() - before;
}

// What is kept is kept for each second, whatever the rate; loudness has no filter for the lowest.
TEST(LevelMeter, TenHoursOfStereoFit64Megabytes) {
  const size_t ofLoudness = 10 * Growth({"loudness", "loudness_range"}, 4000, 1);
  std::vector<std::string_view> others = NamesOfLevels();
  std::erase_if(others, [](std::string_view name) { return name.starts_with("loudness"); });
  const size_t ofOthers = Growth(others, 100, 10);
  EXPECT_GT(ofOthers, size_t{1} << 20);
  EXPECT_LT(ofLoudness + ofOthers, size_t{64} << 20);
  RecordProperty("bytes", static_cast<int>(ofLoudness + ofOthers));
}

}  // namespace
}  // namespace audio_measures
