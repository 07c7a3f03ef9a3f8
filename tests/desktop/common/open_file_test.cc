#include "desktop/common/open_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/temporary_directory.h"

namespace {

TEST(OpenUnlessFifo, RefusesAPipe) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  EXPECT_EQ(desktop::OpenUnlessFifo("pipe", "rb"), nullptr);
  EXPECT_EQ(errno, ENXIO);
  EXPECT_EQ(desktop::OpenUnlessFifo("pipe", "wb"), nullptr);
}

}  // namespace
