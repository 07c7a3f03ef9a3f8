// Guards in a run: what is broken fails or warns, what is whole passes.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

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

// What is known of a run beside the sound of its outputs.
class RunGuardTest : public GuardTest {
 protected:
  // The guard that a run hits and its file; nothing of both where there is none.
  static std::string Hit(const std::vector<std::string>& command) {
    std::vector<std::string> all = command;
    all.insert(all.end(), {"--json", "report.json"});
    m_run = Run(all);
    const json report = ParseReport(ReadFile("report.json"));
    EXPECT_EQ(report["verdict"], report["guards"].empty() ? "pass" : "warn") << report["reason"];
    if (report["guards"].empty()) return "";
    const json& guard = report["guards"][0];
    return guard["name"].get<std::string>() +
           (guard["file"].is_null() ? "" : " " + guard["file"].get<std::string>());
  }

  static inline Finished m_run;
};

// Two seconds of 8 kHz: a quarter of a second may be left.
TEST_F(RunGuardTest, AnInputIsReadToItsEnd) {
  Put("two.pcm", std::string(32000, 'a'));
  EXPECT_EQ(Hit({"ReadSome", "two.pcm", "32000"}), "");
  EXPECT_EQ(Hit({"ReadSome", "two.pcm", "28000"}), "");
  EXPECT_EQ(Hit({"ReadSome", "two.pcm", "27998"}), "input_unread two.pcm");
  EXPECT_THAT(m_run.out, HasSubstr("of two.pcm only 1.75 s of 2.00 s were read"));
  EXPECT_EQ(Hit({"ReadSomeOnPurpose", "two.pcm", "100"}), "");
  const std::string described =
      RunProcess({AUDIO_BENCH_PROBE, "describe", "ReadSomeOnPurpose"}).out;
  EXPECT_THAT(described, HasSubstr("may be read in part: nobody needs the rest"));
}

TEST_F(RunGuardTest, AStreamIsDecodedToItsEnd) {
  Put("whole", std::string(20000, 'a'));
  EXPECT_EQ(Hit({"DecodeSome", "whole"}), "");
  Put("nearly", std::string(20000, 'a') + std::string(1024, 'x'));
  EXPECT_EQ(Hit({"DecodeSome", "nearly"}), "");
  Put("broken", std::string(20000, 'a') + std::string(1025, 'x'));
  EXPECT_EQ(Hit({"DecodeSome", "broken"}), "input_unread broken");
}

TEST_F(RunGuardTest, AnArgumentThatIsNotUsedIsWhatIsUsed) {
  EXPECT_EQ(Hit({"UseSeven", "7"}), "");
  EXPECT_EQ(Hit({"UseSeven", "8"}), "argument_unused");
  EXPECT_THAT(m_run.out, HasSubstr("number = 8 was not used, but 7"));
}

TEST_F(RunGuardTest, TheEngineRefusesNothing) {
  EXPECT_EQ(Hit({"HaveSaid", ""}), "");
  EXPECT_EQ(Hit({"HaveSaid", "no such mode"}), "engine_said");
  EXPECT_THAT(m_run.out, HasSubstr("engine_said: no such mode"));
}

TEST_F(RunGuardTest, NothingIsAppendedToWhatWasThere) {
  EXPECT_EQ(Hit({"AppendTo", "log"}), "");
  EXPECT_EQ(Hit({"AppendTo", "log"}), "appended log");
  Put("log", "");
  EXPECT_EQ(Hit({"AppendTo", "log"}), "");
}

// As the routines of the bench are on the engine at hand.
TEST_F(RunGuardTest, TheBenchSaysWhatItDidNotDo) {
  const auto guards = [](const std::vector<std::string>& words) {
    std::vector<std::string> command = {AUDIO_BENCH, "run"};
    command.insert(command.end(), words.begin(), words.end());
    command.insert(command.end(), {"--json", "report.json"});
    RunProcess(command);
    const json report = ParseReport(ReadFile("report.json"));
    std::string names;
    for (const json& each : report["guards"]) names += each["name"].get<std::string>() + " ";
    return names;
  };
  Put("in.wav", Riff(PlainFormat({}) + Chunk("data", Tone())));
  const auto encode = [&](const char* bitRate, const char* rate) {
    return guards({"newTestZUEncode", "in.wav", "out.stream", "50", bitRate, rate, "true"});
  };
  EXPECT_EQ(encode("18000", "16000"), "");
  EXPECT_EQ(encode("24000", "16000"), "argument_unused ");
  EXPECT_EQ(encode("18000", "8000"), "argument_unused ");
  EXPECT_EQ(guards({"newTestZUDecode", "out.stream", "o.wav", "50", "48000", "true"}),
            "argument_unused ");

  EXPECT_EQ(guards({"TestZUDecode", "out.stream", "o.wav", "50", "true"}), "");
  std::string stream = ReadFile("bench_work/out.stream");
  std::fill_n(stream.begin() + 1000, 400, '\xff');
  Put("out.stream", stream);
  EXPECT_EQ(guards({"TestZUDecode", "out.stream", "o.wav", "50", "true"}), "input_unread ");
  EXPECT_EQ(guards({"newTestZUDecode", "out.stream", "o.wav", "50", "16000", "true"}),
            "input_unread ");
}

TEST_F(GuardTest, LooksAtNothingThatNoRowNames) {
  Put("a.pcm", Tone());
  const Finished run = Run({"Copy", "a.pcm", "b.pcm", "--strict"});
  EXPECT_EQ(run.exitCode, 0) << "a copy is unchanged, and this row does not say what it is made of";
  EXPECT_THAT(run.out, Not(HasSubstr("unchanged")));
}

}  // namespace
