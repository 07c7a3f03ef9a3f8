#include "files/file_before.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class FileBeforeTest : public testing::Test {
 protected:
  FileBeforeTest() { WriteFile("file", "bytes"); }

  // Puts these bytes in the place of others, and sets the date of the file as it was.
  static void PutAndDateBack(const std::string& bytes, off_t at) {
    struct stat before;
    ASSERT_EQ(stat("file", &before), 0);
    const int file = open("file", O_WRONLY);
    ASSERT_EQ(pwrite(file, bytes.data(), bytes.size(), at), static_cast<ssize_t>(bytes.size()));
    const timespec times[] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(futimens(file, times), 0);
    close(file);
  }

  TemporaryDirectory m_directory;
};

TEST_F(FileBeforeTest, IsTheSameWhateverHappensToItsRightsAndNames) {
  const FileBefore before("file");
  EXPECT_TRUE(before.IsSameNow());
  ASSERT_EQ(chmod("file", 0600), 0);
  EXPECT_TRUE(before.IsSameNow());
  fs::create_hard_link("file", "other");
  EXPECT_TRUE(before.IsSameNow());
}

TEST_F(FileBeforeTest, TellsOtherContentOfTheSameSizeAndDate) {
  const FileBefore before("file");
  PutAndDateBack("BYTES", 0);
  EXPECT_FALSE(before.IsSameNow());
  PutAndDateBack("bytes", 0);
  EXPECT_TRUE(before.IsSameNow());
  PutAndDateBack("S", 4);
  EXPECT_FALSE(before.IsSameNow());
}

// At once, within the clock tick in which the file was made.
TEST_F(FileBeforeTest, TellsOtherContentThatIsWrittenAtOnce) {
  for (int i = 0; i < 20; ++i) {
    WriteFile("file", "bytes");
    const FileBefore before("file");
    PutAndDateBack("B", 0);
    EXPECT_FALSE(before.IsSameNow());
  }
}

TEST_F(FileBeforeTest, TellsTheSameBytesWrittenAgainByTheirDate) {
  FileBefore before("file");
  before.WaitUntilDatesTell();
  const int file = open("file", O_WRONLY | O_TRUNC);
  ASSERT_EQ(write(file, "bytes", 5), 5);
  close(file);
  EXPECT_FALSE(before.IsSameNow());
}

TEST_F(FileBeforeTest, LooksAtBothEndsOfALongFileAndBetweenThem) {
  constexpr off_t kLength = off_t{1} << 30;
  fs::resize_file("file", kLength);
  for (const off_t at : {off_t{0}, off_t{65000}, kLength / 2, kLength - 1}) {
    const FileBefore before("file");
    const off_t block = at == kLength / 2 ? 8 << 20 : 1;
    PutAndDateBack(std::string(static_cast<size_t>(block), 'x'), at);
    EXPECT_FALSE(before.IsSameNow()) << at;
    ASSERT_EQ(chmod("file", 0600), 0);
    EXPECT_TRUE(FileBefore("file").IsSameNow());
  }
}

TEST_F(FileBeforeTest, ReadsAllOfAShorterFile) {
  constexpr off_t kLength = 300000;
  fs::resize_file("file", kLength);
  for (off_t at = 0; at < kLength; at += 4567) {
    const FileBefore before("file");
    PutAndDateBack("x", at);
    EXPECT_FALSE(before.IsSameNow()) << at;
  }
}

TEST_F(FileBeforeTest, TellsThereFromNotThere) {
  const FileBefore missing("missing");
  EXPECT_FALSE(missing.WasThere());
  EXPECT_TRUE(missing.IsSameNow());
  WriteFile("missing", "");
  EXPECT_FALSE(missing.IsSameNow());
  const FileBefore before("file");
  EXPECT_TRUE(before.WasThere());
  fs::remove("file");
  EXPECT_FALSE(before.IsSameNow());
}

}  // namespace
}  // namespace host
