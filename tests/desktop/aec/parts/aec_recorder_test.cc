// A recorder where memory or a thread is not to be had.

#include "desktop/aec/parts/aec_recorder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>

#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/no_thread.h"
#include "support/temporary_directory.h"

namespace {

using desktop::AecRecorder;

constexpr AecRecorder::Tags kTags = {{"far", "near", "out"}, "delay", "log"};

size_t OpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

TEST(AecRecorder, LeavesNothingOpenWhereMemoryIsShort) {
  const TemporaryDirectory directory;
  const CapturedStderr log;
  const size_t open = OpenFiles();
  int failures = 0;
  for (bool made = false; !made; ++failures) {
    ASSERT_LT(failures, 200);
    FailAllocationAfter(failures);
    const auto recorder = AecRecorder::Create(16000, 1, kTags);
    made = FailAllocationAfter(-1);
    EXPECT_EQ(recorder != nullptr, made) << failures;
    if (!made) {
      EXPECT_EQ(OpenFiles(), open) << failures;
    }
  }
  EXPECT_GT(failures, 5);
}

TEST(AecRecorder, LeavesNothingOpenWhereThereIsNoThread) {
  if (!kThreadsCanFail) GTEST_SKIP() << "the sanitizer ends the process where no thread starts";
  const TemporaryDirectory directory;
  const auto open = [] {
    const size_t before = OpenFiles();
    AllowNoThread();
    const bool made = AecRecorder::Create(16000, 1, kTags) != nullptr;
    std::_Exit(made || OpenFiles() != before ? 1 : 0);
  };
  EXPECT_EXIT(open(), testing::ExitedWithCode(0), "");
}

// 30 s of one channel at most, whatever is recorded.
TEST(AecRecorder, QueuesOneChannelOnly) {
  const TemporaryDirectory directory;
  const CapturedStderr log;
  LargestAllocation();
  EXPECT_NE(AecRecorder::Create(192000, 8, kTags), nullptr);
  EXPECT_LE(LargestAllocation(), 30U * 192000 * sizeof(short));
}

}  // namespace
