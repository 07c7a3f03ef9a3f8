// What becomes of level and precision: dither, and less level where something would clip.

#include <gmock/gmock.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"

namespace host {
namespace {

using testing::Each;
using testing::HasSubstr;

class LevelTest : public testing::Test {
 protected:
  // A mono sine as floats.
  void WriteSine(const std::string& path, double level, int rate = 48000) {
    WriteSound(path, {.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT,
                      .rate = rate,
                      .samples = Sine(997, level, rate, 2 * rate)});
  }

  TemporaryDirectory m_directory;
};

// Triangular dither leaves a quarter of a squared step: 92.3 dB below a sine at -1 dBFS.
TEST_F(LevelTest, DitherIsAllTheNoiseThatIsAdded) {
  for (const int rate : {16000, 44100, 48000, 96000}) {
    WriteSine("source", -1, rate);
    for (const int to : {16000, 44100, 48000}) {
      SCOPED_TRACE(std::to_string(rate) + " to " + std::to_string(to));
      ASSERT_EQ(FaultText(StageOne("source", WaveForm({to, 1}))), "");
      const ToneFit fit = FitTone(Shorts("work/in", 44), 997, to);
      EXPECT_NEAR(fit.residualDb, -92.3, 0.5);
      EXPECT_NEAR(20 * std::log10(fit.amplitude / 32768), -1, 0.01);
    }
  }
}

TEST_F(LevelTest, DithersTheSameInEveryRun) {
  WriteSine("source", -20);
  StageOne("source", WaveForm());
  const std::string first = ReadFile("work/in");
  const Staging staging = StageOne("source", WaveForm());
  EXPECT_EQ(ReadFile("work/in"), first);
  EXPECT_EQ(StepNames(staging), "dither");
}

// Without dither a sine of less than half a step is gone.
TEST_F(LevelTest, DitherKeepsWhatIsBelowTheLastBit) {
  WriteSine("source", -100);
  ASSERT_EQ(FaultText(StageOne("source", WaveForm())), "");
  const ToneFit fit = FitTone(Shorts("work/in", 44), 997, 48000);
  EXPECT_NEAR(20 * std::log10(fit.amplitude / 32768), -100, 1);
}

TEST_F(LevelTest, DoesNotDitherWhatHasNoMoreThan16Bits) {
  std::vector<double> samples;
  for (int i = -32768; i < 32768; ++i) samples.push_back(i / 32768.0);
  for (const int format : {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_WAV | SF_FORMAT_PCM_24,
                           SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_AIFF | SF_FORMAT_PCM_16}) {
    WriteSound("source", {.format = format, .samples = samples});
    const Staging staging = StageOne("source", WaveForm());
    EXPECT_EQ(StepNames(staging), "samples");
    const std::vector<short> made = Shorts("work/in", 44);
    ASSERT_EQ(made.size(), samples.size());
    for (size_t i = 0; i < made.size(); ++i) ASSERT_EQ(made[i], samples[i] * 32768);
  }
}

// One sample with more precision at the very end: the whole file is dithered then.
TEST_F(LevelTest, DithersFromTheStartWhateverTheSampleThatNeedsIt) {
  std::vector<double> samples(100000, 0.0);
  samples.back() = 0.3 / 32768;
  WriteSound("source", {.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT, .samples = samples});
  const Staging staging = StageOne("source", WaveForm());
  EXPECT_EQ(StepNames(staging), "dither");
  const std::vector<short> made = Shorts("work/in", 44);
  ASSERT_EQ(made.size(), samples.size());
  EXPECT_GT(std::count_if(made.begin(), made.begin() + 1000, [](short s) { return s != 0; }), 100);
}

TEST_F(LevelTest, FloatsBeyondFullScaleAreMadeSofter) {
  WriteSine("source", 6);
  const Staging staging = StageOne("source", WaveForm());
  ASSERT_EQ(FaultText(staging), "");
  EXPECT_EQ(StepNames(staging), "softer, dither");
  EXPECT_THAT(staging.files[0].Line(), HasSubstr(": 6.0 dB softer, so that nothing clips, dither"));
  EXPECT_NEAR(*staging.files[0].steps[0].value, 6, 0.01);
  const std::vector<short> made = Shorts("work/in", 44);
  const ToneFit fit = FitTone(made, 997, 48000);
  EXPECT_NEAR(20 * std::log10(fit.amplitude / 32768), 0, 0.01);
  EXPECT_NEAR(fit.residualDb, -93.3, 0.5);
}

// The noise of the dither takes a step of the room.
TEST_F(LevelTest, FullScaleIsMadeSofterByTheRoomOfTheDither) {
  std::vector<double> samples = Sine(997, 0, 48000, 48000);
  samples[100] = 8388607.0 / 8388608;
  samples[101] = -1;
  WriteSound("source", {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24, .samples = samples});
  const Staging staging = StageOne("source", WaveForm());
  EXPECT_EQ(StepNames(staging), "softer, dither");
  EXPECT_NEAR(*staging.files[0].steps[0].value, 0.0004, 0.0001);
  const std::vector<short> made = Shorts("work/in", 44);
  EXPECT_NEAR(made[100], 32767, 1);
  EXPECT_NEAR(made[101], -32767, 1);
}

TEST_F(LevelTest, WhatIsJustBelowKeepsItsLevel) {
  std::vector<double> samples = Sine(997, -1, 48000, 48000);
  samples[100] = 32766.4 / 32768;
  samples[101] = -32767.4 / 32768;
  WriteSound("source", {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24, .samples = samples});
  EXPECT_EQ(StepNames(StageOne("source", WaveForm())), "dither");
}

// A filter overshoots where the samples do not.
TEST_F(LevelTest, AnOvershootOfTheResamplingIsMadeSofter) {
  std::vector<double> samples;
  for (int i = 0; i < 44100; ++i) samples.push_back(i / 50 % 2 == 0 ? 0.999 : -0.999);
  WriteSound("source",
             {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16, .rate = 44100, .samples = samples});
  Form floats = WaveForm({16000, 1});
  floats.samples = SampleType::kFloat32;
  StageOne("source", floats);
  const std::vector<double> wanted = ReadSound("work/in").samples;
  const double peak = std::max(*std::max_element(wanted.begin(), wanted.end()),
                               -*std::min_element(wanted.begin(), wanted.end()));
  EXPECT_GT(peak, 1.05);

  const Staging staging = StageOne("source", WaveForm({16000, 1}));
  EXPECT_EQ(StepNames(staging), "rate, softer, dither");
  EXPECT_NEAR(*staging.files[0].steps[1].value, 20 * std::log10(peak), 0.001);
  const std::vector<short> made = Shorts("work/in", 44);
  ASSERT_EQ(made.size(), wanted.size());
  for (size_t i = 0; i < made.size(); ++i) {
    ASSERT_NEAR(made[i], wanted[i] / peak * 32768, 3);
  }
}

TEST_F(LevelTest, FloatsKeepWhatIsBeyondFullScale) {
  WriteSine("source", 6);
  const Staging staging =
      StageOne("source", {.kind = Form::Kind::kHeaderless, .samples = SampleType::kFloat32});
  EXPECT_EQ(StepNames(staging), "samples");
  const std::vector<float> made = Floats("work/in", 0);
  EXPECT_NEAR(*std::max_element(made.begin(), made.end()), 1.995, 0.001);
}

TEST_F(LevelTest, SilenceStaysDigitalSilence) {
  WriteSound("source", {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24,
                        .rate = 44100,
                        .samples = std::vector<double>(44100)});
  ASSERT_EQ(FaultText(StageOne("source", WaveForm({16000, 1}))), "");
  EXPECT_THAT(Shorts("work/in", 44), Each(0));
}

// Near and far end keep their relation.
TEST_F(LevelTest, AGroupIsMadeSofterTogether) {
  std::filesystem::create_directories("work");
  WriteSound("near", {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                      .rate = 16000,
                      .samples = Sine(997, -12, 16000, 16000)});
  WriteSine("far", 6);
  const std::vector<StageInput> inputs = {
      {.source = "near", .place = "near.wav", .form = WaveForm(), .group = 1},
      {.source = "far", .place = "far.wav", .form = WaveForm(), .group = 1}};
  const Staging staging = StageRecordings("work", inputs, {}, [] { return true; });
  ASSERT_EQ(FaultText(staging), "");
  EXPECT_EQ(StepNames(staging), "softer, dither; rate, softer, dither");
  EXPECT_EQ(*staging.files[0].steps[0].value, *staging.files[1].steps[1].value);
  const ToneFit near = FitTone(Shorts("work/near.wav", 44), 997, 16000);
  const ToneFit far = FitTone(Shorts("work/far.wav", 44), 997, 16000);
  EXPECT_NEAR(20 * std::log10(far.amplitude / near.amplitude), 18, 0.02);
  EXPECT_NEAR(20 * std::log10(far.amplitude / 32768), 0, 0.05);
}

TEST_F(LevelTest, FilesThatAreNoGroupKeepTheirOwnLevel) {
  std::filesystem::create_directories("work");
  WriteSound("one",
             {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16, .samples = Sine(997, -12, 48000, 48000)});
  WriteSine("other", 6);
  const std::vector<StageInput> inputs = {
      {.source = "one", .place = "one.wav", .form = WaveForm()},
      {.source = "other", .place = "other.wav", .form = WaveForm()}};
  const Staging staging = StageRecordings("work", inputs, {}, [] { return true; });
  EXPECT_EQ(StepNames(staging), "copy; softer, dither");
  EXPECT_EQ(ReadFile("work/one.wav"), ReadFile("one"));
}

}  // namespace
}  // namespace host
