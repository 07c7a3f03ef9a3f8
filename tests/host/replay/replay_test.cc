// Runs that are done again from their reports.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "replay/replay_fixture.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace fs = std::filesystem;

TEST_F(ReplayTest, SaysThatTheBytesAreTheSameAndLeavesNothing) {
  CopyATone();
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 0) << replay.err;
  EXPECT_THAT(replay.out, MatchesRegex("same bytes  Copy  as of 20[^ ]*Z\n"));
  EXPECT_TRUE(Kept().empty());
}

TEST_F(ReplayTest, SaysWhereAndByHowMuchAnOutputDiffers) {
  CopyATone();
  std::string before = ReadFile("bench_work/out.pcm");
  before[2 * 6000 + 1] = static_cast<char>(before[2 * 6000 + 1] ^ 1);
  PretendOutput("bench_work/out.pcm", before);
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 1) << replay.err;
  EXPECT_THAT(replay.out,
              MatchesRegex("differs  Copy  as of [^ ]*Z\n  output  out.pcm  first at 0.75 s "
                           "\\(frame 6000\\), mono, by -42.1 dBFS; at most by -42.1 dBFS\n"));
  EXPECT_EQ(ReadFile("bench_work/out.pcm"), before) << "what the run left stays";
}

TEST_F(ReplayTest, NeedsTheEarlierOutputOnlyToSayWhere) {
  CopyATone();
  fs::remove("bench_work/out.pcm");
  EXPECT_EQ(Replay().exitCode, 0);
  RunIt({"WriteItsProcess"});
  fs::remove("bench_work/pid");
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 1);
  EXPECT_THAT(replay.out, HasSubstr("output  pid  differs; where cannot be told, because what it "
                                    "was is gone: "));
}

TEST_F(ReplayTest, NeedsAReportOfARunThatTookPlace) {
  ExpectCannot("report r.json cannot be read: No such file or directory");
  WriteFile("r.json", "{\"a\": 1}");
  ExpectCannot("r.json is no report of a run");
  WriteFile("r.json", "some text");
  ExpectCannot("r.json is no report of a run");
  CopyATone();
  json report = Report();
  report["schema_version"] = 2;
  Rewrite(report);
  ExpectCannot("has schema version 2 ");
  report["schema_version"] = 3;
  report["routine"] = "NoSuchRoutine";
  report["command"].back() = "--nonsense";
  report["command"][5] = "NoSuchRoutine";
  Rewrite(report);
  ExpectCannot("the run cannot be done again: ");
  report.erase("inputs");
  Rewrite(report);
  ExpectCannot("r.json is no report of a run");
  RunIt({"Copy", "missing.pcm", "out.pcm"});
  ExpectCannot("did not take place: input missing.pcm");
}

TEST_F(ReplayTest, TellsAnotherEnd) {
  RunIt({"Crash"});
  EXPECT_EQ(Replay().exitCode, 0) << "it crashes again";
  json report = Report();
  report["problems"] = json::array();
  Rewrite(report);
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 1);
  EXPECT_THAT(replay.out, HasSubstr("  end     the routine crashed; before, it came to its end\n"));
}

TEST_F(ReplayTest, TellsThatTheTimeWasUpBefore) {
  CopyATone();
  json report = Report();
  report["problems"] = {{{"cause", "guard_warning"}}, {{"cause", "timeout"}}};
  Rewrite(report);
  EXPECT_THAT(Replay().out,
              HasSubstr("  end     the routine came to its end; before, it ran out of time\n"));
}

TEST_F(ReplayTest, LeavesTheFilesAloneThatOutputsWentTo) {
  WriteFile("song.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 8000, 8000)));
  RunIt({"Copy", "--in", "song.wav", "--out", "heard.wav"});
  WriteFile("heard.wav", "edited since");
  EXPECT_THAT(Replay().out, HasSubstr("same bytes"));
  EXPECT_EQ(ReadFile("heard.wav"), "edited since");
}

TEST_F(ReplayTest, SaysThatAnOutputWasAddedTo) {
  const std::string note =
      "  note    an output was added to what was there before, which is not there now\n";
  Put("log", "earlier");
  RunIt({"AppendTo", "log"});
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 1);
  EXPECT_THAT(replay.out, HasSubstr(note));
  CopyATone();
  EXPECT_THAT(Replay().out, Not(HasSubstr(note)));
}

TEST_F(ReplayTest, TellsAnotherEngine) {
  CopyATone();
  PretendOutput("bench_work/out.pcm", "other");
  json report = Report();
  json& answers = report["engine"]["answers"];
  ASSERT_FALSE(answers.empty());
  answers[0]["build_id"] = {{"value", "abc"}};
  const std::string name = answers[0]["name"];
  Rewrite(report);
  EXPECT_THAT(Replay().out,
              ContainsRegex("  note    engine " + name + ", build id is [^,]*, was abc\n"));
}

TEST_F(ReplayTest, TellsWhatElseMayBeWhy) {
  CopyATone();
  PretendOutput("bench_work/out.pcm", "other");
  json report = Report();
  for (json& library : report["libraries"]) {
    if (library["name"] == "sndfile") library["version"] = {{"value", "libsndfile-0.9"}};
  }
  report["build"]["type"] = "Debug";
  Rewrite(report);
  const std::string told = Replay().out;
  EXPECT_THAT(told, ContainsRegex("  note    sndfile is libsndfile-[0-9.]+, was libsndfile-0.9\n"));
  EXPECT_THAT(told, ContainsRegex("  note    build type is [A-Za-z]+, was Debug\n"));
  EXPECT_THAT(told, Not(HasSubstr("note    bench version")));
}

TEST_F(ReplayTest, SaysWhatTheBytesOfTheInputsDoNotDecide) {
  const std::string note = "what comes out depends on the clock or on audio devices";
  RunIt({"PlayOn", "1"});
  EXPECT_THAT(Replay().out, HasSubstr(note));
  CopyATone();
  EXPECT_THAT(Replay().out, Not(HasSubstr(note)));
}

TEST_F(ReplayTest, TellsAnOutputThatIsOnlyThereOnce) {
  CopyATone();
  json report = Report();
  report["outputs"][0]["sha256"] = {{"value", nullptr}, {"reason", "not looked at"}};
  Rewrite(report);
  EXPECT_THAT(Replay().out, HasSubstr("output  out.pcm  was not written before"));
  RunIt({"WriteNothing"});
  PretendOutput("bench_work/out.pcm", "other");
  EXPECT_THAT(Replay().out, HasSubstr("output  out.pcm  is not written any more"));
}

TEST_F(ReplayTest, TakesTheCaseOfASuiteByItsReportOrItsFolder) {
  WriteFile("a.wav", WavBytes({.rate = 8000}, Tone(997, 8000, 8000, 8000)));
  WriteFile("s.toml",
            "[[case]]\nid = \"{song}\"\nroutine = \"Copy\"\narguments = [\"i.pcm\", \"o.pcm\"]\n"
            "each.song = \"*.wav\"\nin = { \"i.pcm\" = \"{song.path}\" }\n");
  RunProcess({AUDIO_BENCH_PROBE, "suite", "s.toml", "--out", "results"});
  EXPECT_THAT(Replay("results/reports/a.json").out, HasSubstr("same bytes  Copy"));
  EXPECT_THAT(Replay("results/cases/a").out, HasSubstr("same bytes  Copy"));
  EXPECT_THAT(Replay("results/cases/a/").out, HasSubstr("same bytes  Copy"));
  fs::rename("results", "moved");
  fs::remove("a.wav");
  EXPECT_THAT(Replay("moved/cases/a").out, HasSubstr("same bytes  Copy"));
  const Finished none = Replay("moved/cases");
  EXPECT_EQ(none.exitCode, 3);
  EXPECT_THAT(none.err, HasSubstr("not that of a case of a suite (DIR/cases/ID)"));
}

}  // namespace
