#include "files/known_digest.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

// What goes on being asked while a file is read: never, where it is not read.
class KnownDigestTest : public testing::Test {
 protected:
  // The digest, and whether the file was read for it.
  struct Answer {
    std::string digest;
    bool wasRead = false;
  };
  static Answer Ask(const char* path) {
    const int file = open(path, O_RDONLY);
    Answer answer;
    answer.digest = KnownDigestOf(file, [&] { return answer.wasRead = true; }).digest;
    close(file);
    return answer;
  }
  static std::string Digest(const char* path) {
    const int file = open(path, O_RDONLY);
    const std::string digest = DigestOf(file, [] { return true; }).digest;
    close(file);
    return digest;
  }
  // Until whatever is written gets another date.
  static void LetTheClockTick() { usleep(50'000); }

  TemporaryDirectory m_directory;
};

TEST_F(KnownDigestTest, AFileIsReadOnce) {
  WriteFile("file", "bytes");
  LetTheClockTick();
  EXPECT_TRUE(Ask("file").wasRead);
  const Answer again = Ask("file");
  EXPECT_FALSE(again.wasRead);
  EXPECT_EQ(again.digest, Digest("file"));
}

TEST_F(KnownDigestTest, AFileThatWasWrittenAgainIsReadAgain) {
  WriteFile("file", "bytes");
  LetTheClockTick();
  Ask("file");
  struct stat before;
  ASSERT_EQ(stat("file", &before), 0);
  WriteFile("file", "other");
  const timespec times[] = {before.st_atim, before.st_mtim};
  ASSERT_EQ(utimensat(AT_FDCWD, "file", times, 0), 0);
  const Answer again = Ask("file");
  EXPECT_TRUE(again.wasRead);
  EXPECT_EQ(again.digest, Digest("file"));
}

// Nothing but a date tells, and that may be the same.
TEST_F(KnownDigestTest, WhatWasWrittenJustNowIsReadAgain) {
  for (int i = 0; i < 50; ++i) {
    WriteFile("file", "byte" + std::to_string(i % 10));
    Ask("file");
    WriteFile("file", "BYTE" + std::to_string(i % 10));
    EXPECT_EQ(Ask("file").digest, Digest("file"));
  }
}

TEST_F(KnownDigestTest, TheMakerOfAFileKnowsIt) {
  WriteFile("file", "bytes");
  const int file = open("file", O_RDONLY);
  NoteDigest(file, {.digest = "as its maker says", .bytes = 5});
  close(file);
  EXPECT_EQ(Ask("file").digest, "as its maker says");
  WriteFile("other", "bytes");
  EXPECT_EQ(Ask("other").digest, Digest("other"));
}

TEST_F(KnownDigestTest, WhatWasGivenUpIsNotKnown) {
  WriteFile("file", "bytes");
  LetTheClockTick();
  const int file = open("file", O_RDONLY);
  EXPECT_NE(KnownDigestOf(file, [] { return false; }).fault, "");
  close(file);
  EXPECT_EQ(Ask("file").digest, Digest("file"));
}

}  // namespace
}  // namespace host
