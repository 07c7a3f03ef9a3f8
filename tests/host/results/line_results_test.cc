// Figures in what a routine prints, logs and writes, whole, torn and hostile.

#include "results/line_results.h"

#include <gmock/gmock.h>

#include <cmath>

#include "results/line_form.h"

namespace host {
namespace {

using harness::Takes;
using testing::HasSubstr;

double Figure(std::string_view form, std::string_view line) {
  const auto figures = ReadLine(form, line);
  return figures ? figures->figure : -1e9;
}

constexpr double kNoMatch = -1e9;

TEST(LineForm, FindsTheFigureInALineOfItsForm) {
  EXPECT_EQ(Figure("TestEchoDelayEst: *, #", "TestEchoDelayEst: 100, 89"), 89);
  EXPECT_EQ(Figure("bpm=#", "bpm=127.5"), 127.5);
  EXPECT_EQ(Figure("total elapse time:# *.", "total elapse time:3 12."), 3);
  EXPECT_EQ(Figure("status #", "status -7"), -7);
  EXPECT_EQ(Figure("#", "523"), 523);
  EXPECT_EQ(Figure("echo: ?", "echo: yes"), 1);
  EXPECT_EQ(Figure("echo: ?", "echo: no"), 0);
  EXPECT_TRUE(std::isnan(Figure("echo: ?", "echo: maybe")));
  EXPECT_EQ(Figure("echo: ?", "echo: not looked for"), kNoMatch);
}

TEST(LineForm, TakesNoLineOfAnotherForm) {
  for (const char* line : {"", "bpm=", "bpm=12x", "xbpm=12", "bpm =12", " bpm=12", "bpm=12 ",
                           "bpm=+12", "bpm=0x1f 3", "bpm=1,2"}) {
    EXPECT_EQ(Figure("bpm=#", line), kNoMatch) << line;
  }
  EXPECT_EQ(Figure("a: *, #", "a: 1"), kNoMatch);
  EXPECT_EQ(Figure("a: *, #", "a: 1, "), kNoMatch);
  EXPECT_EQ(Figure("#", "12:00:00.000"), kNoMatch);
}

TEST(LineForm, SaysThatAFigureIsNoNumber) {
  EXPECT_TRUE(std::isnan(Figure("bpm=#", "bpm=nan")));
  EXPECT_TRUE(std::isnan(Figure("bpm=#", "bpm=-nan")));
  EXPECT_TRUE(std::isinf(Figure("bpm=#", "bpm=inf")));
  EXPECT_TRUE(std::isinf(Figure("bpm=#", "bpm=1e999")));
}

TEST(LineForm, LeavesTheTimeOfDayOut) {
  EXPECT_EQ(WithoutTime("12:34:56.789 delay"), "delay");
  for (const char* line : {"12:34:56.78 delay", "12-34-56.789 delay", "12:34:56.789", "", "9",
                           "1/:34:56.789 delay", "1::34:56.789 delay"}) {
    EXPECT_EQ(WithoutTime(line), line);
  }
}

constexpr ResultLine kDeclared[] = {
    {"delay", "ms", Better::kNone, Stands::kLogged, "delay: *, #"},
    {"time", "ms", Better::kLower, Stands::kLogged, "#"},
    {"tempo", "BPM", Better::kNone, Stands::kPrinted, "bpm=#"},
    {"beats", "beats", Better::kNone, Stands::kWritten, "beat #", Takes::kCount, "beats.txt"},
    {"middle", "s", Better::kNone, Stands::kWritten, "beat #", Takes::kMedian, "beats.txt"},
    {"mean", "s", Better::kNone, Stands::kWritten, "beat #", Takes::kMean, "beats.txt"},
    {"sum", "s", Better::kNone, Stands::kWritten, "beat #", Takes::kSum, "beats.txt"},
    {"share", "%", Better::kNone, Stands::kPrinted, "of: #, *", Takes::kShare}};

class LineResultsTest : public testing::Test {
 protected:
  Result Get(std::string_view name) const {
    for (const Result& result : m_results.Take()) {
      if (result.name == name) return result;
    }
    return {.reason = "no such result"};
  }

  LineResults m_results{kDeclared};
};

TEST_F(LineResultsTest, TakesTheLastWholeLineHoweverTheStreamIsCut) {
  const std::string log =
      "12:34:56.789 delay: 1, 5\n12:34:57.789 delay: 2, 89\n12:34:58.000 523\n12:34:58.100 delay: "
      "3, 9";
  for (size_t part = 1; part < log.size(); ++part) {
    LineResults results(kDeclared);
    for (size_t at = 0; at < log.size(); at += part) {
      results.Hear(Stands::kLogged, std::string_view(log).substr(at, part));
    }
    const std::vector<Result> taken = results.Take();
    EXPECT_EQ(taken[0].value, 89) << "the last line is torn";
    EXPECT_EQ(taken[1].value, 523);
  }
}

TEST_F(LineResultsTest, HearsEachStreamForItself) {
  m_results.Hear(Stands::kPrinted, "bpm=1");
  m_results.Hear(Stands::kLogged, "bpm=99\n2\n");
  m_results.Hear(Stands::kPrinted, "20\n");
  EXPECT_EQ(Get("tempo").value, 120);
  EXPECT_EQ(Get("time").value, 2);
  EXPECT_FALSE(Get("delay").value.has_value());
  EXPECT_EQ(Get("delay").reason, "no such line is in the log");
}

TEST_F(LineResultsTest, SumsUpTheLinesOfAText) {
  m_results.Read("beats.txt", "beat 1\nbeat 9\nbeat 2\nsomething\nbeat 100");
  EXPECT_EQ(Get("beats").value, 3);
  EXPECT_EQ(Get("middle").value, 2);
  EXPECT_EQ(Get("mean").value, 4);
  EXPECT_EQ(Get("sum").value, 12);
  EXPECT_EQ(Get("sum").file, "beats.txt");
  LineResults even(kDeclared);
  even.Read("beats.txt", "beat 1\nbeat 4\nbeat 2\nbeat 9\n");
  EXPECT_EQ(even.Take()[4].value, 3);
  EXPECT_EQ(LineResults(kDeclared).Take()[3].value, 0) << "a count of none";
}

TEST_F(LineResultsTest, TellsSharesInPerCent) {
  m_results.Hear(Stands::kPrinted, "of: 30, 90\n");
  EXPECT_EQ(Get("share").value, 25);
  m_results.Hear(Stands::kPrinted, "of: 0, 0\n");
  EXPECT_FALSE(Get("share").value.has_value());
  EXPECT_EQ(Get("share").reason, "the line gives no number");
}

TEST_F(LineResultsTest, NeverGivesANumberThatIsNone) {
  m_results.Hear(Stands::kPrinted, "bpm=120\nbpm=nan\n");
  m_results.Read("beats.txt", "beat 1\nbeat inf\nbeat 2\n");
  for (const char* name : {"tempo", "middle", "mean", "sum"}) {
    EXPECT_FALSE(Get(name).value.has_value()) << name;
    EXPECT_EQ(Get(name).reason, "the line gives no number") << name;
  }
}

TEST_F(LineResultsTest, SaysWhereThereIsNoSuchLine) {
  m_results.Read("beats.txt", "other 1\n");
  EXPECT_EQ(Get("tempo").reason, "the routine printed no such line");
  EXPECT_EQ(Get("time").reason, "no such line is in the log");
  EXPECT_EQ(Get("mean").reason, "no such line is in the file");
  EXPECT_EQ(Get("mean").unit, "s");
  EXPECT_EQ(Get("time").better, Better::kLower);
  EXPECT_EQ(Get("beats").reason, "");
}

// Another file of the same lines is not the one that was meant.
TEST_F(LineResultsTest, ReadsEachFileForItself) {
  m_results.Read("other.txt", "beat 1\n");
  EXPECT_EQ(Get("beats").value, 0);
  m_results.Miss("other.txt", "the file was not written");
  EXPECT_EQ(Get("beats").reason, "");
}

TEST_F(LineResultsTest, SaysWhyNothingWasHeard) {
  m_results.Read("beats.txt", "beat 1\n");
  m_results.Hear(Stands::kPrinted, "bpm=120\n");
  m_results.MissHeard("the log cannot be read");
  for (const char* const name : {"delay", "time", "tempo", "share"}) {
    EXPECT_EQ(Get(name).reason, "the log cannot be read") << name;
    EXPECT_FALSE(Get(name).value.has_value()) << name;
  }
  EXPECT_EQ(Get("beats").value, 1);
}

TEST_F(LineResultsTest, SaysWhatCouldNotBeRead) {
  m_results.Miss("beats.txt", "the file was not written");
  EXPECT_EQ(Get("beats").reason, "the file was not written");
  EXPECT_FALSE(Get("beats").value.has_value()) << "no count of a file that is not there";
}

TEST_F(LineResultsTest, SaysSoOfTheFirstResultToo) {
  constexpr ResultLine kFirst[] = {
      {"beats", "beats", Better::kNone, Stands::kWritten, "beat #", Takes::kCount, "beats.txt"}};
  LineResults results(kFirst);
  results.Miss("beats.txt", "the file was not written");
  EXPECT_EQ(results.Take()[0].reason, "the file was not written");
}

TEST_F(LineResultsTest, StandsLinesWithoutEndAndBytesOfAnyKind) {
  for (int i = 0; i < 5000; ++i) m_results.Hear(Stands::kPrinted, "bpm=1bpm=1");
  m_results.Hear(Stands::kPrinted, "\nbpm=60\n");
  EXPECT_EQ(Get("tempo").value, 60) << "the long line is left out, the next one is not";
  m_results.Hear(Stands::kPrinted, std::string("\0\xff\n\nbpm=\0"
                                               "7\n",
                                               11));
  EXPECT_EQ(Get("tempo").value, 60);
}

}  // namespace
}  // namespace host
