#include "files/regular_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "files/audio_figures.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

class RegularFileTest : public testing::Test {
 protected:
  static bool Always() { return true; }

  TemporaryDirectory m_directory;
};

TEST_F(RegularFileTest, OpensNothingElse) {
  WriteFile("file", "bytes");
  std::filesystem::create_symlink("file", "link");
  std::filesystem::create_directory("folder");
  ASSERT_EQ(mkfifo("fifo", 0600), 0);
  for (const char* name : {"file", "link"}) {
    FILE* const file = OpenRegular(name);
    ASSERT_NE(file, nullptr) << name;
    EXPECT_EQ(fgetc(file), 'b');
    fclose(file);
  }
  for (const auto& [name, error] :
       {std::pair("fifo", kNotRegular), std::pair("/dev/zero", kNotRegular),
        std::pair("folder", EISDIR), std::pair("absent", ENOENT)}) {
    EXPECT_EQ(OpenRegular(name), nullptr) << name;
    EXPECT_EQ(errno, error) << name;
  }
  EXPECT_EQ(FaultText(kNotRegular), "Not a regular file");
}

TEST_F(RegularFileTest, ReadsATextUpToABound) {
  const std::string text(100000, 't');
  WriteFile("text", text);
  EXPECT_EQ(ReadText("text", text.size(), Always).text, text);
  EXPECT_EQ(ReadText("text", text.size(), Always).fault, "");
  EXPECT_EQ(ReadText("text", text.size() - 1, Always).fault, "longer than 100.0 kB");
  EXPECT_EQ(ReadText("absent", 1, Always).fault, "No such file or directory");
  EXPECT_EQ(ReadText("/dev/zero", 1, Always).fault, "Not a regular file");
  int blocks = 0;
  EXPECT_EQ(ReadText("text", text.size(), [&] { return ++blocks < 2; }).fault, kStopped);
}

}  // namespace
}  // namespace host
