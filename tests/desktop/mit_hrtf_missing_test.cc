#include <gmock/gmock.h>

#include "engine_api/mit_hrtf.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

// The table, built to look for "kemar.sofa" in the current directory.

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Asks twice, because the file is looked for once.
void ExpectNoTaps(unsigned rate) {
  const CapturedStderr log;
  for (int i = 0; i < 2; ++i) {
    int azimuth = 93;
    int elevation = 7;
    short left = 1;
    short right = 2;
    EXPECT_EQ(mit_hrtf_availability(azimuth, elevation, rate, 0), 0U);
    EXPECT_EQ(mit_hrtf_get(&azimuth, &elevation, rate, 0, &left, &right), 0U);
    EXPECT_EQ(azimuth, 93);
    EXPECT_EQ(elevation, 7);
    EXPECT_EQ(left, 1);
    EXPECT_EQ(right, 2);
  }
  EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("kemar.sofa")));
}

TEST(MitHrtfWithoutFile, AnswersNoTapsWithOneLineInTheLog) {
  const TemporaryDirectory directory;
  ExpectNoTaps(44100);
}

TEST(MitHrtfWithoutFile, AnswersNoTapsForAFileOfSomethingElse) {
  const TemporaryDirectory directory;
  WriteFile("kemar.sofa", std::string(1000, 'x'));
  ExpectNoTaps(48000);
}

}  // namespace
