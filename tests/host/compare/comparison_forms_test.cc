// Every word of the forms of a comparison that has everything.

#include "compare/comparison_forms.h"

#include <gmock/gmock.h>

#include "base/json_parts.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

// Each value stands in it once.
Comparison Everything() {
  const MeasureComparison worse = {
      .kind = {.name = "my_sdr", .unit = "dB", .better = "higher", .version = 1},
      .count = 40,
      .clusters = 9,
      .a = 5.5,
      .b = 4.25,
      .difference = -1.25,
      .interval = true,
      .low = -1.5,
      .high = -0.75,
      .p = 0.0123,
      .wins = 3,
      .losses = 37,
      .worstCase = "c7",
      .worst = -2.5,
      .margin = 0.2,
      .verdict = Change::kWorse,
      .holds = true};
  const MeasureComparison alone = {.kind = {.name = "gain", .unit = "dB", .better = "none"},
                                   .untrusted = true,
                                   .count = 12,
                                   .a = 0,
                                   .b = 0.5,
                                   .difference = 0.5,
                                   .interval = true,
                                   .low = 0.25,
                                   .high = 0.875,
                                   .p = 0.5,
                                   .losses = 11,
                                   .worstCase = "c8",
                                   .worst = 1.75,
                                   .margin = 0.125,
                                   .verdict = Change::kChanged};
  const MeasureComparison few = {.kind = {.name = "delay", .unit = "s", .better = "none"},
                                 .toTruth = true,
                                 .count = 2,
                                 .a = 3,
                                 .b = 2,
                                 .difference = -1,
                                 .wins = 1,
                                 .losses = 1,
                                 .margin = 0.001,
                                 .more = 6};
  return {
      .a = {.path = "old", .suite = "s.toml", .engine = "e 1", .started = "2026-03-01T12:00:00Z"},
      .b = {.path = "new", .engine = "e 2", .started = "2026-03-02T13:00:00Z"},
      .verdict = Change::kWorse,
      .measures = {worse, alone, few},
      .times = {{.name = "cpu",
                 .unit = "s",
                 .count = 41,
                 .a = 2,
                 .b = 3,
                 .ratio = 1.5,
                 .quartiles = {1.25, 1.625},
                 .margin = 0.1,
                 .verdict = Change::kWorse},
                {.name = "time", .unit = "ms", .count = 4}},
      .gone = {{"c1"}, {"c2", "a.wav"}, {"c3", "a.wav", "lsd"}, {"c4", "", "loudness"}},
      .added = {{"c5", "b.wav", "stoi"}},
      .fallen = {{"c6", "pass", "fail"}},
      .guards = {{"c9", "d.wav", "click"}, {"c10", "", "late"}},
      .cases = 44,
      .files = 50,
      .sameBytes = 30,
      .otherBytes = 20};
}

TEST(ComparisonForms, TheTextHasAllOfIt) {
  EXPECT_EQ(
      TextComparison(Everything()),
      "A  old  e 1  2026-03-01T12:00:00Z\n"
      "B  new  e 2  2026-03-02T13:00:00Z\n"
      "\n"
      "fallen  c6  pass -> fail\n"
      "guard   c9  d.wav  click\n"
      "guard   c10  late\n"
      "gone    c1\n"
      "gone    c2  a.wav\n"
      "gone    c3  a.wav  lsd\n"
      "gone    c4  loudness\n"
      "\n"
      "measure  unit  better        A     B  B - A  95 %             margin  cases    won / lost "
      "      p  verdict                         worst case\n"
      "my_sdr   dB    higher      5.5  4.25  -1.25  -1.5 .. -0.75       0.2  40 in 9  3 / 37     "
      " 0.0123  worse                           c7 -2.5\n"
      "gain     dB    -             0   0.5   +0.5  +0.25 .. +0.875   0.125  12       11 changed "
      "    0.5  changed (by itself), untrusted  c8 +1.75\n"
      "delay    s     from truth    3     2     -1  too few           0.001  2        1 / 1       "
      "     1  undecided, 6 more would tell\n"
      "\n"
      "time  unit  A  B  B / A  half of the cases  cases  verdict\n"
      "cpu   s     2  3    1.5  1.25 .. 1.625         41  worse\n"
      "time  ms    0  0      -  -                      4  -\n"
      "\n"
      "new     c5  b.wav  stoi\n"
      "\n"
      "(by itself): chance makes one of so many measures read worse often enough; it does not "
      "decide\n"
      "\n"
      "worse: 1 verdict fell, 2 guards are new, 4 things are gone, my_sdr (-1.25 dB) worse, gain "
      "(+0.5 dB) changed by itself, delay undecided, cpu worse (44 cases, 30 of 50 files the same "
      "byte for byte)\n");
}

TEST(ComparisonForms, LongListsAreCutShort) {
  Comparison comparison = Everything();
  comparison.gone.assign(50, {"gone-case"});
  EXPECT_THAT(TextComparison(comparison), Not(HasSubstr("more\n")));
  EXPECT_THAT(JunitComparison(comparison), Not(HasSubstr(" more\n")));
  comparison.gone.assign(203, {"gone-case"});
  EXPECT_THAT(TextComparison(comparison), HasSubstr("gone    gone-case\nand 153 more\n"));
  EXPECT_THAT(JunitComparison(comparison), HasSubstr("gone-case\nand 3 more\n"));
  const MeasureComparison worse = comparison.measures.front();
  comparison.measures.assign(5, worse);
  EXPECT_THAT(ComparisonSummary(comparison),
              HasSubstr(", my_sdr (-1.25 dB), my_sdr (-1.25 dB), my_sdr (-1.25 dB) and 2 more "
                        "worse, "));
}

// The summary says of nothing that it is so.
TEST(ComparisonForms, WhatIsNotThereIsNotTold) {
  Comparison comparison = {.verdict = Change::kSame, .cases = 1};
  EXPECT_EQ(TextComparison(comparison), "same (1 case)\n");
  comparison.files = 1;
  EXPECT_EQ(TextComparison(comparison), "same (1 case, 0 of 1 file the same byte for byte)\n");
  // What is new, or of other bytes, is a reason for more than a line.
  comparison.otherBytes = 1;
  EXPECT_THAT(TextComparison(comparison), testing::StartsWith("A  "));
  comparison.otherBytes = 0;
  comparison.added = {{"c"}};
  EXPECT_THAT(TextComparison(comparison), testing::StartsWith("A  "));
  comparison.added.clear();
  // So is a difference that does not matter.
  comparison.measures = {{.interval = true, .verdict = Change::kSame}};
  EXPECT_EQ(TextComparison(comparison), "same (1 case, 0 of 1 file the same byte for byte)\n");
  comparison.measures.front().low = -0.1;
  EXPECT_THAT(TextComparison(comparison), testing::StartsWith("A  "));
  comparison.measures.front() = {.interval = true, .high = 0.1, .verdict = Change::kSame};
  EXPECT_THAT(TextComparison(comparison), testing::StartsWith("A  "));
}

TEST(ComparisonForms, JsonHasAllOfIt) {
  const nlohmann::json json = nlohmann::json::parse(JsonComparison(Everything()));
  const nlohmann::json expected = nlohmann::json::parse(R"({
    "schema_version": 1,
    "a": {"path": "old", "suite": "s.toml", "engine": "e 1", "started": "2026-03-01T12:00:00Z"},
    "b": {"path": "new", "suite": null, "engine": "e 2", "started": "2026-03-02T13:00:00Z"},
    "verdict": "worse",
    "measures": [
      {"name": "my_sdr", "unit": "dB", "better": "higher", "to_truth": false, "untrusted": false,
       "n": 40, "clusters": 9, "a": 5.5, "b": 4.25, "difference": -1.25, "low": -1.5, "high": -0.75,
       "p": 0.0123, "wins": 3, "losses": 37, "worst_case": "c7", "margin": 0.2, "verdict": "worse",
       "holds": true, "more": null},
      {"name": "gain", "unit": "dB", "better": "none", "to_truth": false, "untrusted": true,
       "n": 12, "clusters": null, "a": 0.0, "b": 0.5, "difference": 0.5, "low": 0.25, "high": 0.875,
       "p": 0.5, "wins": 0, "losses": 11, "worst_case": "c8", "margin": 0.125,
       "verdict": "changed", "holds": false, "more": null},
      {"name": "delay", "unit": "s", "better": "none", "to_truth": true, "untrusted": false,
       "n": 2, "clusters": null, "a": 3.0, "b": 2.0, "difference": -1.0, "low": null, "high": null,
       "p": 1.0, "wins": 1, "losses": 1, "worst_case": null, "margin": 0.001,
       "verdict": "undecided", "holds": false, "more": 6}],
    "times": [
      {"name": "cpu", "unit": "s", "n": 41, "a": 2.0, "b": 3.0, "ratio": 1.5,
       "quartiles": [1.25, 1.625], "margin": 0.1, "verdict": "worse"},
      {"name": "time", "unit": "ms", "n": 4, "a": 0.0, "b": 0.0, "ratio": null,
       "quartiles": [null, null], "margin": null, "verdict": null}],
    "gone": [{"case": "c1", "file": null, "name": null},
             {"case": "c2", "file": "a.wav", "name": null},
             {"case": "c3", "file": "a.wav", "name": "lsd"},
             {"case": "c4", "file": null, "name": "loudness"}],
    "new": [{"case": "c5", "file": "b.wav", "name": "stoi"}],
    "fallen": [{"case": "c6", "a": "pass", "b": "fail"}],
    "guards": [{"case": "c9", "file": "d.wav", "name": "click"},
               {"case": "c10", "file": null, "name": "late"}],
    "cases": 44, "files": 50, "same_bytes": 30})");
  EXPECT_EQ(json, expected) << nlohmann::json::diff(expected, json);
}

TEST(ComparisonForms, CsvHasAllOfIt) {
  EXPECT_EQ(CsvComparison(Everything()),
            "kind,name,unit,better,n,clusters,a,b,difference,low,high,p,wins,losses,worst_case,"
            "margin,verdict,case,file\n"
            "fallen,pass to fail,,,,,,,,,,,,,,,worse,c6,\n"
            "guard,click,,,,,,,,,,,,,,,worse,c9,d.wav\n"
            "guard,late,,,,,,,,,,,,,,,worse,c10,\n"
            "gone,,,,,,,,,,,,,,,,worse,c1,\n"
            "gone,,,,,,,,,,,,,,,,worse,c2,a.wav\n"
            "gone,lsd,,,,,,,,,,,,,,,worse,c3,a.wav\n"
            "gone,loudness,,,,,,,,,,,,,,,worse,c4,\n"
            "measure,my_sdr,dB,higher,40,9,5.5,4.25,-1.25,-1.5,-0.75,0.0123,3,37,c7,0.2,worse,,\n"
            "measure,gain,dB,none,12,,0.0,0.5,0.5,0.25,0.875,0.5,0,11,c8,0.125,changed,,\n"
            "measure,delay,s,none,2,,3.0,2.0,-1.0,,,1.0,1,1,,0.001,undecided,,\n"
            "time,cpu,s,lower,41,,2.0,3.0,0.5,0.25,0.625,,,,,0.1,worse,,\n"
            "time,time,ms,lower,4,,0.0,0.0,,,,,,,,,,,\n"
            "new,stoi,,,,,,,,,,,,,,,,c5,b.wav\n");
}

TEST(ComparisonForms, JunitHasAllOfIt) {
  const std::string expected = R"(<?xml version="1.0"?>
<testsuites name="audio_bench compare" tests="7" failures="5" errors="0" skipped="0" time="0">
  <testsuite name="audio_bench compare" tests="7" failures="5" errors="0" skipped="0" time="0" timestamp="2026-03-02T13:00:00">
    <testcase classname="compare.cases" name="verdicts" time="0">
      <failure message="1 have fallen" type="worse">c6: pass to fail
</failure>
    </testcase>
    <testcase classname="compare.cases" name="guards" time="0">
      <failure message="2 are new" type="worse">c9  d.wav  click
c10  late
</failure>
    </testcase>
    <testcase classname="compare.cases" name="files and figures" time="0">
      <failure message="4 are gone" type="worse">c1
c2  a.wav
c3  a.wav  lsd
c4  loudness
</failure>
    </testcase>
    <testcase classname="compare.measures" name="my_sdr, dB" time="0">
      <failure message="worse: 5.5 and 4.25 dB, difference -1.25 (-1.5 to -0.75), margin 0.2, 40 cases, worst c7" type="worse">worse: 5.5 and 4.25 dB, difference -1.25 (-1.5 to -0.75), margin 0.2, 40 cases, worst c7</failure>
    </testcase>
    <testcase classname="compare.measures" name="gain, dB" time="0">
      <system-out>changed: 0 and 0.5 dB, difference 0.5 (0.25 to 0.875), margin 0.125, 12 cases, worst c8
</system-out>
    </testcase>
    <testcase classname="compare.measures" name="delay from the truth, s" time="0">
      <system-out>undecided: 3 and 2 s, difference -1, margin 0.001, 2 cases
</system-out>
    </testcase>
    <testcase classname="compare.times" name="cpu" time="0">
      <failure message="worse: ratio 1.500000" type="worse">worse: ratio 1.500000</failure>
    </testcase>
  </testsuite>
</testsuites>
)";
  EXPECT_EQ(JunitComparison(Everything()), expected);
}

}  // namespace
}  // namespace host
