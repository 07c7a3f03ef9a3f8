// What the report of a run holds so that it can be understood, and run again, later.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

namespace fs = std::filesystem;

class RecordsTest : public RunTest {
 protected:
  // The report of a run with these words.
  static json Report(std::vector<std::string> words) {
    words.insert(words.begin(), {"--json", "report.json"});
    const Finished run = Run(words);
    EXPECT_NE(run.exitCode, 2) << run.err;
    return ParseReport(ReadFile("report.json"));
  }

  // As another program computes it.
  static std::string DigestOf(const std::string& path) {
    return RunProcess({"/usr/bin/sha256sum", path}).out.substr(0, 64);
  }
};

TEST_F(RecordsTest, HasTheHashOfEveryFile) {
  Put("in.pcm", std::string(16000, 'x') + "the end");
  const json report = Report({"Copy", "in.pcm", "out.pcm"});
  const json digest = {{"value", DigestOf("bench_work/in.pcm")}};
  EXPECT_EQ(report["inputs"][0]["sha256"], digest);
  EXPECT_EQ(report["outputs"][0]["sha256"], digest);
}

TEST_F(RecordsTest, HasTheHashOfAnInputAsItWasBeforeTheRun) {
  Put("in", "some text");
  const std::string before = DigestOf("bench_work/in");
  const json report = Report({"Spoil", "overwrite", "in"});
  EXPECT_NE(DigestOf("bench_work/in"), before);
  EXPECT_EQ(report["inputs"][0]["sha256"]["value"], before);
}

TEST_F(RecordsTest, SaysWhyThereIsNoHash) {
  json report = Report({"Copy", "in.pcm", "out.pcm"});
  EXPECT_EQ(report["inputs"][0]["sha256"], json({{"value", nullptr}, {"reason", "not looked at"}}));
  report = Report({"WriteNothing"});
  EXPECT_EQ(report["outputs"][0]["sha256"],
            json({{"value", nullptr}, {"reason", "not looked at"}}));
}

TEST_F(RecordsTest, HasTheStepsOfWhatWasStaged) {
  WriteFile("song.wav", WavBytes({.channels = 2, .rate = 44100}, Tone(997, 8000, 44100, 44100, 2)));
  const json report =
      Report({"Copy", "--in", "song.wav", "--work", "w", "--", "in.pcm", "out.pcm"});
  const json& staged = report["inputs"][0]["staged"]["value"];
  EXPECT_EQ(staged["source"], (m_directory.path() / "song.wav").string());
  EXPECT_EQ(staged["source_sha256"], DigestOf("song.wav"));
  EXPECT_EQ(staged["sha256"], report["inputs"][0]["sha256"]["value"]);
  const json record = json::parse(ReadFile("w/staged.json"));
  EXPECT_EQ(staged, record["files"][0]) << "as staged.json has it";
  EXPECT_GE(staged["steps"].size(), 3U) << "channels, rate and samples";
}

TEST_F(RecordsTest, HasTheStepsAlsoOfWhatWasStagedBefore) {
  WriteFile("song.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 8000, 8000)));
  RunProcess({AUDIO_BENCH_PROBE, "stage", "Copy", "in.pcm", "out.pcm", "--in", "song.wav"});
  json staged = Report({"Copy", "in.pcm", "out.pcm"})["inputs"][0]["staged"];
  EXPECT_EQ(staged["value"]["place"], "in.pcm");
  Put("in.pcm", "put there by hand");
  staged = Report({"Copy", "in.pcm", "out.pcm"})["inputs"][0]["staged"];
  EXPECT_EQ(staged["value"], nullptr) << "it is no longer what was staged";
}

TEST_F(RecordsTest, HasTheCommandLineThatRunsItAgain) {
  WriteFile("a song.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 16000, 8000)));
  const json report = Report({"Copy",       "--in",       "inFile=a song.wav",
                              "--work",     "w",          "--timeout-s",
                              "2.5",        "--strict",   "--linger-s=1",
                              "--figures",  "--wav",      "--out",
                              "o.wav",      "--channels", "mean",
                              "--start",    "0.125",      "--seconds",
                              "0.75",       "--force",    "--raw",
                              "8000,2,s24", "--",         "in.pcm",
                              "--out"});
  const std::vector<std::string> words = report["command"];
  EXPECT_THAT(
      words, ElementsAre("audio_bench", "run", "--work", "w", "--timeout-s", "2.5", "--linger-s",
                         "1", "--strict", "--figures", "--wav", "--in", "inFile=a song.wav",
                         "--out", "o.wav", "--raw", "8000,2,s24", "--channels", "mean", "--start",
                         "0.125", "--seconds", "0.75", "--force", "--", "Copy", "in.pcm", "--out"));
  EXPECT_EQ(report["directory"], m_directory.path().string());

  const std::string heard = ReadFile("o.wav");
  fs::remove_all("w");
  fs::remove("o.wav");
  std::vector<std::string> again = words;
  again.front() = AUDIO_BENCH_PROBE;
  EXPECT_EQ(RunProcess(again).exitCode, report["exit_code"]);
  EXPECT_EQ(ReadFile("o.wav"), heard);
}

TEST_F(RecordsTest, LeavesATemporaryWorkspaceOutOfTheCommandLine) {
  WriteFile("song.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 8000, 8000)));
  setenv("TMPDIR", m_directory.path().c_str(), 1);
  const std::vector<std::string> words = Report({"Copy", "--in", "song.wav"})["command"];
  unsetenv("TMPDIR");
  EXPECT_THAT(words, ElementsAre("audio_bench", "run", "--in", "song.wav", "--", "Copy",
                                 "inFile.pcm", "outFile.pcm"));
}

TEST_F(RecordsTest, HasTheVariablesThatMatter) {
  setenv("SOXR_USE_SIMD", "0", 1);
  setenv("PULSE_SERVER", "none", 1);
  setenv("SOMETHING_ELSE", "1", 1);
  setenv("HOMELY", "1", 1);
  const json environment = Report({"Nothing"})["environment"];
  for (const char* name : {"SOXR_USE_SIMD", "PULSE_SERVER", "SOMETHING_ELSE", "HOMELY"}) {
    unsetenv(name);
  }
  EXPECT_EQ(environment.value("SOXR_USE_SIMD", ""), "0");
  EXPECT_EQ(environment.value("PULSE_SERVER", ""), "none");
  EXPECT_FALSE(environment.contains("SOMETHING_ELSE"));
  EXPECT_FALSE(environment.contains("HOMELY")) << "a name is whole";
}

TEST_F(RecordsTest, HasEveryLibraryOfBenchAndEngineWithItsVersion) {
  RunProcess({AUDIO_BENCH, "run", "TestReverb", "--json", "report.json"});
  const json report = ParseReport(ReadFile("report.json"));
  std::vector<std::string> names;
  for (const json& library : report["libraries"]) {
    names.push_back(library["name"]);
    EXPECT_TRUE(library["version"]["value"].is_string()) << library;
    const bool tells = !std::set<std::string>{"Highway",  "KissFFT",     "opencore-amrwb",
                                              "speexdsp", "vo-amrwbenc", "webrtc-audio-processing"}
                            .contains(library["name"]);
    EXPECT_EQ(library["told_by"], tells ? "library" : "build") << library;
  }
  EXPECT_THAT(names, IsSupersetOf({"Highway", "KissFFT", "PulseAudio", "SoundTouch", "glibc",
                                   "opencore-amrwb", "opus", "sndfile", "soxr", "speex",
                                   "vo-amrwbenc", "webrtc-audio-processing"}));
}

TEST_F(RecordsTest, HasCompilerAndBuild) {
  const json build = Report({"Nothing"})["build"];
  EXPECT_EQ(build["compiler"], COMPILER);
  EXPECT_EQ(build["type"], BUILD_TYPE);
}

TEST_F(RecordsTest, AreNotInTheTextOfAReport) {
  Put("in.pcm", std::string(16000, 'x'));
  EXPECT_THAT(Run({"Copy", "in.pcm", "out.pcm", "--json", "report.json"}).out,
              Not(testing::ContainsRegex("[0-9a-f]{64}")));
}

}  // namespace
