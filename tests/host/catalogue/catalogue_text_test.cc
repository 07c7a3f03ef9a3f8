#include "catalogue/catalogue_text.h"

#include <gmock/gmock.h>

#include <sstream>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "base/wrap_text.h"
#include "catalogue/list.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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

TEST(FindRow, SuggestsNamesForAnUnknownOne) {
  EXPECT_EQ(FindRow("Echo").declared.words.parameters,
            "const char* text, char* more, bool flag, int number");
  try {
    FindRow("ecko");
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_EQ(error.message, "no routine is called \"ecko\"; did you mean Echo?");
  }
}

TEST(WrapText, BreaksBetweenWords) {
  EXPECT_EQ(WrapText("one two three", "- ", 2, 9), "- one two\n  three\n");
  EXPECT_EQ(WrapText("unbreakable x", "- ", 2, 5), "- unbreakable\n  x\n");
  EXPECT_EQ(WrapText("", "-", 1, 5), "-\n");
}

TEST(ListAsText, FitsTheWidthAndSetsHelpersApart) {
  for (const int width : {80, 100}) {
    std::istringstream lines(ListAsText(width));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), static_cast<size_t>(width)) << line;
    }
  }
  const std::string list = ListAsText(100);
  EXPECT_THAT(list, HasSubstr("  Echo                        available      arguments\n"));
  EXPECT_THAT(list, HasSubstr("  NotBuilt                    not built yet  nothing yet\n"));
  EXPECT_THAT(list, HasSubstr("not run by themselves)\n  Helper                      help\n"));
}

TEST(ListAsMarkdown, HasOneRowForEachRoutine) {
  const std::string list = ListAsMarkdown();
  EXPECT_THAT(list,
              HasSubstr("| `void Copy(const char* inFile, const char* outFile)` | a declared "
                        "input and output | `{inFile}` (16-bit samples, 8000 Hz, mono) | "
                        "`{outFile}` (16-bit samples, 8000 Hz, mono) | none | available |\n"));
  EXPECT_THAT(list, HasSubstr("## Helpers"));
}

TEST(Describe, TellsAllOfOneRow) {
  EXPECT_EQ(Describe("Copy"),
            "Copy\n"
            "  declaration   void Copy(const char* inFile, const char* outFile)\n"
            "  group         Harness\n"
            "  exercises     a declared input and output\n"
            "  input         {inFile}\n"
            "                16-bit samples, 8000 Hz, mono; at least 160 bytes\n"
            "  output        {outFile}\n"
            "                16-bit samples, 8000 Hz, mono\n"
            "  device        none\n"
            "  duration      as fast as its input is processed\n"
            "  status        available\n");
  EXPECT_THAT(Describe("WriteLoud"), HasSubstr("in the workspace: sdcard/out.f32"));
  EXPECT_THAT(Describe("Helper"), HasSubstr("not run by itself"));
  EXPECT_THROW(Describe("Unknown"), UsageError);
}

}  // namespace
}  // namespace host
