// The recordings for every routine, through the program itself.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class DemoAllTest : public testing::Test {
 protected:
  static Finished Demo() { return RunProcess({AUDIO_BENCH, "demo", "--all", "--work", "w"}); }

  static int Run(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "run", "--work", "w"});
    return RunProcess(words).exitCode;
  }

  TemporaryDirectory m_directory;
};

TEST_F(DemoAllTest, GivesRoutinesTheirInputsInTheRightForm) {
  const Finished demo = Demo();
  ASSERT_EQ(demo.exitCode, 0) << demo.err;
  EXPECT_THAT(demo.out, HasSubstr("NOIZEUS/in/clean/sp<sentence>.pcm  written, 30 files"));
  uintmax_t bytes = 0;
  for (const auto& entry : fs::recursive_directory_iterator("w")) {
    if (entry.is_regular_file()) bytes += entry.file_size();
  }
  EXPECT_LT(bytes, uintmax_t{250} << 20);
  const auto truth = nlohmann::json::parse(ReadFile("w/demo/truth.json"));
  EXPECT_EQ(truth["schema_version"], 1);

  EXPECT_EQ(Run({"TestSoundTouch"}), 0);
  EXPECT_EQ(Run({"TestAECProcess", "demo/far.pcm", "demo/near.pcm", "demo/out.pcm", "89"}), 0);
  EXPECT_EQ(Run({"TestVAD", "demo"}), 0);
  EXPECT_EQ(Run({"TestZUDecode", "demo/speech.stream", "demo/out.wav", "50", "true"}), 0);
  EXPECT_EQ(Run({"TestNoizeusEx", "4", "0"}), 0);
  EXPECT_EQ(Run({"TestRecordMixer"}), 0);
}

TEST_F(DemoAllTest, LeavesWhatIsThere) {
  fs::create_directories("w");
  WriteFile("w/music.wav", "mine");
  ASSERT_EQ(Demo().exitCode, 0);
  const Finished again = Demo();
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_EQ(ReadFile("w/music.wav"), "mine");
  EXPECT_THAT(again.out, Not(HasSubstr("written")));
  EXPECT_THAT(again.out, HasSubstr("960 files kept as they are"));
}

}  // namespace
