// The forms for programs, each held against its schema.

#include "compare_fixture.h"

namespace {

using testing::HasSubstr;

class CompareFormsTest : public CompareTest {
 protected:
  // Everything that a comparison can find, in "a" and "b".
  static void WriteAll() {
    host::Json a = OneFigureEach(std::vector<double>(10, 5));
    host::Json b = OneFigureEach({4, 4.1, 4.2, 3.9, 3.8, 4, 4.3, 4.4, 4.5, 4});
    for (size_t i = 0; i < 10; ++i) {
      a["cases"][i]["cluster"] = b["cases"][i]["cluster"] = "s" + std::to_string(i % 9);
    }
    b["cases"][2]["verdict"] = "fail";
    b["cases"][3]["guards"] = {
        {{"name", "click"}, {"file", "out.wav"}, {"at", 1}, {"channel", 0}, {"fails", false}}};
    a["cases"].push_back(CaseJson("a <b>, \"c\"", {{.name = "few", .value = 1}}));
    a["cases"].push_back(CaseJson("f1", {{.name = "few", .value = 1}}));
    a["cases"].push_back(CaseJson("f2", {{.name = "few", .value = 1}}));
    b["cases"].push_back(CaseJson("f1", {{.name = "few", .value = 2}}));
    b["cases"].push_back(CaseJson("f2", {{.name = "few", .value = 0.5}}));
    b["cases"].push_back(CaseJson("added", {}));
    WriteResults("a", a);
    WriteResults("b", b);
  }
};

TEST_F(CompareFormsTest, JsonHasAllThatIsFound) {
  WriteAll();
  const Finished finished = Compare({"a", "b", "--json", "c.json", "--times"});
  EXPECT_EQ(finished.exitCode, 1) << finished.err;
  const nlohmann::json json = ParseComparison(ReadFile("c.json"));
  EXPECT_EQ(json["verdict"], "worse");
  ASSERT_EQ(json["measures"].size(), 2U);
  const nlohmann::json& worse = json["measures"][0];
  EXPECT_EQ(worse["name"], "my_sdr");
  EXPECT_EQ(worse["unit"], "dB");
  EXPECT_EQ(worse["better"], "higher");
  EXPECT_EQ(worse["n"], 10);
  EXPECT_EQ(worse["clusters"], 9);
  EXPECT_EQ(worse["a"], 5);
  EXPECT_NEAR(worse["b"].get<double>(), 4.12, 1e-12);
  EXPECT_NEAR(worse["difference"].get<double>(), -0.88, 1e-12);
  EXPECT_LT(worse["low"].get<double>(), -0.88);
  EXPECT_GT(worse["high"].get<double>(), -0.88);
  EXPECT_LT(worse["high"].get<double>(), 0);
  EXPECT_LT(worse["p"].get<double>(), 0.01);
  EXPECT_EQ(worse["wins"], 0);
  EXPECT_EQ(worse["losses"], 10);
  EXPECT_EQ(worse["worst_case"], "c4");
  EXPECT_EQ(worse["margin"], 0);
  EXPECT_EQ(worse["verdict"], "worse");
  const nlohmann::json& few = json["measures"][1];
  EXPECT_EQ(few["verdict"], "undecided");
  EXPECT_EQ(few["low"], nullptr);
  EXPECT_EQ(few["high"], nullptr);
  EXPECT_EQ(few["more"], 6);
  EXPECT_EQ(json["gone"],
            nlohmann::json({{{"case", "a <b>, \"c\""}, {"file", nullptr}, {"name", nullptr}}}));
  EXPECT_EQ(json["new"],
            nlohmann::json({{{"case", "added"}, {"file", nullptr}, {"name", nullptr}}}));
  EXPECT_EQ(json["fallen"], nlohmann::json({{{"case", "c2"}, {"a", "pass"}, {"b", "fail"}}}));
  EXPECT_EQ(json["guards"],
            nlohmann::json({{{"case", "c3"}, {"file", "out.wav"}, {"name", "click"}}}));
  EXPECT_EQ(json["same_bytes"], 12);
  EXPECT_EQ(json["times"][0]["verdict"], "same");
}

TEST_F(CompareFormsTest, AFormOnStandardOutputIsThereAlone) {
  WriteAll();
  const Finished json = Compare({"a", "b", "--json", "-", "--csv", "c.csv"});
  ParseComparison(json.out);
  EXPECT_THAT(json.err, HasSubstr("worse: "));
  EXPECT_EQ(Compare({"a", "b", "--csv", "-"}).out, ReadFile("c.csv"));
}

TEST_F(CompareFormsTest, CsvHasARowForEachThing) {
  WriteAll();
  Compare({"a", "b", "--csv", "c.csv"});
  const std::string csv = ReadFile("c.csv");
  EXPECT_THAT(csv, testing::StartsWith("kind,name,unit,better,n,clusters,a,b,difference,low,high,p,"
                                       "wins,losses,worst_case,margin,verdict,case,file\n"));
  EXPECT_THAT(csv, HasSubstr("\nfallen,pass to fail,,,,,,,,,,,,,,,worse,c2,\n"));
  EXPECT_THAT(csv, HasSubstr("\nguard,click,,,,,,,,,,,,,,,worse,c3,out.wav\n"));
  EXPECT_THAT(csv, HasSubstr("\ngone,,,,,,,,,,,,,,,,worse,\"a <b>, \"\"c\"\"\",\n"));
  EXPECT_THAT(csv, HasSubstr("\nmeasure,my_sdr,dB,higher,10,9,5.0,4.12,-0.88,"));
  EXPECT_THAT(
      csv, HasSubstr("\nmeasure,few,dB,higher,2,2,1.0,1.25,0.25,,,1.0,1,1,f2,0.0,undecided,,\n"));
  EXPECT_THAT(csv, HasSubstr("\ntime,elapsed,s,lower,12,,1.0,1.0,0.0,0.0,0.0,,,,,,,,\n"));
  EXPECT_THAT(csv, HasSubstr("\nnew,,,,,,,,,,,,,,,,,added,\n"));
}

TEST_F(CompareFormsTest, JunitIsOfItsFormAndFailsWhatIsWorse) {
  WriteAll();
  Compare({"a", "b", "--junit", "c.xml"});
  const std::string xml = ReadFile("c.xml");
  const Finished lint = RunProcess({XMLLINT, "--noout", "--schema", JUNIT_SCHEMA, "c.xml"});
  EXPECT_EQ(lint.exitCode, 0) << lint.err << xml;
  EXPECT_THAT(xml, HasSubstr("tests=\"5\" failures=\"4\""));
  EXPECT_THAT(xml,
              HasSubstr("<failure message=\"1 have fallen\" type=\"worse\">c2: pass to fail\n"));
  EXPECT_THAT(xml, HasSubstr("a &lt;b&gt;, \"c\""));
  EXPECT_THAT(xml, HasSubstr("<system-out>undecided: "));
  Compare({"a", "a", "--junit", "same.xml"});
  EXPECT_THAT(ReadFile("same.xml"), HasSubstr("tests=\"5\" failures=\"0\""));
}

}  // namespace
