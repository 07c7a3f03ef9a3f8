// What is brought home from a scratch folder.

#include <gmock/gmock.h>

#include <filesystem>

#include "suite/scratch.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

// Also one that leads nowhere, and one to a folder.
TEST(Homecoming, ALinkStaysALink) {
  const TemporaryDirectory directory;
  fs::create_directories("s/cases/a/folder");
  fs::create_directories("r/cases");
  fs::create_directories("r/reports");
  WriteFile("s/cases/a/folder/file", "bytes");
  fs::create_symlink("folder/file", "s/cases/a/to_file");
  fs::create_directory_symlink("folder", "s/cases/a/to_folder");
  fs::create_symlink("nowhere", "s/cases/a/to_nothing");

  host::Homecoming{.scratch = "s", .results = "r", .id = "a"}.Bring();

  EXPECT_EQ(fs::read_symlink("r/cases/a/to_file"), "folder/file");
  EXPECT_EQ(fs::read_symlink("r/cases/a/to_folder"), "folder");
  EXPECT_EQ(fs::read_symlink("r/cases/a/to_nothing"), "nowhere");
  EXPECT_FALSE(fs::is_symlink("r/cases/a/folder"));
  EXPECT_EQ(ReadFile("r/cases/a/to_folder/file"), "bytes");
}

}  // namespace
