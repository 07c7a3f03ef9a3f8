// Where `demo` writes, through the program itself.

#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using testing::HasSubstr;

namespace fs = std::filesystem;

constexpr size_t kDemoBytes = size_t{8} * 44100 * 4;

class PlaceDemoTest : public testing::Test {
 protected:
  static Finished Demo() { return RunProcess({AUDIO_BENCH, "demo", "--work", "w"}); }

  // What stands in the place of the demo.
  static void Put(const std::string& bytes) {
    fs::create_directories(kPath.parent_path());
    WriteFile(kPath, bytes);
  }

  inline static const fs::path kPath = "w/sdcard/ZUAudioDemo/44100_2.pcm";
  TemporaryDirectory m_directory;
};

TEST_F(PlaceDemoTest, WritesNothingOutsideTheWorkspace) {
  fs::create_directories("w");
  fs::create_directories("elsewhere/ZUAudioDemo");
  fs::create_symlink("../elsewhere", "w/sdcard");
  const Finished demo = Demo();
  EXPECT_EQ(demo.exitCode, 2);
  EXPECT_EQ(
      demo.err,
      "audio_bench: cannot write w/sdcard/ZUAudioDemo/44100_2.pcm: leads out of the workspace "
      "by a symbolic link\n");
  EXPECT_TRUE(fs::is_empty("elsewhere/ZUAudioDemo"));
}

TEST_F(PlaceDemoTest, FollowsNoLinkInThePlaceOfTheRecording) {
  fs::create_directories(kPath.parent_path());
  fs::create_symlink(fs::absolute("new"), kPath);
  EXPECT_EQ(Demo().exitCode, 2);
  EXPECT_FALSE(fs::exists("new"));
}

TEST_F(PlaceDemoTest, LeavesNothingThatItCouldNotWriteWhole) {
  const std::string bench = AUDIO_BENCH;
  const Finished demo =
      RunProcess({"/bin/sh", "-c", "ulimit -f 100; exec " + bench + " demo --work w"});
  EXPECT_EQ(demo.exitCode, 2);
  EXPECT_THAT(demo.err, HasSubstr("44100_2.pcm: File too large"));
  EXPECT_TRUE(fs::is_empty(kPath.parent_path()));
  EXPECT_EQ(Demo().exitCode, 0);
  EXPECT_EQ(fs::file_size(kPath), kDemoBytes);
}

// So that there is no part of it either when it is killed.
TEST_F(PlaceDemoTest, WritesNoSampleOnceItHasItsName) {
  fs::create_directories(kPath.parent_path());
  const int events = inotify_init1(IN_NONBLOCK);
  ASSERT_GE(inotify_add_watch(events, kPath.parent_path().c_str(), IN_CREATE | IN_MODIFY), 0);
  EXPECT_EQ(Demo().exitCode, 0);
  bool created = false;
  alignas(inotify_event) char bytes[4096];
  for (ssize_t count = 0; (count = read(events, bytes, sizeof bytes)) > 0;) {
    for (ssize_t at = 0; at < count;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(bytes + at);
      at += static_cast<ssize_t>(sizeof event + event.len);
      if (event.len == 0 || kPath.filename() != event.name) continue;
      created = created || (event.mask & IN_CREATE) != 0;
      EXPECT_EQ(event.mask & IN_MODIFY, 0U);
    }
  }
  close(events);
  EXPECT_TRUE(created);
}

TEST_F(PlaceDemoTest, CompletesAPartOfItself) {
  EXPECT_THAT(Demo().out, HasSubstr("44100_2.pcm  written: a plucked melody"));
  const std::string whole = ReadFile(kPath);
  ASSERT_EQ(whole.size(), kDemoBytes);
  for (const size_t bytes : {size_t{0}, size_t{1}, size_t{65536}, kDemoBytes - 1}) {
    Put(whole.substr(0, bytes));
    fs::remove("other");
    fs::create_hard_link(kPath, "other");
    EXPECT_THAT(Demo().out, HasSubstr("44100_2.pcm  written in place of a part: a plucked"));
    EXPECT_EQ(ReadFile(kPath), whole) << bytes;
    EXPECT_EQ(fs::file_size("other"), bytes) << "by another name it may be anything";
  }
}

TEST_F(PlaceDemoTest, KeepsAnythingElse) {
  Demo();
  const std::string whole = ReadFile(kPath);
  std::string other = whole.substr(0, 65536);
  other.back() ^= 1;
  for (const std::string& bytes : {whole, whole + "x", other, std::string("mine")}) {
    Put(bytes);
    EXPECT_THAT(Demo().out, HasSubstr("kept as it is"));
    EXPECT_EQ(ReadFile(kPath), bytes);
  }
}

}  // namespace
