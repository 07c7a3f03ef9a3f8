// Results that may be torn, or were never any.

#include "compare/read_results.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

#include "base/usage_error.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "synthetic_results.h"

namespace host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// Why a text is refused; empty when it is read.
std::string Fault(const std::string& text) {
  try {
    ParseResultSet(text, "r.json");
  } catch (const UsageError& error) {
    return error.message;
  }
  return "";
}

// The same for results of one case of which one key has this value.
std::string FaultOfCase(const std::string& key, const Json& value) {
  Json one = CaseJson("c0", {{.value = 1}});
  one[key] = value;
  return Fault(ResultsJson({one}).dump());
}

TEST(ReadResults, TakesWhatCanBeCompared) {
  Json one = CaseJson("c0", {{.value = 12.5, .channel = 1}, {.name = "stoi", .unit = "1"}});
  one["cluster"] = "s1";
  one["guards"] = {
      {{"name", "clipped"}, {"file", "out.wav"}, {"at", 1}, {"channel", 0}, {"fails", false}}};
  one["results"] = {{{"name", "delay"},
                     {"value", 89},
                     {"unit", "ms"},
                     {"better", "none"},
                     {"file", Json()},
                     {"reason", Json()}}};
  const ResultSet set = SetOf(ResultsJson({one}));
  EXPECT_FALSE(set.origin.report);
  EXPECT_EQ(set.origin.suite, "calls.toml");
  EXPECT_EQ(set.origin.engine, "desktop engine 0.2.0");
  ASSERT_EQ(set.cases.size(), 1U);
  const ComparedCase& read = set.cases.front();
  EXPECT_EQ(read.routine, "TestZUAec");
  EXPECT_EQ(read.arguments, std::vector<std::string>{"near.wav"});
  EXPECT_EQ(read.cluster, "s1");
  EXPECT_EQ(read.elapsed, 1);
  EXPECT_EQ(read.cpu, 0.5);
  ASSERT_EQ(read.figures.size(), 3U);
  const ComparedFigure& delay = read.figures[0];
  EXPECT_EQ(set.kinds[static_cast<size_t>(delay.kind)],
            (MeasureKind{.name = "delay", .unit = "ms", .better = "none"}));
  EXPECT_EQ(delay.file, TextTable::kNone);
  EXPECT_EQ(read.figures[1].value, 12.5);
  EXPECT_EQ(read.figures[1].channel, 1);
  EXPECT_EQ(set.texts.Text(read.figures[1].file), "out.wav");
  EXPECT_TRUE(std::isnan(read.figures[2].value));
  ASSERT_EQ(read.guards.size(), 1U);
  EXPECT_EQ(set.texts.Text(read.guards[0].name), "clipped");
  ASSERT_EQ(read.outputs.size(), 1U);
  EXPECT_EQ(read.outputs[0].sha256, std::string(64, '0'));
}

TEST(ReadResults, TakesTheReportOfARun) {
  const Json output = {{"name", "out.wav"},
                       {"size", {{"value", 44}, {"unit", "bytes"}}},
                       {"sha256", {{"value", "ab"}}}};
  const Json absent = {{"name", "gone.wav"}, {"size", {{"value", Json()}, {"reason", "absent"}}}};
  const Json report = {{"schema_version", 3},
                       {"routine", "TestDrc"},
                       {"arguments", {"a"}},
                       {"verdict", "warn"},
                       {"elapsed", {{"value", 2.5}, {"unit", "s"}}},
                       {"cpu", {{"value", 1.5}, {"unit", "s"}}},
                       {"figures", {FigureJson({.value = 3})}},
                       {"outputs", {output, absent}}};
  const ResultSet set = SetOf(report);
  EXPECT_TRUE(set.origin.report);
  const ComparedCase& run = set.cases.front();
  EXPECT_EQ(run.id, "TestDrc");
  EXPECT_EQ(run.verdict, "warn");
  EXPECT_EQ(run.elapsed, 2.5);
  EXPECT_EQ(run.cpu, 1.5);
  EXPECT_EQ(run.figures.size(), 1U);
  ASSERT_EQ(run.outputs.size(), 1U);
  EXPECT_EQ(run.outputs[0].sha256, "ab");
}

TEST(ReadResults, RefusesWhatIsTornWhereverThatIs) {
  const std::string whole = OneFigureEach({1, 2}).dump();
  ASSERT_EQ(Fault(whole), "");
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_THAT(Fault(whole.substr(0, length)),
                AllOf(StartsWith("r.json: "), HasSubstr("no whole JSON, at byte ")))
        << length;
  }
  EXPECT_THAT(Fault(whole + "{}"), HasSubstr("no whole JSON"));
}

// Whatever byte is another one, it is read or refused in words.
TEST(ReadResults, TakesNoHarmFromAnyByte) {
  const std::string whole = OneFigureEach({1.25}).dump();
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const char byte : {'\0', '"', '[', '}', ',', '9', '-', '\xFF'}) {
      std::string text = whole;
      text[at] = byte;
      const std::string fault = Fault(text);
      EXPECT_TRUE(fault.empty() || fault.starts_with("r.json: ")) << fault;
    }
  }
}

TEST(ReadResults, RefusesAnotherDocument) {
  EXPECT_THAT(Fault("{}"), HasSubstr("neither results of a suite nor the report of a run"));
  EXPECT_THAT(Fault("{\"schema_version\": 1}"), HasSubstr("it has no cases"));
  EXPECT_THAT(Fault("[]"), HasSubstr("no JSON object"));
  EXPECT_THAT(Fault("7"), HasSubstr("no JSON object"));
  EXPECT_THAT(Fault("{\"schema_version\": 1, \"cases\": {}}"), HasSubstr("cases is no list"));
  EXPECT_THAT(Fault("{\"schema_version\": 1, \"cases\": 5}"), HasSubstr("cases is no list"));
  EXPECT_THAT(Fault("{\"schema_version\": 1, \"cases\": [5]}"), HasSubstr("something else"));
  EXPECT_THAT(Fault("{\"schema_version\": 3, \"verdict\": \"error\", \"routine\": \"\"}"),
              HasSubstr("the report of a run that was refused"));
}

// It may mean something else by the same words.
TEST(ReadResults, RefusesALaterSchema) {
  const std::string results = ", \"cases\": []}";
  const std::string report = ", \"routine\": \"TestDrc\", \"verdict\": \"pass\"}";
  const std::string start = "{\"schema_version\": ";
  EXPECT_EQ(Fault(start + "1" + results), "");
  EXPECT_THAT(Fault(start + "2" + results), HasSubstr("it has schema_version 2, this one reads "
                                                      "results up to 1"));
  EXPECT_THAT(Fault("{\"cases\": [], \"schema_version\": 2}"), HasSubstr("schema_version 2"));
  EXPECT_EQ(Fault(start + "3" + report), "");
  EXPECT_EQ(Fault(start + "1" + report), "");
  EXPECT_THAT(Fault(start + "4" + report), HasSubstr("it has schema_version 4, this one reads "
                                                     "reports up to 3"));
  for (const char* version : {"0", "-1", "1.5", "null", "true", "\"1\""}) {
    EXPECT_THAT(Fault(start + version + results), HasSubstr("no whole number from 1 on"));
  }
}

TEST(ReadResults, RefusesValuesOfAnotherType) {
  EXPECT_THAT(FaultOfCase("id", 5), HasSubstr("id is no text"));
  EXPECT_THAT(FaultOfCase("id", ""), HasSubstr("without an id"));
  EXPECT_THAT(FaultOfCase("verdict", "fine"), HasSubstr("case c0: \"fine\" is no verdict"));
  EXPECT_THAT(FaultOfCase("figures", 5), HasSubstr("figures is no list"));
  EXPECT_THAT(FaultOfCase("figures", Json::object()), HasSubstr("figures is no list"));
  EXPECT_THAT(FaultOfCase("outputs", Json::array({Json::array()})), HasSubstr("is no object"));
  EXPECT_THAT(FaultOfCase("elapsed", "1"), HasSubstr("elapsed is no number"));
  EXPECT_THAT(FaultOfCase("arguments", {1}), HasSubstr("is no text"));
  Json figure = FigureJson({.value = 1});
  figure["value"] = true;
  EXPECT_THAT(FaultOfCase("figures", Json::array({figure})), HasSubstr("value is no number"));
  figure["value"] = 1;
  figure["channel"] = 1e300;
  EXPECT_THAT(FaultOfCase("figures", Json::array({figure})),
              HasSubstr("channel is no whole number"));
  for (const char* const key : {"channel", "version"}) {
    for (const double wrong : {-1.0, 0.5, 65537.0}) {
      Json other = FigureJson({.value = 1});
      other[key] = wrong;
      EXPECT_THAT(FaultOfCase("figures", Json::array({other})), HasSubstr("is no whole number"));
    }
  }
  figure["channel"] = Json();
  figure["better"] = "more";
  EXPECT_THAT(FaultOfCase("figures", Json::array({figure})), HasSubstr("whether higher or lower"));
}

TEST(ReadResults, RefusesMarginsBelowNothing) {
  Json results = OneFigureEach({1});
  results["margins"] = {{"my_sdr", 0}};
  EXPECT_EQ(Fault(results.dump()), "");
  for (const Json& wrong : {Json(-0.1), Json("0.1"), Json()}) {
    results["margins"]["my_sdr"] = wrong;
    EXPECT_EQ(Fault(results.dump()), "r.json: the margin of my_sdr is no number from 0 on");
  }
}

TEST(ReadResults, RefusesTwoCasesOfOneName) {
  const Json one = CaseJson("c0", {});
  EXPECT_THAT(Fault(ResultsJson({one, one}).dump()), HasSubstr("two cases are called c0"));
}

// Levels upon levels take no stack.
TEST(ReadResults, TakesAnyDepth) {
  const std::string deep(2000000, '[');
  EXPECT_THAT(Fault("{\"schema_version\": 1, \"x\": " + deep), HasSubstr("no whole JSON"));
  const std::string closed(2000000, ']');
  EXPECT_THAT(Fault("{\"schema_version\": 1, \"x\": " + deep + closed + "}"),
              HasSubstr("it has no cases"));
}

TEST(ReadResults, NamesTheFileThatIsNotThere) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory("empty");
  const auto fault = [](const std::string& path) {
    try {
      ReadResultSet(path);
    } catch (const UsageError& error) {
      return error.message;
    }
    return std::string();
  };
  EXPECT_THAT(fault("none"), HasSubstr("cannot read none"));
  EXPECT_EQ(fault("empty"), "empty holds no results.json of a suite");
  EXPECT_THAT(fault("/dev/zero"), HasSubstr("cannot read /dev/zero"));
  std::filesystem::create_directory("r");
  WriteFile("r/results.json", OneFigureEach({1}).dump());
  EXPECT_EQ(fault("r"), "");
  EXPECT_EQ(fault("r/results.json"), "");
}

}  // namespace
}  // namespace host
