#include "cli/argument_values.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ArgumentValues, AreThoseOfTheArgumentThatComesNext) {
  EXPECT_THAT(ArgumentValues("Measure", {}), ElementsAre("true", "false"));
  EXPECT_THAT(ArgumentValues("Echo", {"a", "b"}), ElementsAre("true", "false"));
  EXPECT_THAT(ArgumentValues("Echo", {"a"}), IsEmpty()) << "a name";
  EXPECT_THAT(ArgumentValues("Echo", {"a", "b", "true"}), IsEmpty()) << "any number";
}

TEST(ArgumentValues, AreTheNumbersOfWhichSomethingComes) {
  EXPECT_THAT(ArgumentValues("Choose", {}), ElementsAre("0", "7", "255")) << "256 is not tried";
}

TEST(ArgumentValues, AreNoneWhereNoArgumentComesNext) {
  EXPECT_THAT(ArgumentValues("Measure", {"true"}), IsEmpty());
  EXPECT_THAT(ArgumentValues("Measure", {"true", "true"}), IsEmpty());
  EXPECT_THAT(ArgumentValues("NoSuchRoutine", {}), IsEmpty());
}

}  // namespace
}  // namespace host
