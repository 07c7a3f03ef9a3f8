// Results that are kept under a name.

#include "compare_fixture.h"

namespace {

using testing::HasSubstr;

class BaselineTest : public CompareTest {
 protected:
  static Finished Baseline(std::vector<std::string> words) {
    words.insert(words.begin(), "baseline");
    return Bench(words);
  }
  static constexpr const char* kFolder = ".local/share/audio_bench/baselines";
};

TEST_F(BaselineTest, ASavedOneIsComparedWithLikeTheResultsThemselves) {
  host::Json a = OneFigureEach({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  host::Json b = OneFigureEach({1.5, 2.1, 2.9, 4, 5.2, 6, 7.4, 8.1, 9, 9.5});
  a["cases"][2]["cluster"] = b["cases"][2]["cluster"] = "s";
  a["cases"][3]["guards"] = b["cases"][4]["guards"] = {
      {{"name", "click"}, {"file", "out.wav"}, {"at", 1}, {"channel", 0}, {"fails", false}}};
  a["cases"][5]["results"] = b["cases"][5]["results"] = {{{"name", "delay"},
                                                          {"value", 5},
                                                          {"unit", "ms"},
                                                          {"better", "none"},
                                                          {"file", nullptr},
                                                          {"reason", nullptr},
                                                          {"truth", 4}}};
  a["cases"][6]["figures"][0]["channel"] = b["cases"][6]["figures"][0]["channel"] = 1;
  a["margins"] = {{"my_sdr", 0.25}};
  WriteResults("a", a);
  WriteResults("b", b);
  Finished finished = Baseline({"save", "old", "a"});
  EXPECT_EQ(finished.exitCode, 0) << finished.err;
  EXPECT_EQ(finished.out, "baseline old: 10 cases of a\n");
  EXPECT_TRUE(std::filesystem::exists(std::string(kFolder) + "/old.json"));
  const auto withoutPaths = [](const Finished& compared) {
    nlohmann::json json = ParseComparison(compared.out);
    json.erase("a");
    return json;
  };
  const nlohmann::json expected = withoutPaths(Compare({"a", "b", "--json", "-"}));
  EXPECT_EQ(withoutPaths(Compare({"baseline:old", "b", "--json", "-"})), expected);
  EXPECT_EQ(Baseline({"export", "old", "old.json"}).exitCode, 0);
  EXPECT_EQ(withoutPaths(Compare({"old.json", "b", "--json", "-"})), expected);
  EXPECT_EQ(Baseline({"export", "a", "direct.json"}).exitCode, 0);
  EXPECT_EQ(ReadFile("direct.json"), ReadFile("old.json"));
}

TEST_F(BaselineTest, IsListedShownAndRemoved) {
  WriteWorse();
  EXPECT_THAT(Baseline({"list"}).out, HasSubstr("no baselines in "));
  Baseline({"save", "old", "a"});
  Baseline({"save", "new", "b"});
  EXPECT_EQ(Baseline({"list"}).out,
            "baseline  cases  engine                started               suite\n"
            "new          10  desktop engine 0.2.0  2026-03-01T12:00:00Z  calls.toml\n"
            "old          10  desktop engine 0.2.0  2026-03-01T12:00:00Z  calls.toml\n");
  EXPECT_THAT(Baseline({"show", "old"}).out, HasSubstr("\nc9    pass           1      1\n"));
  EXPECT_EQ(Baseline({"remove", "old"}).exitCode, 0);
  const Finished gone = Compare({"baseline:old", "b"});
  EXPECT_EQ(gone.exitCode, 2);
  EXPECT_THAT(gone.err, HasSubstr("there is no baseline:old"));
  EXPECT_THAT(Baseline({"show", "nev"}).err, HasSubstr("did you mean new?"));
}

TEST_F(BaselineTest, RefusesWhatIsNoNameAndWhatIsNoSuite) {
  WriteWorse();
  for (const char* const name : {"../x", ".x", "a/b", "a\nb"}) {
    const Finished finished = Baseline({"save", name, "a"});
    EXPECT_EQ(finished.exitCode, 2) << name;
    EXPECT_THAT(finished.err, HasSubstr("is no name of a baseline"));
  }
  EXPECT_THAT(Baseline({"save", "x"}).err, HasSubstr("it is: audio_bench baseline save NAME DIR"));
  EXPECT_THAT(Baseline({"sav", "x", "a"}).err, HasSubstr("did you mean save?"));
  EXPECT_THAT(Baseline({}).err, HasSubstr("baseline what?"));
  EXPECT_EQ(Baseline({"save", "x", "none"}).exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(std::string(kFolder) + "/x.json"));
}

TEST_F(BaselineTest, AMissingReferenceIsRecordedOnlyWhereThatIsAskedFor) {
  WriteWorse();
  EXPECT_EQ(Compare({"baseline:old", "a"}).exitCode, 2);
  EXPECT_EQ(Compare({"golden.json", "a"}).exitCode, 2);
  for (const char* const name : {"baseline:old", "golden.json"}) {
    const Finished recorded = Compare({name, "a", "--record-missing"});
    EXPECT_EQ(recorded.exitCode, 0) << recorded.err;
    EXPECT_THAT(recorded.out, HasSubstr(std::string("recorded: ") + name));
    EXPECT_EQ(Compare({name, "a"}).exitCode, 0);
    // What is there is not replaced.
    EXPECT_EQ(Compare({name, "b", "--record-missing"}).exitCode, 1);
    EXPECT_EQ(Compare({name, "b"}).exitCode, 1);
  }
}

TEST_F(BaselineTest, MissingCasesAreAddedToTheReference) {
  host::Json a = OneFigureEach({1, 2});
  WriteResults("a", a);
  a["cases"].push_back(CaseJson("added", {{.name = "lsd", .value = 3, .file = "more.wav"}}));
  WriteResults("b", a);
  Baseline({"export", "a", "golden.json"});
  EXPECT_THAT(Compare({"golden.json", "b"}).out, HasSubstr("new     added"));
  const Finished recorded = Compare({"golden.json", "b", "--record-missing"});
  EXPECT_EQ(recorded.exitCode, 0);
  EXPECT_THAT(recorded.out, HasSubstr("recorded: 1 more cases in golden.json"));
  EXPECT_EQ(Compare({"golden.json", "b"}).out,
            "same (3 cases, 3 of 3 files the same byte for byte)\n");
  // The results of a suite stay as its run has left them.
  const std::string before = ReadFile("a/results.json");
  Compare({"a", "b", "--record-missing"});
  Compare({"a/results.json", "b", "--record-missing"});
  EXPECT_EQ(ReadFile("a/results.json"), before);
}

}  // namespace
