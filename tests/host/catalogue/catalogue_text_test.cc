#include "catalogue/catalogue_text.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "base/usage_error.h"
#include "catalogue/list.h"
#include "recording/form.h"
#include "run/stage_form.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

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

TEST(GroupFiles, TakesAListForOne) {
  const FileUse first = {.name = "in/sp01.pcm", .blockBytes = 160, .pattern = "in/sp<n>.pcm"};
  FileUse second = first;
  second.name = "in/sp02.pcm";
  const std::vector<FileGroup> groups =
      GroupFiles({{.name = "a.wav"}, first, {.name = "b.wav"}, second});
  ASSERT_THAT(groups, testing::SizeIs(3));
  EXPECT_EQ(groups[0].use.name, "a.wav");
  EXPECT_EQ(groups[0].files, 1U);
  EXPECT_EQ(groups[1].use.name, "in/sp<n>.pcm");
  EXPECT_EQ(groups[1].use.blockBytes, 160);
  EXPECT_EQ(groups[1].files, 2U);
  EXPECT_EQ(groups[2].use.name, "b.wav");
}

TEST(TakenFormat, NamesEachRateAndChannelCount) {
  static constexpr int kRates[] = {8000, 16000, 32000};
  FileUse use = {.container = Container::kWave, .channels = 1, .treated = {.rates = kRates}};
  EXPECT_EQ(TakenFormat(use), "16-bit WAVE; 8000, 16000 or 32000 Hz; mono");
  use = {.container = Container::kWave, .treated = {.leastRate = 8000, .mostRate = 48000}};
  EXPECT_EQ(TakenFormat(use), "16-bit WAVE; 8000 to 48000 Hz; any channel count");
  use.treated.mostChannels = 2;
  EXPECT_EQ(TakenFormat(use), "16-bit WAVE; 8000 to 48000 Hz; mono or stereo");
  use.treated.mostChannels = 8;
  EXPECT_EQ(TakenFormat(use), "16-bit WAVE; 8000 to 48000 Hz; up to 8 channels");
  use = {.container = Container::kHeaderless, .rate = 16000, .channels = 1};
  EXPECT_EQ(TakenFormat(use), "16-bit samples without a header; 16000 Hz; mono");
}

TEST(FormOf, IsWhatTheRowTakes) {
  static constexpr int kRates[] = {8000, 16000, 32000};
  const auto staged = [](const FileUse& use, int rate, int channels) {
    const WaveFormat made = ChooseFormat(FormOf(use), {.rate = rate, .channels = channels});
    return std::to_string(made.rate) + "/" + std::to_string(made.channels);
  };
  FileUse use = {.container = Container::kWave, .channels = 1, .treated = {.rates = kRates}};
  EXPECT_EQ(staged(use, 16000, 2), "16000/1");
  EXPECT_EQ(staged(use, 11025, 1), "16000/1");
  EXPECT_EQ(staged(use, 96000, 1), "32000/1");
  use = {.container = Container::kWave,
         .treated = {.leastRate = 8000, .mostRate = 48000, .mostChannels = 2}};
  EXPECT_EQ(staged(use, 44100, 2), "44100/2");
  EXPECT_EQ(staged(use, 96000, 1), "48000/1");
  EXPECT_EQ(staged(use, 6000, 6), "8000/1");
}

TEST(ListAsText, FitsTheWidthAndSetsHelpersApart) {
  for (const size_t width : {size_t{80}, size_t{100}}) {
    std::istringstream lines(ListAsText({}, width));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), width) << line;
    }
  }
  const std::string list = ListAsText({}, 100);
  EXPECT_THAT(list, HasSubstr("  Echo                        available      arguments\n"));
  EXPECT_THAT(list, HasSubstr("\n\nHelpers (called by routines, not run by themselves)\n"
                              "  Helper                      help\n"));
}

TEST(ListAsText, KeepsARoutineOnOneLineWhenAsked) {
  EXPECT_THAT(ListAsText({}, SIZE_MAX), HasSubstr(" not be broken, whatever its length is, when "
                                                  "nobody looks at it on a terminal\n"));
}

TEST(ListFilter, ListsWhatItLetsPass) {
  const std::string globbed = ListAsText({.glob = "write*e"}, 100);
  EXPECT_THAT(globbed, HasSubstr("  WriteNotFinite "));
  EXPECT_THAT(globbed, HasSubstr("  WriteNoWave "));
  EXPECT_THAT(globbed, Not(HasSubstr("  WritePcm ")));
  EXPECT_THAT(globbed, HasSubstr("\n3 routines, 3 available. "));
  const std::string available = ListAsMarkdown({.available = true});
  EXPECT_THAT(available, HasSubstr("void Echo("));
  EXPECT_THAT(available, Not(HasSubstr("NeedNothing")));
  EXPECT_THAT(available, Not(HasSubstr("## Helpers")));
  EXPECT_THAT(ListAsJson({.glob = "Echo", .group = "harness"}, {}), HasSubstr("\"Echo\""));
}

TEST(ListFilter, RefusesWhatLetsNothingPass) {
  const auto message = [](const ListFilter& filter) -> std::string {
    try {
      ListAsText(filter, 100);
    } catch (const UsageError& error) {
      return error.message;
    }
    return "";
  };
  EXPECT_EQ(message({.group = "codecs"}),
            "no group is called \"codecs\"; there are harness, aec, enhancement, codec, effects, "
            "mixing");
  EXPECT_EQ(message({.group = "codec"}), "no routine is like that");
  EXPECT_EQ(message({.glob = "ech"}), "no routine is like \"ech\"; did you mean Echo?");
}

nlohmann::json RowAsJson(const std::string& routine) {
  return nlohmann::json::parse(ListAsJson({.glob = routine}, {}))["routines"][0];
}

TEST(ListAsJson, GivesParametersOneByOne) {
  EXPECT_EQ(RowAsJson("Echo")["parameters"],
            nlohmann::json({{{"type", "const char*"}, {"name", "text"}},
                            {{"type", "char*"}, {"name", "more"}},
                            {{"type", "bool"}, {"name", "flag"}},
                            {{"type", "int"}, {"name", "number"}}}));
  EXPECT_EQ(RowAsJson("Nothing")["parameters"], nlohmann::json::array());
}

TEST(ListAsJson, SaysWhyThereIsNoFigure) {
  const nlohmann::json row = RowAsJson("Nothing");
  EXPECT_EQ(row["device"], "none");
  EXPECT_EQ(row["outputs"], nlohmann::json::array());
  EXPECT_EQ(row["expected_duration"]["reason"], "as fast as its input is processed");
}

TEST(ListAsJson, KeepsEveryKeyOfAFile) {
  const nlohmann::json use = RowAsJson("Copy")["inputs"][0];
  EXPECT_EQ(use["place"], nullptr) << "an argument decides";
  EXPECT_EQ(use["samples"], "pcm16");
  EXPECT_EQ(use["block"], nlohmann::json({{"value", 160}, {"unit", "bytes"}}));
  const nlohmann::json wave = RowAsJson("WriteNoWave")["outputs"][0];
  EXPECT_EQ(wave["place"], "out.wav");
  EXPECT_EQ(wave["samples"], nullptr);
  EXPECT_EQ(
      wave["rate"],
      nlohmann::json({{"value", nullptr}, {"unit", "Hz"}, {"reason", "stands in the header"}}));
  EXPECT_EQ(use.size(), wave.size());
}

TEST(ListAsJson, TellsRatesAndChannelCountsThatAreTaken) {
  const nlohmann::json use = RowAsJson("Copy")["inputs"][0];
  EXPECT_EQ(use["rates"], nlohmann::json({{"set", {8000}}, {"unit", "Hz"}}));
  EXPECT_EQ(use["channel_counts"], nlohmann::json({{"set", {1}}}));
  const nlohmann::json wave = RowAsJson("WriteNoWave")["outputs"][0];
  EXPECT_EQ(wave["rates"], nlohmann::json({{"least", nullptr}, {"most", nullptr}, {"unit", "Hz"}}));
  EXPECT_EQ(wave["channel_counts"], nlohmann::json({{"least", 1}, {"most", nullptr}}));
}

TEST(ListAsJson, TellsADurationThatTheClockDecides) {
  EXPECT_EQ(RowAsJson("TakeTurnByClock")["expected_duration"],
            nlohmann::json({{"value", 0.1}, {"unit", "s"}}));
}

TEST(Lacking, ShowsWhatTheEngineAtHandCannotRun) {
  EXPECT_THAT(ListAsText({.glob = "NeedNothing"}, 100),
              HasSubstr("NeedNothing                 lacking"));
  EXPECT_THAT(ListAsText({.glob = "Need*"}, 100), HasSubstr("1 routine, 0 available. "));
  EXPECT_THAT(Describe("NeedNothing"),
              HasSubstr("status        lacking: this engine has nothing\n"));
  const nlohmann::json row = RowAsJson("NeedNothing");
  EXPECT_EQ(row["available"], false);
  EXPECT_EQ(row["status"], "lacking: this engine has nothing");
  // Arguments decide.
  EXPECT_EQ(RowAsJson("WriteFor")["status"], "available");
  // The document is the same for every engine.
  EXPECT_THAT(ListAsMarkdown({}),
              HasSubstr("| `void NeedNothing()` |  |  |  | none | available |"));
}

TEST(ListAsMarkdown, HasOneRowForEachRoutine) {
  const std::string list = ListAsMarkdown({});
  EXPECT_THAT(list,
              HasSubstr("| `void Copy(const char* inFile, const char* outFile)` | a declared "
                        "input and output | `{inFile}` (16-bit samples, 8000 Hz, mono) | "
                        "`{outFile}` (16-bit samples, 8000 Hz, mono) | none | available |\n"));
  EXPECT_THAT(list, HasSubstr("## Helpers"));
  EXPECT_THAT(list, HasSubstr(R"(| 0\|7, 0\_7, 0\*7 and 0\<7 |)"));
}

TEST(Describe, TellsAllOfOneRow) {
  EXPECT_EQ(Describe("Copy"),
            "Copy\n"
            "  declaration   void Copy(const char* inFile, const char* outFile)\n"
            "  group         Harness\n"
            "  exercises     a declared input and output\n"
            "  input         {inFile}\n"
            "                16-bit samples without a header; 8000 Hz; mono; at least 160 bytes\n"
            "  output        {outFile}\n"
            "                16-bit samples, 8000 Hz, mono; replaced\n"
            "  device        none\n"
            "  duration      as fast as its input is processed\n"
            "  status        available\n");
  EXPECT_THAT(Describe("WriteLoud"), HasSubstr("in the workspace: sdcard/out.f32"));
  EXPECT_THAT(Describe("UseSeven"),
              HasSubstr("\n  not used      number: what counts is the number of days\n"));
  EXPECT_THAT(Describe("Break"), HasSubstr("\n  guards        without level: its gain is free\n"));
  EXPECT_THAT(Describe("Mark"), HasSubstr("\n  guards        none: markers, not sound\n"));
  EXPECT_THAT(Describe("Helper"), HasSubstr("not run by itself"));
  EXPECT_THROW(Describe("Unknown"), UsageError);
}

}  // namespace
}  // namespace host
