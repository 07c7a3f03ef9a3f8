#include "report/result_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace host {
namespace {

TEST(ResultLines, TellAValueAReasonOrBoth) {
  const std::vector<Result> results = {
      {.name = "delay", .value = 89, .unit = "ms"},
      {.name = "tempo", .unit = "BPM", .reason = "no line"},
      {.name = "a\nb", .value = 0.5, .unit = "1", .reason = "untrusted"},
      {.name = std::string(kLength), .value = 3, .unit = "s"}};
  EXPECT_EQ(ResultLines(results, "in the report"),
            "  result  delay  89 ms\n"
            "  result  tempo  none: no line\n"
            "  result  a\\nb  0.5, untrusted\n");
  EXPECT_EQ(ResultLines({}, "in the report"), "");
}

TEST(ResultLines, AreTheLastTwentyOfMany) {
  std::vector<Result> results;
  std::string lines;
  for (int i = 1; i <= 20; ++i) {
    results.push_back({.name = "r" + std::to_string(i), .value = i, .unit = "1"});
    lines += "  result  r" + std::to_string(i) + "  " + std::to_string(i) + "\n";
  }
  EXPECT_EQ(ResultLines(results, "in the report"), lines);
  results.insert(results.begin(), 2, {.name = "first", .value = 0, .unit = "1"});
  EXPECT_EQ(ResultLines(results, "in the report"), lines + "          and 2 more in the report\n");
}

}  // namespace
}  // namespace host
