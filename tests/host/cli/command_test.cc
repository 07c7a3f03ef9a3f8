// The other commands, usage errors and standard streams, through the program itself.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

class CommandTest : public testing::Test {
 protected:
  static Finished Bench(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH);
    return RunProcess(words);
  }

  static Finished Shell(const std::string& command) {
    return RunProcess({"/bin/sh", "-c", command});
  }

  TemporaryDirectory m_directory;
};

TEST_F(CommandTest, TellsUsageErrorsInOneLine) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{},
                                             {"bogus"},
                                             {"list", "bogus"},
                                             {"list", "--json", "--markdown"},
                                             {"describe"},
                                             {"describe", "TestHRFT"},
                                             {"run", "TestHRFT"},
                                             {"run", "--bogus"},
                                             {"run", "-1"},
                                             {"run", "--timeout-s", "0"},
                                             {"run", "--timeout-s", "nan"},
                                             {"run", "--timeout-s", "x"},
                                             {"run", "--timeout-s"},
                                             {"run", "--work", "a", "--work", "b"},
                                             {"demo", "--", "x"}}) {
    const Finished command = Bench(words);
    EXPECT_EQ(command.exitCode, 2) << testing::PrintToString(words);
    EXPECT_EQ(command.out, "");
    EXPECT_THAT(command.err, StartsWith("audio_bench: "));
    EXPECT_EQ(std::count(command.err.begin(), command.err.end(), '\n'), 1) << command.err;
  }
  EXPECT_THAT(Bench({"describe", "TestHRFT"}).err, HasSubstr("did you mean TestHRTF?"));
  EXPECT_EQ(Bench({"run", "TestHRTF", "--bogus"}).err, "audio_bench: unknown option --bogus\n");
}

TEST_F(CommandTest, HelpsOnRequest) {
  const Finished help = Bench({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.out, HasSubstr("Exit codes: 0 pass"));
  EXPECT_EQ(Bench({"run", "--help"}).exitCode, 0);
  EXPECT_EQ(Bench({"--version"}).exitCode, 0);
}

TEST_F(CommandTest, ListsTheCatalogue) {
  const Finished list = Bench({"list"});
  EXPECT_EQ(list.exitCode, 0);
  EXPECT_THAT(list.out, HasSubstr("\n  TestHRTF                    available "));
  EXPECT_THAT(list.out, HasSubstr("Helpers (called by routines, not run by themselves)\n"));

  const json parsed = json::parse(Bench({"list", "--json"}).out);
  EXPECT_EQ(parsed["schema_version"], 1);
  const auto row = std::find_if(parsed["routines"].begin(), parsed["routines"].end(),
                                [](const json& each) { return each["routine"] == "TestHRTF"; });
  ASSERT_NE(row, parsed["routines"].end());
  EXPECT_EQ((*row)["status"], "available");
  EXPECT_EQ((*row)["inputs"][0]["place"], "sdcard/ZUAudioDemo/44100_2.pcm");
  EXPECT_EQ((*row)["inputs"][0]["block"], json({{"value", 1764}, {"unit", "bytes"}}));
}

TEST_F(CommandTest, ListsWhatTheDocumentSays) {
  EXPECT_TRUE(Bench({"list", "--markdown"}).out == ReadFile(CATALOGUE_DOCUMENT))
      << "docs/catalogue.md is out of date: audio_bench list --markdown > docs/catalogue.md";
}

TEST_F(CommandTest, DescribesARoutine) {
  const Finished description = Bench({"describe", "RunTestCase"});
  EXPECT_EQ(description.exitCode, 0);
  EXPECT_THAT(description.out, HasSubstr("  declaration   void RunTestCase()\n"));
  EXPECT_THAT(description.out, HasSubstr("at least 1764 bytes\n"));
}

TEST_F(CommandTest, RunsTheSelectedTestOnTheDemo) {
  EXPECT_EQ(Bench({"run"}).exitCode, 3) << "there is no recording yet";
  const Finished demo = Bench({"demo"});
  EXPECT_EQ(demo.exitCode, 0);
  EXPECT_THAT(demo.out, HasSubstr("bench_work/sdcard/ZUAudioDemo/44100_2.pcm  written"));

  const Finished run = Bench({"run", "--wav", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, StartsWith("pass  RunTestCase  "));
  EXPECT_LE(std::count(run.out.begin(), run.out.end(), '\n'), 12) << run.out;
  const json report = json::parse(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["duration"], json({{"value", 8.0}, {"unit", "s"}}));
  EXPECT_EQ(report["outputs"][0]["duration"], json({{"value", 8.0}, {"unit", "s"}}));
  EXPECT_EQ(report["outputs"][0]["channels"].size(), 2U);
  EXPECT_TRUE(fs::exists(report["outputs"][0]["wave_copy"]["path"].get<std::string>()));
}

TEST_F(CommandTest, KeepsARecordingThatIsThere) {
  fs::create_directories("w/sdcard/ZUAudioDemo");
  WriteFile("w/sdcard/ZUAudioDemo/44100_2.pcm", "mine");
  const Finished demo = Bench({"demo", "--work", "w"});
  EXPECT_EQ(demo.exitCode, 0);
  EXPECT_THAT(demo.out, HasSubstr("kept as it is, 4 bytes"));
  EXPECT_EQ(ReadFile("w/sdcard/ZUAudioDemo/44100_2.pcm"), "mine");
}

TEST_F(CommandTest, RefusesADemoThatCannotBeWritten) {
  WriteFile("file", "");
  const Finished demo = Bench({"demo", "--work", "file"});
  EXPECT_EQ(demo.exitCode, 2);
  EXPECT_THAT(demo.err, HasSubstr("cannot write file/sdcard/ZUAudioDemo/44100_2.pcm: "));
}

TEST_F(CommandTest, SaysThatResultsCouldNotBeDelivered) {
  const std::string bench = AUDIO_BENCH;
  const Finished full = Shell(bench + " list > /dev/full");
  EXPECT_EQ(full.exitCode, 2);
  EXPECT_EQ(full.err, "audio_bench: cannot write to standard output: No space left on device\n");
  EXPECT_EQ(Shell(bench + " list >&-").exitCode, 2);
  EXPECT_EQ(Shell(bench + " list 2>&-").exitCode, 0);
}

TEST_F(CommandTest, WritesTheReportEvenWhenNobodyReadsTheResults) {
  Bench({"demo"});
  const std::string bench = AUDIO_BENCH;
  for (const char* nobody : {" >&-", " | true"}) {
    fs::remove("report.json");
    Shell(bench + " run --json report.json" + nobody + "; true");
    EXPECT_EQ(json::parse(ReadFile("report.json"))["verdict"], "pass") << nobody;
  }
}

}  // namespace
