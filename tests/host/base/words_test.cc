// Words for shells, for terminals, and for those who have mistyped one.

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/shell_word.h"
#include "base/suggest.h"
#include "base/user_folder.h"
#include "base/wrap_text.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ShellWord, IsQuotedWhereItNeedsThat) {
  EXPECT_EQ(ShellWord("a/B-9_z.Z"), "a/B-9_z.Z");
  EXPECT_EQ(ShellWord(""), "''");
  EXPECT_EQ(ShellWord("a b"), "'a b'");
  EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(ShellWord("$x"), "'$x'");
}

std::vector<std::string_view> Alike(std::string_view word,
                                    const std::vector<std::string_view>& names) {
  return NamesAlike(word, names);
}

TEST(NamesAlike, MayDifferInAQuarterOfTheLetters) {
  EXPECT_THAT(Alike("lst", {"list", "run"}), ElementsAre("list"));
  EXPECT_THAT(Alike("lsst", {"list"}), ElementsAre("list"));
  EXPECT_THAT(Alike("lt", {"list"}), IsEmpty());
  EXPECT_THAT(Alike("abcdefg", {"abcdexy"}), IsEmpty());
  EXPECT_THAT(Alike("abcdefgh", {"abcdefxy", "abcdexyz"}), ElementsAre("abcdefxy"));
  EXPECT_THAT(Alike("abcdefgh", {"bcdefghi", "abdefgh", "abcdefgh12"}),
              ElementsAre("abdefgh", "bcdefghi", "abcdefgh12"));
}

TEST(NamesAlike, CountTwoLettersThatChangedPlacesAsOne) {
  EXPECT_THAT(Alike("lsit", {"list"}), ElementsAre("list"));
  EXPECT_THAT(Alike("TestDcr", {"TestDXX", "TestDrc"}), ElementsAre("TestDrc"));
  EXPECT_THAT(Alike("tsil", {"list"}), IsEmpty());
  EXPECT_THAT(Alike("rcdTest", {"drcTest"}), IsEmpty());
  EXPECT_THAT(Alike("badcefgh", {"abcdefgh", "abdcefgh"}), ElementsAre("abdcefgh", "abcdefgh"));
}

TEST(NamesAlike, MayHoldTheWordAndBeWrittenOtherwise) {
  EXPECT_THAT(Alike("eCh", {"TestEchoCancel"}), ElementsAre("TestEchoCancel"));
  EXPECT_THAT(Alike("ec", {"TestEchoCancel"}), IsEmpty());
  EXPECT_THAT(Alike("", {"a"}), IsEmpty());
}

TEST(NamesAlike, AreTheThreeMostSimilarInTheirOrder) {
  EXPECT_THAT(Alike("abcd", {"abcdefgh", "abcx", "abcd", "xbcd", "abcdxx"}),
              ElementsAre("abcd", "abcx", "xbcd"));
}

constexpr std::string_view kNames[] = {"RunTestCase", "TestHRTF",         "TestReverb",
                                       "TestDrc",     "TestReverbPreset", "TestVAD"};

TEST(NamesAlike, FindsSlipsOfTheFinger) {
  EXPECT_THAT(NamesAlike("TestHRFT", kNames), ElementsAre("TestHRTF"));
  EXPECT_THAT(NamesAlike("testhrtf", kNames), ElementsAre("TestHRTF"));
  EXPECT_THAT(NamesAlike("TestRevrb", kNames), ElementsAre("TestReverb"));
}

TEST(NamesAlike, FindsPartsOfNames) {
  EXPECT_THAT(NamesAlike("reverb", kNames), ElementsAre("TestReverb", "TestReverbPreset"));
  EXPECT_THAT(NamesAlike("test", kNames), testing::SizeIs(3)) << "no more than can be read";
}

TEST(NamesAlike, FindsNothingInWhatIsUnlike) {
  EXPECT_THAT(NamesAlike("something", kNames), IsEmpty());
  EXPECT_THAT(NamesAlike("", kNames), IsEmpty());
  EXPECT_THAT(NamesAlike("VA", kNames), IsEmpty());
}

TEST(WrapText, BreaksBetweenWords) {
  EXPECT_EQ(WrapText("one two three", "Head: ", 2, 13), "Head: one two\n  three\n");
  EXPECT_EQ(WrapText("one two three", "Head: ", 2, 12), "Head: one\n  two three\n");
  EXPECT_EQ(WrapText("one two three", "", 2, 10), "one two\n  three\n");
  EXPECT_EQ(WrapText("", "Head:", 2, 10), "Head:\n");
}

TEST(WrapText, GivesAWordThatIsTooLongALineOfItsOwn) {
  EXPECT_EQ(WrapText("a much-too-long-word b", "Head: ", 3, 10),
            "Head: a\n   much-too-long-word\n   b\n");
  EXPECT_EQ(WrapText("much-too-long", "Head: ", 3, 10), "Head: much-too-long\n");
}

class UserFolderTest : public testing::Test {
 protected:
  UserFolderTest() {
    if (const char* const home = getenv("HOME"); home != nullptr) m_home = home;
  }
  ~UserFolderTest() override {
    unsetenv(kVariable);
    if (m_home) setenv("HOME", m_home->c_str(), 1);
    if (!m_home) unsetenv("HOME");
  }

  static constexpr const char* kVariable = "AUDIO_BENCH_FOLDER_OF_A_TEST";
  std::optional<std::string> m_home;
};

TEST_F(UserFolderTest, IsTheOneThatIsNamedElseInTheHome) {
  setenv("HOME", "/home/me", 1);
  EXPECT_EQ(UserFolder(kVariable, ".config"), "/home/me/.config");
  setenv(kVariable, "/elsewhere", 1);
  EXPECT_EQ(UserFolder(kVariable, ".config"), "/elsewhere");
  setenv(kVariable, "here", 1);
  EXPECT_EQ(UserFolder(kVariable, ".config"), "/home/me/.config") << "not absolute";
}

TEST_F(UserFolderTest, IsNowhereWithoutAHome) {
  setenv("HOME", "here", 1);
  EXPECT_EQ(UserFolder(kVariable, ".config"), "");
  unsetenv("HOME");
  EXPECT_EQ(UserFolder(kVariable, ".config"), "");
  setenv(kVariable, "/elsewhere", 1);
  EXPECT_EQ(UserFolder(kVariable, ".config"), "/elsewhere");
}

}  // namespace
}  // namespace host
