#include "files/workspace.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ParameterNames, AreTheLastWords) {
  EXPECT_THAT(ParameterNames(""), IsEmpty());
  EXPECT_THAT(ParameterNames("const char* in, char *out, std::string& text, int count"),
              ElementsAre("in", "out", "text", "count"));
}

TEST(PlaceFiles, FillsArgumentsIn) {
  const std::vector<FileUse> uses = {{.name = "{in}"}, {.name = "out/{name}.wav"}, {.name = "{x}"}};
  const std::vector<std::string_view> arguments = {"/sdcard/a", "b"};
  const auto places = PlaceFiles(uses, "const char* in, const char* name", arguments, "work");
  ASSERT_EQ(places.size(), 3U);
  EXPECT_EQ(places[0].name, "/sdcard/a");
  EXPECT_EQ(places[0].path, "work/sdcard/a");
  EXPECT_EQ(places[0].place, "sdcard/a");
  EXPECT_EQ(places[1].path, "work/out/b.wav");
  EXPECT_EQ(places[2].path, "work/{x}") << "no parameter has that name";
}

TEST(PlaceFiles, HasNoPlaceOutsideTheWorkspace) {
  const std::vector<FileUse> uses = {{.name = "../a"}};
  EXPECT_EQ(PlaceFiles(uses, "", {}, "work")[0].path, "");
}

class OutputBeforeTest : public testing::Test {
 protected:
  TemporaryDirectory m_directory;
  FilePlace m_output = {.use = {}, .name = "out", .path = "out"};
};

TEST_F(OutputBeforeTest, AcceptsAFileThatWasWritten) {
  const OutputBefore before(m_output);
  WriteFile("out", "bytes");
  EXPECT_EQ(before.StateNow(), OutputState::kWritten);
}

TEST_F(OutputBeforeTest, TellsTheSameBytesWrittenAgainFromOldOnes) {
  for (int i = 0; i < 20; ++i) {  // Each time within the clock tick of the one before.
    WriteFile("out", "bytes");
    const OutputBefore before(m_output);
    EXPECT_EQ(before.StateNow(), OutputState::kStale);
    WriteFile("out", "bytes");
    EXPECT_EQ(before.StateNow(), OutputState::kWritten);
  }
}

TEST_F(OutputBeforeTest, RefusesWhatIsAbsentEmptyOrNoFile) {
  const OutputBefore before(m_output);
  EXPECT_EQ(before.StateNow(), OutputState::kAbsent);
  WriteFile("out", "");
  EXPECT_EQ(before.StateNow(), OutputState::kEmpty);
  std::filesystem::remove("out");
  std::filesystem::create_directory("out");
  EXPECT_EQ(before.StateNow(), OutputState::kNotAFile);
  EXPECT_EQ(OutputBefore({.use = {}, .name = "../x", .path = ""}).StateNow(),
            OutputState::kOutside);
}

}  // namespace
}  // namespace host
