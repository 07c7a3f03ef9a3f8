// The picture of a recording.

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kRate = 16000;

class PlotTest : public testing::Test {
 protected:
  static Finished Measure(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "measure"});
    return RunProcess(words);
  }

  static std::string Plot(std::vector<std::string> words) {
    words.insert(words.end(), {"--plot", "plot.svg"});
    const Finished finished = Measure(words);
    EXPECT_EQ(finished.exitCode, 0) << finished.err;
    return ReadFile("plot.svg");
  }

  // Two seconds of a tone, then two that are a tenth as loud.
  static std::vector<short> Falling(double frequency) {
    std::vector<short> samples = Tone(frequency, 20000, kRate, 4 * kRate);
    for (size_t i = samples.size() / 2; i < samples.size(); ++i) {
      samples[i] = static_cast<short>(samples[i] / 10);
    }
    return samples;
  }

  static void Write(const std::string& path, const std::vector<short>& samples,
                    uint16_t channels = 1) {
    WriteFile(path, WavBytes({.channels = channels, .rate = kRate}, samples));
  }

  TemporaryDirectory m_directory;
};

// The data of the paths of this colour.
std::vector<std::string> Paths(const std::string& svg, const std::string& attribute) {
  std::vector<std::string> paths;
  std::istringstream lines(svg);
  for (std::string line; std::getline(lines, line);) {
    const size_t data = line.find(" d=\"");
    if (!line.starts_with("<path") || line.find(attribute) == std::string::npos) continue;
    paths.push_back(line.substr(data + 4, line.find('"', data + 4) - data - 4));
  }
  return paths;
}

struct Place {
  double x;
  double y;
};

// Where the commands M and L of a path lead.
std::vector<Place> Places(const std::string& path) {
  std::vector<Place> places;
  const std::regex command("[ML]([-0-9.]+) ([-0-9.]+)");
  for (std::sregex_iterator each(path.begin(), path.end(), command), end; each != end; ++each) {
    places.push_back({std::stod((*each)[1]), std::stod((*each)[2])});
  }
  return places;
}

constexpr const char* kStrongest = "fill=\"#fcf0aa\"";
constexpr const char* kLines = "stroke=\"#1f4e79\"";

TEST_F(PlotTest, TheSpectrumIsStrongestWhereTheToneIs) {
  Write("tone.wav", Falling(2000));
  const std::string svg = Plot({"tone.wav"});
  const std::vector<std::string> strongest = Paths(svg, kStrongest);
  ASSERT_EQ(strongest.size(), 1U);
  const std::vector<Place> places = Places(strongest[0]);
  ASSERT_GT(places.size(), 50U);
  for (const Place& each : places) {
    EXPECT_NEAR(each.y, 74, 2);  // 2 of 8 kHz, of 100 rows from the top.
    EXPECT_LE(each.x, 126);      // In the first half of 4 s in blocks of 16 ms.
  }
}

TEST_F(PlotTest, TheWaveAndTheLevelFallTogether) {
  Write("tone.wav", Falling(500));
  const std::string svg = Plot({"tone.wav", "--measure", "rms"});
  EXPECT_THAT(svg, HasSubstr("tone.wav: WAVE, 16-bit, 16000 Hz, mono, 4.00 s"));
  EXPECT_THAT(svg, HasSubstr(">rms, dBFS</text>"));
  const std::vector<std::string> lines = Paths(svg, kLines);
  ASSERT_EQ(lines.size(), 2U);
  const std::vector<Place> wave = Places(lines[0]);
  ASSERT_EQ(wave.size(), 800U);
  EXPECT_NEAR(wave[100].y, 58 + 60 * (1 - 20000.0 / 32768) - 0.5, 0.5);
  EXPECT_NEAR(wave[700].y, 58 + 60 * (1 - 2000.0 / 32768) - 0.5, 0.5);
  const std::vector<Place> level = Places(lines[1]);
  ASSERT_EQ(level.size(), 13U);  // A second each, every quarter of one.
  EXPECT_NEAR(level.front().x, 76 + 800 * 0.5 / 4, 0.1);
  EXPECT_NEAR(level.back().x, 76 + 800 * 3.5 / 4, 0.1);
  // From -7.3 to -27.3 dBFS, with 8 % of room at both ends.
  EXPECT_NEAR(level.back().y - level.front().y, 120 / 1.16, 0.5);
}

TEST_F(PlotTest, FollowsWhatIsLateBesideIt) {
  std::vector<short> late(kRate / 2, 0);
  const std::vector<short> clean = Falling(440);
  late.insert(late.end(), clean.begin(), clean.end());
  Write("clean.wav", clean);
  Write("late.wav", late);
  const std::string svg = Plot({"late.wav", "--against", "clean.wav"});
  EXPECT_THAT(svg, AllOf(HasSubstr(">rms, dBFS<"), HasSubstr(">seg_snr, dB<")));
  EXPECT_THAT(svg, Not(HasSubstr("no figure")));
  const std::vector<std::string> lines = Paths(svg, kLines);
  ASSERT_EQ(lines.size(), 3U);
  // But for the half-second at the start, all of it is as it should be: 35 dB.
  EXPECT_GT(Places(lines[2]).size(), 8U);
}

TEST_F(PlotTest, HasAPanelForEachChannelAndSaysWhatIsNotThere) {
  Write("short.wav", Tone(500, 8000, kRate, kRate / 2, 2), 2);
  const std::string svg = Plot({"short.wav", "--measure", "rms,si_sdr"});
  EXPECT_THAT(svg, AllOf(HasSubstr(">wave, left<"), HasSubstr(">wave, right<")));
  EXPECT_THAT(svg, HasSubstr("no figure: too short"));
  Write("a<b&.wav", Tone(500, 8000, kRate, 2 * kRate));
  EXPECT_THAT(Plot({"a<b&.wav", "--measure", "si_sdr"}),
              AllOf(HasSubstr(">a&lt;b&amp;.wav: "), HasSubstr("no figure: no reference")));
  Write("empty.wav", {});
  EXPECT_THAT(Plot({"empty.wav"}), HasSubstr("</svg>"));
}

TEST_F(PlotTest, IsOfOneFileThatCanBeRead) {
  Write("tone.wav", Falling(500));
  const Finished two = Measure({"tone.wav", "tone.wav", "--plot", "plot.svg"});
  EXPECT_EQ(two.exitCode, 2);
  EXPECT_THAT(two.err, HasSubstr("--plot draws one file, and there are 2"));
  EXPECT_EQ(Measure({"none.wav", "--plot", "plot.svg"}).exitCode, 3);
  EXPECT_THAT(ReadFile("plot.svg"), IsEmpty());
  const Finished both = Measure({"tone.wav", "--plot", "-", "--json", "-"});
  EXPECT_EQ(both.exitCode, 2);
}

}  // namespace
