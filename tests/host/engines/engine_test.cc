// Engines in libraries: what they answer for, what stays with the desktop engine, and how it is
// told.

#include <filesystem>
#include <nlohmann/json.hpp>

#include "engines/engine_fixture.h"
#include "report_schema.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

TEST_F(EngineTest, TakesAFacilityFromTheLibraryAndTheRestFromTheDesktopEngine) {
  const Finished own = Compress({});
  ASSERT_EQ(own.exitCode, 0) << own.out << own.err;
  EXPECT_THAT(ReadFile("out.wav"), Not(EndsWith(Halved())));
  const Finished run = Compress({"--engine", Library("whole")});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(ReadFile("out.wav"), EndsWith(Halved()));
  // What the library itself calls of the interface and lacks.
  EXPECT_THAT(run.err, HasSubstr("halving 960 samples"));
  EXPECT_THAT(run.out, HasSubstr("whole_engine.so for effects/drc\n"));
}

TEST_F(EngineTest, NamesTheBuiltInEngine) {
  ASSERT_EQ(Compress({}).exitCode, 0);
  const std::string compressed = ReadFile("out.wav");
  const Finished run = Compress({"--engine", "desktop"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(ReadFile("out.wav"), compressed);
}

// The same functions put before everything else by the dynamic linker are called, and abort.
TEST_F(EngineTest, KeepsWhatTheLibraryHasBesideTheInterfaceFromTheDesktopEngine) {
  WriteFile("speech.wav", WavBytes({.rate = 16000}, Tone(440, 8000, 16000, 32000)));
  const std::string bench = std::string("exec '") + AUDIO_BENCH +
                            "' run TestZUEncode 2 false "
                            "--in speech.wav --out coded.bin";
#ifndef __SANITIZE_ADDRESS__
  const Finished before =
      RunProcess({"/bin/sh", "-c", "LD_PRELOAD='" + Library("whole") + "' " + bench});
  EXPECT_THAT(before.out, HasSubstr("killed by signal 6"));
#endif
  const Finished run =
      RunProcess({"/bin/sh", "-c", bench + " --engine '" + Library("whole") + "'"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_GT(fs::file_size("coded.bin"), 1000);
}

TEST_F(EngineTest, ReportsWhoAnsweredForWhat) {
  const Finished run = Compress({"--engine", Library("whole"), "--json", "report.json"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const json engine = ParseReport(ReadFile("report.json"))["engine"];
  EXPECT_EQ(engine["name"], "libwhole_engine.so");
  ASSERT_EQ(engine["answers"].size(), 2);
  const json& library = engine["answers"][0];
  EXPECT_EQ(library["path"]["value"], fs::canonical(Library("whole")).string());
  EXPECT_EQ(library["facilities"], json({"effects/drc"}));
  const Finished digest = RunProcess({"/usr/bin/sha256sum", Library("whole")});
  EXPECT_EQ(library["sha256"]["value"], digest.out.substr(0, 64));
  const Finished notes = RunProcess({"/usr/bin/readelf", "-n", Library("whole")});
  EXPECT_THAT(notes.out, HasSubstr("Build ID: " + library["build_id"].value("value", "none")));
  const json& desktop = engine["answers"][1];
  EXPECT_EQ(desktop["name"], "desktop engine");
  EXPECT_EQ(desktop["path"]["value"], fs::canonical(AUDIO_BENCH).string());
  EXPECT_THAT(desktop["facilities"], Contains("common/wav_reader"));
  EXPECT_THAT(desktop["facilities"], Not(Contains("effects/drc")));
}

TEST_F(EngineTest, ListsWhoAnswersForWhat) {
  const Finished own = Run({"list"});
  EXPECT_THAT(own.out, HasSubstr("Engine: desktop engine (" + fs::canonical(AUDIO_BENCH).string()));
  EXPECT_THAT(own.out, EndsWith("for all facilities\n"));
  const Finished list = Run({"list", "--engine", Library("whole")});
  EXPECT_THAT(list.out,
              HasSubstr("Engine: libwhole_engine.so (" + fs::canonical(Library("whole")).string()));
  EXPECT_THAT(list.out, HasSubstr("for effects/drc\n"));
  EXPECT_THAT(list.out, EndsWith(" other facilities\n"));
  const Finished describe = Run({"describe", "TestDrc", "--engine", Library("whole")});
  EXPECT_THAT(describe.out, HasSubstr("for effects/drc\n"));
  const json all = json::parse(Run({"list", "--json", "--engine", Library("whole")}).out);
  EXPECT_EQ(all["engine"]["answers"][0]["facilities"], json({"effects/drc"}));
}

TEST_F(EngineTest, IsPartOfWhatDecidesAboutACase) {
  WriteFile("in.wav",
            WavBytes({.channels = 2, .rate = 48000}, Tone(440, 20000, 48000, kFrames, 2)));
  WriteFile("s.toml",
            "[[case]]\nid = \"a\"\nroutine = \"TestDrc\"\nin = {\"music.wav\" = \"in.wav\"}\n");
  const std::string output = "r/cases/a/drc_out.wav";
  const Finished own = Run({"suite", "s.toml", "--out", "r"});
  ASSERT_EQ(own.exitCode, 0) << own.out << own.err;
  EXPECT_THAT(ReadFile(output), Not(EndsWith(Halved())));
  const std::vector<std::string> again = {"suite",    "s.toml",   "--out",         "r",
                                          "--resume", "--engine", Library("whole")};
  const Finished other = Run(again);
  EXPECT_EQ(other.exitCode, 0) << other.out << other.err;
  EXPECT_THAT(ReadFile(output), EndsWith(Halved())) << "runs again on the other engine";
  const json engine = ParseResults(ReadFile("r/results.json"))["engine"];
  EXPECT_EQ(engine["name"], "libwhole_engine.so");
  EXPECT_EQ(engine["answers"][0]["facilities"], json({"effects/drc"}));
  fs::remove(output);
  EXPECT_EQ(Run(again).exitCode, 0);
  EXPECT_FALSE(fs::exists(output)) << "has passed, on the same engine";
}

}  // namespace
