#include "files/file_state.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class FileStateTest : public testing::Test {
 protected:
  FileStateTest() { WriteFile("file", "bytes"); }

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

TEST_F(FileStateTest, TellsAnotherSizeAnotherDateAndAnotherFile) {
  const FileState before("file");
  before.WaitForClockTick();
  WriteFile("file", "more bytes");
  DateBack(before, "file");
  EXPECT_FALSE(before.SameContent(FileState("file"))) << "of the same date";

  WriteFile("file", "bytes");
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
