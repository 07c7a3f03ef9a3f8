// Two programs that run the same suite first.

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "compare_fixture.h"

namespace {

using testing::HasSubstr;

class BenchSuitesTest : public CompareTest {
 protected:
  BenchSuitesTest() {
    WriteFile("s.toml", "[[case]]\nid = \"good\"\nroutine = \"WritePcm\"\n");
    // A program that does what the probe does.
    WriteProgram("same", "exec \"" AUDIO_BENCH_PROBE "\" \"$@\"");
  }

  static void WriteProgram(const std::string& name, const std::string& script) {
    WriteFile(name, "#!/bin/sh\n" + script + "\n");
    chmod(name.c_str(), 0755);
  }

  // Empty where they do not stand in the text.
  static std::string Between(const std::string& text, const std::string& start,
                             const std::string& end) {
    const size_t from = text.find(start);
    const size_t to = text.find(end, from == std::string::npos ? 0 : from);
    if (from == std::string::npos || to == std::string::npos) return "";
    return text.substr(from + start.size(), to - from - start.size());
  }
};

TEST_F(BenchSuitesTest, ThisProgramIsTheSecondWhereOnlyOneIsNamed) {
  const Finished finished = Compare({"--bench", "./same", "s.toml"});
  EXPECT_EQ(finished.exitCode, 0) << finished.err;
  EXPECT_EQ(finished.out, "same (1 case, 1 of 1 file the same byte for byte)\n");
  EXPECT_THAT(finished.err, HasSubstr("1 passed"));
  const std::string place =
      Between(finished.err, "\nremoved  ", " (--out DIR keeps both results)\n");
  ASSERT_NE(place, "");
  EXPECT_FALSE(std::filesystem::exists(place));
}

// What is worse is to be heard.
TEST_F(BenchSuitesTest, ATemporaryFolderIsKeptWhereSomethingIsWorse) {
  WriteProgram("worse", "\"" AUDIO_BENCH_PROBE
                        "\" \"$@\"\n"
                        "for last; do :; done\n"
                        "sed -i 's/\"pass\"/\"fail\"/' \"$last/results.json\"");
  const Finished finished = Compare({"--bench", "./same", "--bench", "./worse", "s.toml"});
  EXPECT_EQ(finished.exitCode, 1) << finished.err;
  const std::string place = Between(finished.err, "\nkept  ", "/a and b\n");
  ASSERT_NE(place, "");
  EXPECT_TRUE(std::filesystem::exists(place + "/a/results.json"));
  EXPECT_TRUE(std::filesystem::exists(place + "/b/results.json"));
  std::filesystem::remove_all(place);
}

TEST_F(BenchSuitesTest, AnInterruptEndsTheSuiteThatRunsAndTheComparison) {
  WriteProgram("slow",
               "trap 'kill $!; touch ended; exit 130' INT\n"
               "sleep 1000 &\n"
               "touch started\n"
               "wait");
  WriteProgram("second", "touch begun");
  Process compare({AUDIO_BENCH_PROBE, "compare", "--bench", "./slow", "--bench", "./second",
                   "s.toml", "--out", "both"});
  while (!std::filesystem::exists("started")) usleep(1000);
  kill(compare.pid(), SIGINT);
  EXPECT_EQ(compare.Wait().exitCode, 128 + SIGINT);
  EXPECT_TRUE(std::filesystem::exists("ended"));
  EXPECT_FALSE(std::filesystem::exists("begun"));
}

TEST_F(BenchSuitesTest, BothResultsAreKeptWhereAFolderIsGiven) {
  // The second one leaves another suite.
  WriteFile("t.toml", "[[case]]\nid = \"good\"\nroutine = \"WriteNothing\"\n");
  WriteProgram("worse", "shift 2\nexec \"" AUDIO_BENCH_PROBE "\" suite t.toml \"$@\"");
  std::filesystem::create_directory("kept");
  const Finished finished =
      Compare({"--bench", "./same", "--bench", "./worse", "s.toml", "--out", "kept"});
  EXPECT_EQ(finished.exitCode, 2) << finished.err;
  EXPECT_THAT(finished.err, HasSubstr("not comparable: other suites"));
  EXPECT_TRUE(std::filesystem::exists("kept/a/results.json"));
  EXPECT_TRUE(std::filesystem::exists("kept/b/results.json"));
}

TEST_F(BenchSuitesTest, TheMarginsOfTheSuiteAreInItsResults) {
  WriteFile("s.toml", ReadFile("s.toml") + "[margins]\nlength = 0.5\n");
  EXPECT_EQ(Bench({"suite", "s.toml", "--out", "r"}).exitCode, 0);
  EXPECT_EQ(ParseResults(ReadFile("r/results.json"))["margins"], nlohmann::json({{"length", 0.5}}));
}

TEST_F(BenchSuitesTest, WordsAfterTheMarkAreThoseOfTheSuite) {
  WriteProgram("telling", "echo \"$@\" > words\nexec \"" AUDIO_BENCH_PROBE "\" \"$@\"");
  Compare({"--bench", "./telling", "s.toml", "--", "good", "-j", "2"});
  EXPECT_THAT(ReadFile("words"), testing::StartsWith("suite s.toml good -j 2 --out /"));
}

TEST_F(BenchSuitesTest, AProgramThatLeavesNoResultsIsNamed) {
  EXPECT_THAT(Compare({"--bench", "./none", "s.toml"}).err, HasSubstr("cannot run ./none"));
  WriteProgram("dumb", "exit 7");
  const Finished finished = Compare({"--bench", "./dumb", "s.toml"});
  EXPECT_EQ(finished.exitCode, 2);
  EXPECT_THAT(finished.err, HasSubstr("./dumb suite has left no results (exit code 7)"));
  EXPECT_EQ(
      Compare({"--bench", "./same", "--bench", "./same", "--bench", "./same", "s.toml"}).exitCode,
      2);
}

}  // namespace
