#include "files/beneath.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "files/regular_file.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class BeneathTest : public testing::Test {
 protected:
  BeneathTest() { fs::create_directories("work/real"); }

  // Writes "x" in the folder "work". errno; 0 when that is done.
  static int Write(const std::string& place) {
    FILE* const file = WorkFile{"work", place}.Create();
    if (file == nullptr) return errno;
    fputs("x", file);
    fclose(file);
    return 0;
  }

  TemporaryDirectory m_directory;
};

TEST_F(BeneathTest, CreatesFilesAndTheFoldersAboveThem) {
  EXPECT_EQ(Write("a"), 0);
  EXPECT_EQ(Write("deep/er//b"), 0);
  EXPECT_EQ(ReadFile("work/a"), "x");
  EXPECT_EQ(ReadFile("work/deep/er/b"), "x");
  EXPECT_EQ(Write("a/b"), ENOTDIR);
  EXPECT_EQ(Write("real"), EISDIR);
}

TEST_F(BeneathTest, GivesAFileTheRightsThatTheUserGivesAny) {
  const mode_t before = umask(0027);
  EXPECT_EQ(Write("a"), 0);
  umask(before);
  EXPECT_EQ(fs::status("work/a").permissions(), fs::perms(0640));
}

TEST_F(BeneathTest, WritesToNoPipeHoweverManyNamesItHas) {
  ASSERT_EQ(mkfifo("work/pipe", 0600), 0);
  const int reader = open("work/pipe", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(Write("pipe"), kNotRegular);
  fs::create_hard_link("work/pipe", "other");
  EXPECT_EQ(Write("pipe"), kNotRegular);
  close(reader);
}

TEST_F(BeneathTest, SaysWhyNothingCanBeWritten) {
  EXPECT_EQ(WriteFault(EXDEV), "leads out of the workspace by a symbolic link");
  EXPECT_EQ(WriteFault(EMLINK), "has another name, a hard link");
  EXPECT_EQ(WriteFault(ENOSPC), "No space left on device");
  EXPECT_EQ(WriteFault(kNotRegular), "Not a regular file");
}

TEST_F(BeneathTest, FollowsLinksThatStayInTheFolder) {
  fs::create_symlink("real", "work/link");
  fs::create_symlink(fs::absolute("work/real"), "work/absolute");
  fs::create_symlink("real/new", "work/toNew");
  EXPECT_EQ(Write("link/a"), 0);
  EXPECT_EQ(Write("absolute/b"), 0);
  EXPECT_EQ(Write("toNew"), 0);
  EXPECT_EQ(ReadFile("work/real/a"), "x");
  EXPECT_EQ(ReadFile("work/real/b"), "x");
  EXPECT_EQ(ReadFile("work/real/new"), "x");
}

TEST_F(BeneathTest, FollowsNoLinkThatLeadsOut) {
  fs::create_directory("outside");
  WriteFile("victim", "precious");
  fs::create_symlink("../outside", "work/out");
  fs::create_symlink(fs::absolute("outside"), "work/absolute");
  fs::create_symlink("../victim", "work/victim");
  fs::create_symlink(fs::absolute("nothing"), "work/dangling");
  fs::create_symlink("/proc/self/cwd", "work/magic");
  for (const char* place :
       {"out/a", "out/new/a", "absolute/a", "absolute/new/a", "victim", "dangling", "magic/a"}) {
    EXPECT_EQ(Write(place), EXDEV) << place;
  }
  EXPECT_TRUE(fs::is_empty("outside"));
  EXPECT_EQ(ReadFile("victim"), "precious");
  EXPECT_FALSE(fs::exists("nothing"));
}

TEST_F(BeneathTest, WritesToNoFileThatHasAnotherName) {
  WriteFile("victim", "precious");
  fs::create_hard_link("victim", "work/a");
  fs::create_symlink("a", "work/link");
  EXPECT_EQ(Write("a"), EMLINK);
  EXPECT_EQ(Write("link"), EMLINK);
  EXPECT_EQ(ReadFile("victim"), "precious");
  fs::remove("victim");
  EXPECT_EQ(Write("link"), 0);
  EXPECT_EQ(ReadFile("work/a"), "x");
}

TEST_F(BeneathTest, RemovesRegularFilesOnly) {
  WriteFile("work/real/a", "older");
  fs::create_hard_link("work/real/a", "other");
  fs::create_symlink("../other", "work/link");
  fs::create_symlink("..", "work/out");
  for (const char* place : {"real/a", "real/a", "missing", "none/a", "other/b", "link", "real"}) {
    EXPECT_EQ((WorkFile{"work", place}.Remove()), 0) << place;
  }
  EXPECT_EQ((WorkFile{"missing", "a"}.Remove()), 0);
  EXPECT_EQ((WorkFile{"work", "out/other"}.Remove()), EXDEV);
  EXPECT_FALSE(fs::exists("work/real/a"));
  EXPECT_TRUE(fs::is_symlink("work/link"));
  EXPECT_EQ(ReadFile("other"), "older");
}

TEST_F(BeneathTest, TakesAFolderThatIsALink) {
  fs::rename("work", "moved");
  fs::create_directory_symlink("moved", "work");
  EXPECT_EQ(Write("a"), 0);
  EXPECT_EQ(ReadFile("moved/a"), "x");
}

}  // namespace
}  // namespace host
