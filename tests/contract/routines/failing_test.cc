// Routines look at few of the engine's answers: with every operation failing,
// with nothing to be had from the engine, and with no way to write, each makes
// its usual calls but for what is written down.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "contract/routines/difference.h"
#include "contract/routines/expected_lines.h"
#include "contract/routines/routine_inputs.h"
#include "contract/routines/routine_run.h"

using harness::CatalogueRow;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

// Calls without what was answered.
std::vector<std::string> Asked(std::vector<std::string> calls) {
  for (std::string& call : calls) {
    const size_t answer = call.rfind(") = ");
    if (answer != std::string::npos) call.resize(answer + 1);
  }
  return calls;
}

// Calls without those to the streams of these files, which are in ascending
// order.
std::vector<std::string> WithoutStreams(const std::vector<std::string>& calls,
                                        const std::vector<std::string>& names) {
  std::vector<std::string> rest;
  for (const std::string& call : calls) {
    const size_t start = call.find('(') + 1;
    const std::string name = call.substr(start, call.find_first_of(",)", start) - start);
    const bool theirs = call[0] == 'f' && std::binary_search(names.begin(), names.end(), name);
    if (!theirs) rest.push_back(call);
  }
  return rest;
}

// The usual runs, made once.
const std::vector<std::string>& Usual(const CatalogueRow& row) {
  static std::map<std::string_view, std::vector<std::string>> usual;
  std::vector<std::string>& calls = usual[row.declared.words.name];
  if (calls.empty()) calls = Asked(RunRoutine(row, Situation::kUsual).calls);
  return calls;
}

void ExpectUsualCallsBut(Situation situation, LinesOfRoutines expected) {
  for (const CatalogueRow* row : RunnableRows()) {
    const std::string name(row->declared.words.name);
    SCOPED_TRACE(name);
    std::vector<std::string> usual = Usual(*row);
    const RoutineRun run = RunRoutine(*row, situation);
    std::vector<std::string> calls = Asked(run.calls);
    if (situation == Situation::kOutputsUnwritable) {
      usual = WithoutStreams(usual, run.declared);
      calls = WithoutStreams(calls, run.declared);
    }
    EXPECT_THAT(Counted(Difference(usual, calls)), ElementsAreArray(expected[name]));
    EXPECT_EQ(run.output, run.printed);
    EXPECT_THAT(run.strays, IsEmpty());
  }
}

}  // namespace

TEST(Routines, GoOnWhenEveryOperationFails) {
  ExpectUsualCallsBut(Situation::kOperationsFail, Lines(kWhenOperationsFail));
}

TEST(Routines, GoOnWhenThereIsNothingInTheEngine) {
  LinesOfRoutines expected = Lines(kWhenEverythingFails);
  expected.merge(Lines(kWhenOperationsFail));  // Where the first table has nothing.
  ExpectUsualCallsBut(Situation::kEverythingFails, expected);
}

TEST(Routines, GoOnWhenNoOutputCanBeOpened) {
  ExpectUsualCallsBut(Situation::kOutputsUnwritable, Lines(kWhenOutputsAreUnwritable));
}

TEST(Routines, GoOnWhenTheDiskIsFull) {
  ExpectUsualCallsBut(Situation::kDiskFull, Lines(kWhenTheDiskIsFull));
}
