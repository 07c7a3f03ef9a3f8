// A run that goes wrong names what it went wrong by, and blames nothing else.

#include <gmock/gmock.h>
#include <signal.h>

#include <nlohmann/json.hpp>
#include <random>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(RunTest, ATimeOutIsNoFaultOfAnInput) {
  Put("in", std::string(160, 'x'));
  const Finished run = Run({"HangOn", "in", "--timeout-s", "0.3", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 4);
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["reason"], "timed out after 0.30 s");
  EXPECT_EQ(report["inputs"][0]["problems"], json::array());
  EXPECT_THAT(run.out, Not(HasSubstr("could not be read")));
}

TEST_F(RunTest, AnInterruptionIsNoFaultOfAnInput) {
  Put("in", std::string(160, 'x'));
  Process process(Command({"HangOn", "in", "--json", "report.json"}));
  while (ReadFile("bench_work/logs/HangOn.log").empty()) usleep(1000);
  kill(process.pid(), SIGINT);
  EXPECT_EQ(process.Wait().exitCode, 128 + SIGINT);
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["reason"], "interrupted (Interrupt)");
  EXPECT_EQ(report["inputs"][0]["problems"], json::array());
}

TEST_F(RunTest, FailsOnWhatTheEngineCannotOpenWithItsReason) {
  Put("sdcard/in.wav", "bytes");
  const Finished run = Run({"PlayWhatIsNone", "/sdcard/in.wav", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  PlayWhatIsNone  input /sdcard/in.wav "
                                  "(bench_work/sdcard/in.wav) could not be opened by the engine: "
                                  "it holds no audio; it takes WAVE, FLAC, Ogg, MP3 or AAC"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["problems"], json({"input_format"}));
}

// What the program with its own engine says of a file that its players are given.
TEST_F(RunTest, PlayersPassOnNoFileThatIsNoRecording) {
  std::mt19937 generator(1);
  std::string random(50000, ' ');
  for (char& byte : random) byte = static_cast<char>(generator());
  const std::string program = ReadFile("/proc/self/exe").substr(0, 100000);
  for (const std::string& bytes : {random, std::string(), program}) {
    Put("music.wav", bytes);
    Put("voice_record.wav", bytes);
    for (const char* routine : {"TestFilePlayer", "TestKaraokeFileMixer"}) {
      const Finished run = RunProcess({AUDIO_BENCH, "run", routine, "--json", "report.json"});
      if (run.exitCode == 77) continue;  // The engine at hand lacks a codec.
      const json report = ParseReport(ReadFile("report.json"));
      // Another engine says nothing of its files, and is run on them all the same.
      if (report["engine"]["name"] != "desktop engine") continue;
      EXPECT_EQ(run.exitCode, 1) << run.out;
      EXPECT_THAT(run.out, HasSubstr(") could not be opened by the engine: it holds no audio; it "
                                     "takes WAVE, FLAC, Ogg, MP3 or AAC"));
      EXPECT_EQ(report["cause"], "input_format");
    }
  }
}

TEST_F(RunTest, NamesTheArgumentThatNothingComesOutOf) {
  const Finished run = Run({"WriteUnless", "nothing", "5", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  WriteUnless  argument 1 of 2 is nothing, and 1 more"));
  EXPECT_THAT(run.out, HasSubstr("  also    output out (bench_work/out) is empty\n"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["cause"], "argument");
  EXPECT_EQ(report["inputs"][0]["problems"], json::array()) << "an input that is dispensable";
  EXPECT_EQ(Run({"WriteUnless", "something", "5"}).exitCode, 0);
}

TEST_F(RunTest, NamesTheIdOfNoCodec) {
  Put("in.wav", WavBytes({.rate = 16000}, std::vector<short>(16000, 1)));
  const Finished run =
      RunProcess({AUDIO_BENCH, "run", "TestZUCodecNew", "in.wav", "out.wav", "999"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  TestZUCodecNew  argument 3 of 3 is the id of no codec: "
                                  "999, and "));
}

TEST_F(RunTest, SaysThatAnOutputIsFull) {
  EXPECT_EQ(Run({"WriteUnless", "something", "99"}).exitCode, 0);
  const Finished run = Run({"WriteUnless", "something", "100"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  WriteUnless  output out (bench_work/out) is full with 100 "
                                  "bytes: the routine leaves out what more there was"));
}

TEST_F(RunTest, SaysWhatIsWrongWithTheNameOfAWorkspace) {
  const Finished run = Run({"Nothing", "--work", std::string(300, 'x')});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, StartsWith("audio_bench: cannot create the folder xxx"));
  EXPECT_THAT(run.err, Not(HasSubstr("filesystem error")));
}

}  // namespace
