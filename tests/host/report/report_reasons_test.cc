// What a report says in place of a figure that it does not have, word for word.

#include <gmock/gmock.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "report/report.h"
#include "report_schema.h"

namespace host {
namespace {

using nlohmann::json;
using testing::HasSubstr;

RunReport Example() {
  RunReport report;
  report.started = "2026-03-01T12:00:00Z";
  report.routine = "TestIt";
  report.timeout = 600;
  report.outcome = {.how = {}, .elapsed = 0.5, .ranOn = 0.125};
  return report;
}

json Parsed(const RunReport& report) { return ParseReport(JsonReport(report)); }

json Reason(const std::string& unit, const std::string& reason) {
  return {{"value", nullptr}, {"unit", unit}, {"reason", reason}};
}

json Reason(const std::string& reason) { return {{"value", nullptr}, {"reason", reason}}; }

json Value(double value, const std::string& unit) { return {{"value", value}, {"unit", unit}}; }

// A report whose only output is this.
json OutputOf(const FileReport& file) {
  RunReport report = Example();
  report.outputs = {file};
  return Parsed(report)["outputs"][0];
}

FileReport Pcm() {
  FileReport file;
  file.place = {.use = {.container = Container::kHeaderless}, .name = "out", .path = "work/out"};
  file.bytes = 3200;
  file.figures = true;
  file.audio = {
      .samples = SampleType::kPcm16, .rate = 8000, .channels = 1, .bytes = 3200, .frameBytes = 2};
  return file;
}

TEST(ReportReasons, OfARunThatReturned) {
  const json report = Parsed(Example());
  EXPECT_EQ(report["elapsed"], Value(0.5, "s"));
  EXPECT_EQ(report["ran_on"], Value(0.125, "s"));
  EXPECT_EQ(report["cpu"], Reason("s", "the end of its process was not seen"));
  EXPECT_EQ(report["peak_memory"], Reason("bytes", "the end of its process was not seen"));
  EXPECT_EQ(report["underruns"], Reason("underruns", "the engine does not tell"));
  EXPECT_EQ(report["overruns"], Reason("overruns", "the engine does not tell"));
  EXPECT_EQ(report["rtf"], Reason("1", "no audio input to compare with"));
  EXPECT_EQ(report["signal"], Reason("no signal has ended the run"));
}

TEST(ReportReasons, OfGapsThatTheEngineTells) {
  RunReport run = Example();
  run.outcome->deviceGaps = DeviceGaps{.underruns = 3, .overruns = 4};
  const json report = Parsed(run);
  EXPECT_EQ(report["underruns"], json({{"value", 3}, {"unit", "underruns"}}));
  EXPECT_EQ(report["overruns"], json({{"value", 4}, {"unit", "overruns"}}));
}

TEST(ReportReasons, OfARunThatDidNotReturn) {
  RunReport run = Example();
  run.outcome->end = ChildOutcome::End::kTimedOut;
  run.judgement = Judge({{Cause::kTimeout, "late"}});
  const json report = Parsed(run);
  EXPECT_EQ(report["elapsed"], Value(0.5, "s"));
  EXPECT_EQ(report["ran_on"], Reason("s", "the routine did not return"));
  EXPECT_EQ(report["underruns"], Reason("underruns", "the routine did not return"));
  EXPECT_EQ(report["rtf"], Reason("1", "the routine did not return"));
}

TEST(ReportReasons, OfARunThatWasNone) {
  RunReport run = Example();
  run.timeout = 0;
  run.outcome.reset();
  const json report = Parsed(run);
  EXPECT_EQ(report["time_limit"], Reason("s", "the command line was refused"));
  for (const char* const key : {"elapsed", "cpu", "ran_on"}) {
    EXPECT_EQ(report[key], Reason("s", "not run")) << key;
  }
  EXPECT_EQ(report["peak_memory"], Reason("bytes", "not run"));
  EXPECT_EQ(report["underruns"], Reason("underruns", "not run"));
  EXPECT_EQ(report["overruns"], Reason("overruns", "not run"));
  EXPECT_EQ(report["rtf"], Reason("1", "not run"));
}

TEST(ReportReasons, OfAFigureThatIsNotFinite) {
  RunReport run = Example();
  run.outcome->elapsed = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Parsed(run)["elapsed"], Reason("s", "not finite"));
}

TEST(ReportReasons, OfARunThatIsNotFinished) {
  RunReport run = Example();
  run.judgement = Judge({{Cause::kUnfinished, "not finished"}});
  EXPECT_EQ(Parsed(run)["exit_code"], nullptr);
}

TEST(ReportReasons, OfAFileThatWasNotLookedAt) {
  FileReport file = Pcm();
  file.bytes.reset();
  file.audio.reset();
  json output = OutputOf(file);
  EXPECT_EQ(output["size"], Reason("bytes", "not looked at"));
  EXPECT_EQ(output["samples"], Reason("not looked at"));
  EXPECT_EQ(output["duration"], Reason("s", "not looked at"));
  EXPECT_EQ(output["rate"], Reason("Hz", "not looked at"));
  EXPECT_EQ(output["channel_count"], Reason("channels", "not looked at"));
  EXPECT_EQ(output["channels"], Reason("not looked at"));
  EXPECT_EQ(output["wave_copy"], Reason("not asked for, or nothing to copy"));
  file.absent = true;
  EXPECT_EQ(OutputOf(file)["size"], Reason("bytes", "absent"));
}

TEST(ReportReasons, OfAFileWithoutAudio) {
  FileReport file = Pcm();
  file.audio.reset();
  EXPECT_EQ(OutputOf(file)["samples"], Reason("not the audio that it should be"));
  file.place.use.container = Container::kRecording;
  EXPECT_EQ(OutputOf(file)["samples"], Reason("not a WAVE file"));
  file.place.use.container = Container::kOther;
  EXPECT_EQ(OutputOf(file)["samples"], Reason("not audio"));
  EXPECT_EQ(OutputOf(file)["size"], json({{"value", 3200}, {"unit", "bytes"}}));
}

TEST(ReportReasons, OfAudioThatWasNotMeasured) {
  FileReport file = Pcm();
  EXPECT_EQ(OutputOf(file)["channels"], Reason("not measured"));
  EXPECT_EQ(OutputOf(file)["rate"], json({{"value", 8000}, {"unit", "Hz"}}));
  EXPECT_EQ(OutputOf(file)["channel_count"], json({{"value", 1}, {"unit", "channels"}}));
  file.unmeasured = "it has become shorter";
  EXPECT_EQ(OutputOf(file)["channels"], Reason("it has become shorter"));
  file.figures = false;
  EXPECT_EQ(OutputOf(file)["channels"], Reason("figures of a list are made with --figures"));
  file.audio->samples.reset();
  EXPECT_EQ(OutputOf(file)["samples"], Reason("of another type"));
  EXPECT_EQ(OutputOf(file)["channels"], Reason("of another type"));
}

TEST(ReportReasons, OfAChannelWithoutAFiniteSample) {
  FileReport file = Pcm();
  file.channels = {{.samples = 2, .notFinite = 2}};
  const json channel = OutputOf(file)["channels"]["value"][0];
  EXPECT_EQ(channel["channel"], "mono");
  EXPECT_EQ(channel["peak"], Reason("dBFS", "no finite sample"));
  EXPECT_EQ(channel["rms"], Reason("dBFS", "no finite sample"));
  EXPECT_EQ(channel["not_finite"], json({{"value", 2}, {"unit", "samples"}}));
  RunReport report = Example();
  report.outputs = {file};
  EXPECT_THAT(TextReport(report),
              HasSubstr("mono        peak      silent   RMS      silent   not finite: 2\n"));
}

TEST(ReportReasons, OfACopyThatFailed) {
  FileReport file = Pcm();
  file.copy = WaveCopy{.path = "work/out.wav", .problem = "disk full"};
  EXPECT_EQ(OutputOf(file)["wave_copy"], Reason("disk full"));
  RunReport report = Example();
  report.outputs = {file};
  EXPECT_EQ(TextReport(report).find("copy"), std::string::npos);
  report.outputs[0].copy->problem = "";
  EXPECT_THAT(TextReport(report), HasSubstr("  copy    work/out.wav  16-bit, no dither\n"));
  report.outputs[0].copy->attenuation = 0.3;
  EXPECT_THAT(TextReport(report),
              HasSubstr("no dither, attenuated by 0.3 dB to a peak of -1 dBFS"));
}

TEST(ReportReasons, OfAFileThatIsNoAudioButThere) {
  FileReport file = Pcm();
  file.audio->samples.reset();
  RunReport report = Example();
  report.outputs = {file};
  EXPECT_THAT(TextReport(report), HasSubstr("  output  work/out  0.20 s, 8000 Hz mono, other "
                                            "samples\n"));
  report.outputs[0].audio.reset();
  EXPECT_THAT(TextReport(report), HasSubstr("  output  work/out  3200 bytes\n"));
}

TEST(ReportReasons, OfWhatAnOutputIsMeasuredAgainst) {
  FileReport file = Pcm();
  EXPECT_EQ(
      OutputOf(file)["measured_against"],
      json({{"reference", nullptr}, {"input", nullptr}, {"far", nullptr}, {"near", nullptr}}));
  file.against = {
      .reference = "clean.wav", .input = "mic.wav", .far = "far.wav", .near = "near.wav"};
  EXPECT_EQ(OutputOf(file)["measured_against"], json({{"reference", "clean.wav"},
                                                      {"input", "mic.wav"},
                                                      {"far", "far.wav"},
                                                      {"near", "near.wav"}}));
}

}  // namespace
}  // namespace host
