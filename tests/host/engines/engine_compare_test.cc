// One suite on two engines, and which of them is worse.

#include <filesystem>
#include <nlohmann/json.hpp>

#include "engines/engine_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

class EngineCompareTest : public EngineTest {
 protected:
  EngineCompareTest() {
    std::string cases = "[defaults]\nroutine = \"TestDrc\"\n";
    for (int i = 0; i < 3; ++i) {
      const std::string file = "in" + std::to_string(i) + ".wav";
      WriteFile(file, WavBytes({.channels = 2, .rate = 48000},
                               Tone(300 * (i + 1), 1000, 48000, kFrames, 2)));
      cases += "[[case]]\nid = \"c" + std::to_string(i) + "\"\nin = {\"music.wav\" = \"" + file +
               "\"}\n";
    }
    WriteFile("s.toml", cases);
  }

  static std::string Control(const std::string& name) {
    return CONTROL_FOLDER "/lib" + name + ".so";
  }

  static Finished Compare(std::vector<std::string> words) {
    words.insert(words.begin(), "compare");
    words.insert(words.end(), "s.toml");
    return Run(words);
  }
};

TEST_F(EngineCompareTest, SaysWhichFigureIsWorse) {
  const Finished run = Compare(
      {"--engine", "desktop", "--engine", Control("faster"), "--out", "kept", "--json", "-"});
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  const json comparison = json::parse(run.out);
  EXPECT_EQ(comparison["verdict"], "worse") << run.out;
  EXPECT_EQ(comparison["measures"][0]["name"], "length");
  EXPECT_EQ(comparison["measures"][0]["verdict"], "changed");
  const json a = json::parse(ReadFile("kept/a/results.json"))["engine"];
  const json b = json::parse(ReadFile("kept/b/results.json"))["engine"];
  EXPECT_EQ(a["name"], "desktop engine");
  EXPECT_EQ(b["name"], "libfaster.so");
}

TEST_F(EngineCompareTest, ComparesWithTheDesktopEngineWhereOneIsNamed) {
  const Finished run = Compare({"--engine", Control("mute"), "--out", "kept"});
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  EXPECT_THAT(run.out, HasSubstr("worse"));
  EXPECT_EQ(json::parse(ReadFile("kept/a/results.json"))["engine"]["name"], "desktop engine");
  EXPECT_EQ(json::parse(ReadFile("kept/b/results.json"))["engine"]["name"], "libmute.so");
}

TEST_F(EngineCompareTest, SaysSameOfOneEngineTwice) {
  for (const std::string& engine : {std::string("desktop"), Control("gain")}) {
    const Finished run = Compare({"--engine", engine, "--engine", engine});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_EQ(run.out, "same (3 cases, 3 of 3 files the same byte for byte)\n");
  }
}

TEST_F(EngineCompareTest, RefusesWhatCannotBeAskedForBeforeAnythingRuns) {
  const Finished none = Compare({"--engine", "desktop", "--engine", "./none.so", "--out", "kept"});
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_THAT(none.err, HasSubstr("--engine ./none.so: No such file"));
  EXPECT_FALSE(fs::exists("kept/a"));
  const std::vector<std::string> one = {"--engine", "desktop"};
  std::vector<std::string> words;
  for (int i = 0; i < 3; ++i) words.insert(words.end(), one.begin(), one.end());
  EXPECT_THAT(Compare(words).err, HasSubstr("--engine is there more than twice"));
  EXPECT_THAT(Compare({"--engine", "desktop", "--bench", AUDIO_BENCH}).err,
              HasSubstr("--bench and --engine exclude each other"));
  EXPECT_THAT(Compare({"--engine", "desktop", "--record-missing"}).err,
              HasSubstr("--record-missing and --engine exclude each other"));
  EXPECT_EQ(Compare({"--engine", "desktop"}).exitCode, 0) << "the suite itself is good";
}

}  // namespace
