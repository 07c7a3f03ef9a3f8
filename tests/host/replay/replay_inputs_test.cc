// What becomes of the inputs of a run that is done again.

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>

#include "replay/replay_fixture.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

namespace fs = std::filesystem;

// Whether a process has a file open.
bool HasOpen(pid_t process, const fs::path& file) {
  std::error_code error;
  for (const auto& entry :
       fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error)) {
    if (fs::read_symlink(entry.path(), error) == file) return true;
  }
  return false;
}

TEST_F(ReplayTest, AnInterruptionWhileInputsAreCheckedEndsIt) {
  CopyATone();
  // So long that it is still read when the signal comes.
  fs::resize_file("bench_work/in.pcm", 1'000'000'000'000);
  const fs::path input = fs::canonical("bench_work/in.pcm");
  Process process({AUDIO_BENCH_PROBE, "replay", "r.json"});
  while (kill(process.pid(), 0) == 0 && !HasOpen(process.pid(), input)) usleep(1000);
  kill(process.pid(), SIGINT);
  const Finished replay = process.Wait();
  EXPECT_EQ(replay.exitCode, 128 + SIGINT);
  EXPECT_EQ(replay.out, "");
  EXPECT_EQ(replay.err, "");
  EXPECT_TRUE(Kept().empty());
}

TEST_F(ReplayTest, NamesAnInputThatIsGoneOrChanged) {
  CopyATone();
  Put("in.pcm", "something else");
  ExpectCannot("input in.pcm has changed since the run: ");
  fs::remove("bench_work/in.pcm");
  ExpectCannot("input in.pcm is gone: ");
  EXPECT_TRUE(Kept().empty());
}

TEST_F(ReplayTest, WorksFromAnyFolder) {
  CopyATone();
  fs::create_directory("elsewhere");
  const fs::path here = fs::current_path();
  fs::current_path("elsewhere");
  EXPECT_EQ(Replay("../r.json").exitCode, 0);
  fs::current_path(here);
}

TEST_F(ReplayTest, StagesAgainWhatIsGoneWithItsWorkspace) {
  WriteFile("song.wav", WavBytes({.channels = 2, .rate = 44100}, Tone(997, 8000, 44100, 44100, 2)));
  RunIt({"Copy", "--in", "song.wav", "--start", "0.25"});
  const std::vector<fs::path> kept = Kept();
  ASSERT_EQ(kept.size(), 1U);
  fs::remove_all(kept.front());
  const Finished replay = Replay();
  EXPECT_EQ(replay.exitCode, 0) << replay.out << replay.err;
  EXPECT_THAT(replay.out, HasSubstr("same bytes"));

  WriteFile("song.wav", WavBytes({.rate = 8000}, Tone(440, 8000, 8000, 8000)));
  ExpectCannot("and what it was made from has changed since the run: ");
}

TEST_F(ReplayTest, DoesNotRunOnWhatIsStagedOtherwiseThanBefore) {
  WriteFile("song.wav", WavBytes({.rate = 16000}, Tone(997, 8000, 16000, 16000)));
  RunIt({"Copy", "--in", "song.wav"});
  fs::remove_all(Kept().front());
  json report = Report();
  report["inputs"][0]["sha256"]["value"] = std::string(64, '0');
  Rewrite(report);
  ExpectCannot("input inFile.pcm cannot be made again from ");
}
TEST_F(ReplayTest, RunsWithoutAnInputThatWasNotThere) {
  RunIt({"CopyIfThere", "out"});
  EXPECT_EQ(Report()["inputs"][0]["sha256"]["reason"], "absent");
  Put("fixed.in", "there since");
  EXPECT_THAT(Replay().out, HasSubstr("same bytes")) << "it stays away";
  json report = Report();
  report["inputs"][0]["sha256"]["reason"] = "the time was up";
  Rewrite(report);
  ExpectCannot("input fixed.in has no hash in the report: the time was up");
}
}  // namespace
