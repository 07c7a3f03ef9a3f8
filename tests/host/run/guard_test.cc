// Guards in a run: what is broken fails or warns, what is whole passes.

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/file_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

// Three seconds of a voice-like tone, 16 kHz, that swells four times a second.
std::string Tone() {
  std::string bytes;
  for (int i = 0; i < 48000; ++i) {
    const double seconds = i / 16000.0;
    double sum = 0;
    for (int partial = 1; partial <= 5; ++partial) {
      sum += std::sin(2 * std::numbers::pi * 150 * partial * seconds + partial) / partial;
    }
    const double swell = 0.6 + 0.4 * std::sin(2 * std::numbers::pi * 4 * seconds);
    const int sample = static_cast<int>(std::lround(10000 * swell * sum));
    bytes += static_cast<char>(sample & 255);
    bytes += static_cast<char>(sample >> 8 & 255);
  }
  return bytes;
}

class GuardTest : public RunTest {
 protected:
  GuardTest() { Put("in.pcm", Tone()); }

  static json Report(const std::vector<std::string>& words) {
    std::vector<std::string> all = {"Break", "--json", "report.json"};
    all.insert(all.end(), words.begin(), words.end());
    Run(all);
    return ParseReport(ReadFile("report.json"));
  }

  static bool Names(const json& report, const std::string& guard) {
    for (const json& each : report["guards"]) {
      if (each["name"] == guard) return true;
    }
    return false;
  }
};

TEST_F(GuardTest, PassesWhatIsWhole) {
  const json report = Report({"softer"});
  EXPECT_EQ(report["verdict"], "pass") << report["reason"];
  EXPECT_EQ(report["guards"], json::array());
}

TEST_F(GuardTest, FailsOrWarnsOfEveryBrokenOutput) {
  const std::map<std::string, std::pair<std::string, std::string>> faults = {
      {"mute", {"silent", "fail"}}, {"inverted", {"inverted", "warn"}},
      {"holes", {"click", "warn"}}, {"loud", {"clipped", "fail"}},
      {"gap", {"dropout", "fail"}}, {"cut", {"length", "fail"}},
      {"offset", {"dc", "warn"}},   {"unchanged", {"unchanged", "warn"}}};
  for (const auto& [fault, expected] : faults) {
    const json report = Report({fault});
    EXPECT_TRUE(Names(report, expected.first)) << fault << report["guards"];
    EXPECT_EQ(report["verdict"], expected.second) << fault << report["reason"];
    EXPECT_EQ(report["exit_code"], expected.second == "fail" ? 1 : 0) << fault;
    EXPECT_EQ(report["cause"], expected.second == "fail" ? "guard" : "guard_warning") << fault;
  }
}

TEST_F(GuardTest, SaysWhereAnOutputIsBroken) {
  const json guards = Report({"gap"})["guards"];
  ASSERT_GE(guards.size(), 1u);
  EXPECT_EQ(guards[0]["name"], "dropout");
  EXPECT_EQ(guards[0]["file"], "broken.pcm");
  EXPECT_NEAR(guards[0]["at"].get<double>(), 1.25, 0.01);
  EXPECT_EQ(guards[0]["channel"], 0);
  EXPECT_EQ(guards[0]["fails"], true);
  EXPECT_THAT(Run({"Break", "gap"}).out, HasSubstr("dropout: "));
}

TEST_F(GuardTest, AsksNothingThatTheRowSwitchesOff) {
  EXPECT_FALSE(Names(Report({"faint"}), "level"));
  const std::string described = RunProcess({AUDIO_BENCH_PROBE, "describe", "Break"}).out;
  EXPECT_THAT(described, HasSubstr("without level: its gain is free"));
}

TEST_F(GuardTest, TakesWarningsForFailuresWhenStrict) {
  const json report = Report({"inverted", "--strict"});
  EXPECT_EQ(report["verdict"], "fail");
  EXPECT_EQ(report["exit_code"], 1);
  EXPECT_EQ(report["cause"], "guard");
  EXPECT_EQ(Report({"softer", "--strict"})["verdict"], "pass");
}

TEST_F(GuardTest, LooksAtNothingThatNoRowNames) {
  Put("a.pcm", Tone());
  const Finished run = Run({"Copy", "a.pcm", "b.pcm", "--strict"});
  EXPECT_EQ(run.exitCode, 0) << "a copy is unchanged, and this row does not say what it is made of";
  EXPECT_THAT(run.out, Not(HasSubstr("unchanged")));
}

}  // namespace
