// Every word of the forms of what `measure` has found.

#include "measure/figure_forms.h"

#include <gmock/gmock.h>

#include "report_schema.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

MeasuredFigure Of(const std::string& file, const std::string& name, std::optional<int> channel,
                  std::optional<double> value) {
  return {.file = file,
          .channel = channel,
          .name = name,
          .value = value,
          .unit = "dB",
          .better = "higher",
          .version = 2,
          .untrusted = false};
}

// A stereo recording, one of one channel, and one that cannot be read.
std::vector<MeasuredFile> Three() {
  MeasuredFigure doubtful = Of("a,b.wav", "stoi", std::nullopt, 0.123456789012);
  doubtful.unit = "";
  doubtful.untrusted = true;
  MeasuredFigure none = Of("mono.wav", "lsd", std::nullopt, std::nullopt);
  none.better = "lower";
  none.reason = "no reference";
  MeasuredFigure unread = Of("gone.wav", "snr", std::nullopt, std::nullopt);
  unread.reason = "gone.wav: No such file";
  return {{.format = {.container = "WAVE", .samples = "16-bit", .rate = 48000, .channels = 2},
           .figures = {Of("a,b.wav", "snr", 0, 12.345678901), Of("a,b.wav", "snr", 1, -1.5),
                       Of("a,b.wav", "snr", std::nullopt, 5), doubtful},
           .brought = {{"ref.wav", 44100, 48000}}},
          {.format = {.container = "WAVE", .samples = "16-bit", .rate = 8000, .channels = 1},
           .figures = {Of("mono.wav", "snr", 0, 3), Of("mono.wav", "snr", std::nullopt, 3),
                       Of("mono.wav", "peak", 0, -6), none}},
          {.figures = {unread}, .unreadable = "gone.wav: No such file"}};
}

// The mean over one channel is that of the channel, and is told once.
TEST(FigureForms, ReadersGetATableForEachFile) {
  const std::string text = TextFigures(Three());
  EXPECT_THAT(text, testing::StartsWith("a,b.wav: "));
  EXPECT_THAT(text, HasSubstr("\n  ref.wav brought from 44100 Hz to 48000 Hz\n"
                              "  measure  channel    value  unit  better\n"
                              "  snr      left      12.346  dB    higher\n"
                              "  snr      right       -1.5  dB    higher\n"
                              "  snr                     5  dB    higher\n"
                              "  stoi              0.12346        higher\n"
                              "\nmono.wav: "));
  EXPECT_THAT(text, HasSubstr("\n  measure  channel  value  unit  better\n"
                              "  snr                   3  dB    higher\n"
                              "  peak                 -6  dB    higher\n"
                              "  lsd                   -  dB    lower   no reference\n"
                              "\ngone.wav: not measured\n  gone.wav: No such file\n"));
  EXPECT_THAT(text,
              testing::EndsWith("No such file\nuntrusted, not seen to pass a self-test: stoi\n"));
}

TEST(FigureForms, SaysWhenAllAreUntrustedOrNone) {
  std::vector<MeasuredFile> files = Three();
  for (MeasuredFile& file : files) {
    for (MeasuredFigure& each : file.figures) each.untrusted = true;
  }
  EXPECT_THAT(TextFigures(files), testing::EndsWith("not seen to pass a self-test: all\n"));
  files.pop_back();
  files[1].figures[3].untrusted = files[1].figures[2].untrusted = false;
  EXPECT_THAT(TextFigures(files), testing::EndsWith("to pass a self-test: snr, stoi\n"));
  for (MeasuredFile& file : files) {
    for (MeasuredFigure& each : file.figures) each.untrusted = false;
  }
  EXPECT_THAT(TextFigures(files), Not(HasSubstr("untrusted")));
}

TEST(FigureForms, ProgramsGetAllOfIt) {
  const nlohmann::json json = ParseMeasured(JsonFigures(Three()));
  EXPECT_EQ(json["resampled"],
            nlohmann::json({{{"file", "ref.wav"}, {"from", 44100}, {"to", 48000}}}));
  ASSERT_EQ(json["figures"].size(), 9U);
  EXPECT_EQ(json["figures"][1], nlohmann::json::parse(R"({
    "file": "a,b.wav", "channel": 1, "name": "snr", "value": -1.5, "unit": "dB",
    "better": "higher", "reason": null, "version": 2, "untrusted": false})"));
  EXPECT_EQ(json["figures"][3]["untrusted"], true);
  EXPECT_EQ(json["figures"][3]["channel"], nullptr);
  EXPECT_EQ(json["figures"][7]["value"], nullptr);
  EXPECT_EQ(json["figures"][7]["reason"], "no reference");
  EXPECT_EQ(json["figures"][8]["file"], "gone.wav");
}

TEST(FigureForms, CsvHasARowForEachFigure) {
  EXPECT_EQ(CsvFigures(Three()),
            "file,channel,name,value,unit,better,reason,version,untrusted\n"
            "\"a,b.wav\",0,snr,12.3456789,dB,higher,,2,false\n"
            "\"a,b.wav\",1,snr,-1.5,dB,higher,,2,false\n"
            "\"a,b.wav\",,snr,5,dB,higher,,2,false\n"
            "\"a,b.wav\",,stoi,0.123456789,,higher,,2,true\n"
            "mono.wav,0,snr,3,dB,higher,,2,false\n"
            "mono.wav,,snr,3,dB,higher,,2,false\n"
            "mono.wav,0,peak,-6,dB,higher,,2,false\n"
            "mono.wav,,lsd,,dB,lower,no reference,2,false\n"
            "gone.wav,,snr,,dB,higher,gone.wav: No such file,2,false\n");
}

}  // namespace
}  // namespace host
