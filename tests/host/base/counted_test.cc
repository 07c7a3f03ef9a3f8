#include "base/counted.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Counted, OneIsNoPlural) {
  EXPECT_EQ(Counted(1, "byte"), "1 byte");
  EXPECT_EQ(Counted(0, "byte"), "0 bytes");
  EXPECT_EQ(Counted(3, "case"), "3 cases");
  EXPECT_EQ(ThereAre(1), "there is 1");
  EXPECT_EQ(ThereAre(0), "there are 0");
}

}  // namespace
}  // namespace host
