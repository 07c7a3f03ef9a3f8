#include "suite/suite_counts.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace host {
namespace {

Json Record(const char* verdict, const Json& exitCode, const Json& known = nullptr) {
  return {{"verdict", verdict}, {"exit_code", exitCode}, {"known", known}};
}

SuiteCounts Counts(const std::initializer_list<Json>& records) {
  SuiteCounts counts;
  for (const Json& record : records) counts.Add(record);
  return counts;
}

const Json kPass = Record("pass", 0);
const Json kWarn = Record("warn", 0);
const Json kFail = Record("fail", 1);
const Json kSkip = Record("skip", 77);
const Json kNotRun = Record("not_run", nullptr);
const Json kKnown = Record("error", 4, "ticket");

TEST(SuiteCounts, GiveTheWorstExitCode) {
  EXPECT_EQ(Counts({}).ExitCode(), 0);
  EXPECT_EQ(Counts({kPass, kWarn, kKnown, kSkip}).ExitCode(), 0);
  EXPECT_EQ(Counts({kSkip, kSkip}).ExitCode(), 77);
  EXPECT_EQ(Counts({kSkip, kNotRun}).ExitCode(), 1) << "what was not run has not passed";
  EXPECT_EQ(Counts({kPass, kNotRun}).ExitCode(), 1);
  EXPECT_EQ(Counts({kFail, kSkip}).ExitCode(), 1);
  for (const auto& [code, worst] : {std::pair(3, 3), std::pair(4, 4), std::pair(2, 1),
                                    std::pair(130, 1), std::pair(77, 1), std::pair(1, 1)}) {
    EXPECT_EQ(Counts({Record("error", code), kPass}).ExitCode(), worst) << code;
  }
  EXPECT_EQ(Counts({Record("error", nullptr)}).ExitCode(), 1);
  EXPECT_EQ(Counts({Record("error", 3), Record("error", 4), kFail}).ExitCode(), 4);
  EXPECT_EQ(Counts({Record("error", 3), kNotRun}).ExitCode(), 3);
}

TEST(SuiteCounts, AreToldInOneLine) {
  EXPECT_EQ(Counts({kPass}).Text(), "1 passed, 0 failed, 0 skipped");
  EXPECT_EQ(Counts({kPass, kWarn, kWarn, kFail, Record("error", 4), kSkip}).Text(),
            "3 passed, 2 failed, 1 skipped; 2 of those that passed with a warning");
  EXPECT_EQ(Counts({kKnown, kNotRun, kNotRun}).Text(),
            "0 passed, 0 failed, 0 skipped, 1 known to fail, 2 not run");
}

TEST(SuiteCounts, CountEachVerdictOnce) {
  const SuiteCounts counts = Counts({kPass, kWarn, kFail, Record("error", 4), kSkip, kKnown,
                                     kNotRun, Record("pass", 0, "ticket"),
                                     Record("fail", 1, "ticket"), Record("skip", 77, "ticket")});
  EXPECT_EQ(counts.Ended(), 9U);
  EXPECT_EQ(counts.Failed(), 2U);
  EXPECT_EQ(counts.AsJson(), Json({{"pass", 2},
                                   {"warn", 1},
                                   {"fail", 1},
                                   {"error", 1},
                                   {"skip", 2},
                                   {"known", 2},
                                   {"not_run", 1}}));
}

}  // namespace
}  // namespace host
