// The controls from outside, on engines of one fault: all of them take minutes.

#include <gmock/gmock.h>

#include <algorithm>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class ControlsCommandTest : public testing::Test {
 protected:
  static Finished Controls(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "controls"});
    return RunProcess(words);
  }

 private:
  TemporaryDirectory m_directory;
};

// How far the means of a measure lie apart that has found a fault on a kind of sound.
double Difference(const json& on, const std::string& measure) {
  const auto at = std::find_if(on["measures"].begin(), on["measures"].end(),
                               [&](const json& each) { return each["name"] == measure; });
  if (at != on["measures"].end()) return (*at)["difference"];
  ADD_FAILURE() << measure << " has found nothing: " << on;
  return 0;
}

TEST_F(ControlsCommandTest, FindsFaultsOnSpeechAndOnMusic) {
  const Finished finished = Controls({"gain", "dropout", "--json", "found.json"});
  EXPECT_EQ(finished.exitCode, 0) << finished.out << finished.err;
  const json found = ParseControls(ReadFile("found.json"));
  EXPECT_EQ(found["verdict"], "pass");
  ASSERT_EQ(found["engines"].size(), 2U);
  for (const json& on : found["engines"][0]["found"]) {
    EXPECT_NEAR(Difference(on, "gain"), 0.1, 0.001);
  }
  for (const json& on : found["engines"][1]["found"]) EXPECT_LT(Difference(on, "si_sdr"), -50);
}

TEST_F(ControlsCommandTest, FindsACodecAtHalfItsBitRate) {
  const Finished finished = Controls({"half_bit_rate", "--json", "found.json"});
  EXPECT_EQ(finished.exitCode, 0) << finished.out << finished.err;
  const json found = ParseControls(ReadFile("found.json"));
  for (const json& on : found["engines"][0]["found"]) {
    EXPECT_LT(Difference(on, "band_limit"), -1000);
    EXPECT_LT(Difference(on, "seg_snr"), -1);
  }
}

TEST_F(ControlsCommandTest, FailsOnAnEngineWithoutItsFault) {
  const Finished finished = Controls({"gain", "--engines", FAULTLESS_FOLDER, "--json", "f.json"});
  EXPECT_EQ(finished.exitCode, 1) << finished.out << finished.err;
  EXPECT_THAT(finished.out, HasSubstr("speech: nothing\n    music: nothing\n"));
  EXPECT_EQ(ParseControls(ReadFile("f.json"))["verdict"], "fail");
}

TEST_F(ControlsCommandTest, RefusesWhatItDoesNotKnow) {
  const Finished unknown = Controls({"polarty"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err, HasSubstr("no control is called \"polarty\""));
  const Finished missing = Controls({"mute", "--engines", FAULTLESS_FOLDER});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_THAT(missing.err, HasSubstr("libmute.so: No such file"));
}

}  // namespace
