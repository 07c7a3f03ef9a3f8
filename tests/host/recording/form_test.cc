#include "recording/form.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

// "16000/1" for a recording of this format.
std::string Chosen(const Form& form, int rate, int channels) {
  const WaveFormat made = ChooseFormat(form, {.rate = rate, .channels = channels});
  return std::to_string(made.rate) + "/" + std::to_string(made.channels);
}

TEST(ChooseFormat, KeepsWhatIsNotFixed) {
  EXPECT_EQ(Chosen({}, 22050, 3), "22050/3");
  EXPECT_EQ(Chosen({.formats = {{0, 1}}}, 22050, 3), "22050/1");
  EXPECT_EQ(Chosen({.formats = {{16000, 0}}}, 22050, 3), "16000/3");
}

TEST(ChooseFormat, TakesItsOwnRateElseTheNextHigherElseTheHighest) {
  const Form form = {.formats = {{8000, 1}, {16000, 1}, {32000, 1}}};
  EXPECT_EQ(Chosen(form, 16000, 1), "16000/1");
  EXPECT_EQ(Chosen(form, 11025, 2), "16000/1");
  EXPECT_EQ(Chosen(form, 22050, 1), "32000/1");
  EXPECT_EQ(Chosen(form, 48000, 1), "32000/1");
  EXPECT_EQ(Chosen(form, 4000, 1), "8000/1");
}

TEST(ChooseFormat, TakesItsOwnChannelsElseTheFewest) {
  const Form pairs = {.formats = {{44100, 2}, {16000, 1}}};
  EXPECT_EQ(Chosen(pairs, 48000, 2), "44100/2");
  EXPECT_EQ(Chosen(pairs, 48000, 1), "16000/1");
  EXPECT_EQ(Chosen(pairs, 48000, 6), "16000/1");
  EXPECT_EQ(Chosen({.formats = {{0, 1}, {0, 2}}}, 48000, 2), "48000/2");
}

TEST(ChooseFormat, RaisesARateThatIsTooLow) {
  EXPECT_EQ(Chosen({.leastRate = 8000}, 6000, 1), "8000/1");
  EXPECT_EQ(Chosen({.leastRate = 8000}, 11025, 1), "11025/1");
}

TEST(ChooseFormat, KeepsWithinLimits) {
  const Form form = {.formats = {{0, 1}, {0, 2}}, .leastRate = 8000, .mostRate = 48000};
  EXPECT_EQ(Chosen(form, 6000, 1), "8000/1");
  EXPECT_EQ(Chosen(form, 44100, 2), "44100/2");
  EXPECT_EQ(Chosen(form, 96000, 2), "48000/2");
  EXPECT_EQ(Chosen({.leastRate = 8000, .mostRate = 48000}, 96000, 1), "48000/1");
}

class HasFormTest : public testing::Test {
 protected:
  // The steps that make this file a form.
  std::string Steps(const std::string& bytes, const Form& form, const StageWishes& wishes = {}) {
    WriteFile("source", bytes);
    const Staging staging = StageOne("source", form, wishes);
    if (staging.fault) return staging.fault->text;
    if (StepNames(staging) == "copy") {
      EXPECT_EQ(ReadFile("work/in"), bytes);
    }
    return StepNames(staging);
  }

  TemporaryDirectory m_directory;
};

TEST_F(HasFormTest, TheRightWaveIsCopied) {
  const std::string bytes = WavBytes({.channels = 1, .rate = 16000}, {1, -2, 3, 32767, -32768});
  EXPECT_EQ(Steps(bytes, WaveForm()), "copy");
  EXPECT_EQ(Steps(bytes, WaveForm({16000, 1})), "copy");
  EXPECT_EQ(Steps(bytes, WaveForm({16000, 2})), "channels, samples");
  EXPECT_EQ(Steps(bytes, RawShorts({16000, 1})), "samples");
  EXPECT_EQ(Steps(bytes, WaveForm(), {.cut = {.seconds = 100.0}}), "cut, samples");
}

TEST_F(HasFormTest, FurtherChunksAreInTheWayOfAPlainHeaderOnly) {
  const std::string samples = SampleBytes({1, -2, 3, 4});
  const WavFormat format = {.rate = 16000};
  const std::string list = Chunk("LIST", "INFOISFT");
  const std::string before = Riff(PlainFormat(format) + list + Chunk("data", samples));
  const std::string after = Riff(PlainFormat(format) + Chunk("data", samples) + list);
  const std::string extensible = Riff(ExtensibleFormat(format, 1) + Chunk("data", samples));
  Form plain = WaveForm();
  plain.plainHeader = true;
  for (const std::string& bytes : {before, after, extensible}) {
    EXPECT_EQ(Steps(bytes, WaveForm()), "copy");
    EXPECT_EQ(Steps(bytes, plain), "samples");
    EXPECT_EQ(ReadFile("work/in"), WavBytes(format, {1, -2, 3, 4}));
  }
}

TEST_F(HasFormTest, HeaderlessSamplesOfTheFormAreCopied) {
  const std::string bytes = SampleBytes({1, -2, 3, 4});
  const StageWishes shorts = {.raw = RawForm{.rate = 8000, .channels = 2}};
  EXPECT_EQ(Steps(bytes, RawShorts({8000, 2}), shorts), "copy");
  EXPECT_EQ(Steps(bytes, RawShorts({8000, 1}), shorts), "channels, dither");
  EXPECT_EQ(Steps(bytes, WaveForm(), shorts), "samples");
  EXPECT_EQ(ReadFile("work/in"), WavBytes({.channels = 2, .rate = 8000}, {1, -2, 3, 4}));
}

TEST_F(HasFormTest, HeaderlessFloatsAreCopiedForFloatsOnly) {
  const float floats[] = {0.5F, -0.25F};
  const std::string bytes(reinterpret_cast<const char*>(floats), sizeof floats);
  const StageWishes wishes = {
      .raw = RawForm{.rate = 8000, .channels = 2, .samples = RawForm::Samples::kF32}};
  Form form = RawShorts({8000, 2});
  EXPECT_EQ(Steps(bytes, form, wishes), "samples");
  form.samples = SampleType::kFloat32;
  EXPECT_EQ(Steps(bytes, form, wishes), "copy");
  EXPECT_EQ(Steps(bytes, form, {.raw = RawForm{.rate = 8000, .channels = 2}}), "samples");
}

TEST_F(HasFormTest, APlayersRecordingIsCopiedInItsOwnKinds) {
  const Form form = {.kind = Form::Kind::kRecording};
  const std::vector<double> samples = Sine(997, -6, 48000, 4800);
  for (const int format :
       {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_FLAC | SF_FORMAT_PCM_24,
        SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}) {
    WriteSound("made", {.format = format, .samples = samples});
    EXPECT_EQ(Steps(ReadFile("made"), form), "copy");
  }
  WriteSound("made", {.format = SF_FORMAT_AIFF | SF_FORMAT_PCM_24, .samples = samples});
  EXPECT_EQ(Steps(ReadFile("made"), form), "dither");
  EXPECT_EQ(ReadFile("work/in").substr(0, 4), "RIFF");
}

TEST_F(HasFormTest, WhatIsNoAudioIsCopied) {
  const Form form = {.kind = Form::Kind::kBytes};
  EXPECT_EQ(Steps("2 a.wav 0,", form), "copy");
  EXPECT_THAT(Steps("2 a.wav 0,", form, {.cut = {.start = 1}}), testing::HasSubstr("no audio"));
}

}  // namespace
}  // namespace host
