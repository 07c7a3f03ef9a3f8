// Runs that are done again from their reports.

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <vector>

#include "run/run_fixture.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace fs = std::filesystem;

class ReplayTest : public RunTest {
 protected:
  ReplayTest() { setenv("TMPDIR", m_directory.path().c_str(), 1); }
  ~ReplayTest() override { unsetenv("TMPDIR"); }
  ReplayTest(const ReplayTest&) = delete;
  ReplayTest& operator=(const ReplayTest&) = delete;

  static Finished Replay(const std::string& report = "r.json") {
    return RunProcess({AUDIO_BENCH_PROBE, "replay", report});
  }

  // A run with a report "r.json".
  static void RunIt(std::vector<std::string> words) {
    words.insert(words.begin(), {"--json", "r.json"});
    const Finished run = Run(words);
    ASSERT_NE(run.exitCode, 2) << run.err;
  }

  static void CopyATone() {
    const std::vector<short> tone = Tone(997, 8000, 8000, 8000);
    Put("in.pcm", {reinterpret_cast<const char*>(tone.data()), 2 * tone.size()});
    RunIt({"Copy", "in.pcm", "out.pcm"});
  }

  static json Report() { return json::parse(ReadFile("r.json")); }
  static void Rewrite(const json& report) { WriteFile("r.json", report.dump()); }

  // Makes it look as if the run had left these bytes.
  static void PretendOutput(const std::string& path, const std::string& bytes) {
    WriteFile(path, bytes);
    json report = Report();
    const std::string digest = RunProcess({"/usr/bin/sha256sum", path}).out.substr(0, 64);
    report["outputs"][0]["sha256"] = {{"value", digest}};
    Rewrite(report);
  }

  // Temporary workspaces that are there.
  static std::vector<fs::path> Kept() {
    std::vector<fs::path> kept;
    for (const auto& entry : fs::directory_iterator(".")) {
      if (entry.path().filename().string().starts_with("audio_bench."))
        kept.push_back(entry.path());
    }
    return kept;
  }

  // Expects that the run cannot be done again for this reason.
  static void ExpectCannot(const std::string& reason) {
    const Finished replay = Replay();
    EXPECT_EQ(replay.exitCode, 3);
    EXPECT_EQ(replay.out, "");
    EXPECT_THAT(replay.err, HasSubstr(reason));
  }
};

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

// Whether a process has a file open.
bool HasOpen(pid_t process, const fs::path& file) {
  std::error_code error;
  for (const auto& entry :
       fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error)) {
    if (fs::read_symlink(entry.path(), error) == file) return true;
  }
  return false;
}

TEST_F(ReplayTest, AnInterruptionWhileInputsAreCheckedEndsIt) {
  CopyATone();
  // So long that it is still read when the signal comes.
  fs::resize_file("bench_work/in.pcm", 1'000'000'000'000);
  const fs::path input = fs::canonical("bench_work/in.pcm");
  Process process({AUDIO_BENCH_PROBE, "replay", "r.json"});
  while (kill(process.pid(), 0) == 0 && !HasOpen(process.pid(), input)) usleep(1000);
  kill(process.pid(), SIGINT);
  const Finished replay = process.Wait();
  EXPECT_EQ(replay.exitCode, 128 + SIGINT);
  EXPECT_EQ(replay.out, "");
  EXPECT_EQ(replay.err, "");
  EXPECT_TRUE(Kept().empty());
}

TEST_F(ReplayTest, NamesAnInputThatIsGoneOrChanged) {
  CopyATone();
  Put("in.pcm", "something else");
  ExpectCannot("input in.pcm has changed since the run: ");
  fs::remove("bench_work/in.pcm");
  ExpectCannot("input in.pcm is gone: ");
  EXPECT_TRUE(Kept().empty());
}

TEST_F(ReplayTest, WorksFromAnyFolder) {
  CopyATone();
  fs::create_directory("elsewhere");
  const fs::path here = fs::current_path();
  fs::current_path("elsewhere");
  EXPECT_EQ(Replay("../r.json").exitCode, 0);
  fs::current_path(here);
}

TEST_F(ReplayTest, StagesAgainWhatIsGoneWithItsWorkspace) {
  WriteFile("song.wav", WavBytes({.channels = 2, .rate = 44100}, Tone(997, 8000, 44100, 44100, 2)));
  RunIt({"Copy", "--in", "song.wav", "--start", "0.25"});
  const std::vector<fs::path> kept = Kept();
  ASSERT_EQ(kept.size(), 1U);
  fs::remove_all(kept.front());
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 0) << replay.out << replay.err;
  EXPECT_THAT(replay.out, HasSubstr("same bytes"));

  WriteFile("song.wav", WavBytes({.rate = 8000}, Tone(440, 8000, 8000, 8000)));
  ExpectCannot("and what it was made from has changed since the run: ");
}

TEST_F(ReplayTest, DoesNotRunOnWhatIsStagedOtherwiseThanBefore) {
  WriteFile("song.wav", WavBytes({.rate = 16000}, Tone(997, 8000, 16000, 16000)));
  RunIt({"Copy", "--in", "song.wav"});
  fs::remove_all(Kept().front());
  json report = Report();
  report["inputs"][0]["sha256"]["value"] = std::string(64, '0');
  Rewrite(report);
  ExpectCannot("input inFile.pcm cannot be made again from ");
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

TEST_F(ReplayTest, RunsWithoutAnInputThatWasNotThere) {
  RunIt({"CopyIfThere", "out"});
  EXPECT_EQ(Report()["inputs"][0]["sha256"]["reason"], "absent");
  Put("fixed.in", "there since");
  EXPECT_THAT(Replay().out, HasSubstr("same bytes")) << "it stays away";
  json report = Report();
  report["inputs"][0]["sha256"]["reason"] = "the time was up";
  Rewrite(report);
  ExpectCannot("input fixed.in has no hash in the report: the time was up");
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
