// What a figure should be, as a suite declares it.

#include "results/truth.h"

#include <gtest/gtest.h>

#include "results/result.h"

namespace host {
namespace {

TEST(Truth, IsANumberAndAUnit) {
  EXPECT_EQ(ParseTruth("delay", "60 ms"), (Truth{.name = "delay", .unit = "ms", .value = 60}));
  EXPECT_EQ(ParseTruth("polarity", "-1"), (Truth{.name = "polarity", .value = -1}));
  EXPECT_EQ(ParseTruth("length", "2 s"), (Truth{.name = "length", .unit = "s", .value = 2}));
  EXPECT_EQ(ParseTruth("x", "1.5e-3 dB re 1 V"),
            (Truth{.name = "x", .unit = "dB re 1 V", .value = 1.5e-3}));
}

TEST(Truth, IsNothingElse) {
  for (const char* const text :
       {"", "ms", " 60 ms", "60ms", "60 ", "60  ms", "nan", "inf ms", "1e999", "+1", "60\tms"}) {
    EXPECT_FALSE(ParseTruth("delay", text)) << "\"" << text << "\"";
  }
}

TEST(Truth, IsFoundByNameAndUnit) {
  const Truths truths = {{.name = "delay", .unit = "ms", .value = 60},
                         {.name = "delay", .unit = "s", .value = 0.06},
                         {.name = "gain", .unit = "ms", .value = 1}};
  EXPECT_EQ(FindTruth(truths, "delay", "ms"), 60);
  EXPECT_EQ(FindTruth(truths, "delay", "s"), 0.06);
  EXPECT_FALSE(FindTruth(truths, "delay", ""));
  EXPECT_FALSE(FindTruth(truths, "drift", "ms"));
}

TEST(BetterName, IsTheWordOfReports) {
  EXPECT_STREQ(BetterName(Better::kHigher), "higher");
  EXPECT_STREQ(BetterName(Better::kLower), "lower");
  EXPECT_STREQ(BetterName(Better::kNone), "none");
}

}  // namespace
}  // namespace host
