#include "files/file_activity.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>

namespace host {
namespace {

TEST(FileFault, KeepsAsMuchOfANameAsFits) {
  FileFault fault;
  fault.Set(std::string(251, 'a'), ENOENT);
  EXPECT_EQ(fault.error, ENOENT);
  EXPECT_EQ(fault.name, std::string(251, 'a'));
  std::string name(252, 'b');
  fault.Set(name, EACCES);
  EXPECT_EQ(fault.error, EACCES);
  name.pop_back();
  EXPECT_EQ(fault.name, name);
  fault.Set("", EIO);
  EXPECT_STREQ(fault.name, "");
}

TEST(FirstFault, KeepsTheFirst) {
  FirstFault fault;
  EXPECT_EQ(fault.Get(), nullptr);
  fault.Note("first", ENOSPC);
  fault.Note("second", EIO);
  ASSERT_NE(fault.Get(), nullptr);
  EXPECT_STREQ(fault.Get()->name, "first");
  EXPECT_EQ(fault.Get()->error, ENOSPC);
}

TEST(FileActivity, BeginsWithNothing) {
  const auto activity = std::make_unique<FileActivity>();
  EXPECT_EQ(activity->opened, 0U);
  EXPECT_EQ(activity->done, 0U);
  EXPECT_EQ(activity->openFaultCount, 0U);
}

TEST(FileActivity, CountsOpenFaultsForWhichThereIsNoRoom) {
  const auto activity = std::make_unique<FileActivity>();
  for (int i = 0; i < 66; ++i) activity->NoteOpenFault(std::to_string(i), 1000 + i);
  EXPECT_EQ(activity->openFaultCount, 66U);
  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(activity->openFaults[i].name, std::to_string(i));
    EXPECT_EQ(activity->openFaults[i].error, 1000 + i);
  }
}

TEST(FileActivity, LeavesOutReadsForWhichThereIsNoRoom) {
  const auto activity = std::make_unique<FileActivity>();
  EXPECT_EQ(activity->NoteRead(std::string(160, 'a'), 1), nullptr);
  EXPECT_EQ(activity->readCount, 0U);
  for (int i = 0; i < 2050; ++i) {
    EXPECT_EQ(activity->NoteRead(std::to_string(i), 1) != nullptr, i < 2048) << i;
  }
  EXPECT_EQ(activity->readCount, 2048U);
  EXPECT_STREQ(activity->reads[2047].place, "2047");
}

}  // namespace
}  // namespace host
