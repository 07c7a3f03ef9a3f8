#include "files/whole_file.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class WholeFileTest : public testing::Test {
 protected:
  WholeFileTest() {
    WriteFile("file", "older");
    fs::create_symlink("file", "link");
  }
  TemporaryDirectory m_directory;
};

TEST_F(WholeFileTest, FollowsLinksToTheFileThatTheyName) {
  fs::create_directory("folder");
  fs::create_symlink("../link", "folder/second");
  fs::create_symlink("folder/new", "dangling");
  const fs::path here = fs::canonical(".");
  EXPECT_EQ(FollowLinks("file"), "file");
  EXPECT_EQ(FollowLinks("missing"), "missing");
  EXPECT_EQ(FollowLinks("link"), here / "file");
  EXPECT_EQ(FollowLinks("folder/second"), here / "file");
  EXPECT_EQ(FollowLinks("dangling"), here / "folder/new");
  EXPECT_FALSE(fs::exists("folder/new")) << "it is not made by looking";
  EXPECT_EQ(ReadFile("file"), "older");
  fs::create_symlink("none/file", "nowhere");
  EXPECT_EQ(FollowLinks("nowhere"), "");
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(WholeFileTest, ReplacesTheNameAndNotTheFile) {
  fs::create_hard_link("file", "other");
  EXPECT_TRUE(CanReplace("file"));
  EXPECT_TRUE(ReplaceFile("file", 0640, "newer"));
  EXPECT_EQ(ReadFile("file"), "newer");
  EXPECT_EQ(fs::status("file").permissions(), fs::perms(0640));
  EXPECT_EQ(ReadFile("other"), "older");
  EXPECT_FALSE(CanReplace("none/file"));
  EXPECT_FALSE(ReplaceFile("none/file", 0600, "newer"));
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(WholeFileTest, ReplacesAlsoWhatIsMissingAndNoLoopOfLinks) {
  EXPECT_TRUE(CanReplace("missing"));
  EXPECT_FALSE(fs::exists("missing"));
  fs::create_symlink("loop", "loop");
  EXPECT_FALSE(CanReplace("loop"));
  EXPECT_EQ(errno, ELOOP);
}

TEST_F(WholeFileTest, OverwritesNoLinkAndNothingThatHasAnotherName) {
  EXPECT_TRUE(CanOverwrite("file"));
  EXPECT_TRUE(OverwriteFile("file", "new"));
  EXPECT_EQ(ReadFile("file"), "new");
  EXPECT_FALSE(CanOverwrite("link"));
  EXPECT_FALSE(OverwriteFile("link", "newest"));
  EXPECT_EQ(errno, ELOOP);
  fs::create_hard_link("file", "other");
  EXPECT_FALSE(CanOverwrite("file"));
  EXPECT_FALSE(OverwriteFile("file", "newest"));
  EXPECT_EQ(errno, EMLINK);
  EXPECT_EQ(ReadFile("other"), "new");
}

TEST_F(WholeFileTest, DiscardsNothingElse) {
  fs::create_hard_link("file", "other");
  DiscardFile("link");
  EXPECT_FALSE(fs::exists("link"));
  DiscardFile("file");
  EXPECT_FALSE(fs::exists("file"));
  EXPECT_EQ(ReadFile("other"), "older");
  DiscardFile("other");
  EXPECT_FALSE(fs::exists("other"));
  DiscardFile("missing");
}

}  // namespace
}  // namespace host
