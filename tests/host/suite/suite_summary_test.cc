// What a suite says at its end.

#include "suite/suite_summary.h"

#include <gmock/gmock.h>

#include "suite/case_record.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

class SuiteSummaryTest : public testing::Test {
 protected:
  static Json Record(uint64_t index) {
    Json record = NotRunRecord({.id = "c" + std::to_string(index), .routine = "TestDrc"});
    record["index"] = index;
    record["verdict"] = "pass";
    record["results"] = {{{"name", "length"}, {"value", 2}, {"unit", "s"}},
                         {{"name", "delay"}, {"value", 89}, {"unit", "ms"}, {"reason", nullptr}},
                         {{"name", "echo"}, {"value", nullptr}, {"reason", "no echo"}}};
    return record;
  }

  static std::string Summary(const std::vector<Json>& records) {
    std::string lines;
    for (const Json& record : records) lines += JournalLine(record);
    const Json header = {
        {"started", "2024-05-01T10:00:00Z"}, {"chosen", records.size()}, {"selection", "ab"}};
    WriteFile("plan.jsonl", JournalLine(header) + lines);
    WriteFile("cases.jsonl", lines);
    return SuiteSummary(SuiteJournal("."), "r", Paint());
  }

 private:
  TemporaryDirectory m_directory;
};

TEST_F(SuiteSummaryTest, OneCaseHasItsFigures) {
  EXPECT_EQ(Summary({Record(0)}),
            "  result  delay  89 ms\n"
            "  result  echo  none: no echo\n"
            "1 passed, 0 failed, 0 skipped\n"
            "results  r/results.json, results.csv, junit.xml\n");
}

TEST_F(SuiteSummaryTest, OfManyFiguresTheLastAreTold) {
  Json record = Record(0);
  for (int i = 0; i < 21; ++i) {
    record["results"].push_back({{"name", "n" + std::to_string(i)}, {"value", i}, {"unit", "dB"}});
  }
  const std::string summary = Summary({record});
  EXPECT_THAT(summary, Not(HasSubstr("result  n0  ")));
  EXPECT_THAT(summary, HasSubstr("  result  n1  1 dB\n"));
  EXPECT_THAT(summary, HasSubstr("          and 3 more in results.csv\n"));
}

TEST_F(SuiteSummaryTest, OfSeveralCasesNoFiguresAreTold) {
  EXPECT_THAT(Summary({Record(0), Record(1)}), Not(HasSubstr("delay")));
}

// Somebody has edited the record.
TEST_F(SuiteSummaryTest, AFigureThatIsNoneIsToldAsFarAsItIs) {
  Json record = Record(0);
  record["results"] = {{{"name", 3}, {"value", "x"}}};
  EXPECT_THAT(Summary({record}), HasSubstr("  result    \n"));
}

}  // namespace
}  // namespace host
