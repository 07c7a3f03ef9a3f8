// The forms of a suite's results: CSV and JUnit.

#include "suite/case_record.h"
#include "suite/junit_results.h"
#include "suite/result_writer.h"
#include "suite/shard.h"
#include "suite_fixture.h"

namespace {

using host::Json;
using testing::HasSubstr;

// What a writer has written to a file.
class ResultFormsTest : public SuiteTest {
 protected:
  ResultFormsTest() : m_file(fopen("written", "w")) {}
  std::string Written() {
    fclose(m_file);
    return ReadFile("written");
  }

  static Json Record(const std::string& id, const std::string& verdict) {
    Json record = host::NotRunRecord({.id = id, .routine = "WritePcm"});
    record["verdict"] = verdict;
    record["cause"] = verdict == "pass" ? "none" : "cause";
    record["reason"] = verdict == "pass" ? "" : "why <" + id + ">";
    record["elapsed"] = 0.25;
    return record;
  }

  FILE* m_file;
};

TEST_F(ResultFormsTest, CsvHasARowForEachValue) {
  host::CsvResults csv(m_file);
  Json record = Record("a,b", "warn");
  record["figures"] = {
      {{"file", "out.wav"}, {"channel", 1}, {"name", "peak"}, {"value", -6.5}, {"unit", "dBFS"}},
      {{"file", "out.wav"},
       {"channel", nullptr},
       {"name", "snr"},
       {"value", nullptr},
       {"unit", "dB"}}};
  record["results"] = {{{"name", "delay"}, {"value", 89}, {"unit", "ms"}, {"file", nullptr}}};
  record["guards"] = {{{"name", "click"}, {"file", "o\"1\".wav"}, {"at", 1.5}, {"channel", 0}}};
  csv.Add(record);
  csv.Add(Record("plain", "pass"));
  EXPECT_EQ(Written(),
            "case,routine,verdict,file,kind,name,value,unit\n"
            "\"a,b\",WritePcm,warn,out.wav,figure,peak.1,-6.5,dBFS\n"
            "\"a,b\",WritePcm,warn,out.wav,figure,snr,,dB\n"
            "\"a,b\",WritePcm,warn,,result,delay,89,ms\n"
            "\"a,b\",WritePcm,warn,\"o\"\"1\"\".wav\",guard,click.0,1.5,s\n"
            "plain,WritePcm,pass,,,,,\n");
}

TEST_F(ResultFormsTest, JunitHasAnOutcomeForEachVerdict) {
  host::JunitResults junit(m_file, "2026-03-01T12:00:00Z");
  Json known = Record("known", "fail");
  known["known"] = "ticket";
  Json failed = Record("failed", "fail");
  failed[host::kLogTailKey] = std::string("a\x1b[31m\xff & <b>\n\xEF\xBF\xBF]]>\n");
  junit.Add(Record("passed", "pass"));
  junit.Add(Record("warned", "warn"));
  junit.Add(failed);
  junit.Add(Record("broken", "error"));
  junit.Add(Record("skipped", "skip"));
  junit.Add(known);
  junit.Add(Record("open", "not_run"));
  EXPECT_TRUE(junit.End());
  const std::string xml = Written();
  EXPECT_THAT(xml, HasSubstr("<testsuite name=\"harness\" tests=\"7\" failures=\"1\" errors=\"1\" "
                             "skipped=\"3\" time=\"1.750000\" timestamp=\"2026-03-01T12:00:00\">"));
  EXPECT_THAT(xml, HasSubstr("<testcase classname=\"harness.WritePcm\" name=\"passed\" "
                             "time=\"0.250000\" />"));
  EXPECT_THAT(xml, HasSubstr("<system-out>warn: why &lt;warned&gt;\n</system-out>"));
  EXPECT_THAT(xml, HasSubstr("<failure message=\"why &lt;failed>\" type=\"cause\" />"));
  EXPECT_THAT(xml, HasSubstr("a\\x1b[31m\\xff &amp; &lt;b&gt;\n\\uffff]]&gt;\n</system-out>"));
  EXPECT_THAT(xml, HasSubstr("<error message=\"why &lt;broken>\" type=\"cause\" />"));
  EXPECT_THAT(xml, HasSubstr("<skipped message=\"why &lt;skipped>\" />"));
  EXPECT_THAT(xml, HasSubstr("<skipped message=\"known: ticket (why &lt;known>)\" />"));
  EXPECT_THAT(xml, HasSubstr("<skipped message=\"not run: why &lt;open>\" />"));
  const Finished lint = RunProcess({XMLLINT, "--noout", "--schema", JUNIT_SCHEMA, "written"});
  EXPECT_EQ(lint.exitCode, 0) << lint.err << xml;
}

TEST_F(ResultFormsTest, TheJunitFileOfASuiteIsOfThatForm) {
  WriteFile("s.toml", Case("good", "WritePcm") + Case("bad", "PrintAndLog") +
                          Case("worse", "Crash") + Case("none", "NeedNothing"));
  EXPECT_EQ(Suite({"s.toml", "--out", "r"}).exitCode, 4);
  const Finished lint = RunProcess({XMLLINT, "--noout", "--schema", JUNIT_SCHEMA, "r/junit.xml"});
  EXPECT_EQ(lint.exitCode, 0) << lint.err << ReadFile("r/junit.xml");
  EXPECT_THAT(ReadFile("r/junit.xml"), HasSubstr("tests=\"4\""));
}

TEST_F(ResultFormsTest, TheSchemaOfJunitRefusesWhatIsNot) {
  for (const char* const wrong :
       {"<testsuites><testsuite name='a'/></testsuites>", "<testsuites><x/></testsuites>",
        "<testsuites name='b' tests='1' failures='0' errors='0' skipped='0' time='0'>"
        "<testsuite name='a' tests='-1' failures='0' errors='0' skipped='0' time='0' "
        "timestamp='2026-03-01T12:00:00'/></testsuites>"}) {
    WriteFile("wrong.xml", wrong);
    EXPECT_NE(RunProcess({XMLLINT, "--noout", "--schema", JUNIT_SCHEMA, "wrong.xml"}).exitCode, 0)
        << wrong;
  }
}

TEST(Shard, TheHashIsFnv1aOf64Bits) {
  // The vectors of its authors.
  EXPECT_EQ(host::Fnv1a(""), 0xcbf29ce484222325u);
  EXPECT_EQ(host::Fnv1a("a"), 0xaf63dc4c8601ec8cu);
  EXPECT_EQ(host::Fnv1a("foobar"), 0x85944171f73967e8u);
  EXPECT_TRUE((host::Shard{.index = 0xaf63dc4c8601ec8cu % 7 + 1, .of = 7}.Holds("a")));
  EXPECT_FALSE((host::Shard{.index = 0xaf63dc4c8601ec8cu % 7, .of = 7}.Holds("a")));
}

}  // namespace
