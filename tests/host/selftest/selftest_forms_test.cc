// What selftest says of measures of which some do not hold.

#include "selftest/selftest_forms.h"

#include <gmock/gmock.h>

#include "report_schema.h"

namespace host {
namespace {

constexpr std::string_view kNames[] = {"rms", "dc", "stoi", "peak"};
const Control kSine = {
    .name = "a sine", .theory = "It swings both ways.", .make = {}, .expected = {}};
const Control kSilence = {
    .name = "silence", .theory = "There is nothing.", .make = {}, .expected = {}};

// RMS fails by its value, DC by having one, STOI by having none; the peak has no controls.
std::vector<Outcome> Failing() {
  return {{.control = &kSine,
           .expected = {.measure = "rms", .value = -3, .tolerance = 0.5},
           .value = -3.25,
           .holds = true,
           .deviation = 0.5},
          {.control = &kSilence,
           .expected = {.measure = "rms", .value = -6, .tolerance = 0.1, .channel = 1},
           .value = -6.25,
           .deviation = 2.5},
          {.control = &kSilence, .expected = {.measure = "dc", .reason = "silence"}, .value = 0.5},
          {.control = &kSine,
           .expected = {.measure = "stoi", .value = 1, .tolerance = 0.01},
           .reason = "too short"},
          {.control = &kSilence,
           .expected = {.measure = "stoi", .reason = "silence"},
           .reason = "silence",
           .holds = true}};
}

TEST(SelftestForms, ReadersSeeWhatDoesNotHoldAndWhy) {
  EXPECT_EQ(SelftestText(kNames, Failing()),
            "measure  controls  worst deviation of tolerance\n"
            "rms   1 of 2    2.5  does not hold\n"
            "  silence\n"
            "    is -6.25 dBFS, should be -6 +- 0.1 dBFS\n"
            "    There is nothing.\n"
            "dc    0 of 1    0  does not hold\n"
            "  silence\n"
            "    is 0.5 FS, should be none (silence)\n"
            "    There is nothing.\n"
            "stoi  1 of 2    0  does not hold\n"
            "  a sine\n"
            "    is none (too short), should be 1 +- 0.01\n"
            "    It swings both ways.\n"
            "peak  0 of 0    0  does not hold\n"
            "4 of 4 measures do not hold; their figures are untrusted.\n");
  const std::vector<Outcome> all = Failing();
  EXPECT_EQ(SelftestText(std::span(kNames).first(1), std::span(all).first(1)),
            "measure  controls  worst deviation of tolerance\n"
            "rms  1 of 1    0.5\n"
            "All measures hold.\n");
}

TEST(SelftestForms, ProgramsGetAllOfIt) {
  nlohmann::json json = ParseSelftest(SelftestJson(kNames, Failing()));
  EXPECT_TRUE(json["build"].is_string());
  EXPECT_EQ(json["holds"], false);
  ASSERT_EQ(json["measures"].size(), 4U);
  EXPECT_EQ(json["measures"][0], nlohmann::json::parse(R"({
    "name": "rms", "unit": "dBFS", "version": 1, "holds": false, "passed": 1, "worst": 2.5,
    "controls": [
      {"name": "a sine", "theory": "It swings both ways.", "channel": null, "expected": -3.0,
       "tolerance": 0.5, "expected_reason": null, "value": -3.25, "reason": null,
       "deviation": 0.5, "holds": true},
      {"name": "silence", "theory": "There is nothing.", "channel": 1, "expected": -6.0,
       "tolerance": 0.1, "expected_reason": null, "value": -6.25, "reason": null,
       "deviation": 2.5, "holds": false}]})"));
  EXPECT_EQ(json["measures"][1]["controls"][0], nlohmann::json::parse(R"(
      {"name": "silence", "theory": "There is nothing.", "channel": null, "expected": null,
       "tolerance": null, "expected_reason": "silence", "value": 0.5, "reason": null,
       "deviation": null, "holds": false})"));
  EXPECT_EQ(json["measures"][2]["controls"][0], nlohmann::json::parse(R"(
      {"name": "a sine", "theory": "It swings both ways.", "channel": null, "expected": 1.0,
       "tolerance": 0.01, "expected_reason": null, "value": null, "reason": "too short",
       "deviation": null, "holds": false})"));
  EXPECT_EQ(json["measures"][3]["holds"], false);
  const std::vector<Outcome> all = Failing();
  json = ParseSelftest(SelftestJson(std::span(kNames).first(1), std::span(all).first(1)));
  EXPECT_EQ(json["holds"], true);
  EXPECT_EQ(json["measures"][0]["holds"], true);
}

}  // namespace
}  // namespace host
