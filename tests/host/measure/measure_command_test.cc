#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#include "audio_measures/measure.h"
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
using testing::Not;

class MeasureCommandTest : public testing::Test {
 protected:
  static Finished Measure(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "measure"});
    return RunProcess(words);
  }

  // Runs it with --json and returns the figures.
  static json Figures(std::vector<std::string> words, int exitCode = 0) {
    words.insert(words.end(), {"--json", "figures.json"});
    const Finished finished = Measure(words);
    EXPECT_EQ(finished.exitCode, exitCode) << finished.err;
    return ParseMeasured(ReadFile("figures.json"));
  }

  static void WriteWav(const std::string& path, const std::vector<short>& samples,
                       uint32_t rate = 16000, uint16_t channels = 1) {
    WriteFile(path, WavBytes({.channels = channels, .rate = rate}, samples));
  }

  // The same with white noise of this root mean square.
  static std::vector<short> Noisy(std::vector<short> samples, double rms) {
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, rms);
    for (short& each : samples) {
      each = static_cast<short>(std::clamp(std::lround(each + noise(random)), -32768L, 32767L));
    }
    return samples;
  }

  // The figure of that name of one channel, or of all.
  static json One(const json& measured, const std::string& name, const json& channel = {}) {
    for (const json& each : measured["figures"]) {
      if (each["name"] == name && each["channel"] == channel) return each;
    }
    ADD_FAILURE() << "no figure " << name << " in " << measured;
    return {};
  }

  TemporaryDirectory m_directory;
};

double Rms(const std::vector<short>& samples) {
  double sum = 0;
  for (const double each : samples) sum += each * each;
  return std::sqrt(sum / static_cast<double>(samples.size()));
}

TEST_F(MeasureCommandTest, ToldOfOneFileAreItsLevels) {
  WriteWav("tone.wav", Tone(1000, 16384, 16000, 16000));
  const json measured = Figures({"tone.wav", "--csv", "figures.csv"});
  const json rms = One(measured, "rms", 0);
  EXPECT_NEAR(rms["value"].get<double>(), -9.03, 0.01);  // 20 log10(0.5 / sqrt(2))
  EXPECT_EQ(rms["unit"], "dBFS");
  EXPECT_EQ(rms["better"], "none");
  EXPECT_EQ(rms["file"], "tone.wav");
  EXPECT_EQ(rms["reason"], nullptr);
  EXPECT_EQ(rms["version"], 1);
  EXPECT_EQ(One(measured, "noise_floor", 0)["better"], "lower");
  EXPECT_NEAR(One(measured, "crest", 0)["value"].get<double>(), 3.01, 0.01);
  for (const json& each : measured["figures"]) EXPECT_NE(each["name"], "si_sdr");
  const std::string csv = ReadFile("figures.csv");
  EXPECT_THAT(csv, HasSubstr("file,channel,name,value,unit,better,reason,version,untrusted\n"
                             "tone.wav,0,peak,-6.02"));
  const Finished finished = Measure({"tone.wav"});
  EXPECT_THAT(finished.out, HasSubstr("tone.wav: WAVE, 16-bit, 16000 Hz, mono, 1.00 s\n"));
  EXPECT_THAT(finished.out, HasSubstr("noise_floor"));
}

TEST_F(MeasureCommandTest, HoldsAnOutputAgainstItsReferenceAtAnotherRate) {
  const std::vector<short> clean = Tone(997, 8192, 16000, 48000);
  WriteWav("clean.wav", Tone(997, 8192, 48000, 144000), 48000);
  WriteWav("noisy.wav", Noisy(clean, Rms(clean) / 100));
  const json measured = Figures({"noisy.wav", "--against", "clean.wav", "--measure", "si_sdr"});
  EXPECT_NEAR(One(measured, "si_sdr")["value"].get<double>(), 40, 0.5);
  EXPECT_EQ(One(measured, "si_sdr")["better"], "higher");
  EXPECT_EQ(measured["resampled"],
            json::array({{{"file", "clean.wav"}, {"from", 48000}, {"to", 16000}}}));
  const Finished finished = Measure({"noisy.wav", "--against", "clean.wav"});
  EXPECT_THAT(finished.out, HasSubstr("clean.wav brought from 48000 Hz to 16000 Hz\n"));
  EXPECT_THAT(finished.out, HasSubstr("stoi"));
}

TEST_F(MeasureCommandTest, WhatIsNotComputedHasNoValueButAReason) {
  WriteWav("silent.wav", std::vector<short>(16000));
  const json measured =
      Figures({"silent.wav", "--measure", "si_sdr,loudness", "--measure", "erle,rtf"});
  ASSERT_EQ(measured["figures"].size(), 4U);
  for (const json& each : measured["figures"]) EXPECT_EQ(each["value"], nullptr);
  EXPECT_EQ(measured["figures"][0]["reason"], "no reference");
  EXPECT_EQ(measured["figures"][1]["name"], "loudness");
  EXPECT_EQ(measured["figures"][2]["reason"], "no far end");
  EXPECT_EQ(measured["figures"][3]["version"], 0);
  const Finished finished = Measure({"silent.wav", "--measure", "si_sdr"});
  EXPECT_THAT(finished.out, testing::ContainsRegex("si_sdr +- +dB +higher +no reference"));
}

TEST_F(MeasureCommandTest, LevelsBlockByBlockSayWhatIsTooShortOrOfAWrongRate) {
  WriteWav("short.wav", Tone(1000, 16384, 16000, 4000));
  const json brief = Figures({"short.wav", "--measure", "loudness,peak,bandwidth"});
  EXPECT_EQ(One(brief, "loudness")["reason"], "too short");
  EXPECT_EQ(One(brief, "bandwidth")["reason"], "too short");
  WriteWav("slow.wav", Tone(100, 16384, 4000, 8000), 4000);
  const json slow = Figures({"slow.wav", "--measure", "loudness,peak"});
  EXPECT_EQ(One(slow, "loudness")["reason"], "a rate that it is not defined for");
  EXPECT_NEAR(One(slow, "peak", 0)["value"].get<double>(), -6.02, 0.01);
}

TEST_F(MeasureCommandTest, AFileThatCannotBeReadDoesNotKeepTheOthersFromIt) {
  WriteWav("tone.wav", Tone(1000, 16384, 16000, 16000));
  WriteFile("text.wav", "no sound at all, but a text\n");
  const json measured = Figures({"gone.wav", "text.wav", "tone.wav", "--measure", "peak"}, 3);
  ASSERT_EQ(measured["figures"].size(), 3U);
  EXPECT_THAT(measured["figures"][0]["reason"].get<std::string>(),
              HasSubstr("gone.wav: No such file"));
  EXPECT_EQ(measured["figures"][1]["value"], nullptr);
  EXPECT_NEAR(measured["figures"][2]["value"].get<double>(), -6.02, 0.01);
  EXPECT_THAT(Measure({"tone.wav", "--against", "gone.wav"}).err,
              HasSubstr("audio_bench: gone.wav: No such file"));
}

TEST_F(MeasureCommandTest, ReadsSamplesWithoutAHeader) {
  WriteFile("tone.pcm", SampleBytes(Tone(1000, 8192, 8000, 16000, 2)));
  const json measured = Figures({"tone.pcm", "--raw", "8000,2,s16", "--measure", "peak"});
  EXPECT_NEAR(One(measured, "peak", 1)["value"].get<double>(), -12.04, 0.01);
  EXPECT_EQ(Measure({"tone.pcm"}).exitCode, 3);
}

TEST_F(MeasureCommandTest, MarksWhatNoSelfTestHasShownToBeRight) {
  setenv("XDG_CACHE_HOME", (m_directory.path() / "cache").c_str(), 1);
  WriteWav("tone.wav", Tone(1000, 16384, 16000, 16000));
  const json measured = Figures({"tone.wav", "--measure", "dc,rtf"});
  EXPECT_EQ(One(measured, "dc", 0)["untrusted"], false);
  EXPECT_EQ(One(measured, "rtf")["untrusted"], true);
  EXPECT_THAT(Measure({"tone.wav", "--measure", "dc,rtf"}).out,
              testing::EndsWith("untrusted, not seen to pass a self-test: rtf\n"));
  EXPECT_THAT(Measure({"tone.wav", "--measure", "dc"}).out, Not(HasSubstr("untrusted")));
  unsetenv("XDG_CACHE_HOME");
}

TEST_F(MeasureCommandTest, RefusesWrongWords) {
  WriteWav("tone.wav", Tone(1000, 16384, 16000, 16000));
  const Finished unknown = Measure({"tone.wav", "--measure", "si_sbr"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err, HasSubstr("no measure is called \"si_sbr\"; did you mean si_sdr?"));
  EXPECT_THAT(Measure({"tone.wav", "--measure", "xyzzy"}).err, HasSubstr("measure --list"));
  EXPECT_EQ(Measure({"tone.wav", "--measure", "peak,,rms"}).exitCode, 2);
  EXPECT_EQ(Measure({}).exitCode, 2);
  EXPECT_EQ(Measure({"tone.wav", "--list"}).exitCode, 2);
  EXPECT_EQ(Measure({"tone.wav", "--json", "-", "--csv", "-"}).exitCode, 2);
}

TEST_F(MeasureCommandTest, ListExplainsEveryMeasure) {
  const Finished finished = Measure({"--list"});
  EXPECT_EQ(finished.exitCode, 0);
  for (const audio_measures::Measure& each : audio_measures::AllMeasures()) {
    EXPECT_THAT(finished.out, HasSubstr("\n    " + std::string(each.definition) + "\n"));
    EXPECT_THAT(finished.out, HasSubstr(std::string(each.source)));
  }
  EXPECT_THAT(finished.out,
              HasSubstr("si_sdr  dB, higher is better, margin 0.1, version 2\n"
                        "    Energy of what the output has of the reference over that of all else "
                        "in it; 120 at most.\n"
                        "    Source: J. Le Roux et al., SDR - half-baked or well done?, ICASSP "
                        "2019\n"
                        "    Input: needs a reference (--against); "));
}

// A cell of a table in Markdown.
std::string Cell(std::string_view text) {
  std::string cell;
  for (const char each : text) cell += each == '|' ? std::string("\\|") : std::string(1, each);
  return "| " + cell + " |";
}

TEST(MeasuresDocument, HasEveryMeasureAsItIs) {
  const std::string document = ReadFile(MEASURES_DOCUMENT);
  size_t rows = 0;
  for (size_t at = 0; (at = document.find("\n| `", at)) != std::string::npos; ++at) ++rows;
  constexpr size_t kKeys = 5 + 2;  // Of a scorer's declaration, and of the JSON.
  EXPECT_EQ(rows, audio_measures::AllMeasures().size() + kKeys);
  for (const audio_measures::Measure& each : audio_measures::AllMeasures()) {
    const std::string start = "\n| `" + std::string(each.name) + "` | " + std::string(each.unit);
    const size_t begin = document.find(start);
    ASSERT_NE(begin, std::string::npos) << start;
    const std::string row = document.substr(begin + 1, document.find('\n', begin + 1) - begin - 1);
    const char* const better = each.better == audio_measures::Better::kHigher  ? "| higher |"
                               : each.better == audio_measures::Better::kLower ? "| lower |"
                                                                               : "| none |";
    EXPECT_THAT(row, HasSubstr(better));
    EXPECT_THAT(row, HasSubstr(Cell(each.definition)));
    EXPECT_THAT(row, HasSubstr(each.source.empty() ? "|  |" : Cell(each.source)));
    char margin[32];
    snprintf(margin, sizeof margin, "%g", each.margin);
    EXPECT_THAT(row, HasSubstr(Cell(margin)));
  }
}

}  // namespace
