#include "audio_measures/level_meter.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>
#include <string_view>
#include <vector>

#include "audio_measures/measure.h"
#include "measures/noise.h"

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

TEST(LevelMeter, MeasuresNothingElse) {
  LevelMeter meter(1, kRate, 1, std::vector<std::string_view>{"rms", "stoi"});
  meter.Add(Noise(kRate, 0.1, 1));
  const std::vector<NamedFigure> figures = meter.Figures();
  ASSERT_EQ(figures.size(), 1U);
  EXPECT_EQ(figures[0].name, "rms");
}

size_t ResidentBytes() {
  size_t all = 0;
  size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

// By how much memory grows over the hours at the rate.
size_t Growth(std::vector<std::string_view> names, int rate, int hours) {
  const std::vector<float> minute = Noise(size_t{2} * 60 * static_cast<size_t>(rate), 0.1, 1);
  const size_t before = ResidentBytes();
  LevelMeter meter(2, rate, 1, names);
  for (int i = 0; i < 60 * hours; ++i) meter.Add(minute);
  for (const NamedFigure& figure : meter.Figures()) {
    EXPECT_TRUE(figure.figure.value) << figure.name;
  }
  const size_t after = ResidentBytes();
  return after > before ? after - before : 0;
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
