// Where lines end, and which are none.

#include "results/line_cutter.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The lines of these parts, one handed over after the other.
std::vector<std::string> Lines(const std::vector<std::string>& parts) {
  LineCutter cutter;
  std::vector<std::string> lines;
  for (const std::string& part : parts) {
    cutter.Add(part, [&](std::string_view line) { lines.emplace_back(line); });
  }
  return lines;
}

TEST(LineCutter, CutsAtEachEndWhereverThePartsAreCut) {
  EXPECT_THAT(Lines({"a\n\nbc\nd"}), ElementsAre("a", "", "bc"));
  EXPECT_THAT(Lines({"a", "b", "\nc\n", "", "\n"}), ElementsAre("ab", "c", ""));
  EXPECT_THAT(Lines({""}), IsEmpty());
}

TEST(LineCutter, LeavesOutLinesOfMoreThanAThousandBytes) {
  const std::string most(1000, 'm');
  EXPECT_THAT(Lines({most + "\n"}), ElementsAre(most));
  EXPECT_THAT(Lines({most.substr(1), "m", "\n"}), ElementsAre(most));
  EXPECT_THAT(Lines({most + "m\nnext\n"}), ElementsAre("next"));
  // However it comes, and however long it was before its end.
  EXPECT_THAT(Lines({most, "m", "m", "\nnext\n"}), ElementsAre("next"));
  EXPECT_THAT(Lines({most + most, "\n", "next\n"}), ElementsAre("next"));
}

}  // namespace
}  // namespace host
