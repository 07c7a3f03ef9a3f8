#include "files/path_map.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

TEST(PlaceInWorkspace, LeavesRelativeNamesAsTheyAre) {
  EXPECT_EQ(PlaceInWorkspace("music.wav"), "music.wav");
  EXPECT_EQ(PlaceInWorkspace("NOIZEUS//out/./a.pcm"), "NOIZEUS//out/./a.pcm");
  EXPECT_EQ(PlaceInWorkspace("music_delay\\a.wav"), "music_delay\\a.wav");
  EXPECT_EQ(PlaceInWorkspace(""), "");
}

TEST(PlaceInWorkspace, TakesTheWorkspaceForTheRoot) {
  EXPECT_EQ(PlaceInWorkspace("/sdcard/ZUAudioDemo/44100_2.pcm"), "sdcard/ZUAudioDemo/44100_2.pcm");
  EXPECT_EQ(PlaceInWorkspace("//x///y"), "x/y");
  EXPECT_EQ(PlaceInWorkspace("/./x/."), "x");
  EXPECT_EQ(PlaceInWorkspace("/"), "");
}

TEST(PlaceInWorkspace, GivesEachDriveAFolder) {
  EXPECT_EQ(PlaceInWorkspace("C:\\x\\y"), "C/x/y");
  EXPECT_EQ(PlaceInWorkspace("f:/Stream/x"), "F/Stream/x");
  EXPECT_EQ(PlaceInWorkspace("e:\\mixed/slashes\\x"), "E/mixed/slashes/x");
  EXPECT_EQ(PlaceInWorkspace("C:"), "C");
  EXPECT_EQ(PlaceInWorkspace("C:x"), "C/x");
  EXPECT_EQ(PlaceInWorkspace("7:\\x"), "7:\\x") << "a drive is a letter";
}

TEST(PlaceInWorkspace, DoesNotLeaveTheWorkspace) {
  for (const char* name : {"..", "../x", "a/../x", "a/..", "/..", "/sdcard/../x", "C:\\..\\x",
                           "C:..", "c:a\\..\\x", "..//"}) {
    EXPECT_EQ(PlaceInWorkspace(name), std::nullopt) << name;
  }
  EXPECT_EQ(PlaceInWorkspace("..x/x../..."), "..x/x../...") << "these are names";
}

TEST(PlaceInWorkspace, TakesNamesOfAnyLength) {
  const std::string longName(100000, 'x');
  EXPECT_EQ(PlaceInWorkspace("/" + longName), longName);
  EXPECT_EQ(PlaceInWorkspace("C:" + std::string(100000, '\\') + "x"), "C/x");
}

// What a process notes of its files that opens them as a routine does, in a folder of its own.
const FileActivity& ActivityOf(const std::function<void()>& routine) {
  static FileActivity& activity = *static_cast<FileActivity*>(mmap(
      nullptr, sizeof(FileActivity), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  new (&activity) FileActivity;
  EXPECT_EQ(RunInChild([&] {
              MapOpenedFiles(&activity);
              routine();
              FlushOpenedFiles();
            }),
            0);
  return activity;
}

// Reads so many bytes of a file, goes back to its start and closes it.
void ReadAndRewind(const char* name, size_t bytes) {
  char taken[100];
  FILE* const file = fopen(name, "rb");
  if (file == nullptr || fread(taken, 1, bytes, file) != bytes) _exit(1);
  rewind(file);
  fclose(file);
}

TEST(MapOpenedFiles, CountsWhatWasTakenFromAFileThatIsAtItsStartAgain) {
  const TemporaryDirectory folder;
  WriteFile("music.wav", std::string(100, 'x'));
  const FileActivity& activity = ActivityOf([] { ReadAndRewind("/music.wav", 60); });
  ASSERT_EQ(activity.readCount, 1U);
  EXPECT_STREQ(activity.reads[0].place, "music.wav");
  EXPECT_EQ(activity.reads[0].bytes, 60U);
}

TEST(MapOpenedFiles, KeepsTheMostOfAFileThatIsOpenedAgain) {
  const TemporaryDirectory folder;
  WriteFile("music.wav", std::string(100, 'x'));
  for (const auto& [first, second] : {std::pair{60, 20}, {20, 60}}) {
    const FileActivity& activity = ActivityOf([first = first, second = second] {
      ReadAndRewind("/music.wav", static_cast<size_t>(first));
      ReadAndRewind("/music.wav", static_cast<size_t>(second));
    });
    ASSERT_EQ(activity.readCount, 1U);
    EXPECT_EQ(activity.reads[0].bytes, 60U);
  }
}

TEST(MapOpenedFiles, MakesFilesThatTheUsersMaskAlonePutsLimitsTo) {
  const TemporaryDirectory folder;
  for (const mode_t mask : {mode_t{0}, mode_t{022}}) {
    ActivityOf([mask] {
      umask(mask);
      fclose(fopen(mask == 0 ? "/open" : "/usual", "wb"));
    });
  }
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status("open").permissions(), perms(0666));
  EXPECT_EQ(std::filesystem::status("usual").permissions(), perms(0644));
}

}  // namespace
}  // namespace host
