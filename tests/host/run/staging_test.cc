// Recordings that a run takes in, and results that it hands out.

#include <gmock/gmock.h>

#include <filesystem>

#include "run/run_fixture.h"
#include "support/file_size_limit.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

// Copy takes headerless samples at 8 kHz in mono.
class StagingTest : public RunTest {
 protected:
  StagingTest() {
    setenv("TMPDIR", m_directory.path().c_str(), 1);
    WriteFile("right.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 8000, 8000)));
    WriteFile("stereo.wav",
              WavBytes({.channels = 2, .rate = 44100}, Tone(997, 8000, 44100, 44100, 2)));
  }
  ~StagingTest() override { unsetenv("TMPDIR"); }
  StagingTest(const StagingTest&) = delete;
  StagingTest& operator=(const StagingTest&) = delete;

  // The temporary workspaces that are there.
  static std::vector<std::string> Kept() {
    std::vector<std::string> kept;
    for (const auto& entry : fs::directory_iterator(".")) {
      const std::string name = entry.path().filename();
      if (name.starts_with("audio_bench.")) kept.push_back(entry.path());
    }
    return kept;
  }

  static Finished Stage(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH_PROBE, "stage"});
    return RunProcess(words);
  }
};

TEST_F(StagingTest, TakesARecordingInAndHandsTheResultOut) {
  const Finished run = Run({"Copy", "--in", "right.wav", "--out", "heard.wav"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(ReadFile("heard.wav"), ReadFile("right.wav"));
  EXPECT_THAT(run.out, HasSubstr("  staged  inFile.pcm  from " +
                                 (m_directory.path() / "right.wav").string() +
                                 " (WAVE, 16-bit, 8000 Hz, mono, 1.00 s): written as 16 bits\n"));
  EXPECT_THAT(run.out, HasSubstr("  out     heard.wav  written as 16 bits\n"));
  EXPECT_TRUE(Kept().empty());
  EXPECT_FALSE(fs::exists("bench_work"));
}

TEST_F(StagingTest, TakesTheLongFormAndNames) {
  const Finished run = Run({"Copy", "/x/a.pcm", "/x/b.pcm", "--in", "a.pcm=stereo.wav", "--out",
                            "/x/b.pcm=heard.flac", "--work", "w"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, HasSubstr("the mean of stereo, resampled from 44100 to 8000 Hz, dithered"));
  EXPECT_EQ(ReadFile("heard.flac").substr(0, 4), "fLaC");
  EXPECT_EQ(ReadFile("w/x/b.pcm").size(), 16000u);
  EXPECT_THAT(ReadFile("w/staged.json"), HasSubstr("\"place\": \"x/a.pcm\""));
}

TEST_F(StagingTest, KeepsTheWorkspaceWhereSomethingIsToBeLookedAt) {
  const Finished notTaken = Run({"Copy", "--in", "right.wav"});
  ASSERT_EQ(Kept().size(), 1u);
  const std::string last = notTaken.out.substr(notTaken.out.rfind("  kept    "));
  EXPECT_EQ(last, "  kept    " + fs::canonical(Kept()[0]).string() + "\n");
  EXPECT_EQ(ReadFile(Kept()[0] + "/outFile.pcm").size(), 16000u);
  fs::remove_all(Kept()[0]);

  Run({"Copy", "--in", "right.wav", "--out", "heard.wav", "--json", "report.json"});
  ASSERT_EQ(Kept().size(), 1u);
  EXPECT_THAT(ReadFile("report.json"), HasSubstr(fs::canonical(Kept()[0]).string()));
  fs::remove_all(Kept()[0]);

  WriteFile("short.wav", WavBytes({.rate = 8000}, {1, 2, 3}));
  EXPECT_EQ(Run({"Copy", "--in", "short.wav", "--out", "heard.wav"}).exitCode, 1);
  EXPECT_EQ(Kept().size(), 1u);
}

TEST_F(StagingTest, RefusalsLeaveNothing) {
  WriteFile("heard.wav", "earlier");
  for (const auto& [words, message] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"Copy", "--in", "right.wav", "--in", "stereo.wav"}, "has no further input"},
           {{"Copy", "--in", "right.wav", "--out", "heard.mp3"}, "stands for no kind of file"},
           {{"Copy", "--in", "right.wav", "--out", "right.wav"}, "are one file"},
           {{"Copy", "one", "--in", "right.wav"}, "Copy takes 2 arguments"},
           {{"Copy", "--in", "right.wav", "--raw", "8000,0,s16"}, "not RATE,CHANNELS"},
           {{"Copy", "--in", "right.wav", "--channels", "last"}, "neither first nor mean"},
           {{"Copy", "--in", "right.wav", "--start", "-1"}, "--start"}}) {
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 2) << message;
    EXPECT_THAT(run.err, HasSubstr(message));
    EXPECT_TRUE(Kept().empty()) << message;
  }
  EXPECT_EQ(ReadFile("heard.wav"), "earlier");
}

TEST_F(StagingTest, NamesTheArgumentsThatFilesDoNotStandFor) {
  const std::string given = Run({"ReadSome", "--in", "right.wav"}).err;
  EXPECT_THAT(given,
              HasSubstr("ReadSome takes 2 arguments, not 0: void ReadSome(const char* inFile, "
                        "int bytes); with --in and --out for the files it takes bytes\n"));
  EXPECT_THAT(Run({"ReadSome"}).err, testing::EndsWith("int bytes)\n"));
  EXPECT_THAT(Run({"Copy", "x", "--in", "right.wav"}).err, testing::EndsWith("outFile)\n"));
}

TEST_F(StagingTest, WhatIsNoRecordingEndsWithThree) {
  WriteFile("heard.wav", "earlier");
  WriteFile("song.mp4", std::string("\0\0\0\x20", 4) + "ftypM4A " + std::string(100, '\0'));
  const Finished run = Run({"Copy", "--in", "song.mp4", "--out", "heard.wav"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("ffmpeg -i song.mp4 -c:a pcm_s16le song.mp4.wav"));
  EXPECT_THAT(run.out, HasSubstr("  out     heard.wav  is from before this run\n"));
  EXPECT_EQ(ReadFile("heard.wav"), "earlier");
  EXPECT_TRUE(Kept().empty());
  EXPECT_EQ(Run({"Copy", "--in", "absent.wav"}).exitCode, 3);
}

TEST_F(StagingTest, AnOutputOfARunThatFailedIsNotHandedOut) {
  WriteFile("heard.raw", "earlier");
  const Finished run = Run({"WriteNotFinite", "--out", "heard.raw"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("  out     heard.raw  is from before this run\n"));
  EXPECT_EQ(ReadFile("heard.raw"), "earlier");
}

TEST_F(StagingTest, AResultWithoutAPlaceIsRefusedBeforeTheRun) {
  const Finished run = Run({"Copy", "--in", "right.wav", "--out", "absent/heard.wav"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "audio_bench: cannot write absent/heard.wav: No such file or directory\n");
  EXPECT_TRUE(Kept().empty());
}

TEST_F(StagingTest, AResultThatCannotBeWrittenIsAProblemOfTheRun) {
  // There is room for the samples, not for a header before them.
  const FileSizeLimit limit(16000 + 43);
  const Finished run = Run({"Copy", "--in", "right.wav", "--out", "heard.wav"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, HasSubstr("cannot write heard.wav: File too large"));
  EXPECT_EQ(Kept().size(), 1u);
}

TEST_F(StagingTest, StageDoesTheFirstHalf) {
  const Finished staged = Stage({"Copy", "--in", "right.wav"});
  EXPECT_EQ(staged.exitCode, 0) << staged.err;
  EXPECT_THAT(staged.out, ContainsRegex("^staged  inFile.pcm  from .*: written as 16 bits\nto run "
                                        "it: audio_bench run Copy inFile.pcm outFile.pcm --work "
                                        "bench_work\n$"));
  EXPECT_EQ(ReadFile("bench_work/inFile.pcm").size(), 16000u);
  EXPECT_FALSE(fs::exists("bench_work/outFile.pcm"));
  EXPECT_EQ(Run({"Copy", "inFile.pcm", "outFile.pcm"}).exitCode, 0);
}

TEST_F(StagingTest, StageReplacesNothingOfOthers) {
  Put("a.pcm", "mine");
  const std::vector<std::string> words = {"Copy", "a.pcm", "b.pcm", "--in", "right.wav"};
  const Finished refused = Stage(words);
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_THAT(refused.err, HasSubstr("bench_work/a.pcm is there already, and was not put there by "
                                     "stage; --force replaces it"));
  EXPECT_EQ(ReadFile("bench_work/a.pcm"), "mine");
  EXPECT_EQ(Run({"Copy", "a.pcm", "b.pcm", "--in", "right.wav", "--work", "bench_work"}).exitCode,
            2);
  EXPECT_EQ(ReadFile("bench_work/a.pcm"), "mine");
  std::vector<std::string> forced = words;
  forced.push_back("--force");
  EXPECT_EQ(Stage(forced).exitCode, 0);
  EXPECT_EQ(Stage(words).exitCode, 0);
}

TEST_F(StagingTest, StageNeedsARoutineAndARecording) {
  EXPECT_THAT(Stage({}).err, HasSubstr("stage needs the name of a routine"));
  EXPECT_THAT(Stage({"Copy", "a", "b"}).err, HasSubstr("stage needs a recording: --in FILE"));
  EXPECT_EQ(Stage({"--help"}).exitCode, 0);
}

TEST_F(StagingTest, AFolderServesAList) {
  const std::string wave = ReadFile("right.wav");
  fs::create_directories("sounds/list");
  fs::create_directories("sounds/others");
  WriteFile("sounds/list/in0.wav", wave);
  WriteFile("sounds/others/in7.wav", wave);
  WriteFile("sounds/unused.wav", wave);
  const Finished run = Run({"CopyList", "0", "--in", "sounds", "--out", "results", "--work", "w"});
  EXPECT_THAT(run.out, HasSubstr("  staged  list/in0.pcm  from "));
  EXPECT_THAT(run.out, HasSubstr("  staged  list/in7.pcm  from "));
  EXPECT_THAT(run.out, Not(HasSubstr("unused")));
  EXPECT_EQ(ReadFile("w/list/in0.pcm").size(), 16000u);
  EXPECT_EQ(ReadFile("w/list/in7.pcm").size(), 16000u);
  fs::create_directories("sounds/again");
  WriteFile("sounds/again/in7.wav", wave);
  EXPECT_THAT(Run({"CopyList", "0", "--in", "sounds"}).err, HasSubstr(" may be list/in7.pcm"));
  fs::create_directories("empty");
  EXPECT_THAT(Run({"CopyList", "0", "--in", "empty"}).err, HasSubstr("holds none of the "));
}

// By their places in the folder, else by their base names, whatever their kind.
TEST_F(StagingTest, AFolderServesWhatATextLists) {
  const std::string place = "F/Stream/vad/input/";
  fs::create_directories("talks/sub");
  fs::create_directories("talks/deep/er");
  fs::copy("right.wav", "talks/sub/one.wav");
  fs::copy("stereo.wav", "talks/deep/er/two.wav");
  fs::copy("right.wav", "talks/unused.wav");
  WriteFile("list.txt", "2\nsub/one.wav 0,\ntwo.wav 0,\n");
  const auto stage = [](std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "stage", "TestVAD", "v", "--work", "w"});
    return RunProcess(words);
  };
  const Finished staged = stage({"--in", "list.txt", "--in", "talks"});
  EXPECT_EQ(staged.exitCode, 0) << staged.err;
  EXPECT_EQ(ReadFile("w/" + place + "sub/one.wav"), ReadFile("right.wav"));
  EXPECT_EQ(ReadFile("w/" + place + "two.wav").substr(22, 6), std::string("\1\0\x44\xac\0\0", 6))
      << "mono at 44.1 kHz";
  EXPECT_FALSE(fs::exists("w/" + place + "unused.wav"));

  // The text may be in the folder, too, or be there already.
  fs::remove_all("w");
  fs::copy("list.txt", "talks/vad_input_description.txt");
  EXPECT_EQ(stage({"--in", "talks"}).exitCode, 0);
  EXPECT_EQ(ReadFile("w/" + place + "vad_input_description.txt"), ReadFile("list.txt"));
  EXPECT_TRUE(fs::exists("w/" + place + "sub/one.wav"));
  fs::remove("talks/vad_input_description.txt");
  EXPECT_EQ(stage({"--in", "talks"}).exitCode, 0);
  fs::remove_all("w");
  EXPECT_THAT(stage({"--in", "talks"}).err, HasSubstr("holds none of the 0 files"));
}

// Each is open while it is staged, and a process may not have that many open.
TEST_F(StagingTest, StagesALongListInParts) {
  fs::create_directory("sounds");
  for (const char* const level : {"0", "5", "10"}) {
    for (int i = 1; i <= 30; ++i) {
      const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
      fs::copy_file("right.wav", "sounds/sp" + number + "_car_sn" + level + ".wav");
    }
  }
  const Finished staged = RunProcess({"/bin/sh", "-c",
                                      "ulimit -n 256; exec " AUDIO_BENCH
                                      " stage TestDenoiseProcessNoizeus --in sounds --work w"});
  EXPECT_EQ(staged.exitCode, 0) << staged.out << staged.err;
  size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator("w")) {
    files += entry.path().extension() == ".pcm" && entry.file_size() == 16000 ? 1 : 0;
  }
  EXPECT_EQ(files, 90U);
  const std::string record = ReadFile("w/staged.json");
  EXPECT_THAT(record, HasSubstr("sp01_car_sn0.wav"));
  EXPECT_THAT(record, HasSubstr("sp30_car_sn10.wav"));
}

}  // namespace
