#include "files/path_map.h"

#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace host
