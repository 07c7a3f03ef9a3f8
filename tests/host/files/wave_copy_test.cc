#include "files/wave_copy.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "files/audio_figures.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::ElementsAre;
using std::string_literals::operator""s;

class WaveCopyTest : public testing::Test {
 protected:
  WaveCopy CopyFloats(const std::vector<float>& samples, double peak, const std::string& path) {
    WriteFile("in", {reinterpret_cast<const char*>(samples.data()), samples.size() * 4});
    FILE* const file = fopen("in", "rb");
    const AudioLayout layout = {.samples = SampleType::kFloat32,
                                .rate = 44100,
                                .channels = 2,
                                .bytes = samples.size() * 4,
                                .frameBytes = 8};
    WaveCopy copy = WriteWaveCopy(file, layout, peak, {".", path}, [] { return true; });
    fclose(file);
    return copy;
  }

  std::vector<short> Samples(const std::string& path) {
    const std::string bytes = ReadFile(path).substr(44);
    std::vector<short> samples(bytes.size() / 2);
    memcpy(samples.data(), bytes.data(), bytes.size());
    return samples;
  }

  TemporaryDirectory m_directory;
};

TEST_F(WaveCopyTest, WritesTheCanonicalHeader) {
  EXPECT_EQ(CopyFloats({0, 0, 0, 0}, 0, "out.wav").problem, "");
  EXPECT_EQ(
      ReadFile("out.wav").substr(0, 44),
      "RIFF\x2c\0\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xac\0\0\x10\xb1\2\0\4\0\x10\0data\x08\0\0\0"s);
}

TEST_F(WaveCopyTest, RoundsToTheNearestAndKeepsTheLevel) {
  const float step = 1.0F / 32768;
  const WaveCopy copy =
      CopyFloats({0.6F * step, -0.6F * step, 0.4F * step, -0.4F * step, 1.0F, -1.0F}, 1, "out.wav");
  EXPECT_EQ(copy.attenuation, 0);
  EXPECT_THAT(Samples("out.wav"), ElementsAre(1, -1, 0, 0, 32767, -32768));
}

TEST_F(WaveCopyTest, AttenuatesWhatIsOverFullScaleToOneDecibelBelowIt) {
  const WaveCopy copy = CopyFloats({4.0F, -4.0F, 1.0F, 0.0F}, 4, "out.wav");
  EXPECT_NEAR(copy.attenuation, 13.0412, 1e-4);
  const auto peak = static_cast<short>(std::lround(32768 * std::pow(10, -1.0 / 20)));
  EXPECT_THAT(Samples("out.wav"), ElementsAre(peak, -peak, std::lround(peak / 4.0), 0));
}

TEST_F(WaveCopyTest, WritesNothingForWhatIsNotFinite) {
  const float infinite = std::numeric_limits<float>::infinity();
  CopyFloats({std::nanf(""), infinite, -infinite, 0.5F}, 0.5, "out.wav");
  EXPECT_THAT(Samples("out.wav"), ElementsAre(0, 0, 0, 16384));
}

TEST_F(WaveCopyTest, CopiesMoreThanOneBlock) {
  std::vector<float> samples(200002);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<float>(i % 1000) / 32768;
  }
  CopyFloats(samples, 0.5, "out.wav");
  const std::vector<short> copied = Samples("out.wav");
  ASSERT_EQ(copied.size(), samples.size());
  for (size_t i = 0; i < samples.size(); ++i) ASSERT_EQ(copied[i], static_cast<short>(i % 1000));
}

TEST_F(WaveCopyTest, TellsWhyThereIsNoCopy) {
  WriteFile("file", "");
  EXPECT_EQ(CopyFloats({0, 0}, 0, "file/out.wav").problem, "Not a directory");
}

TEST_F(WaveCopyTest, FollowsNoLinkOutOfItsFolder) {
  WriteFile("victim", "precious");
  std::filesystem::create_directory("work");
  std::filesystem::create_symlink("../victim", "work/out.wav");
  WriteFile("in", std::string(8, 0));
  FILE* const file = fopen("in", "rb");
  const AudioLayout layout = {
      .samples = SampleType::kFloat32, .rate = 44100, .channels = 2, .bytes = 8, .frameBytes = 8};
  const WaveCopy copy = WriteWaveCopy(file, layout, 0, {"work", "out.wav"}, [] { return true; });
  fclose(file);
  EXPECT_EQ(copy.problem, "leads out of the workspace by a symbolic link");
  EXPECT_EQ(ReadFile("victim"), "precious");
}

TEST_F(WaveCopyTest, LeavesNoHalfCopyWhenItIsStopped) {
  WriteFile("in", std::string(400000, 0));
  FILE* const file = fopen("in", "rb");
  const AudioLayout layout = {.samples = SampleType::kFloat32,
                              .rate = 44100,
                              .channels = 2,
                              .bytes = 400000,
                              .frameBytes = 8};
  EXPECT_EQ(WriteWaveCopy(file, layout, 0, {".", "out.wav"}, [] { return false; }).problem,
            kStopped);
  fclose(file);
  EXPECT_FALSE(std::filesystem::exists("out.wav"));
}

TEST_F(WaveCopyTest, LeavesNoHalfCopyOnAFullDisk) {
  constexpr uint64_t kBytes = 400000;
  WriteFile("in", std::string(kBytes, 0));  // Before the limit.
  const FileSizeLimit limit(1000);
  FILE* const file = fopen("in", "rb");
  const AudioLayout layout = {.samples = SampleType::kFloat32,
                              .rate = 44100,
                              .channels = 2,
                              .bytes = kBytes,
                              .frameBytes = 8};
  EXPECT_EQ(WriteWaveCopy(file, layout, 0, {".", "out.wav"}, [] { return true; }).problem,
            "File too large");
  fclose(file);
  EXPECT_FALSE(std::filesystem::exists("out.wav"));
}

TEST_F(WaveCopyTest, TellsThatNotEvenTheHeaderCouldBeWritten) {
  WriteFile("in", std::string(8, 0));
  const FileSizeLimit limit(40);
  FILE* const file = fopen("in", "rb");
  const AudioLayout layout = {
      .samples = SampleType::kFloat32, .rate = 44100, .channels = 2, .bytes = 8, .frameBytes = 8};
  EXPECT_EQ(WriteWaveCopy(file, layout, 0, {".", "out.wav"}, [] { return true; }).problem,
            "File too large");
  fclose(file);
  EXPECT_FALSE(std::filesystem::exists("out.wav"));
}

TEST_F(WaveCopyTest, RefusesWhatNoHeaderCanSay) {
  const AudioLayout layout = {.samples = SampleType::kPcm16,
                              .rate = 44100,
                              .channels = 2,
                              .bytes = uint64_t{1} << 32,
                              .frameBytes = 4};
  EXPECT_EQ(WriteWaveCopy(nullptr, layout, 0, {".", "out.wav"}, [] { return true; }).problem,
            "too long for a WAVE file");
  EXPECT_EQ(ReadFile("out.wav"), "");
}

}  // namespace
}  // namespace host
