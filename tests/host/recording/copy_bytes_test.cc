#include "recording/copy_bytes.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "files/audio_figures.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using Kind = RecordingFault::Kind;

class CopyBytesTest : public testing::Test {
 protected:
  // More than is read at a time, and no multiple of that.
  static std::string Content() {
    std::string bytes;
    for (unsigned i = 0; i < 200'001; ++i) bytes += static_cast<char>(i * 2654435761U >> 24);
    return bytes;
  }

  static std::optional<RecordingFault> Copy(int from, int to) {
    return CopyBytes(from, to, [] { return true; });
  }

  static int Open(const char* path, int flags) { return open(path, flags | O_CLOEXEC, 0600); }

  TemporaryDirectory m_directory;
};

TEST_F(CopyBytesTest, PutsAllOfAFileInThePlaceOfAnother) {
  WriteFile("from", Content());
  WriteFile("to", std::string(300'000, 'x'));
  const int from = Open("from", O_RDONLY);
  const int to = Open("to", O_RDWR);
  lseek(from, 100, SEEK_SET);
  lseek(to, 100, SEEK_SET);
  EXPECT_EQ(Copy(from, to), std::nullopt);
  EXPECT_TRUE(ReadFile("to") == Content());
  EXPECT_EQ(lseek(from, 0, SEEK_CUR), 100);
  close(from);
  close(to);
}

// The copy is a file of its own: what a routine adds to it does not reach the recording.
TEST_F(CopyBytesTest, LeavesTheFileThatItReadsAlone) {
  WriteFile("from", Content());
  const int from = Open("from", O_RDONLY);
  const int to = Open("to", O_RDWR | O_CREAT);
  EXPECT_EQ(Copy(from, to), std::nullopt);
  ASSERT_EQ(pwrite(to, "other", 5, 0), 5);
  EXPECT_TRUE(ReadFile("from") == Content());
  close(from);
  close(to);
}

TEST_F(CopyBytesTest, ReadsAndWritesWhereTheKernelDoesNotCopy) {
  const int from = Open("/proc/self/status", O_RDONLY);
  const int to = Open("to", O_RDWR | O_CREAT);
  EXPECT_EQ(Copy(from, to), std::nullopt);
  EXPECT_THAT(ReadFile("to"), testing::HasSubstr("Pid:"));
  close(from);
  const std::string content = Content();
  const int memory = memfd_create("from", MFD_CLOEXEC);
  ASSERT_EQ(write(memory, content.data(), content.size()), 200'001);
  EXPECT_EQ(Copy(memory, to), std::nullopt);
  EXPECT_TRUE(ReadFile("to") == content);
  close(memory);
  close(to);
}

TEST_F(CopyBytesTest, SaysWhichOfTheTwoIsAtFault) {
  WriteFile("from", Content());
  const int blind = Open("from", O_WRONLY);
  const int from = Open("from", O_RDONLY);
  const int to = Open("to", O_RDWR | O_CREAT);
  const auto input = Copy(blind, to);
  ASSERT_TRUE(input);
  EXPECT_EQ(input->kind, Kind::kInput);
  EXPECT_EQ(input->text, "cannot be read: Bad file descriptor");
  const auto output = Copy(from, from);
  ASSERT_TRUE(output);
  EXPECT_EQ(output->kind, Kind::kOutput);
  EXPECT_EQ(output->text, "Invalid argument");
  const int full = Open("/dev/full", O_WRONLY);
  const auto noRoom = Copy(from, full);
  ASSERT_TRUE(noRoom);
  EXPECT_EQ(noRoom->kind, Kind::kOutput);
  for (const int file : {blind, from, to, full}) close(file);
}

TEST_F(CopyBytesTest, StopsWhenItIsTold) {
  WriteFile("from", Content());
  const int from = Open("from", O_RDONLY);
  const int to = Open("to", O_RDWR | O_CREAT);
  const auto stopped = CopyBytes(from, to, [] { return false; });
  ASSERT_TRUE(stopped);
  EXPECT_EQ(stopped->kind, Kind::kStopped);
  EXPECT_EQ(stopped->text, kStopped);
  EXPECT_EQ(ReadFile("to"), "");
  close(from);
  close(to);
}

}  // namespace
}  // namespace host
