// What the log says of a crash: the functions that it happened in.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "run/run_fixture.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class CrashStackTest : public RunTest {
 protected:
  // The log of a run that crashes.
  static std::string Log(const std::string& how) {
    const Finished run = Run({"CrashIn", how});
    EXPECT_EQ(run.exitCode, 4) << run.out;
    std::string log = ReadFile("bench_work/logs/CrashIn.log");
    EXPECT_THAT(run.err, HasSubstr(log)) << "the log is shown as well";
    return log;
  }
};

TEST_F(CrashStackTest, NamesAFunctionThatNobodyElseSees) {
  EXPECT_THAT(Log("memory"), HasSubstr("WriteWhereNothingIs"));
}

TEST_F(CrashStackTest, NamesTheFunctionOfAnotherThread) {
  EXPECT_THAT(Log("thread"), HasSubstr("WriteWhereNothingIs"));
}

TEST_F(CrashStackTest, NamesTheFunctionThatUsesUpTheStack) {
  EXPECT_THAT(Log("stack"), HasSubstr("CallItselfForEver"));
}

// A sanitizer shows a stack of its own for these.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(CrashStackTest, BeginsWithTheCrashAfterWhatWasLogged) {
  EXPECT_THAT(Log("memory"), ContainsRegex("a line without an end\n"
                                           "stack of signal 11 \\(Segmentation fault\\):\n"
                                           "  #0  .*WriteWhereNothingIs\\(\\)  .*\\+0x[0-9a-f]+\n"
                                           "  #1  CrashIn\\(char const\\*\\)  .*\\+0x[0-9a-f]+\n"));
}

TEST_F(CrashStackTest, EndsWithTheRoutine) {
  EXPECT_THAT(Log("memory"), Not(HasSubstr("LiveAsKeeper")));
}

TEST_F(CrashStackTest, CountsTheCallsOfAFunctionByItself) {
  EXPECT_THAT(Log("stack"), ContainsRegex("  #0  .*CallItselfForEver.*  \\([0-9]+ times\\)\n"));
}

#endif

TEST_F(CrashStackTest, TellsWhoAborted) {
  EXPECT_THAT(Log("abort"), HasSubstr("GiveUp()  ")) << "though nothing follows its last call";
}

TEST_F(CrashStackTest, SaysNothingOfARunThatEndsOtherwise) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"ExitEarly"}, {"Hang", "--timeout-s", "0.2"}, {"PrintAndLog"}}) {
    Run(words);
    EXPECT_THAT(ReadFile("bench_work/logs/" + words.front() + ".log"), Not(HasSubstr("stack of")));
  }
}

}  // namespace
