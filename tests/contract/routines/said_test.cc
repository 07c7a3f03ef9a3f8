// What all routines say and leave, when all goes well and without any input:
// these lines on stdout and in the log, these files, and nothing more.

#include <gmock/gmock.h>

#include "contract/routines/difference.h"
#include "contract/routines/expected_lines.h"
#include "contract/routines/routine_inputs.h"
#include "contract/routines/routine_run.h"

using harness::CatalogueRow;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

// Ends the program, so it is run apart from the others.
constexpr std::string_view kAborting = "TestVADProcessRefined";

void ExpectSaidAndWritten(Situation situation, std::string_view saidTable,
                          std::string_view filesTable) {
  LinesOfRoutines said = Lines(saidTable);
  LinesOfRoutines files = Lines(filesTable);
  for (const CatalogueRow* row : RunnableRows()) {
    const std::string name(row->declared.words.name);
    if (situation == Situation::kNoInputs && name == kAborting) continue;
    SCOPED_TRACE(name);
    const RoutineRun run = RunRoutine(*row, situation);
    EXPECT_THAT(Counted(Said(run)), ElementsAreArray(said[name]));
    EXPECT_THAT(Difference(run.declared, run.written), ElementsAreArray(files[name]));
    EXPECT_EQ(run.output, run.printed);
    EXPECT_THAT(run.strays, IsEmpty());
    EXPECT_TRUE(run.cameBack);
  }
}

}  // namespace

TEST(Routines, HaveWordsForTheirRun) {
  for (const CatalogueRow* row : RunnableRows()) {
    EXPECT_EQ(harness::ArgumentFault(*row, WordsOf(*row)), "")
        << row->declared.words.name << " is missing in kWords of routine_inputs.cc";
  }
}

TEST(Routines, SayAndLeaveThisWhenAllGoesWell) {
  ExpectSaidAndWritten(Situation::kUsual, kSaidUsually, kFilesUsually);
}

TEST(Routines, SayAndLeaveThisWithoutInputs) {
  ExpectSaidAndWritten(Situation::kNoInputs, kSaidWithoutInputs, kFilesWithoutInputs);
}

TEST(RoutinesDeathTest, EndsTheProgramWithoutAWord) {
  for (const CatalogueRow* row : RunnableRows()) {
    if (row->declared.words.name != kAborting) continue;
    const auto run = [row] {
      FakeEngine engine;
      harness::Run(*row, WordsOf(*row));
    };
    EXPECT_EXIT(run(), testing::KilledBySignal(SIGABRT), testing::Eq(""));
  }
}
