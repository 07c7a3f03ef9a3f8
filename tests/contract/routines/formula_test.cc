// The counts of a block in each routine that reads WAVE files of any format: what is read, what the
// engine is told and what is written. Rates at which rate / 100 * channels is not rate * channels /
// 100, and mono beside stereo, so that one formula cannot stand for another.

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "contract/routines/expected_lines.h"
#include "contract/routines/routine_inputs.h"
#include "contract/routines/routine_run.h"

using harness::CatalogueRow;
using testing::ElementsAreArray;

namespace {

// Only broken headers have the last three: a count of 16 bits is that of 16 kHz, a block fills the
// usual array, and is one sample longer than that.
constexpr int kFormats[][2] = {{22050, 2},   {22050, 1},  {11025, 2}, {14700, 1},
                               {6569600, 1}, {819200, 1}, {819300, 1}};

// End the program unless the input is mono.
constexpr std::string_view kMonoOnly[] = {"TestVADProcessRefined", "TestVAD"};

bool StartsWith(const std::string& text, const std::string& start) {
  return text.rfind(start, 0) == 0;
}

// The operation of a call, without its object and its answer.
std::string Operation(const std::string& call) {
  const std::string asked = call.substr(0, call.find(" = "));
  const size_t dot = asked.find('.');
  return dot < asked.find('(') ? asked.substr(dot + 1) : asked;
}

// What is done with the first block of the routine: the operations from the first reading of
// samples to the next one that begins like it, or to the last of the reader's life.
std::string FirstBlock(const std::vector<std::string>& calls) {
  std::string operations;
  std::string first;
  for (const std::string& call : calls) {
    const bool reads = call.find(".ReadSamples(") != std::string::npos;
    const bool skips = call.find(".ReadSamples(1) ") != std::string::npos;
    if (first.empty() && (!reads || skips)) continue;
    if (!first.empty() && StartsWith(call, first)) break;
    if (StartsWith(call, "~")) break;
    if (first.empty()) first = call.substr(0, call.find('('));
    if (call.find("GetPlaceString") == 0 || call.find("Destroy") != std::string::npos) continue;
    operations += (operations.empty() ? "" : " ") + Operation(call);
  }
  return operations;
}

}  // namespace

TEST(Routines, CountTheSamplesOfABlockEachByItsOwnFormula) {
  LinesOfRoutines expected = Lines(kFirstBlocks);
  for (const CatalogueRow* row : RunnableRows()) {
    const std::string name(row->declared.words.name);
    if (row->inputs.size() > 100) continue;  // One routine over a whole corpus.
    std::vector<std::string> blocks;
    std::set<std::string> different;
    for (const auto& [rate, channels] : kFormats) {
      if (channels != 1 && std::count(std::begin(kMonoOnly), std::end(kMonoOnly), name) > 0)
        continue;
      const std::string block = FirstBlock(RunRoutineOn(*row, rate, channels).calls);
      if (block.empty()) continue;
      different.insert(block);
      blocks.push_back(std::to_string(rate) + " x " + std::to_string(channels) + ": " + block);
    }
    if (different.size() == 1) blocks.clear();  // Its own, whatever the format is.
    EXPECT_THAT(blocks, ElementsAreArray(expected[name])) << name;
  }
}
