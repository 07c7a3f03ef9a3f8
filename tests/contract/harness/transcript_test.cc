#include "support/transcript.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;
using testing::StringMatchResultListener;

namespace {

const std::vector<std::string> kCalls = {"Reader#1(a)",      "Reader#1.Read(1) = 1",
                                         "Reader#1.Read(2)", "Reader#1.Read(3)",
                                         "Reader#1.Read(4)", "~Reader#1"};

std::string Explanation(std::string_view text) {
  StringMatchResultListener listener;
  EXPECT_FALSE(Transcript(text).MatchAndExplain(kCalls, &listener));
  return listener.str();
}

}  // namespace

TEST(Transcript, IsOneCallALine) {
  EXPECT_THAT(kCalls, Transcript(R"(
      Reader#1(a)
      Reader#1.Read(1) = 1  # A remark for the reader.

      Reader#1.Read(2)
        Reader#1.Read(3)
      Reader#1.Read(4)
      ~Reader#1)"));
  EXPECT_THAT(kCalls, Not(Transcript("")));
  EXPECT_THAT(std::vector<std::string>(), Transcript("\n   \n"));
}

TEST(Transcript, TakesTheCallsOfAnotherRunAsTheyAre) {
  EXPECT_THAT(kCalls, Transcript(kCalls));
  EXPECT_THAT(std::vector<std::string>{"a  # b"}, Transcript(std::vector<std::string>{"a  # b"}));
  std::vector<std::string> fewer = kCalls;
  fewer.pop_back();
  EXPECT_THAT(kCalls, Not(Transcript(fewer)));
}

TEST(Transcript, RepeatsBlocks) {
  EXPECT_THAT((std::vector<std::string>{"a", "b", "a", "b", "c"}), Transcript(Times(2, R"(
                  a
                  b)") + "c"));
  EXPECT_THAT(std::vector<std::string>{"a"}, Not(Transcript(Times(2, "a"))));
}

TEST(Transcript, ShowsTheFirstLineThatDiffersAmongItsNeighbours) {
  EXPECT_EQ(Explanation(R"(
      Reader#1(a)
      Reader#1.Read(1) = 1
      Reader#1.Read(2)
      Reader#1.Read(3)
      Reader#1.Read(5)
      ~Reader#1)"),
            "which differ in line 5\n"
            "expected:\n  2  Reader#1.Read(1) = 1\n  3  Reader#1.Read(2)\n  4  Reader#1.Read(3)\n"
            "> 5  Reader#1.Read(5)\n  6  ~Reader#1\n"
            "called:\n  2  Reader#1.Read(1) = 1\n  3  Reader#1.Read(2)\n  4  Reader#1.Read(3)\n"
            "> 5  Reader#1.Read(4)\n  6  ~Reader#1");
}

TEST(Transcript, NoticesACallTooManyOrTooFew) {
  EXPECT_THAT(Explanation("Reader#1(a)"), HasSubstr("> ends after 1 lines"));
  std::string longer;
  for (const std::string& call : kCalls) longer += call + "\n";
  EXPECT_THAT(Explanation(longer + "more"), HasSubstr("called:\n  4  Reader#1.Read(3)"));
  EXPECT_THAT(Explanation(longer + "more"), HasSubstr("> ends after 6 lines"));
}
