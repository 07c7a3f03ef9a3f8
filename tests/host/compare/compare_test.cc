// What compare prints and how it ends, from outside.

#include "compare_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(CompareTest, TheExitCodeIsTheVerdict) {
  WriteWorse();
  EXPECT_EQ(Compare({"a", "b"}).exitCode, 1);
  EXPECT_EQ(Compare({"b", "a"}).exitCode, 0);
  EXPECT_EQ(Compare({"a", "a"}).exitCode, 0);
  EXPECT_EQ(Compare({"a", "none"}).exitCode, 2);
}

TEST_F(CompareTest, SaysInOneLineThatNothingHasChanged) {
  WriteWorse();
  const Finished finished = Compare({"a", "a"});
  EXPECT_EQ(finished.out, "same (10 cases, 10 of 10 files the same byte for byte)\n");
  EXPECT_EQ(finished.err, "");
}

TEST_F(CompareTest, TellsTheWorstFirstAndTheVerdictLast) {
  host::Json a = OneFigureEach(std::vector<double>(10, 5));
  host::Json b = OneFigureEach(std::vector<double>(10, 4));
  b["cases"][2]["verdict"] = "fail";
  b["cases"][3]["guards"] = {
      {{"name", "click"}, {"file", "out.wav"}, {"at", 1}, {"channel", 0}, {"fails", false}}};
  b["cases"].erase(9);
  b["cases"].push_back(CaseJson("added", {}));
  WriteResults("a", a);
  WriteResults("b", b);
  const Finished finished = Compare({"a", "b/results.json"});
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_EQ(
      finished.out,
      "A  a  desktop engine 0.2.0  2026-03-01T12:00:00Z\n"
      "B  b/results.json  desktop engine 0.2.0  2026-03-01T12:00:00Z\n"
      "\n"
      "fallen  c2  pass -> fail\n"
      "guard   c3  out.wav  click\n"
      "gone    c9\n"
      "\n"
      "measure  unit  better  A  B  B - A  95 %      margin  cases  won / lost         p  "
      "verdict  worst case\n"
      "my_sdr   dB    higher  5  4     -1  -1 .. -1       0      9  0 / 9       0.003906  "
      "worse    c0 -1\n"
      "\n"
      "time     unit    A    B  B / A  half of the cases  cases  verdict\n"
      "elapsed  s       1    1      1  1 .. 1                 9        -\n"
      "cpu      s     0.5  0.5      1  1 .. 1                 9        -\n"
      "\n"
      "new     added\n"
      "\n"
      "worse: 1 verdict fell, 1 guard is new, 1 thing is gone, my_sdr (-1 dB) worse (9 cases, "
      "9 of 9 files the same byte for byte)\n");
}

TEST_F(CompareTest, RefusesWhatCannotBeCompared) {
  WriteWorse();
  host::Json other = OneFigureEach({1});
  other["suite"] = "music.toml";
  WriteResults("c", other);
  const Finished finished = Compare({"a", "c"});
  EXPECT_EQ(finished.exitCode, 2);
  EXPECT_THAT(finished.err, StartsWith("audio_bench: not comparable: other suites: calls.toml"));
  EXPECT_EQ(finished.out, "");
  WriteFile("a/results.json", ReadFile("a/results.json").substr(0, 500));
  EXPECT_EQ(Compare({"a", "b"}).exitCode, 2);
  EXPECT_THAT(Compare({"a", "b"}).err, HasSubstr("a/results.json: "));
}

TEST_F(CompareTest, RefusesWordsThatMakeNoSense) {
  WriteWorse();
  const std::pair<std::vector<std::string>, const char*> wrong[] = {
      {{"a"}, "compare takes two results"},
      {{"a", "b", "a"}, "compare takes two results"},
      {{"a", "b", "--margin", "my_sdr"}, "--margin takes NAME=X"},
      {{"a", "b", "--margin", "my_sdr=-1"}, "--margin takes NAME=X"},
      {{"a", "b", "--margin", "my_sdr=nan"}, "--margin takes NAME=X"},
      {{"a", "b", "--margin", "my_sdt=1"}, "did you mean my_sdr?"},
      {{"a", "b", "--resamples", "10"}, "--resamples"},
      {{"a", "b", "--out", "x"}, "--out goes with --bench"},
      {{"a", "b", "--", "x"}, "unexpected x"},
      {{"a", "b", "--json", "-", "--csv", "-"}, "only one of --json, --csv and --junit"}};
  for (const auto& [words, message] : wrong) {
    const Finished finished = Compare(words);
    EXPECT_EQ(finished.exitCode, 2) << message;
    EXPECT_THAT(finished.err, HasSubstr(message));
  }
}

TEST_F(CompareTest, AMarginMakesADifferenceOneThatDoesNotMatter) {
  WriteWorse();
  EXPECT_EQ(Compare({"a", "b", "--margin", "my_sdr=0.9"}).exitCode, 1);
  EXPECT_EQ(Compare({"a", "b", "--margin=my_sdr=1.1"}).exitCode, 0);
}

TEST_F(CompareTest, TimesDecideOnlyWhereTheyAreAskedTo) {
  const host::Json a = OneFigureEach(std::vector<double>(10, 5));
  host::Json b = a;
  for (host::Json& each : b["cases"]) each["cpu"] = 0.9;
  WriteResults("a", a);
  WriteResults("b", b);
  EXPECT_EQ(Compare({"a", "b"}).exitCode, 0);
  const Finished finished = Compare({"a", "b", "--times"});
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_THAT(finished.out, HasSubstr("cpu worse"));
}

TEST_F(CompareTest, TheFiguresAreTheSameEachTime) {
  std::vector<double> values;
  for (int i = 0; i < 40; ++i) values.push_back(std::sin(i) + 0.1);
  WriteResults("a", OneFigureEach(std::vector<double>(40, 0)));
  WriteResults("b", OneFigureEach(values));
  const Finished once = Compare({"a", "b", "--json", "-"});
  EXPECT_EQ(once.out, Compare({"a", "b", "--json", "-"}).out);
  EXPECT_NE(once.out, Compare({"a", "b", "--json", "-", "--resamples", "20000"}).out);
}

}  // namespace
