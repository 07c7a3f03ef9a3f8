#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "run/run_fixture.h"
#include "support/tone.h"

// Runs that are done again from their reports.
class ReplayTest : public RunTest {
 protected:
  ReplayTest() { setenv("TMPDIR", m_directory.path().c_str(), 1); }
  ~ReplayTest() override { unsetenv("TMPDIR"); }
  ReplayTest(const ReplayTest&) = delete;
  ReplayTest& operator=(const ReplayTest&) = delete;

  static Finished Replay(const std::string& report = "r.json") {
    return RunProcess({AUDIO_BENCH_PROBE, "replay", report});
  }

  // A run with a report "r.json".
  static void RunIt(std::vector<std::string> words) {
    words.insert(words.begin(), {"--json", "r.json"});
    const Finished run = Run(words);
    ASSERT_NE(run.exitCode, 2) << run.err;
  }

  static void CopyATone() {
    const std::vector<short> tone = Tone(997, 8000, 8000, 8000);
    Put("in.pcm", {reinterpret_cast<const char*>(tone.data()), 2 * tone.size()});
    RunIt({"Copy", "in.pcm", "out.pcm"});
  }

  static nlohmann::json Report() { return nlohmann::json::parse(ReadFile("r.json")); }
  static void Rewrite(const nlohmann::json& report) { WriteFile("r.json", report.dump()); }

  // Makes it look as if the run had left these bytes.
  static void PretendOutput(const std::string& path, const std::string& bytes) {
    WriteFile(path, bytes);
    nlohmann::json report = Report();
    const std::string digest = RunProcess({"/usr/bin/sha256sum", path}).out.substr(0, 64);
    report["outputs"][0]["sha256"] = {{"value", digest}};
    Rewrite(report);
  }

  // Temporary workspaces that are there.
  static std::vector<std::filesystem::path> Kept() {
    std::vector<std::filesystem::path> kept;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
      if (entry.path().filename().string().starts_with("audio_bench."))
        kept.push_back(entry.path());
    }
    return kept;
  }

  // Expects that the run cannot be done again for this reason.
  static void ExpectCannot(const std::string& reason) {
    const Finished replay = Replay();
    EXPECT_EQ(replay.exitCode, 3);
    EXPECT_EQ(replay.out, "");
    EXPECT_THAT(replay.err, testing::HasSubstr(reason));
  }
};
