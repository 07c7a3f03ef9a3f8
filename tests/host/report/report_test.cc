#include "report/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <csignal>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "report_schema.h"
#include "support/file_bytes.h"

namespace host {
namespace {

using nlohmann::json;

// A run over 2 s of audio into a loud and a silent channel.
RunReport Example() {
  RunReport report;
  report.started = "2026-03-01T12:00:00Z";
  report.workspace = "work";
  report.timeout = 600;
  report.routine = "TestIt";
  report.arguments = {"-1", "\xff"};
  report.outcome = {.how = {}, .elapsed = 0.5, .cpu = 0.25, .peakMemory = 5000000};
  report.log = "work/logs/TestIt.log";
  FileReport input;
  input.place = {.use = {.container = Container::kHeaderless}, .name = "/in", .path = "work/in"};
  input.bytes = 32000;
  input.audio = {
      .samples = SampleType::kPcm16, .rate = 8000, .channels = 1, .bytes = 32000, .frameBytes = 2};
  report.inputs = {input};
  FileReport output;
  output.place = {.use = {.container = Container::kHeaderless, .samples = SampleType::kFloat32},
                  .name = "/out",
                  .path = "work/out"};
  output.bytes = 800;
  output.audio = {
      .samples = SampleType::kFloat32, .rate = 8000, .channels = 2, .bytes = 800, .frameBytes = 8};
  output.channels = {{.peak = 2, .sumOfSquares = 100, .samples = 100}, {.samples = 100}};
  output.copy = WaveCopy{.path = "work/out.wav", .attenuation = 7.02, .problem = {}};
  report.outputs = {output};
  return report;
}

TEST(RealTimeFactor, ComparesWithTheLongestInput) {
  RunReport report = Example();
  EXPECT_DOUBLE_EQ(*RealTimeFactor(report), 0.25);
  report.inputs.push_back(report.inputs[0]);
  report.inputs[1].audio->bytes *= 2;
  EXPECT_DOUBLE_EQ(*RealTimeFactor(report), 0.125);
  report.inputs[0].audio.reset();
  EXPECT_DOUBLE_EQ(*RealTimeFactor(report), 0.125);
  report.inputs[1].audio.reset();
  EXPECT_EQ(RealTimeFactor(report), std::nullopt) << "no audio";
  report.inputs.clear();
  EXPECT_EQ(RealTimeFactor(report), std::nullopt);
}

TEST(RealTimeFactor, ComparesWithAllOfAListButWhatIsReadBesideIt) {
  RunReport report = Example();
  report.inputs.resize(3, report.inputs[0]);
  report.inputs[2].place.use.pattern = "in<n>.pcm";
  EXPECT_DOUBLE_EQ(*RealTimeFactor(report), 0.5 / 6);
  report.inputs[0].place.use.beside = true;
  EXPECT_DOUBLE_EQ(*RealTimeFactor(report), 0.5 / 4);
}

TEST(TextReport, TellsTheVerdictThenTheFiles) {
  EXPECT_EQ(TextReport(Example()),
            "pass  TestIt  0.50 s  RTF 0.25  CPU 0.25 s  memory 5.0 MB\n"
            "  input   work/in  2.00 s, 8000 Hz mono, 16-bit\n"
            "  output  work/out  12.5 ms, 8000 Hz stereo, 32-bit float\n"
            "          left        peak    6.0 dBFS   RMS    0.0 dBFS\n"
            "          right       peak      silent   RMS      silent\n"
            "  copy    work/out.wav  16-bit, no dither, attenuated by 7.0 dB to a peak of -1 dBFS\n"
            "  log     work/logs/TestIt.log\n");
}

TEST(TextReport, TellsWhyItIsNoPass) {
  RunReport report;
  report.routine = "TestIt";
  report.judgement = Judge({{Cause::kNotRunnable, "a helper"}});
  EXPECT_EQ(TextReport(report), "skip  TestIt  a helper\n");
}

TEST(TextReport, TellsAFewMoreProblems) {
  RunReport report;
  report.routine = "TestIt";
  report.judgement = Judge({{Cause::kMissingInput, "no near end"},
                            {Cause::kMissingInput, "no far end"},
                            {Cause::kInputTooShort, "short"}});
  EXPECT_EQ(TextReport(report),
            "error  TestIt  no near end, and 2 more problems\n"
            "  also    no far end\n"
            "  also    short\n");
  report.judgement = Judge(std::vector<Problem>(5, {Cause::kMissingInput, "missing"}));
  EXPECT_EQ(TextReport(report),
            "error  TestIt  missing, and 4 more problems\n"
            "  also    missing\n  also    missing\n  also    missing\n  also    missing\n");
  std::string lines;
  for (int i = 0; i < 10; ++i) lines += "  also    missing\n";
  report.judgement = Judge(std::vector<Problem>(11, {Cause::kMissingInput, "missing"}));
  EXPECT_EQ(TextReport(report), "error  TestIt  missing, and 10 more problems\n" + lines);
  report.judgement = Judge(std::vector<Problem>(100, {Cause::kMissingInput, "missing"}));
  EXPECT_EQ(TextReport(report),
            "error  TestIt  missing, and 99 more problems\n" + lines + "          and 89 more\n");
}

TEST(TextReport, LeavesTheProblemsOfListsToTheirLines) {
  RunReport report;
  report.routine = "TestIt";
  report.inputs.resize(2);
  report.inputs[0].place = {.use = {.pattern = "in<n>"}, .name = "in0", .path = "work/in0"};
  report.inputs[0].problems = {{Cause::kMissingInput, "no in0"}};
  report.inputs[1].place = {.use = {}, .name = "far", .path = "work/far"};
  report.inputs[1].problems = {{Cause::kInputTooShort, "far is short"}};
  report.judgement = Judge(
      {{Cause::kTimeout, "late"}, report.inputs[0].problems[0], report.inputs[1].problems[0]});
  EXPECT_EQ(TextReport(report),
            "error  TestIt  late, and 2 more problems\n"
            "  also    far is short\n"
            "  input   in<n>  0 of 1 there, 1 missing input\n"
            "          missing input  work/in0\n");
}

TEST(TextReport, SaysThatAnInputMayBeAbsentOnlyWhereTheRunIsGood) {
  RunReport report;
  report.routine = "TestIt";
  report.inputs.resize(1);
  report.inputs[0].place = {.use = {}, .name = "in", .path = "work/in"};
  report.inputs[0].absent = true;
  EXPECT_EQ(TextReport(report), "pass  TestIt\n  input   work/in  absent, as it may be\n");
  report.judgement = Judge({{Cause::kInputAsItIs, "as it is"}});
  EXPECT_EQ(TextReport(report),
            "warn  TestIt  as it is\n  input   work/in  absent, as it may be\n");
  report.judgement = Judge({{Cause::kCrash, "killed"}});
  EXPECT_EQ(TextReport(report), "error  TestIt  killed\n  input   work/in  absent\n");
}

TEST(JsonReport, GivesEveryFigureAUnit) {
  const json report = ParseReport(JsonReport(Example()));
  EXPECT_EQ(report["schema_version"], 3);
  EXPECT_EQ(report["routine"], "TestIt");
  EXPECT_EQ(report["arguments"], json({"-1", "\xEF\xBF\xBD"})) << "bytes that are no text";
  EXPECT_EQ(report["verdict"], "pass");
  EXPECT_EQ(report["reason"], "");
  EXPECT_EQ(report["exit_code"], 0);
  EXPECT_EQ(report["elapsed"], json({{"value", 0.5}, {"unit", "s"}}));
  EXPECT_EQ(report["cpu"], json({{"value", 0.25}, {"unit", "s"}}));
  EXPECT_EQ(report["rtf"], json({{"value", 0.25}, {"unit", "1"}}));
  EXPECT_EQ(report["peak_memory"], json({{"value", 5000000}, {"unit", "bytes"}}));
  const json output = report["outputs"][0];
  EXPECT_EQ(output["name"], "/out");
  EXPECT_EQ(output["path"], "work/out");
  EXPECT_EQ(output["duration"], json({{"value", 0.0125}, {"unit", "s"}}));
  EXPECT_EQ(output["channels"]["value"][0]["channel"], "left");
  EXPECT_NEAR(output["channels"]["value"][0]["peak"]["value"].get<double>(), 6.0206, 1e-4);
  EXPECT_EQ(output["wave_copy"]["value"]["attenuation"], json({{"value", 7.02}, {"unit", "dB"}}));
}

TEST(JsonReport, GivesAReasonWhereThereIsNoFigure) {
  RunReport report = Example();
  report.outcome->elapsed = std::numeric_limits<double>::infinity();
  json parsed = ParseReport(JsonReport(report));
  EXPECT_EQ(parsed["elapsed"]["value"], nullptr);
  EXPECT_TRUE(parsed["elapsed"]["reason"].is_string());
  EXPECT_EQ(parsed["outputs"][0]["channels"]["value"][1]["peak"],
            json({{"value", nullptr}, {"unit", "dBFS"}, {"reason", "silence has no level"}}));

  report.outcome.reset();
  report.judgement = Judge({{Cause::kMissingInput, "missing"}});
  parsed = ParseReport(JsonReport(report));
  EXPECT_EQ(parsed["reason"], "missing");
  EXPECT_EQ(parsed["exit_code"], 3);
  EXPECT_EQ(parsed["peak_memory"],
            json({{"value", nullptr}, {"unit", "bytes"}, {"reason", "not run"}}));
}

TEST(JsonReport, TellsWhereItComesFrom) {
  const json report = ParseReport(JsonReport(Example()));
  EXPECT_EQ(report["bench"]["version"], AUDIO_TESTER_VERSION);
  EXPECT_NE(report["engine"]["name"], "");
  EXPECT_TRUE(report["bench"]["commit"].contains("value"));
  EXPECT_GE(report["host"]["processors"]["value"], 1);
  EXPECT_EQ(report["started"], "2026-03-01T12:00:00Z");
  EXPECT_EQ(report["workspace"], "work");
  EXPECT_EQ(report["time_limit"], json({{"value", 600.0}, {"unit", "s"}}));
}

TEST(JsonReport, GivesTheWorstCauseAndEveryProblem) {
  RunReport report = Example();
  EXPECT_EQ(ParseReport(JsonReport(report))["cause"], "none");
  EXPECT_EQ(ParseReport(JsonReport(report))["problems"], json::array());
  report.judgement = Judge({{Cause::kOutputEmpty, "a is empty"},
                            {Cause::kCrash, "killed", SIGSEGV},
                            {Cause::kOutputAbsent, "b is absent"}});
  const json parsed = ParseReport(JsonReport(report));
  EXPECT_EQ(parsed["cause"], "crash");
  EXPECT_EQ(parsed["signal"]["value"], SIGSEGV);
  EXPECT_EQ(parsed["problems"], json({{{"cause", "output_empty"}, {"text", "a is empty"}},
                                      {{"cause", "crash"}, {"text", "killed"}},
                                      {{"cause", "output_absent"}, {"text", "b is absent"}}}));
}

TEST(JsonReport, FitsTheSchemaWhateverTheCause) {
  RunReport report;
  report.started = "2026-03-01T12:00:00Z";
  for (int cause = 0; cause <= static_cast<int>(Cause::kUnfinished); ++cause) {
    report.judgement = Judge({{static_cast<Cause>(cause), "text"}});
    const json parsed = ParseReport(JsonReport(report));
    EXPECT_EQ(parsed["cause"], CauseName(static_cast<Cause>(cause)));
  }
}

TEST(JsonReport, KeepsEveryKeyWhateverIsKnown) {
  const auto keys = [](const json& object) {
    std::set<std::string> names;
    for (const auto& [name, value] : object.items()) names.insert(name);
    return names;
  };
  const json full = ParseReport(JsonReport(Example()));
  RunReport refused;
  refused.started = "2026-03-01T12:00:00Z";
  refused.outputs.emplace_back();
  const json empty = ParseReport(JsonReport(refused));
  EXPECT_EQ(keys(full), keys(empty));
  EXPECT_EQ(keys(full["outputs"][0]), keys(empty["outputs"][0]));
}

TEST(JsonReport, IsDescribedInTheDocument) {
  const std::string document = ReadFile(REPORT_DOCUMENT);
  const json report = ParseReport(JsonReport(Example()));
  for (const json& object : {report, report["outputs"][0]}) {
    for (const auto& [key, value] : object.items()) {
      EXPECT_THAT(document, testing::HasSubstr("`" + key + "`"));
    }
  }
  for (int cause = 0; cause <= static_cast<int>(Cause::kUnfinished); ++cause) {
    const std::string name = CauseName(static_cast<Cause>(cause));
    EXPECT_THAT(document, testing::HasSubstr("`" + name + "`"));
  }
}

TEST(ParseReport, NoticesWhatIsNotAsTheSchemaSays) {
  EXPECT_NONFATAL_FAILURE(ParseReport("{}"), "required");
  std::string text = JsonReport(Example());
  EXPECT_NONFATAL_FAILURE(ParseReport(text.replace(text.find("pcm16"), 5, "pcm17")), "pcm17");
}

}  // namespace
}  // namespace host
