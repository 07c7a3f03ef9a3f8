#include "report/list_lines.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace host {
namespace {

FileReport Member(const std::string& name, const std::vector<Cause>& causes = {}) {
  FileReport file;
  file.place.use.pattern = "in<n>.pcm";
  file.place.path = "work/" + name;
  for (const Cause cause : causes) file.problems.push_back({cause, "why"});
  return file;
}

std::string Lines(const std::vector<FileReport>& files) {
  std::vector<const FileReport*> pointers;
  for (const FileReport& file : files) pointers.push_back(&file);
  return ListLines("input   ", pointers);
}

TEST(ListLines, NameTheFiveWorstFiles) {
  std::vector<FileReport> files = {
      Member("a"),
      Member("b", {Cause::kInputTooShort}),
      Member("c", {Cause::kMissingInput}),
      Member("d", {Cause::kMissingInput, Cause::kInputFormat}),
      Member("e", {Cause::kInputTooShort}),
      Member("f", {Cause::kInputTooShort}),
      Member("g", {Cause::kInputTooShort}),
      Member("h", {Cause::kMissingInput}),
  };
  files[0].bytes = 100;
  files[1].bytes = 1;
  EXPECT_EQ(Lines(files),
            "  input   in<n>.pcm  5 of 8 there, 3 missing input, 4 input too short, 101 bytes\n"
            "          missing input  work/c\n"
            "          missing input  work/d\n"
            "          missing input  work/h\n"
            "          input too short  work/b\n"
            "          input too short  work/e\n"
            "          and 2 more\n");
}

TEST(ListLines, TellHowLongTheyAreInAll) {
  std::vector<FileReport> files(2, Member("x"));
  for (FileReport& file : files) {
    file.audio = {
        .samples = SampleType::kPcm16, .rate = 8000, .channels = 1, .bytes = 4000, .frameBytes = 2};
  }
  EXPECT_EQ(Lines(files), "  input   in<n>.pcm  2 of 2 there, 0.50 s\n");
}

TEST(ListLines, NameFiveFilesWithoutMore) {
  const std::vector<FileReport> files(5, Member("x", {Cause::kOutputAbsent}));
  std::string expected = "  input   in<n>.pcm  0 of 5 there, 5 output absent\n";
  for (int i = 0; i < 5; ++i) expected += "          output absent  work/x\n";
  EXPECT_EQ(Lines(files), expected);
}

TEST(ListLines, CountWhatIsAbsentAsItMayBe) {
  std::vector<FileReport> files = {Member("a"), Member("b")};
  files[1].absent = true;
  EXPECT_EQ(Lines(files), "  input   in<n>.pcm  1 of 2 there\n");
}

TEST(ListLines, NameTheLoudestFile) {
  std::vector<FileReport> files = {Member("a"), Member("b"), Member("c"), Member("d")};
  files[1].channels = {{.peak = 0.25, .samples = 1}};
  files[2].channels = {{.peak = 0.125, .samples = 1}, {.peak = 0.5, .samples = 1}};
  files[3].channels = {{.peak = 0.5, .samples = 1}};
  for (FileReport& file : files) {
    file.audio = {.rate = 8000, .channels = 1, .bytes = 16000, .frameBytes = 2};
  }
  EXPECT_EQ(Lines(files),
            "  input   in<n>.pcm  4 of 4 there, 4.00 s\n"
            "          highest peak -6.0 dBFS  work/c\n");
}

}  // namespace
}  // namespace host
