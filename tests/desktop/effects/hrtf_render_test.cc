#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/effects/routines.h"
#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

// The selected test on the desktop engine, from file to file.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;

constexpr char kInput[] = "sdcard/ZUAudioDemo/44100_2.pcm";
constexpr char kOutput[] = "sdcard/ZUAudioDemo/44100_2_out_902.pcm";
constexpr size_t kChunk = 441;  // Frames of 10 ms.

// One channel of stereo (0 left, 1 right).
template <typename T>
std::vector<T> Channel(const std::vector<T>& interleaved, size_t channel) {
  std::vector<T> samples;
  for (size_t i = channel; i < interleaved.size(); i += 2) samples.push_back(interleaved[i]);
  return samples;
}

class HrtfRenderTest : public testing::Test {
 protected:
  HrtfRenderTest() {
    std::filesystem::create_directories("sdcard/ZUAudioDemo");
    left.resize(8192);
    right.resize(8192);
    int azimuth = 90;
    int elevation = 0;
    const unsigned taps = mit_hrtf_get(&azimuth, &elevation, 44100, 0, left.data(), right.data());
    left.resize(taps);
    right.resize(taps);
  }

  // Renders interleaved stereo and returns what is in the output file.
  static std::vector<float> Render(const std::vector<short>& stereo) {
    WriteFile(kInput, SampleBytes(stereo));
    TestHRTF();
    return Output();
  }

  static std::vector<float> Output() {
    const std::string bytes = ReadFile(kOutput);
    EXPECT_EQ(bytes.size() % sizeof(float), 0U);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(samples.data()));
    return samples;
  }

  // Both ears' responses, 16-bit.
  std::vector<short> left;
  std::vector<short> right;
  TemporaryDirectory m_directory;
};

// Noise that reaches about full scale at the ears, with samples of both 16-bit extremes.
std::vector<short> Noise(size_t samples) {
  std::mt19937 generator(1);
  std::vector<short> noise(samples);
  for (short& sample : noise) sample = static_cast<short>(static_cast<short>(generator()) / 4);
  noise[0] = -32768;
  noise[1] = 32767;
  return noise;
}

// The first `frames` samples of the convolution of 16-bit samples with a 16-bit response, both
// taken as numbers in [-1, 1), in double precision.
std::vector<double> Convolve(const std::vector<short>& samples, const std::vector<short>& response,
                             size_t frames) {
  std::vector<double> result(frames);
  for (size_t n = 0; n < frames; ++n) {
    double sum = 0;
    for (size_t k = 0; k < response.size() && k <= n; ++k) {
      sum += response[k] / 32768.0 * (samples[n - k] / 32768.0);
    }
    result[n] = sum;
  }
  return result;
}

double LargestDifference(const std::vector<float>& a, const std::vector<double>& b) {
  EXPECT_EQ(a.size(), b.size());
  double largest = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    largest = std::max(largest, std::abs(static_cast<double>(a[i]) - b[i]));
  }
  return largest;
}

TEST_F(HrtfRenderTest, WritesWholeChunksOfStereoFloats) {
  for (const size_t frames : {0U, 1U, 440U, 441U, 881U, 882U, 883U, 10 * 441U}) {
    EXPECT_EQ(Render(std::vector<short>(2 * frames)).size(), frames / kChunk * kChunk * 2)
        << frames;
  }
}

TEST_F(HrtfRenderTest, DropsAChunkThatLacksOneSample) {
  EXPECT_EQ(Render(std::vector<short>(881)).size(), 0U);
  EXPECT_EQ(Render(std::vector<short>(882)).size(), 882U);
}

TEST_F(HrtfRenderTest, EqualsAConvolutionInDoublePrecision) {
  const std::vector<short> noise = Noise(2 * 20 * kChunk);
  const std::vector<float> output = Render(noise);
  const size_t frames = 20 * kChunk;
  const double leftError =
      LargestDifference(Channel(output, 0), Convolve(Channel(noise, 0), left, frames));
  const double rightError =
      LargestDifference(Channel(output, 1), Convolve(Channel(noise, 1), right, frames));
  EXPECT_LT(leftError, 2e-7);
  EXPECT_LT(rightError, 2e-7);
}

TEST_F(HrtfRenderTest, TurnsAnImpulseIntoTheResponseOfItsEar) {
  for (const size_t ear : {0U, 1U}) {
    std::vector<short> impulse(2 * 2 * kChunk);
    impulse[ear] = 1;
    const std::vector<float> output = Render(impulse);
    std::vector<float> expected;
    for (const short tap : ear == 0 ? left : right) {
      expected.push_back(static_cast<float>(tap) / 32768 / 32768);
    }
    expected.resize(2 * kChunk);
    EXPECT_EQ(Channel(output, ear), expected);
    EXPECT_THAT(Channel(output, 1 - ear), Each(0.0F));
  }
}

TEST_F(HrtfRenderTest, HasNoSeamsBetweenChunks) {
  const std::vector<short> noise = Noise(2 * 20 * kChunk);
  const std::vector<float> output = Render(noise);
  for (const size_t ear : {0U, 1U}) {
    std::vector<float> coefficients;
    for (const short tap : ear == 0 ? left : right) {
      coefficients.push_back(static_cast<float>(tap) / 32768);
    }
    std::vector<float> in;
    for (const short sample : Channel(noise, ear)) {
      in.push_back(static_cast<float>(sample) / 32768);
    }
    std::vector<float> inOnePiece(in.size());
    const std::unique_ptr<zuwebrtc::FIRFilter> filter(
        zuwebrtc::FIRFilter::Create(coefficients.data(), coefficients.size(), in.size()));
    filter->Filter(in.data(), in.size(), inOnePiece.data());
    EXPECT_EQ(Channel(output, ear), inOnePiece);
  }
}

// A short click in both channels.
TEST_F(HrtfRenderTest, HearsAMonoSourceEarlierAndLouderAtTheRight) {
  std::vector<short> click(2 * 4 * kChunk);
  click[0] = click[1] = 16000;
  const std::vector<float> output = Render(click);
  double energy[2] = {};
  size_t onset[2] = {};
  for (const size_t ear : {0U, 1U}) {
    const std::vector<float> heard = Channel(output, ear);
    float peak = 0;
    for (const float sample : heard) {
      peak = std::max(peak, std::abs(sample));
      energy[ear] += static_cast<double>(sample) * static_cast<double>(sample);
    }
    while (std::abs(heard[onset[ear]]) * 10 < peak) ++onset[ear];
  }
  EXPECT_NEAR(10 * std::log10(energy[1] / energy[0]), 11.8, 0.1);
  EXPECT_EQ(onset[0] - onset[1], 27U);
}

TEST_F(HrtfRenderTest, WritesAnEmptyFileWhenTheInputIsMissing) {
  TestHRTF();
  EXPECT_TRUE(std::filesystem::exists(kOutput));
  EXPECT_TRUE(std::filesystem::is_empty(kOutput));
}

TEST_F(HrtfRenderTest, EndsWhenTheOutputCannotBeOpened) {
  WriteFile(kInput, SampleBytes(Noise(882 * 3)));
  std::filesystem::create_directory(kOutput);
  TestHRTF();
  EXPECT_TRUE(std::filesystem::is_empty(kOutput));
}

TEST_F(HrtfRenderTest, ReplacesAnOlderOutput) {
  WriteFile(kOutput, std::string(100000, 'x'));
  EXPECT_EQ(Render(std::vector<short>(882)).size(), 882U);
}

TEST_F(HrtfRenderTest, GivesTheSameBytesRunAfterRun) {
  const std::vector<short> noise = Noise(2 * 7 * kChunk);
  Render(noise);
  const std::string first = ReadFile(kOutput);
  Render(noise);
  EXPECT_EQ(ReadFile(kOutput), first);
}

TEST_F(HrtfRenderTest, LogsItsStartAndItsEnd) {
  const CapturedStderr log;
  TestHRTF();
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("TestHrtf..start"), EndsWith("TestHrtf..end")));
}

}  // namespace
