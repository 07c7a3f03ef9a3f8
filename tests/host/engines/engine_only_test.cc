// Runs on an engine library alone: what asks for more than it has is skipped.

#include <filesystem>
#include <nlohmann/json.hpp>

#include "engines/engine_fixture.h"
#include "report_schema.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class EngineOnlyTest : public EngineTest {
 protected:
  // Reverberates a tone, with these words after it.
  static Finished Reverberate(const std::vector<std::string>& words) {
    WriteFile("in.wav", WavBytes({.channels = 2, .rate = 48000}, Played()));
    std::vector<std::string> all = {"run",  "TestReverb", "0",     "48000",  "2",
                                    "--in", "in.wav",     "--out", "out.wav"};
    all.insert(all.end(), words.begin(), words.end());
    return Run(all);
  }

  static std::vector<short> Played() { return Tone(440, 20000, 48000, kFrames, 2); }
};

constexpr const char* kLacking = "not in this engine (common/wav_reader, common/wav_writer)";

TEST_F(EngineOnlyTest, SkipsARoutineThatAsksForMoreThanTheLibraryHas) {
  const Finished run =
      Compress({"--engine", Library("whole"), "--engine-only", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 77) << run.out << run.err;
  EXPECT_THAT(run.out, HasSubstr(kLacking));
  EXPECT_FALSE(fs::exists("out.wav"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["verdict"], "skip");
  EXPECT_EQ(report["cause"], "not_runnable");
  EXPECT_EQ(report["reason"], kLacking);
  EXPECT_EQ(report["engine"]["name"], "libwhole_engine.so");
}

TEST_F(EngineOnlyTest, RunsARoutineThatTheLibraryHasAllFor) {
  const Finished run = Reverberate({"--engine", Library("dry"), "--engine-only"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(ReadFile("out.wav"), EndsWith(SampleBytes(Played())));
  const Finished other = Reverberate({"--engine", Library("whole"), "--engine-only"});
  EXPECT_EQ(other.exitCode, 77);
  EXPECT_THAT(other.out, HasSubstr("not in this engine (effects/audio_dsp_processor)"));
}

TEST_F(EngineOnlyTest, FallsBackWhereNobodyAsksForTheLibraryAlone) {
  EXPECT_EQ(Reverberate({"--engine", Library("whole")}).exitCode, 0);
}

TEST_F(EngineOnlyTest, RefusesWordsThatDoNotFitBeforeItSkips) {
  const Finished run =
      Run({"run", "TestReverb", "in.wav", "--engine", Library("whole"), "--engine-only"});
  EXPECT_EQ(run.exitCode, 2) << run.out;
  const Finished alone = Run({"run", "TestDrc", "--engine-only"});
  EXPECT_EQ(alone.exitCode, 2);
  EXPECT_THAT(alone.err, HasSubstr("--engine"));
}

TEST_F(EngineOnlyTest, LacksNothingOnTheDesktopEngine) {
  EXPECT_EQ(Compress({"--engine", "desktop", "--engine-only"}).exitCode, 0);
}

TEST_F(EngineOnlyTest, SkipsTheCasesOfASuite) {
  WriteFile("in.wav", WavBytes({.channels = 2, .rate = 48000}, Played()));
  WriteFile("s.toml",
            "[[case]]\nid = \"drc\"\nroutine = \"TestDrc\"\nin = {\"music.wav\" = \"in.wav\"}\n"
            "[[case]]\nid = \"dry\"\nroutine = \"TestReverb\"\n"
            "arguments = [\"in.wav\", \"out.wav\", \"0\", \"48000\", \"2\"]\n"
            "in = {\"in.wav\" = \"in.wav\"}\n");
  const std::vector<std::string> suite = {"suite",    "s.toml",       "--out",        "r",
                                          "--engine", Library("dry"), "--engine-only"};
  const std::string lacking =
      "not in this engine (common/wav_reader, common/wav_writer, "
      "effects/drc)";
  std::vector<std::string> dry = suite;
  dry.emplace_back("--dry-run");
  EXPECT_THAT(Run(dry).out, HasSubstr("drc  TestDrc  (skipped: " + lacking + ")\n"));
  const Finished run = Run(suite);
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  const json cases = ParseResults(ReadFile("r/results.json"))["cases"];
  EXPECT_EQ(cases[0]["verdict"], "skip");
  EXPECT_EQ(cases[0]["exit_code"], 77);
  EXPECT_EQ(cases[0]["reason"], lacking);
  EXPECT_EQ(cases[1]["verdict"], "warn") << "unchanged, as this library leaves the samples";
  EXPECT_THAT(ReadFile("r/cases/dry/out.wav"), EndsWith(SampleBytes(Played())));
  EXPECT_EQ(Run({"replay", "r/cases/dry"}).exitCode, 0) << "on the library alone again";
}

TEST_F(EngineOnlyTest, ListsWhatTheLibraryHasAllFor) {
  const std::vector<std::string> only = {"--engine", Library("dry"), "--engine-only"};
  const auto with = [&only](std::vector<std::string> words) {
    words.insert(words.end(), only.begin(), only.end());
    return Run(words).out;
  };
  EXPECT_THAT(with({"list", "TestDrc"}), HasSubstr("TestDrc                     lacking "));
  EXPECT_THAT(with({"list", "TestDrc"}), HasSubstr("1 routine, 0 available. "));
  EXPECT_THAT(with({"list", "TestReverb"}), HasSubstr("1 routine, 1 available. "));
  const std::string available = with({"list", "--available"});
  EXPECT_THAT(available, HasSubstr("  TestReverb "));
  EXPECT_THAT(available, Not(HasSubstr("TestDrc")));
  EXPECT_THAT(with({"describe", "TestDrc"}), HasSubstr("lacking: not in this engine (common/"));
  EXPECT_THAT(with({"describe", "TestReverb"}), HasSubstr("status        available\n"));
  const json listed = json::parse(with({"list", "--json", "TestDrc"}))["routines"][0];
  EXPECT_EQ(listed["available"], false);
  EXPECT_THAT(listed["status"], StartsWith("lacking: not in this engine (common/"));
  EXPECT_EQ(json::parse(with({"describe", "--json", "TestDrc"}))["available"], false);
  EXPECT_THAT(Run({"describe", "TestDrc", "--engine", Library("dry")}).out,
              HasSubstr("status        available\n"));
}

}  // namespace
