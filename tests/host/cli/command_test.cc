// The other commands, usage errors and standard streams, through the program itself.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench_process.h"
#include "report_schema.h"
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
                                             {"list", "*", "bogus"},
                                             {"list", "--group", "bogus"},
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
                                             {"run", "--timeout-s", "1000001"},
                                             {"run", "--linger-s", "0"},
                                             {"run", "--linger-s", "-1"},
                                             {"list", "--", "x"},
                                             {"demo", "--work", ""},
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

TEST_F(CommandTest, NamesAWrongCommandAndWhatWasMeant) {
  EXPECT_EQ(Bench({"lst"}).err, "audio_bench: no command is called \"lst\"; did you mean list?\n");
  EXPECT_EQ(Bench({"TestHRTF"}).err,
            "audio_bench: no command is called \"TestHRTF\"; did you mean run TestHRTF?\n");
  EXPECT_EQ(Bench({"bogus"}).err,
            "audio_bench: no command is called \"bogus\"; \"audio_bench help\" names them all\n");
  EXPECT_EQ(Bench({"\x1b[31m"}).err.find('\x1b'), std::string::npos) << "escaped";
}

TEST_F(CommandTest, HelpsEverywhere) {
  const std::string all = Bench({"--help"}).out;
  EXPECT_EQ(Bench({"help"}).out, all);
  EXPECT_EQ(Bench({"-h"}).out, all);
  for (const char* const command : {"list", "describe", "run", "demo"}) {
    const Finished help = Bench({command, "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, HasSubstr(std::string("\nUsage: audio_bench ") + command + " "));
    EXPECT_EQ(Bench({command, "-h"}).out, help.out);
    EXPECT_EQ(Bench({command, "help"}).out, help.out);
    EXPECT_EQ(Bench({"help", command}).out, help.out);
  }
  EXPECT_EQ(Bench({"help", "bogus"}).exitCode, 2);
}

TEST_F(CommandTest, NamesTheArgumentsInUsageLines) {
  const auto usage = [](const std::string& line) { return HasSubstr("\nUsage: " + line + "\n"); };
  EXPECT_THAT(Bench({"help"}).out, usage("audio_bench COMMAND [...]"));
  EXPECT_THAT(Bench({"help", "run"}).out,
              usage("audio_bench run [ROUTINE [ARGUMENT...]] [OPTIONS]"));
  EXPECT_THAT(Bench({"help", "list"}).out, usage("audio_bench list [GLOB] [OPTIONS]"));
  EXPECT_THAT(Bench({"help", "describe"}).out,
              usage("audio_bench describe ROUTINE [ARGUMENT...] [OPTIONS]"));
}

TEST_F(CommandTest, HelpsOnRequest) {
  const Finished help = Bench({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.out,
              HasSubstr("Exit codes: 0 pass, 1 fail, 2 not run as asked (usage) or results not "
                        "delivered, 3 an input\nis missing or unreadable, 4 crash or time-out, 77 "
                        "skip."));
  EXPECT_EQ(Bench({"run", "--help"}).exitCode, 0);
  const Finished version = Bench({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_THAT(version.out, testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandTest, ListsTheCatalogue) {
  const Finished list = Bench({"list"});
  EXPECT_EQ(list.exitCode, 0);
  EXPECT_THAT(list.out, HasSubstr("\n  TestHRTF                    available "));
  EXPECT_THAT(list.out,
              HasSubstr("\n  TestHRTF                    available      FIR filtering with "
                        "HRTF kernels (mit_hrtf_get); the selected test\n"))
      << "one line where there is no terminal";
  EXPECT_THAT(list.out, HasSubstr("Helpers (called by routines, not run by themselves)\n"));

  const std::string some = Bench({"list", "--available", "--group", "effects", "*hrtf"}).out;
  EXPECT_THAT(some, StartsWith("Effects and music processing\n  TestHRTF  "));
  EXPECT_THAT(some, HasSubstr("\n1 routine, 1 available. "));

  const json parsed = json::parse(Bench({"list", "--json"}).out);
  EXPECT_EQ(parsed["schema_version"], 3);
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

// Whatever follows from the arguments: format, names, ids.
TEST_F(CommandTest, DescribesARunWithItsArguments) {
  const auto text = [](const std::vector<std::string>& words) {
    std::vector<std::string> all = {"describe"};
    all.insert(all.end(), words.begin(), words.end());
    return Bench(all).out;
  };
  EXPECT_THAT(text({"newTestZUEncode", "in.wav", "o", "50", "0", "0", "true"}),
              HasSubstr("  input         in.wav\n"
                        "                16-bit WAVE; 16000 Hz; mono; at least 2 bytes\n"));
  EXPECT_THAT(text({"newTestZUEncode"}), HasSubstr("the rate and channel count of the codec"));
  EXPECT_THAT(text({"newTestZUEncode"}),
              HasSubstr("not used      brate: what counts is the bit rate of the codec id\n"
                        "                sRate: what counts is the rate of the codec id\n"));
  EXPECT_THAT(text({"newTestZUEncode"}),
              HasSubstr(" 50  Opus          16000  mono           18000  2 bytes"));
  EXPECT_THAT(text({"newTestZUEncode"}),
              HasSubstr("  1  HE-AAC        44100  stereo         24000  ADTS, 7 bytes"));
  EXPECT_THAT(text({"TestEqReverb"}), HasSubstr("16-bit WAVE; 8000 to 192000 Hz; mono or stereo"));
  EXPECT_THAT(text({"TestSoundTouchBpm"}),
              HasSubstr("16-bit WAVE; 8000 Hz or more; any channel count"));
  EXPECT_THAT(text({"TestEncodeFile"}),
              HasSubstr("16-bit WAVE; 44100 Hz; stereo, or 16000 Hz; mono"));
  EXPECT_THAT(text({"TestMdrc"}), HasSubstr("; replaced\n"));
  EXPECT_THAT(text({"TestMdrc"}), HasSubstr("level from -24 to 12 dB against the input\n"));
  EXPECT_EQ(Bench({"describe", "TestReverb", "in"}).exitCode, 2);
  EXPECT_EQ(Bench({"describe", "TestNoizeusEx", "--", "-1", "0"}).exitCode, 2) << "no such one";
}

TEST_F(CommandTest, DescribesForPrograms) {
  const auto json = nlohmann::json::parse(
      Bench({"describe", "--json", "calAACMos", "i", "o", "1", "0", "0"}).out);
  EXPECT_EQ(json["routine"], "calAACMos");
  EXPECT_EQ(json["arguments"], nlohmann::json({"i", "o", "1", "0", "0"}));
  EXPECT_EQ(json["inputs"][0]["name"], "i");
  EXPECT_EQ(json["outputs"][0]["name"], "44100_2_0.res.wav");
  EXPECT_EQ(json["unused"][1]["parameter"], "bitRate");
  EXPECT_EQ(json["codec_ids"][0]["id"], 1);
  EXPECT_EQ(json["codec_ids"][0]["bit_rate"]["value"], 24000);
  const auto beat = nlohmann::json::parse(Bench({"describe", "TestBeatTrack", "--json"}).out);
  EXPECT_EQ(beat["inputs"][0]["rates"]["least"], 8000);
  EXPECT_EQ(beat["inputs"][0]["rates"]["most"], 192000);
  EXPECT_EQ(beat["inputs"][0]["channel_counts"]["most"], 8);
  EXPECT_EQ(beat["codec_ids"], nullptr);
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
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["duration"], json({{"value", 8.0}, {"unit", "s"}}));
  EXPECT_EQ(report["outputs"][0]["duration"], json({{"value", 8.0}, {"unit", "s"}}));
  EXPECT_EQ(report["outputs"][0]["channels"]["value"].size(), 2U);
  EXPECT_TRUE(fs::exists(report["outputs"][0]["wave_copy"]["value"]["path"].get<std::string>()));
}

TEST_F(CommandTest, RunsTheSelectedTestOnLessThanABlockAndFails) {
  fs::create_directories("bench_work/sdcard/ZUAudioDemo");
  for (const size_t samples : {size_t{0}, size_t{881}}) {
    WriteFile("bench_work/sdcard/ZUAudioDemo/44100_2.pcm", std::string(samples * 2, 'x'));
    WriteFile("bench_work/sdcard/ZUAudioDemo/44100_2_out_902.pcm", "older");
    const Finished run = Bench({"run", "TestHRTF"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, StartsWith("fail  TestHRTF  input /sdcard/ZUAudioDemo/44100_2.pcm (bench_"
                                    "work/sdcard/ZUAudioDemo/44100_2.pcm) holds no whole block of "
                                    "1764 bytes: "));
    EXPECT_EQ(fs::file_size("bench_work/sdcard/ZUAudioDemo/44100_2_out_902.pcm"), 0U);
  }
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

TEST_F(CommandTest, RefusesAFolderInThePlaceOfTheDemo) {
  fs::create_directories("w/sdcard/ZUAudioDemo/44100_2.pcm");
  const Finished demo = Bench({"demo", "--work", "w"});
  EXPECT_EQ(demo.exitCode, 2);
  EXPECT_EQ(demo.err,
            "audio_bench: cannot write w/sdcard/ZUAudioDemo/44100_2.pcm: Is a directory\n");
}

TEST_F(CommandTest, NamesTheRealReasonWhenThereIsNoFolderForTheDemo) {
  // Not even root creates a folder there: it is read-only, or refuses for another reason.
  const Finished demo = Bench({"demo", "--work", "/sys/audio_bench"});
  EXPECT_EQ(demo.exitCode, 2);
  EXPECT_THAT(demo.err, testing::MatchesRegex(".*: (Read-only file system|Permission denied|"
                                              "Operation not permitted)\n"));
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
    const json report = ParseReport(ReadFile("report.json"));
    EXPECT_EQ(report["routine"], "RunTestCase") << nobody;
    EXPECT_EQ(report["exit_code"], 2) << nobody;
  }
}

}  // namespace
