#include "recording/stage.h"

#include <gmock/gmock.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <filesystem>

#include "files/audio_figures.h"
#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class StageTest : public testing::Test {
 protected:
  // Stages a mono file of these samples, without precision beyond 16 bits.
  std::string Line(const std::vector<short>& samples, const Form& form,
                   const StageWishes& wishes = {}, uint16_t channels = 1) {
    WriteFile("source.wav", WavBytes({.channels = channels, .rate = 8000}, samples));
    const Staging staging = StageOne("source.wav", form, wishes);
    if (staging.fault) return staging.fault->text;
    const std::string line = staging.files[0].Line();
    return line.substr(line.find("): ") + 3);
  }

  TemporaryDirectory m_directory;
};

TEST_F(StageTest, ToMonoItIsTheMean) {
  EXPECT_EQ(Line({100, 300, -6, -8}, RawShorts({8000, 1}), {}, 2),
            "the mean of stereo, written as 16 bits");
  EXPECT_THAT(Shorts("work/in", 0), ElementsAre(200, -7));
}

TEST_F(StageTest, TheFirstChannelIsTakenWhereThatIsChosen) {
  EXPECT_EQ(Line({100, 300, -6, -8}, RawShorts({8000, 1}), {.channels = ChannelChoice::kFirst}, 2),
            "the first of stereo: mono, written as 16 bits");
  EXPECT_THAT(Shorts("work/in", 0), ElementsAre(100, -6));
}

TEST_F(StageTest, FromMonoItIsCopies) {
  EXPECT_EQ(Line({100, -6}, RawShorts({8000, 2})),
            "copied from mono to stereo, written as 16 bits");
  EXPECT_THAT(Shorts("work/in", 0), ElementsAre(100, 100, -6, -6));
}

TEST_F(StageTest, OtherLayoutsAreAMatterOfChoice) {
  const std::vector<short> samples = {30, 60, 90};
  EXPECT_EQ(Line(samples, RawShorts({8000, 2}), {}, 3),
            "input source.wav has 3 channels, not stereo; choose what becomes of them: "
            "--channels first or mean");
  EXPECT_EQ(Line(samples, RawShorts({8000, 2}), {.channels = ChannelChoice::kFirst}, 3),
            "the first of 3 channels: stereo, written as 16 bits");
  EXPECT_THAT(Shorts("work/in", 0), ElementsAre(30, 60));
  EXPECT_EQ(Line(samples, RawShorts({8000, 2}), {.channels = ChannelChoice::kMean}, 3),
            "the mean of 3 channels in each of stereo, written as 16 bits");
  EXPECT_THAT(Shorts("work/in", 0), ElementsAre(60, 60));
  EXPECT_EQ(Line({1, 2}, RawShorts({8000, 3}), {.channels = ChannelChoice::kFirst}, 2),
            "input source.wav has stereo, not 3 channels; choose what becomes of them: "
            "--channels mean");
}

TEST_F(StageTest, CutsToTheSample) {
  std::vector<short> samples;
  for (short i = 0; i < 8000; ++i) samples.push_back(i);
  EXPECT_EQ(Line(samples, WaveForm(), {.cut = {.start = 0.25, .seconds = 0.5}}),
            "cut from 0.250 s, 0.500 s, written as 16 bits");
  const std::vector<short> made = Shorts("work/in", 44);
  EXPECT_EQ(made, std::vector<short>(samples.begin() + 2000, samples.begin() + 6000));
  EXPECT_EQ(Line(samples, WaveForm(), {.cut = {.seconds = 0.5}}),
            "cut from the start, 0.500 s, written as 16 bits");
  EXPECT_EQ(Shorts("work/in", 44).size(), 4000U);
  EXPECT_EQ(Line(samples, WaveForm(), {.cut = {.start = 0.75, .seconds = 2.0}}),
            "cut from 0.750 s, 2.000 s, written as 16 bits");
  EXPECT_EQ(Shorts("work/in", 44).size(), 2000U);
  EXPECT_EQ(Line(samples, WaveForm(), {.cut = {.start = 1.5}}),
            "input source.wav has 1.00 s, nothing at 1.50 s");
  EXPECT_EQ(Line(samples, WaveForm(), {.cut = {.start = 1}}),
            "input source.wav has 1.00 s, nothing at 1.00 s");
}

TEST_F(StageTest, AGroupTakesTheFormOfTheFirst) {
  fs::create_directories("work");
  WriteFile("near", WavBytes({.channels = 1, .rate = 16000}, std::vector<short>(1600)));
  WriteFile("far", WavBytes({.channels = 2, .rate = 48000}, std::vector<short>(9600)));
  const std::vector<StageInput> inputs = {
      {.source = "near", .place = "a/near.wav", .form = WaveForm(), .group = 1},
      {.source = "far", .place = "a/far.wav", .form = WaveForm(), .group = 1}};
  const Staging staging = StageRecordings("work", inputs, {}, [] { return true; });
  ASSERT_EQ(FaultText(staging), "");
  EXPECT_EQ(StepNames(staging), "copy; channels, rate, samples");
  const Sound far = ReadSound("work/a/far.wav");
  EXPECT_EQ(far.rate, 16000);
  EXPECT_EQ(far.channels, 1);
  EXPECT_EQ(far.samples.size(), 1600U);
}

TEST_F(StageTest, TheLineSaysWhatItWasAndWhatWasDone) {
  WriteSound("a song.flac", {.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_24,
                             .rate = 96000,
                             .channels = 2,
                             .samples = Sine(997, -6, 96000, 144000, 2)});
  const Staging staging = StageOne("a song.flac", RawShorts({44100, 2}));
  ASSERT_EQ(FaultText(staging), "");
  EXPECT_EQ(staging.files[0].Line(),
            "staged  in  from " + (m_directory.path() / "a song.flac").string() +
                " (FLAC, 24-bit, 96000 Hz, stereo, 1.50 s): resampled from 96000 to 44100 Hz, "
                "dithered to 16 bits");
}

TEST_F(StageTest, AForeignFileIsNotReplaced) {
  fs::create_directories("work");
  WriteFile("work/in", "mine");
  EXPECT_EQ(Line({1, 2}, WaveForm()),
            "work/in is there already, and was not put there by stage; --force replaces it");
  EXPECT_EQ(ReadFile("work/in"), "mine");
  EXPECT_EQ(Line({1, 2}, WaveForm(), {.force = true}), "copied as it is");
  EXPECT_EQ(ReadFile("work/in"), ReadFile("source.wav"));
}

TEST_F(StageTest, ItsOwnFileIsReplacedUntilItIsChanged) {
  EXPECT_EQ(Line({1, 2}, WaveForm()), "copied as it is");
  EXPECT_EQ(Line({3, 4}, WaveForm()), "copied as it is");
  EXPECT_EQ(ReadFile("work/in"), ReadFile("source.wav"));
  WriteFile("work/in", "mine");
  EXPECT_EQ(Line({5, 6}, WaveForm()),
            "work/in was changed since it was staged; --force replaces it");
  EXPECT_EQ(ReadFile("work/in"), "mine");
}

TEST_F(StageTest, ALinkInItsPlaceIsForeign) {
  fs::create_directories("work");
  WriteFile("elsewhere", "mine");
  fs::create_symlink("../elsewhere", "work/in");
  EXPECT_THAT(Line({1, 2}, WaveForm()), HasSubstr("is there already"));
  EXPECT_EQ(Line({1, 2}, WaveForm(), {.force = true}), "copied as it is");
  EXPECT_EQ(ReadFile("elsewhere"), "mine");
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status("work/in")));
}

TEST_F(StageTest, NothingIsWrittenThroughALinkThatLeadsOut) {
  fs::create_directories("work");
  fs::create_directories("outside");
  fs::create_symlink("../outside", "work/folder");
  WriteFile("source.wav", WavBytes({}, {1, 2}));
  const StageInput input = {.source = "source.wav", .place = "folder/in", .form = WaveForm()};
  const Staging staging = StageRecordings("work", std::span(&input, 1), {}, [] { return true; });
  EXPECT_THAT(FaultText(staging), HasSubstr("leads out of the workspace"));
  EXPECT_TRUE(fs::is_empty("outside"));
}

TEST_F(StageTest, AFaultOfOneLeavesAllAsTheyWere) {
  fs::create_directories("work");
  WriteFile("good", WavBytes({}, {1, 2}));
  WriteFile("bad", "no audio");
  const std::vector<StageInput> inputs = {{.source = "good", .place = "a.wav", .form = WaveForm()},
                                          {.source = "bad", .place = "b.wav", .form = WaveForm()}};
  const Staging staging = StageRecordings("work", inputs, {}, [] { return true; });
  EXPECT_THAT(FaultText(staging), HasSubstr("input bad "));
  EXPECT_TRUE(fs::is_empty("work"));
}

TEST_F(StageTest, AFullDiskLeavesWhatWasThere) {
  EXPECT_EQ(Line({1, 2}, WaveForm()), "copied as it is");
  const std::string before = ReadFile("work/in");
  for (const Form& form : {WaveForm(), RawShorts({16000, 1})}) {
    WriteFile("source.wav", WavBytes({.rate = 8000}, std::vector<short>(100000, 3)));
    const FileSizeLimit limit(50000);
    const Staging staging = StageOne("source.wav", form);
    EXPECT_EQ(FaultText(staging), "cannot write work/in: File too large");
    EXPECT_EQ(staging.fault->kind, RecordingFault::Kind::kOutput);
  }
  EXPECT_EQ(ReadFile("work/in"), before);
  EXPECT_EQ(std::distance(fs::directory_iterator("work"), fs::directory_iterator()), 2);
}

TEST_F(StageTest, GivesUpWhereverItIsToldTo) {
  // Written anew for each: what has been read before is not read again.
  const auto writeSource = [] {
    fs::remove("source");
    WriteSound("source",
               {.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24, .samples = Sine(997, 3, 48000, 20000)});
  };
  fs::create_directories("work");
  writeSource();
  const StageInput input = {.source = "source", .place = "in", .form = WaveForm({16000, 1})};
  int asked = 0;
  const StageWishes late = {.cut = {.start = 0.1}};
  ASSERT_EQ(
      FaultText(StageRecordings("work", std::span(&input, 1), late, [&] { return ++asked > 0; })),
      "");
  fs::remove_all("work");
  fs::create_directories("work");
  for (int most = 0; most < asked; ++most) {
    int left = most;
    writeSource();
    const Staging staging =
        StageRecordings("work", std::span(&input, 1), late, [&] { return left-- > 0; });
    ASSERT_TRUE(staging.fault) << most << " of " << asked;
    EXPECT_EQ(staging.fault->kind, RecordingFault::Kind::kStopped);
    EXPECT_TRUE(fs::is_empty("work"));
  }
}

}  // namespace
}  // namespace host
