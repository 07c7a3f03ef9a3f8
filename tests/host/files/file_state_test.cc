#include "files/file_state.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class FileStateTest : public testing::Test {
 protected:
  FileStateTest() { WriteFile("file", "bytes"); }

  // Writes into the file that is there; WriteFile makes a new one.
  static void Overwrite(const char* path, const std::string& bytes) {
    const int file = open(path, O_WRONLY | O_TRUNC);
    EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(file);
  }

  // Dates a file as it was in `state`.
  static void DateBack(const FileState& state, const char* path) {
    const timespec times[] = {state.status()->st_atim, state.status()->st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, path, times, 0), 0);
  }

  TemporaryDirectory m_directory;
};

TEST_F(FileStateTest, IsTheSameUntilSomethingHappens) {
  const FileState before("file");
  EXPECT_TRUE(before.SameContent(FileState("file")));
  EXPECT_TRUE(before.Untouched(FileState("file")));
  const int file = open("file", O_RDONLY);
  EXPECT_TRUE(before.Untouched(FileState(file))) << "by its descriptor too";
  close(file);
}

// A clock that was set back an hour is behind every file for an hour: there is no use in waiting.
TEST_F(FileStateTest, WaitsOnlyWhileAChangeMayGetTheSameDate) {
  const FileState state("file");
  timespec changed = state.status()->st_ctim;
  changed.tv_nsec = std::min(changed.tv_nsec, 999'000'000L);
  EXPECT_TRUE(state.MayBeDatedAlikeAt(state.status()->st_ctim));
  for (const int seconds : {-3600, -2, 2, 3600}) {
    const timespec now = {changed.tv_sec + seconds, changed.tv_nsec};
    EXPECT_FALSE(state.MayBeDatedAlikeAt(now)) << seconds;
  }
  timespec after = state.status()->st_ctim;
  after.tv_nsec += 1;
  EXPECT_FALSE(state.MayBeDatedAlikeAt(after));
  EXPECT_FALSE(FileState("absent").MayBeDatedAlikeAt(changed));
}

TEST_F(FileStateTest, TellsAnotherSizeAnotherDateAndAnotherFile) {
  const FileState before("file");
  before.WaitForClockTick();
  Overwrite("file", "more bytes");
  DateBack(before, "file");
  EXPECT_FALSE(before.SameContent(FileState("file"))) << "of the same date";

  Overwrite("file", "bytes");
  DateBack(before, "file");
  EXPECT_TRUE(before.SameContent(FileState("file")));
  EXPECT_FALSE(before.Untouched(FileState("file"))) << "but written";
  timespec times[] = {before.status()->st_atim, before.status()->st_mtim};
  times[1].tv_nsec = times[1].tv_nsec == 0 ? 1 : times[1].tv_nsec - 1;
  ASSERT_EQ(utimensat(AT_FDCWD, "file", times, 0), 0);
  EXPECT_FALSE(before.SameContent(FileState("file"))) << "by a nanosecond";
  times[1].tv_nsec = before.status()->st_mtim.tv_nsec;
  times[1].tv_sec += 1;
  ASSERT_EQ(utimensat(AT_FDCWD, "file", times, 0), 0);
  EXPECT_FALSE(before.SameContent(FileState("file"))) << "by a second";

  WriteFile("other", "bytes");
  DateBack(before, "other");
  fs::rename("other", "file");
  EXPECT_FALSE(before.SameContent(FileState("file"))) << "of the same size and date";
}

// A file with a date of these seconds, and the nanoseconds of its change and of its writing.
FileState Dated(time_t changed, long changedNanoseconds, long writtenNanoseconds) {
  struct stat status = {};
  status.st_ctim = {.tv_sec = changed, .tv_nsec = changedNanoseconds};
  status.st_mtim = {.tv_sec = changed, .tv_nsec = writtenNanoseconds};
  return FileState(status);
}

TEST_F(FileStateTest, KnowsWhereOnlyWholeSecondsAreKept) {
  EXPECT_TRUE(Dated(1001, 0, 0).HasWholeSeconds());
  EXPECT_FALSE(Dated(1001, 0, 1).HasWholeSeconds());
  EXPECT_FALSE(Dated(1001, 1, 0).HasWholeSeconds());
  EXPECT_FALSE(FileState("missing").HasWholeSeconds());
  EXPECT_FALSE(FileState("missing").MayBeDatedAlikeAt({.tv_sec = 1001, .tv_nsec = 0}));
}

TEST_F(FileStateTest, WaitsForTheNextSecondWhereOnlyWholeOnesAreKept) {
  const FileState odd = Dated(1001, 0, 0);
  EXPECT_TRUE(odd.MayBeDatedAlikeAt({.tv_sec = 1000, .tv_nsec = 999'999'999}));
  EXPECT_TRUE(odd.MayBeDatedAlikeAt({.tv_sec = 1001, .tv_nsec = 0}));
  EXPECT_TRUE(odd.MayBeDatedAlikeAt({.tv_sec = 1001, .tv_nsec = 999'999'999}));
  EXPECT_FALSE(odd.MayBeDatedAlikeAt({.tv_sec = 1002, .tv_nsec = 0}));
  EXPECT_FALSE(odd.MayBeDatedAlikeAt({.tv_sec = 999, .tv_nsec = 0})) << "the clock was set back";
  const FileState even = Dated(1000, 0, 0);
  EXPECT_TRUE(even.MayBeDatedAlikeAt({.tv_sec = 1001, .tv_nsec = 999'999'999}))
      << "may be of a file system of every other second";
  EXPECT_FALSE(even.MayBeDatedAlikeAt({.tv_sec = 1002, .tv_nsec = 0}));
  EXPECT_FALSE(Dated(1000, 1, 0).MayBeDatedAlikeAt({.tv_sec = 1000, .tv_nsec = 30'000'000}));
}

TEST_F(FileStateTest, TellsThereFromNotThere) {
  const FileState there("file");
  const FileState missing("missing");
  EXPECT_FALSE(missing.status());
  EXPECT_FALSE(FileState("").status());
  EXPECT_TRUE(missing.Untouched(FileState("missing")));
  EXPECT_FALSE(missing.SameContent(there));
  EXPECT_FALSE(there.SameContent(missing));
  EXPECT_FALSE(there.Untouched(missing));
}

}  // namespace
}  // namespace host
