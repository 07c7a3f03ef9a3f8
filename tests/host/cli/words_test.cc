// Which words of a command line are options, and which are their values.

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <filesystem>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

class WordsTest : public RunTest {
 protected:
  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) names.push_back(entry.path().filename());
    return names;
  }

  static std::string Verdict(const std::string& path) {
    return ParseReport(ReadFile(path))["verdict"];
  }
};

TEST_F(WordsTest, AnOptionIsNotTheValueOfAnother) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"Nothing", "--json", "--wav"},
                                             {"Nothing", "--json", "--", "Nothing"},
                                             {"Nothing", "--json"}}) {
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "audio_bench: --json is without its FILE\n");
  }
  EXPECT_EQ(Run({"Nothing", "--timeout-s", "--wait"}).err,
            "audio_bench: --timeout-s is without its N\n");
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(WordsTest, AValueMayHoldAnything) {
  EXPECT_EQ(Run({"Nothing", "--json=a="}).exitCode, 0);
  EXPECT_EQ(Verdict("a="), "pass");
  EXPECT_EQ(Run({"Nothing", "--json=--wav"}).exitCode, 0);
  EXPECT_EQ(Verdict("--wav"), "pass");
  EXPECT_EQ(Run({"--json", "b c", "Nothing"}).exitCode, 0);
  EXPECT_EQ(Verdict("b c"), "pass");
  EXPECT_THAT(Run({"Nothing", "--timeout-s", "-1"}).err, HasSubstr("--timeout-s: not a number"));
}

TEST_F(WordsTest, EveryReportThatIsAskedForTellsOfARefusal) {
  EXPECT_EQ(Run({"Nothing", "--timeout-s", "--json", "a"}).exitCode, 2);
  EXPECT_EQ(Verdict("a"), "error");
  EXPECT_EQ(Run({"Nothing", "--json", "b", "--json=c"}).exitCode, 2);
  EXPECT_EQ(Verdict("b"), "error");
  EXPECT_EQ(Verdict("c"), "error");
}

TEST_F(WordsTest, OptionsMayStandAnywhere) {
  const Finished run = Run({"--figures", "Echo", "a", "--work", "w", "-1", "--", "true", "2"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("text=a more=-1 flag=1 number=2\n"));
  EXPECT_THAT(Names(), ElementsAre("w"));
}

TEST_F(WordsTest, TheReportIsAloneOnStandardOutput) {
  const auto shell = [](const std::string& words) {
    return RunProcess({"/bin/sh", "-c", "'" AUDIO_BENCH_PROBE "' run PrintAndLog " + words});
  };
  for (const char* const path : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "-"}) {
    const Finished run = shell(std::string("--json ") + path + " 2> err | cat");
    EXPECT_EQ(ParseReport(run.out)["routine"], "PrintAndLog") << path;
    EXPECT_THAT(ReadFile("err"), HasSubstr("printed\n")) << path;
  }
  const Finished mixed = shell("--json /dev/stderr 2> err | cat");
  EXPECT_EQ(ReadFile("err"),
            "audio_bench: the report and standard error are one file: /dev/stderr\n");
  EXPECT_EQ(shell("--json /dev/null > /dev/null 2> err").exitCode, 0);
  EXPECT_EQ(ReadFile("err"), "logged\n") << "what vanishes cannot be mixed";
}

// A crash would leave a core in the workspace.
TEST_F(WordsTest, ARoutineDumpsNoCore) {
  const Finished run = RunAfter("ulimit -S -c $(ulimit -H -c)", "PrintCoreLimit");
  EXPECT_THAT(run.out, HasSubstr("core limit 0\n"));
}

}  // namespace
