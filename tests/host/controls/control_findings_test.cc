// What the findings of the controls come to, and their forms.

#include "controls/control_findings.h"

#include <gmock/gmock.h>

#include "report_schema.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr ControlFault kLoud = {"gain", "louder", "through"};
constexpr ControlFault kClean = {"clean", "the same again", "", true};

MeasureComparison Worse(const std::string& name, double difference) {
  MeasureComparison measure;
  measure.kind = {name, "dB", "none", 1};
  measure.difference = difference;
  return measure;
}

ControlFindings Nothing(std::string_view sound) {
  return {.sound = sound, .compared = {"dc", "gain"}};
}

ControlFindings Louder(std::string_view sound) {
  ControlFindings findings = Nothing(sound);
  findings.measures.push_back(Worse("gain", 0.1));
  return findings;
}

ControlFindings Cut(std::string_view sound) {
  ControlFindings findings = Nothing(sound);
  findings.guards = {"clipped"};
  return findings;
}

TEST(ControlFindings, AFaultIsToBeFoundOnEveryKindOfSound) {
  EXPECT_TRUE((ControlResult{&kLoud, {Louder("speech"), Cut("music")}}.Right()));
  EXPECT_FALSE((ControlResult{&kLoud, {Louder("speech"), Nothing("music")}}.Right()));
  EXPECT_FALSE((ControlResult{&kLoud, {Nothing("speech"), Nothing("music")}}.Right()));
}

TEST(ControlFindings, ACleanEngineIsToBeFoundOnNone) {
  EXPECT_TRUE((ControlResult{&kClean, {Nothing("speech"), Nothing("music")}}.Right()));
  EXPECT_FALSE((ControlResult{&kClean, {Nothing("speech"), Cut("music")}}.Right()));
}

TEST(ControlFindings, OneThatIsNotRightFailsTheWhole) {
  const ControlResult found = {&kLoud, {Louder("speech"), Louder("music")}};
  const ControlResult missed = {&kLoud, {Nothing("speech"), Nothing("music")}};
  EXPECT_TRUE(AllRight({found, found}));
  EXPECT_FALSE(AllRight({found, missed}));
}

TEST(ControlFindings, WhatHasFoundNothingIsNamed) {
  EXPECT_THAT(Idle({{&kLoud, {Louder("speech"), Nothing("music")}}}), ElementsAre("dc"));
}

TEST(ControlFindings, ReadersGetAMatrix) {
  const std::string text = ControlsText({{&kClean, {Nothing("speech"), Nothing("music")}},
                                         {&kLoud, {Louder("speech"), Cut("music")}}});
  EXPECT_EQ(text,
            "1  clean: the same again\n"
            "    speech: nothing\n"
            "    music: nothing\n"
            "2  gain: louder\n"
            "    speech: gain +0.1 dB\n"
            "    music: guard clipped\n"
            "\n"
            "found by       1  2\n"
            "guard clipped  .  m\n"
            "gain           .  s\n"
            "s: found on speech, m: on music\n"
            "has found nothing: dc\n"
            "pass: every fault is found, and the clean engine by nothing\n");
}

TEST(ControlFindings, ReadersSeeWhatIsWrong) {
  const std::string text = ControlsText({{&kLoud, {Louder("speech"), Nothing("music")}}});
  EXPECT_THAT(text, HasSubstr("1  gain: louder  WRONG\n"));
  EXPECT_THAT(text, HasSubstr("fail: 1 are not as they should be\n"));
}

TEST(ControlFindings, ReadersSeeWhatFoundItAndByHowMuch) {
  MeasureComparison bare = Worse("stoi", -0.12345);
  bare.kind.unit = "";
  ControlFindings both = Cut("speech");
  both.guards.push_back("click");
  both.measures = {bare, Worse("lsd", 2)};
  both.compared = {"stoi", "lsd", "erle", "rms"};
  const ControlResult found = {&kLoud, {both, Nothing("music")}};
  const std::string text = ControlsText({found, found, {&kClean, {Nothing("speech")}}});
  EXPECT_THAT(text, HasSubstr("    speech: guard clipped, guard click, stoi -0.123, lsd +2 dB\n"));
  EXPECT_THAT(text, HasSubstr("guard click    s  s  .\n"
                              "guard clipped  s  s  .\n"
                              "lsd            s  s  .\n"
                              "stoi           s  s  .\n"));
  EXPECT_THAT(text, HasSubstr("has found nothing: dc, erle, gain, rms\n"));
  EXPECT_THAT(text, HasSubstr("fail: 2 are not as they should be\n"));
}

TEST(ControlFindings, ProgramsGetEachMember) {
  ControlFindings louder = Louder("speech");
  louder.measures.front().a = 1.5;
  louder.measures.front().b = 1.625;
  const nlohmann::json json = ParseControls(
      ControlsJson({{&kClean, {Nothing("speech")}}, {&kLoud, {louder, Nothing("music")}}}));
  EXPECT_EQ(json["pieces"], kControlPieces);
  EXPECT_EQ(json["engines"], nlohmann::json::parse(R"([
    {"name": "clean", "what": "the same again", "clean": true, "right": true,
     "found": [{"sound": "speech", "guards": [], "measures": []}]},
    {"name": "gain", "what": "louder", "clean": false, "right": false,
     "found": [{"sound": "speech", "guards": [],
                "measures": [{"name": "gain", "unit": "dB", "a": 1.5, "b": 1.625,
                              "difference": 0.1}]},
               {"sound": "music", "guards": [], "measures": []}]}])"));
}

TEST(ControlFindings, ProgramsGetAllOfIt) {
  const nlohmann::json json =
      ParseControls(ControlsJson({{&kLoud, {Louder("speech"), Cut("music")}}}));
  EXPECT_EQ(json["verdict"], "pass");
  EXPECT_EQ(json["engines"][0]["found"][0]["measures"][0]["difference"], 0.1);
  EXPECT_EQ(json["engines"][0]["found"][1]["guards"], nlohmann::json({"clipped"}));
  EXPECT_EQ(json["idle"], nlohmann::json({"dc"}));
  EXPECT_EQ(ParseControls(ControlsJson({{&kLoud, {Nothing("speech")}}}))["verdict"], "fail");
}

}  // namespace
}  // namespace host
