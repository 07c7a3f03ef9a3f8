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
