// Figures in the report of a run and in the results of a suite.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/voice.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class RunFiguresTest : public testing::Test {
 protected:
  static Finished Bench(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH);
    return RunProcess(words);
  }

  static void WriteWav(const std::string& path, const std::vector<short>& samples) {
    WriteFile(path, WavBytes({.channels = 1, .rate = 16000}, samples));
  }

  static std::vector<short> Softer(std::vector<short> samples) {
    for (short& each : samples) each = static_cast<short>(each / 2);
    return samples;
  }

  // Runs a suite with these words into a folder and returns the figures of its last case.
  static json CaseFigures(std::vector<std::string> words, const std::string& out = "results") {
    words.insert(words.begin(), "suite");
    words.insert(words.end(), {"--out", out});
    const Finished finished = Bench(words);
    EXPECT_EQ(finished.exitCode, 0) << finished.out << finished.err;
    const json results = ParseResults(ReadFile(out + "/results.json"));
    return results["cases"].empty() ? json() : results["cases"].back()["figures"];
  }

  // The figure of all channels, or the first there is.
  static json One(const json& figures, const std::string& name) {
    json found;
    for (const json& each : figures) {
      if (each["name"] == name && (found.is_null() || each["channel"].is_null())) found = each;
    }
    EXPECT_FALSE(found.is_null()) << "no figure " << name << " in " << figures;
    return found;
  }

  static bool Has(const json& figures, const std::string& name) {
    return std::ranges::any_of(figures, [&](const json& each) { return each["name"] == name; });
  }

  TemporaryDirectory m_directory;
};

TEST_F(RunFiguresTest, AReportHasLevelsOfEachOutputAndWhatTheRunTook) {
  WriteWav("speech.wav", Babble(16000, 2));
  const Finished run = Bench({"run", "TestHPFProcess", "--in", "speech.wav", "--work", "work",
                              "--json", "r.json", "--", "in.wav", "out.wav"});
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  const json figures = ParseReport(ReadFile("r.json"))["figures"];
  EXPECT_EQ(One(figures, "rtf")["file"], nullptr);
  EXPECT_GT(One(figures, "peak_memory")["value"].get<double>(), 0);
  EXPECT_EQ(One(figures, "rms")["file"], "out.wav");
  const Finished measured =
      Bench({"measure", "work/out.wav", "--measure", "rms", "--json", "m.json"});
  EXPECT_EQ(measured.exitCode, 0) << measured.err;
  EXPECT_EQ(ParseMeasured(ReadFile("m.json"))["figures"][0]["value"], One(figures, "rms")["value"]);
}

TEST_F(RunFiguresTest, ASuiteNamesMeasuresAndReferences) {
  std::filesystem::create_directories("suite/clean");
  WriteWav("suite/a.wav", Babble(16000, 3));
  WriteWav("suite/clean/a.wav", Babble(16000, 3));
  WriteFile("suite/s.toml", R"(
      [[case]]
      id = "{call}"
      routine = "TestHPFProcess"
      arguments = ["in.wav", "out.wav"]
      each.call = ["a"]
      in = { "in.wav" = "{call}.wav" }
      measures = ["si_sdr", "loudness"]
      reference = { "out.wav" = "clean/{call}.wav" }
  )");
  const json figures = CaseFigures({"suite/s.toml"});
  EXPECT_GT(One(figures, "si_sdr")["value"].get<double>(), 0);
  EXPECT_TRUE(Has(figures, "loudness"));
  EXPECT_FALSE(Has(figures, "peak"));
  EXPECT_THAT(ReadFile("results/results.csv"),
              testing::ContainsRegex("a,TestHPFProcess,pass,out.wav,figure,si_sdr,[0-9]"));

  // What an output is held against decides about the result.
  WriteWav("suite/clean/a.wav", Tone(500, 8000, 16000, 48000));
  const json again = CaseFigures({"suite/s.toml", "--resume"});
  EXPECT_NE(One(again, "si_sdr"), One(figures, "si_sdr"));
  std::filesystem::remove("suite/clean/a.wav");
  const json gone = CaseFigures({"suite/s.toml", "--resume"});
  EXPECT_EQ(One(gone, "si_sdr")["value"], nullptr);
  EXPECT_THAT(One(gone, "si_sdr")["reason"].get<std::string>(), HasSubstr("No such file"));
}

// Nobody looks for a figure that is missing in a case that passed.
TEST_F(RunFiguresTest, ARecordingToMeasureAgainstThatCannotBeReadIsAWarning) {
  WriteWav("a.wav", Babble(16000, 3));
  const Finished made = Bench(
      {"run", "TestHPFProcess", "--in", "a.wav", "--out", "whole.flac", "--", "in.wav", "out.wav"});
  ASSERT_EQ(made.exitCode, 0) << made.out << made.err;
  const std::string whole = ReadFile("whole.flac");
  WriteFile("cut.flac", whole.substr(0, whole.size() / 2));
  WriteFile("text.wav", "no sound\n");
  const std::string start =
      "[[case]]\nid = \"a\"\nroutine = \"TestHPFProcess\"\n"
      "arguments = [\"in.wav\", \"out.wav\"]\nin = { \"in.wav\" = \"a.wav\" }\n";
  const std::pair<std::string, std::string> faults[] = {
      {"reference = { \"out.wav\" = \"gone.wav\" }", "gone.wav: No such file or directory"},
      {"measures = [\"rms\"]\nfar = { \"out.wav\" = \"text.wav\" }",
       "text.wav: is of no kind that is known"},
      {"near = { \"out.wav\" = \"gone.wav\" }", "gone.wav: No such file or directory"},
      {"reference = { \"out.wav\" = \"cut.flac\" }", "cut.flac: "}};
  int count = 0;
  for (const auto& [line, fault] : faults) {
    WriteFile("s.toml", start + line + "\n");
    const std::string out = "results" + std::to_string(++count);
    const Finished finished = Bench({"suite", "s.toml", "--out", out});
    EXPECT_EQ(finished.exitCode, 0) << finished.err;
    const json one = ParseResults(ReadFile(out + "/results.json"))["cases"][0];
    EXPECT_EQ(one["verdict"], "warn") << line;
    EXPECT_EQ(one["cause"], "reference_unreadable") << line;
    EXPECT_THAT(one["reason"].get<std::string>(),
                HasSubstr(" could not be measured against ./" + fault));
    const Finished strict = Bench({"suite", "s.toml", "--strict", "--out", out + "s"});
    EXPECT_EQ(strict.exitCode, 1) << line;
  }
  WriteFile("s.toml", start + "reference = { \"out.wav\" = \"whole.flac\" }\n");
  EXPECT_EQ(Bench({"suite", "s.toml", "--strict", "--out", "good"}).exitCode, 0);
}

TEST_F(RunFiguresTest, ASuiteRefusesNamesThatThereAreNot) {
  const std::string start =
      "[[case]]\nid = \"a\"\nroutine = \"TestHPFProcess\"\n"
      "arguments = [\"in.wav\", \"out.wav\"]\nin = { \"in.wav\" = \"a.wav\" }\n";
  WriteFile("s.toml", start + "measures = [\"peak\", \"si_sbr\"]\n");
  const Finished unknown = Bench({"suite", "s.toml", "--out", "results"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err,
              HasSubstr("s.toml:6:21: no measure is called \"si_sbr\"; did you mean si_sdr?"));
  WriteFile("s.toml", start + "reference = { \"ouf.wav\" = \"a.wav\" }\n");
  const Finished other = Bench({"suite", "s.toml", "--out", "results"});
  EXPECT_EQ(other.exitCode, 2);
  EXPECT_THAT(other.err, HasSubstr("reference: TestHPFProcess writes no \"ouf.wav\" with these "
                                   "arguments; did you mean \"out.wav\"?"));
}

TEST_F(RunFiguresTest, OnDemoRecordingsTheTruthIsKnown) {
  const json quiet = CaseFigures({"TestDenoiseProcess"});
  EXPECT_GT(One(quiet, "noise_reduction")["value"].get<double>(), 3);
  EXPECT_GT(One(quiet, "delta_snr")["value"].get<double>(), 0);
  EXPECT_TRUE(One(quiet, "musical")["value"].is_number());
  const json echo = CaseFigures({"TestZUAec"}, "echo");
  EXPECT_GT(One(echo, "erle")["value"].get<double>(), 10);
  EXPECT_GT(One(echo, "near_sdr")["value"].get<double>(), 3);
  const json report = ParseReport(ReadFile("echo/reports/TestZUAec.json"));
  const std::string demo = "echo/cases/TestZUAec/demo/";
  EXPECT_EQ(report["outputs"][0]["measured_against"],
            json({{"reference", nullptr},
                  {"input", demo + "near.wav"},
                  {"far", demo + "far.wav"},
                  {"near", demo + "truth/demo/near.wav.wav"}}));
}

// What stands beside the result of that name.
json TruthOf(const json& results, const std::string& name) {
  for (const json& each : results["cases"][0]["results"]) {
    if (each["name"] == name) return each.value("truth", json());
  }
  ADD_FAILURE() << "no result " << name << " in " << results;
  return {};
}

TEST_F(RunFiguresTest, OnDemoRecordingsResultsStandBesideTheTruth) {
  EXPECT_EQ(Bench({"suite", "TestEchoDelayEst", "--out", "delay"}).exitCode, 0);
  const json delay = ParseResults(ReadFile("delay/results.json"));
  EXPECT_EQ(TruthOf(delay, "delay"), 89);
  EXPECT_EQ(TruthOf(delay, "frames"), nullptr);
  EXPECT_EQ(Bench({"suite", "TestBeatTrack", "--out", "beats"}).exitCode, 0);
  EXPECT_EQ(TruthOf(ParseResults(ReadFile("beats/results.json")), "tempo"), 120);
}

TEST_F(RunFiguresTest, ASuiteNamesTruthsFromWhichCompareTakesTheDistance) {
  const auto suite = [](const std::string& truth) {
    WriteWav("a.wav", Babble(16000, 3));
    WriteFile("s.toml",
              "[[case]]\nid = \"{s}\"\nroutine = \"TestHPFProcess\"\neach.s = [\"3\"]\n"
              "arguments = [\"in.wav\", \"out.wav\"]\nin = { \"in.wav\" = \"a.wav\" }\n"
              "measures = [\"length_factor\", \"rms\"]\ntruth = { " +
                  truth + " }\n");
  };
  suite(R"(length = "{s} s", rms = "-20.5 dBFS")");
  const json figures = CaseFigures({"s.toml"});
  EXPECT_EQ(One(figures, "rms")["truth"], -20.5);
  EXPECT_FALSE(One(figures, "length_factor").contains("truth"));
  EXPECT_EQ(TruthOf(ParseResults(ReadFile("results/results.json")), "length"), 3);
  const Finished compared = Bench({"compare", "results", "results", "--json", "c.json"});
  EXPECT_EQ(compared.exitCode, 0) << compared.err;
  const json comparison = json::parse(ReadFile("c.json"));
  for (const json& each : comparison["measures"]) {
    const bool told = each["name"] == "rms" || each["name"] == "length";
    EXPECT_EQ(each["to_truth"], told) << each;
    if (each["name"] == "rms") {
      EXPECT_NEAR(each["a"].get<double>(),
                  std::abs(One(figures, "rms")["value"].get<double>() + 20.5), 1e-9);
    }
  }

  // Another truth is another case.
  suite(R"(rms = "-20 dBFS")");
  EXPECT_EQ(One(CaseFigures({"s.toml", "--resume"}), "rms")["truth"], -20);
  const auto fault = [&](const std::string& truth) {
    suite(truth);
    const Finished finished = Bench({"suite", "s.toml", "--out", "fault"});
    EXPECT_EQ(finished.exitCode, 2) << finished.out;
    return finished.err;
  };
  EXPECT_THAT(fault(R"(rms = "loud")"),
              HasSubstr("the truth of rms must be a number and its unit, \"60 ms\", not \"loud\""));
  EXPECT_THAT(fault(R"(rms = "-20 dB")"),
              HasSubstr("TestHPFProcess has no figure \"rms\" in dB; rms is in dBFS"));
  EXPECT_THAT(fault(R"(dely = "60 ms")"), HasSubstr("TestHPFProcess has no figure \"dely\""));
}

}  // namespace
