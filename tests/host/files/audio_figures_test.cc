#include "files/audio_figures.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();

class AudioFiguresTest : public testing::Test {
 protected:
  // The figures of a file that holds these samples after `offset` other bytes.
  template <typename T>
  std::vector<ChannelFigures> Measure(const std::vector<T>& samples, int channels,
                                      uint64_t offset = 0) {
    const std::string bytes(reinterpret_cast<const char*>(samples.data()),
                            samples.size() * sizeof(T));
    WriteFile("audio", std::string(offset, 'x') + bytes);
    FILE* const file = fopen("audio", "rb");
    const AudioLayout layout = {
        .samples = sizeof(T) == 2 ? SampleType::kPcm16 : SampleType::kFloat32,
        .rate = 8000,
        .channels = channels,
        .offset = offset,
        .bytes = bytes.size(),
        .frameBytes = static_cast<int>(sizeof(T)) * channels};
    const Measurement measured = MeasureAudio(file, layout, [] { return true; });
    fclose(file);
    EXPECT_EQ(measured.fault, "");
    return measured.channels.value_or(std::vector<ChannelFigures>(static_cast<size_t>(channels)));
  }

  TemporaryDirectory m_directory;
};

// A different sine in each channel, long enough for several blocks and a part of one.
std::vector<float> Sines(int channels, int frames) {
  std::vector<float> samples;
  for (int frame = 0; frame < frames; ++frame) {
    for (int channel = 0; channel < channels; ++channel) {
      const double value = std::sin(0.01 * (channel + 1) * frame) / (channel + 1);
      samples.push_back(static_cast<float>(value));
    }
  }
  return samples;
}

TEST_F(AudioFiguresTest, MeasuresEachChannelByItself) {
  for (const int channels : {1, 2, 3, 5, 6, 8, 17}) {
    const std::vector<float> samples = Sines(channels, 40001);
    const auto figures = Measure(samples, channels);
    for (size_t channel = 0; channel < figures.size(); ++channel) {
      double peak = 0;
      double squares = 0;
      for (size_t i = channel; i < samples.size(); i += static_cast<size_t>(channels)) {
        const auto value = static_cast<double>(samples[i]);
        peak = std::max(peak, std::fabs(value));
        squares += value * value;
      }
      EXPECT_EQ(figures[channel].peak, peak) << channel << " of " << channels;
      EXPECT_NEAR(figures[channel].sumOfSquares / squares, 1, 1e-6);
      EXPECT_EQ(figures[channel].samples, 40001U);
      EXPECT_EQ(figures[channel].notFinite, 0U);
    }
  }
}

TEST_F(AudioFiguresTest, TakesIntegersRelativeToFullScale) {
  const auto figures = Measure<short>({-32768, 16384, 0, -16384}, 2);
  EXPECT_DOUBLE_EQ(*figures[0].PeakLevel(), 0);
  EXPECT_NEAR(*figures[0].RmsLevel(), -3.0103, 1e-4);
  EXPECT_NEAR(*figures[1].PeakLevel(), -6.0206, 1e-4);
  EXPECT_NEAR(*figures[1].RmsLevel(), -6.0206, 1e-4);
}

TEST_F(AudioFiguresTest, CountsWhatIsNotFiniteAndLeavesItOut) {
  std::vector<float> samples(20000, 0.5F);
  samples[2] = kNan;
  samples[10000] = kInfinite;
  samples[19999] = -kInfinite;
  const auto figures = Measure(samples, 2);
  EXPECT_EQ(figures[0].notFinite, 2U);
  EXPECT_EQ(figures[1].notFinite, 1U);
  EXPECT_NEAR(*figures[0].RmsLevel(), -6.0206, 1e-4);
  EXPECT_NEAR(*figures[1].PeakLevel(), -6.0206, 1e-4);
}

TEST_F(AudioFiguresTest, MeasuresWhatIsTooLargeToSquareInSinglePrecision) {
  const auto figures = Measure(std::vector<float>(64, 1e30F), 1);
  EXPECT_NEAR(*figures[0].PeakLevel(), 600, 1e-4);
  EXPECT_NEAR(*figures[0].RmsLevel(), 600, 1e-4);
  EXPECT_EQ(figures[0].notFinite, 0U);
}

TEST_F(AudioFiguresTest, GivesSilenceNoLevel) {
  EXPECT_EQ(Measure(std::vector<short>(100), 1)[0].PeakLevel(), std::nullopt);
  EXPECT_EQ(Measure(std::vector<short>(100), 1)[0].RmsLevel(), std::nullopt);
  EXPECT_EQ(Measure(std::vector<short>(), 1)[0].RmsLevel(), std::nullopt);
  EXPECT_EQ(Measure(std::vector<float>(3, kNan), 1)[0].RmsLevel(), std::nullopt);
}

TEST_F(AudioFiguresTest, LeavesOutAPartOfAFrame) {
  const auto figures = Measure<short>({1, 2, 32767}, 2);
  EXPECT_EQ(figures[0].samples, 1U);
  EXPECT_DOUBLE_EQ(Peak(figures), 2.0 / 32768);
}

TEST_F(AudioFiguresTest, StartsAtTheOffset) {
  EXPECT_DOUBLE_EQ(Peak(Measure<short>({8192}, 1, 44)), 0.25);
}

AudioLayout Mono(uint64_t bytes) {
  return {
      .samples = SampleType::kPcm16, .rate = 8000, .channels = 1, .bytes = bytes, .frameBytes = 2};
}

TEST_F(AudioFiguresTest, SaysWhyThereAreNone) {
  const auto fault = [](const char* name, const AudioLayout& layout) {
    FILE* const file = fopen(name, "rb");
    const Measurement measured = MeasureAudio(file, layout, [] { return true; });
    fclose(file);
    EXPECT_EQ(measured.channels, std::nullopt);
    return measured.fault;
  };
  WriteFile("short", "1234");
  EXPECT_EQ(fault("short", Mono(6)), "it has become shorter");
  EXPECT_EQ(fault("/proc/self/mem", Mono(6)), "Input/output error");
  AudioLayout unknown = Mono(4);
  unknown.samples.reset();
  EXPECT_EQ(fault("short", unknown), "samples of a type that is not known");
}

TEST_F(AudioFiguresTest, GivesUpWhenItIsTold) {
  WriteFile("long", std::string(1000000, 'x'));
  FILE* const file = fopen("long", "rb");
  int blocks = 0;
  const Measurement measured = MeasureAudio(file, Mono(1000000), [&] { return ++blocks < 3; });
  fclose(file);
  EXPECT_EQ(blocks, 3);
  EXPECT_EQ(measured.channels, std::nullopt);
  EXPECT_EQ(measured.fault, kStopped);
}

}  // namespace
}  // namespace host
