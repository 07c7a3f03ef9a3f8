// One run at a time in a workspace, and what is said to the next.

#include "files/workspace_lock.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <string>

#include "base/usage_error.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

std::string Refusal(const std::string& workspace) {
  try {
    const WorkspaceLock lock(workspace, nullptr);
  } catch (const UsageError& error) {
    return error.message;
  }
  return "";
}

TEST(WorkspaceLock, IsHadByOneAtATime) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory("work");
  auto first = std::make_unique<WorkspaceLock>("work", nullptr);
  EXPECT_THAT(Refusal("work"), AllOf(StartsWith("the workspace work is in use by "),
                                     EndsWith("; --wait waits for its end")));
  int waited = 0;
  const WorkspaceLock second("work", [&] {
    if (++waited == 3) first.reset();
  });
  EXPECT_EQ(waited, 3);
  EXPECT_NE(Refusal("work"), "");
}

TEST(WorkspaceLock, NeedsAFolder) {
  const TemporaryDirectory directory;
  EXPECT_EQ(Refusal("none"), "cannot open the folder none: No such file or directory");
}

}  // namespace
}  // namespace host
