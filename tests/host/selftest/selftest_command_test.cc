#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "audio_measures/measure.h"
#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

// Whatever build of the measures the program has loaded, in a cache of its own.
class SelftestCommand : public testing::Test {
 protected:
  void SetUp() override { setenv("XDG_CACHE_HOME", m_directory.path().c_str(), 1); }

  TemporaryDirectory m_directory;
};

TEST_F(SelftestCommand, EveryMeasureHoldsInALineOfItsOwn) {
  const Finished done = RunProcess({AUDIO_BENCH, "selftest"});

  EXPECT_EQ(done.exitCode, 0) << done.out;
  EXPECT_EQ(done.err, "");
  EXPECT_THAT(done.out, testing::EndsWith("All measures hold.\n"));
  for (const auto& measure : audio_measures::AllMeasures()) {
    if (measure.version == 0) continue;
    EXPECT_THAT(done.out, testing::HasSubstr("\n" + std::string(measure.name) + " "));
  }
}

TEST_F(SelftestCommand, JsonIsAsItsSchemaSaysAndHasTheory) {
  const Finished done = RunProcess({AUDIO_BENCH, "selftest", "--json"});

  const nlohmann::json json = ParseSelftest(done.out);
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(json["holds"], true);
  for (const nlohmann::json& measure : json["measures"]) {
    EXPECT_GT(measure["controls"].size(), 0) << measure["name"];
    EXPECT_EQ(measure["passed"], measure["controls"].size()) << measure["name"];
    for (const nlohmann::json& control : measure["controls"]) {
      EXPECT_NE(control["theory"], "") << control["name"];
    }
  }
}

// The RMS of a file, as `measure` tells it.
nlohmann::json MeasuredRms() {
  const Finished done =
      RunProcess({AUDIO_BENCH, "measure", "level.wav", "--measure", "rms", "--json", "-"});
  const nlohmann::json json = ParseMeasured(done.out);
  return json["figures"].empty() ? nlohmann::json() : json["figures"][0];
}

TEST_F(SelftestCommand, FiguresOfAMeasureThatDoesNotHoldAreUntrusted) {
  WriteFile("level.wav", WavBytes({}, std::vector<short>(16000, 1000)));
  EXPECT_EQ(MeasuredRms()["untrusted"], false);

  const std::filesystem::path kept = m_directory.path() / "audio_bench/selftest";
  const std::filesystem::directory_iterator build(kept);
  std::ofstream(build->path() / "rms") << "fails\n";
  EXPECT_EQ(MeasuredRms()["untrusted"], true);
}

}  // namespace
