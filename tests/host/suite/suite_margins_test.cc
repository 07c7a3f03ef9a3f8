#include "suite/suite_margins.h"

#include <gmock/gmock.h>

#include "base/usage_error.h"
#include "suite/suite_file.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using host::ReadSuiteMargins;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

class SuiteMarginsTest : public testing::Test {
 protected:
  static host::SuiteMargins Read(const std::string& margins) {
    WriteFile("suite.toml", "[[case]]\nid = \"a\"\nroutine = \"TestDrc\"\n" + margins);
    EXPECT_EQ(host::ReadSuite("suite.toml").size(), 1U);
    return ReadSuiteMargins("suite.toml");
  }

  static std::string Fault(const std::string& margins) {
    try {
      Read(margins);
    } catch (const host::UsageError& error) {
      return error.message;
    }
    return "";
  }

  TemporaryDirectory m_directory;
};

TEST_F(SuiteMarginsTest, AreNumbersByMeasure) {
  EXPECT_THAT(Read(""), IsEmpty());
  EXPECT_THAT(Read("[margins]\nsi_sdr = 0.2\nloudness = 1\n"),
              UnorderedElementsAre(Pair("si_sdr", 0.2), Pair("loudness", 1.0)));
}

TEST_F(SuiteMarginsTest, RefuseWhatIsNoMargin) {
  EXPECT_EQ(Fault("[margins]\nsi_sdr = -1\n"),
            "suite.toml:5:10: the margin of si_sdr must be a number from 0 on");
  EXPECT_EQ(Fault("[margins]\nsi_sdr = \"much\"\n"),
            "suite.toml:5:10: the margin of si_sdr must be a number from 0 on");
  EXPECT_EQ(Fault("[margins]\nsi_sdr = inf\n"),
            "suite.toml:5:10: the margin of si_sdr must be a number from 0 on");
  EXPECT_EQ(Fault("[[margins]]\nsi_sdr = 1\n"), "suite.toml:4:1: expected a table [margins]");
}

}  // namespace
