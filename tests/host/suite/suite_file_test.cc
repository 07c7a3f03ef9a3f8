// Which cases a suite file stands for.

#include "suite/suite_file.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using host::ReadSuite;
using host::SuiteCase;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class SuiteFileTest : public testing::Test {
 protected:
  static std::vector<SuiteCase> Read(const std::string& text) {
    WriteFile("suite.toml", text);
    return ReadSuite("suite.toml");
  }

  static std::vector<std::string> Ids(const std::vector<SuiteCase>& cases) {
    std::vector<std::string> ids;
    for (const SuiteCase& one : cases) ids.push_back(one.id);
    return ids;
  }

  static void Put(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    WriteFile(path, "x");
  }

  TemporaryDirectory m_directory;
};

TEST_F(SuiteFileTest, ACaseSaysAllThatItMay) {
  const auto cases = Read(R"(
[[case]]
id = "one"
routine = "TestZUAec"
arguments = ["near.wav", "true"]
in = { "near.wav" = "a.flac", "far.wav" = "/b.flac" }
tags = ["echo", "slow"]
known = "fails: ticket 17"
cluster = "s1"
timeout_s = 2.5
linger_s = 3
strict = true
[[case]]
id = "two"
routine = "TestDrc"
after = ["one"]
)");
  ASSERT_EQ(cases.size(), 2u);
  const SuiteCase& one = cases[0];
  EXPECT_EQ(one.index, 0u);
  EXPECT_EQ(one.routine, "TestZUAec");
  EXPECT_THAT(one.arguments, ElementsAre("near.wav", "true"));
  EXPECT_THAT(one.inputs, testing::UnorderedElementsAre(Pair("near.wav", "./a.flac"),
                                                        Pair("far.wav", "/b.flac")));
  EXPECT_THAT(one.tags, ElementsAre("echo", "slow"));
  EXPECT_EQ(one.known, "fails: ticket 17");
  EXPECT_EQ(one.cluster, "s1");
  EXPECT_EQ(one.timeout, 2.5);
  EXPECT_EQ(one.linger, 3.0);
  EXPECT_TRUE(one.strict);
  EXPECT_EQ(one.at, "suite.toml:3:6: ");
  EXPECT_EQ(cases[1].index, 1u);
  EXPECT_THAT(cases[1].after, ElementsAre("one"));
  EXPECT_FALSE(cases[1].strict);
  EXPECT_FALSE(cases[1].timeout);
}

TEST_F(SuiteFileTest, DefaultsSpeakWhereACaseIsSilent) {
  const auto cases = Read(R"(
[defaults]
routine = "TestDrc"
timeout_s = 60
strict = true
tags = ["all"]
[[case]]
id = "as-they-are"
[[case]]
id = "other"
timeout_s = 1
strict = false
tags = []
)");
  ASSERT_EQ(cases.size(), 2u);
  EXPECT_EQ(cases[0].routine, "TestDrc");
  EXPECT_EQ(cases[0].timeout, 60.0);
  EXPECT_TRUE(cases[0].strict);
  EXPECT_THAT(cases[0].tags, ElementsAre("all"));
  EXPECT_EQ(cases[1].timeout, 1.0);
  EXPECT_FALSE(cases[1].strict);
  EXPECT_THAT(cases[1].tags, IsEmpty());
}

TEST_F(SuiteFileTest, APatternIsEachFileWithoutItsExtensionAndEachFolder) {
  Put("calls/b.two.wav");
  Put("calls/a.1/mic.flac");
  const auto cases = Read(R"(
[[case]]
id = "aec-{call}"
routine = "TestZUAec"
each.call = "calls/*"
in = { "near.wav" = "calls/{call}/mic.flac", "far.wav" = "{call.path}" }
cluster = "{call}"
)");
  EXPECT_THAT(Ids(cases), ElementsAre("aec-a.1", "aec-b.two"));
  EXPECT_THAT(cases[0].inputs,
              testing::UnorderedElementsAre(Pair("near.wav", "./calls/a.1/mic.flac"),
                                            Pair("far.wav", "./calls/a.1")));
  EXPECT_THAT(cases[1].inputs, testing::Contains(Pair("far.wav", "./calls/b.two.wav")));
  EXPECT_EQ(cases[1].cluster, "b.two");
}

TEST_F(SuiteFileTest, PathsAreRelativeToTheFile) {
  Put("[deep]/files/x.wav");
  WriteFile("[deep]/suite.toml", R"(
[[case]]
id = "{f}"
routine = "TestDrc"
each.f = "files/*.wav"
in = { "in.wav" = "{f.path}" }
)");
  const auto cases = ReadSuite("[deep]/suite.toml");
  ASSERT_EQ(cases.size(), 1u);
  EXPECT_THAT(cases[0].inputs, ElementsAre(Pair("in.wav", "[deep]/files/x.wav")));
}

TEST_F(SuiteFileTest, SeveralNamesGiveAllCombinationsInDeclaredOrder) {
  const auto cases = Read(R"(
[[case]]
id = "{z}-{a}"
routine = "TestZUCodecNew"
each.z = ["50", "2"]
each.a = ["y", "x"]
arguments = ["{a}.wav", "{z}", "{{{z}}}"]
after = []
)");
  EXPECT_THAT(Ids(cases), ElementsAre("50-y", "50-x", "2-y", "2-x"));
  EXPECT_THAT(cases[2].arguments, ElementsAre("y.wav", "2", "{2}"));
}

TEST_F(SuiteFileTest, ARepeatedCaseMustEqualItsFirstRunOnlyWhereThatIsAsked) {
  const auto cases = Read(R"(
[[case]]
id = "a"
routine = "TestDrc"
repeat = 2
[[case]]
id = "b"
routine = "TestDrc"
repeat = 3
same_bytes = true
)");
  EXPECT_THAT(Ids(cases), ElementsAre("a-1", "a-2", "b-1", "b-2", "b-3"));
  EXPECT_EQ(cases[1].sameAs, "");
  EXPECT_EQ(cases[2].sameAs, "");
  EXPECT_EQ(cases[3].sameAs, "b-1");
  EXPECT_EQ(cases[4].sameAs, "b-1");
}

}  // namespace
