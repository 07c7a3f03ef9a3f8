#include "files/new_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

bool g_knowsNameless = true;  // Whether the file system does.

}  // namespace

// In place of the library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): its are reserved ones
extern "C" int openat(int folder, const char* name, int flags, ...) {
  if (!g_knowsNameless && (flags & O_TMPFILE) == O_TMPFILE) {
    errno = EOPNOTSUPP;
    return -1;
  }
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return static_cast<int>(syscall(SYS_openat, folder, name, flags, mode));
}

namespace host {
namespace {

namespace fs = std::filesystem;

// With and without files that have no name.
class NewFileTest : public testing::TestWithParam<bool> {
 protected:
  NewFileTest() : m_folder(open(".", O_PATH | O_DIRECTORY)) { g_knowsNameless = GetParam(); }
  ~NewFileTest() override {
    close(m_folder);
    g_knowsNameless = true;
  }

  TemporaryDirectory m_directory;
  int m_folder;
};

TEST_P(NewFileTest, AppearsWhole) {
  {
    NewFile file(m_folder, "a", 0640);
    ASSERT_GE(file.descriptor(), 0);
    EXPECT_TRUE(WriteAll(file.descriptor(), "bytes", 5));
    EXPECT_FALSE(fs::exists("a"));
    EXPECT_TRUE(file.Publish(false));
  }
  EXPECT_EQ(ReadFile("a"), "bytes");
  EXPECT_EQ(fs::status("a").permissions(), fs::perms(0640));
  EXPECT_EQ(fs::hard_link_count("a"), 1U);
}

TEST_P(NewFileTest, LeavesNothingWhenItIsNotPublished) {
  { const NewFile file(m_folder, "a", 0600); }
  EXPECT_TRUE(fs::is_empty("."));
}

TEST_P(NewFileTest, DoesNotAppearWhenItsProcessIsKilled) {
  const pid_t process = fork();
  if (process == 0) {
    NewFile file(m_folder, "a", 0600);
    WriteAll(file.descriptor(), "byt", 3);
    raise(SIGKILL);
  }
  waitpid(process, nullptr, 0);
  EXPECT_FALSE(fs::exists("a"));
  EXPECT_EQ(fs::is_empty("."), GetParam());
}

TEST_P(NewFileTest, ReplacesOnlyWhenAskedTo) {
  WriteFile("target", "target");
  fs::create_symlink("target", "a");
  {
    NewFile file(m_folder, "a", 0600);
    EXPECT_FALSE(file.Publish(false));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(fs::is_symlink("a"));
    EXPECT_TRUE(WriteAll(file.descriptor(), "bytes", 5));
    EXPECT_TRUE(file.Publish(true));
  }
  EXPECT_FALSE(fs::is_symlink("a"));
  EXPECT_EQ(ReadFile("a"), "bytes");
  EXPECT_EQ(ReadFile("target"), "target");
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2);
}

// What an empty file is made of stays as it is, dates and all; any other is emptied.
TEST(StartAnew, EmptiesAFileAndLeavesAnEmptyOneAlone) {
  const TemporaryDirectory directory;
  WriteFile("a", "bytes");
  const int file = open("a", O_RDWR | O_CLOEXEC);
  const timespec longAgo[2] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 1000, .tv_nsec = 0}};
  struct stat status;
  lseek(file, 3, SEEK_SET);
  futimens(file, longAgo);
  EXPECT_TRUE(StartAnew(file));
  fstat(file, &status);
  EXPECT_EQ(status.st_size, 0);
  EXPECT_GT(status.st_mtim.tv_sec, 1000);
  EXPECT_EQ(lseek(file, 0, SEEK_CUR), 0);

  lseek(file, 3, SEEK_SET);
  futimens(file, longAgo);
  EXPECT_TRUE(StartAnew(file));
  fstat(file, &status);
  EXPECT_EQ(status.st_mtim.tv_sec, 1000);
  EXPECT_EQ(lseek(file, 0, SEEK_CUR), 0);
  close(file);
  EXPECT_FALSE(StartAnew(file));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, NewFileTest, testing::Bool());

}  // namespace
}  // namespace host
