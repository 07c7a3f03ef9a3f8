#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "base/usage_error.h"
#include "run/shared_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::HasSubstr;

class RefuseOutputsTest : public testing::Test {
 protected:
  RefuseOutputsTest() { std::filesystem::create_directory("work"); }

  // Why an output of this name is refused; empty where it is not.
  static std::string Refusal(const std::string& name) {
    const FilePlace output = {.use = {}, .name = name, .path = "work/" + name, .place = name};
    try {
      RefuseOutputs({&output, 1}, "work");
    } catch (const UsageError& error) {
      return error.message;
    }
    return "";
  }

  static std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

  TemporaryDirectory m_directory;
};

TEST_F(RefuseOutputsTest, TakesFilesThatAreThereAndThatAreNot) {
  WriteFile("work/there", "x");
  EXPECT_EQ(Refusal("there"), "");
  EXPECT_EQ(Refusal("absent"), "");
  EXPECT_EQ(Refusal("no/such/folder"), "");
}

TEST_F(RefuseOutputsTest, SaysWhatIsThereInstead) {
  std::filesystem::create_directory("work/folder");
  EXPECT_EQ(Refusal("folder"), "output folder (work/folder) is not a regular file");
  ASSERT_EQ(mkfifo("work/pipe", 0600), 0);
  EXPECT_EQ(Refusal("pipe"), "output pipe (work/pipe) is not a regular file");
  WriteFile("work/one", "x");
  std::filesystem::create_hard_link("work/one", "work/other");
  EXPECT_THAT(Refusal("other"), HasSubstr("(work/other) has another name, a hard link"));
  std::filesystem::create_symlink("/etc/hostname", "work/link");
  EXPECT_THAT(Refusal("link"), HasSubstr("leads out of the workspace by a symbolic link"));
}

TEST_F(RefuseOutputsTest, LeavesNoDescriptorOpen) {
  WriteFile("work/there", "x");
  std::filesystem::create_directory("work/folder");
  const std::ptrdiff_t before = OpenDescriptors();
  for (const char* name : {"there", "absent", "folder"}) {
    Refusal(name);
    EXPECT_EQ(OpenDescriptors(), before) << name;
  }
}

}  // namespace
}  // namespace host
