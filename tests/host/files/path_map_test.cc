#include "files/path_map.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

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

// Names mapped into a folder of the test's.
class MapOpenedFilesTest : public testing::Test {
 protected:
  MapOpenedFilesTest() { MapOpenedFiles(&m_activity); }
  ~MapOpenedFilesTest() override { StopMapping(); }
  MapOpenedFilesTest(const MapOpenedFilesTest&) = delete;
  MapOpenedFilesTest& operator=(const MapOpenedFilesTest&) = delete;

  static void Take(FILE* file, size_t pairs) {
    char bytes[100];
    EXPECT_EQ(fread(bytes, 2, pairs, file), pairs);
  }
  // How far a file was read; -1 for one that was not.
  static int64_t ReadOf(std::string_view place) {
    for (size_t i = 0; i < m_activity.readCount; ++i) {
      const FilePosition& read = m_activity.reads[i];
      if (read.place == place) return static_cast<int64_t>(read.bytes);
    }
    return -1;
  }

  TemporaryDirectory m_directory;
  static inline FileActivity m_activity;  // Outlives the process, as far as the map knows.
};

TEST_F(MapOpenedFilesTest, CountsWhatIsReadOverAndOver) {
  WriteFile("again", std::string(10, 'x'));
  FILE* const file = fopen("/again", "rb");
  ASSERT_NE(file, nullptr);
  Take(file, 3);
  rewind(file);
  Take(file, 4);
  rewind(file);
  fclose(file);
  EXPECT_EQ(ReadOf("again"), 14);
}

TEST_F(MapOpenedFilesTest, CountsNothingOfAFileThatWasOpenedBefore) {
  StopMapping();
  WriteFile("early", std::string(10, 'x'));
  FILE* const file = fopen("early", "rb");
  ASSERT_NE(file, nullptr);
  MapOpenedFiles(&m_activity);
  Take(file, 3);
  fclose(file);
  EXPECT_EQ(ReadOf("early"), -1);
}

TEST_F(MapOpenedFilesTest, KeepsTheFarthestPlaceOfAFileReadTwice) {
  WriteFile("twice", std::string(10, 'x'));
  for (const auto& [pairs, farthest] : {std::pair(2, 4), {4, 8}, {1, 8}}) {
    FILE* const file = fopen("/twice", "rb");
    ASSERT_NE(file, nullptr);
    Take(file, static_cast<size_t>(pairs));
    fclose(file);
    EXPECT_EQ(ReadOf("twice"), farthest);
  }
}

TEST_F(MapOpenedFilesTest, MakesFilesThatAllMayReadAndWriteAsFarAsTheUserLetsThem) {
  const mode_t before = umask(0);
  FILE* const file = fopen("/folder/new", "wb");
  umask(before);
  ASSERT_NE(file, nullptr);
  fclose(file);
  struct stat status;
  ASSERT_EQ(stat("folder/new", &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0666U);
}

}  // namespace
}  // namespace host
