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

TEST_F(ControlsCommandTest, FindsAFaultOnSpeechAndOnMusic) {
  const Finished finished = Controls({"gain", "--json", "found.json"});
  EXPECT_EQ(finished.exitCode, 0) << finished.out << finished.err;
  const json found = ParseControls(ReadFile("found.json"));
  EXPECT_EQ(found["verdict"], "pass");
  ASSERT_EQ(found["engines"].size(), 1U);
  for (const json& on : found["engines"][0]["found"]) {
    const auto at = std::find_if(on["measures"].begin(), on["measures"].end(),
                                 [](const json& each) { return each["name"] == "gain"; });
    ASSERT_NE(at, on["measures"].end()) << on;
    EXPECT_NEAR((*at)["difference"].get<double>(), 0.1, 0.001);
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
