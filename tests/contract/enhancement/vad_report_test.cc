// The measures of a voice activity detector and their report.

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <cmath>

#include "bench/enhancement/routines.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

struct Figures {
  double BWSaving = 99, optBWSaving = 99, PESQ = 99, optPESQ = 99, faultyAlarm = 99,
         falseAlarm = 99;
};

Figures Measure(const char* name) {
  Figures f;
  TestMeasureVAD("ref.wav", name, &f.BWSaving, &f.optBWSaving, &f.PESQ, &f.optPESQ, &f.faultyAlarm,
                 &f.falseAlarm);
  return f;
}

// Audio, marker of the detector, marker by hand.
void PutTracks(FakeEngine& engine, const char* name,
               const std::vector<std::array<short, 3>>& samples) {
  FakeWav& wav = engine.wavs[name];
  wav = {8000, 3, {}};
  for (const auto& three : samples)
    wav.samples.insert(wav.samples.end(), three.begin(), three.end());
}

constexpr const char* kDescription = "F:/Stream/vad/input/vad_input_description.txt";
constexpr const char* kHeaderLine =
    "Input filename\t\tBW Saving(%)\topt BW Saving(%)\tPESQ\t\topt PESQ\t\tFaulty "
    "Alarm(dB)\t\tFalse Alarm(dB)\n";

}  // namespace

TEST(TestMeasureVAD, SortsSamplesByTheirMarkers) {
  FakeEngine engine;
  PutTracks(engine, "a/b.wav",
            {{1, 30000, 30000},
             {2, 30000, 30000},
             {3, 30000, 0},
             {4, 0, 30000},
             {5, 0, 0},
             {6, 1, 30000},
             {7, 30000, 29999},
             {8, -1, 0}});

  const Figures f = Measure("a/b.wav");

  EXPECT_EQ(engine.wavs["a/b_opt.wav"].samples, (Samples{1, 2, 0, 4, 0, 0, 0, 0}));
  EXPECT_EQ(engine.wavs["a/b_vad.wav"].samples, (Samples{1, 2, 3, 0, 0, 0, 0, 0}));
  EXPECT_EQ(f.BWSaving, (8.0 - 3) / 8);
  EXPECT_EQ(f.optBWSaving, (8.0 - 3) / 8);
  EXPECT_DOUBLE_EQ(f.faultyAlarm, 20 * log10((1 + 1e-8) / 3));
  EXPECT_DOUBLE_EQ(f.falseAlarm, 20 * log10((1 + 1e-8) / 5));
  EXPECT_EQ(f.PESQ, 0);
  EXPECT_EQ(f.optPESQ, 0);
}

TEST(TestMeasureVAD, OpensItsFilesInOrderAndNeverTheReference) {
  FakeEngine engine;
  PutTracks(engine, "in.wav", {{1, 0, 0}});
  engine.wavs["in.wav"].samples.push_back(7);  // Fewer than three: dropped.

  Measure("in.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(in_opt.wav, 8000, 1)
      WavWriter#2(in_vad.wav, 8000, 1)
      WavReader#1.ReadSamples(3) = 3
      WavWriter#1.WriteSamples(1)
      WavWriter#2.WriteSamples(1)
      WavReader#1.ReadSamples(3) = 1
      ~WavWriter#2
      ~WavWriter#1
      ~WavReader#1
  )"));
}

TEST(TestMeasureVAD, CutsTheLastFourCharactersWhateverTheyAre) {
  for (const auto& [name, stem] : {std::pair("abcdefg", "abc"), std::pair("wave", ""),
                                   std::pair("abc", ""), std::pair("", "")}) {
    FakeEngine engine;
    PutTracks(engine, name, {});
    Measure(name);
    EXPECT_THAT(engine.CallsWith("WavWriter#"),
                testing::Contains("WavWriter#1(" + std::string(stem) + "_opt.wav, 8000, 1)"));
    EXPECT_EQ(engine.wavs.count(std::string(stem) + "_vad.wav"), 1U);
  }
}

TEST(TestMeasureVAD, KeepsAPerfectDetectorFinite) {
  FakeEngine engine;
  std::vector<std::array<short, 3>> samples(100, {1, 30000, 30000});
  samples.resize(300, {1, 0, 0});
  PutTracks(engine, "in.wav", samples);
  const Figures f = Measure("in.wav");
  EXPECT_DOUBLE_EQ(f.faultyAlarm, 20 * log10(1e-8 / 100));
  EXPECT_DOUBLE_EQ(f.falseAlarm, 20 * log10(1e-8 / 200));
  EXPECT_NEAR(f.faultyAlarm, -200, 1e-9);
}

TEST(TestMeasureVAD, IsInfiniteOrNoNumberWhereThereIsNothing) {
  FakeEngine engine;
  PutTracks(engine, "none.wav", {});
  PutTracks(engine, "noise.wav", {{1, 0, 0}, {1, 30000, 0}});
  PutTracks(engine, "speech.wav", {{1, 0, 30000}});
  const Figures none = Measure("none.wav");
  EXPECT_TRUE(std::isnan(none.BWSaving));
  EXPECT_TRUE(std::isnan(none.optBWSaving));
  EXPECT_EQ(none.faultyAlarm, HUGE_VAL);
  EXPECT_EQ(Measure("noise.wav").faultyAlarm, HUGE_VAL);
  EXPECT_EQ(Measure("speech.wav").falseAlarm, HUGE_VAL);
}

// The engine is the child's: files in memory would be in the way of what observes its death.
TEST(TestMeasureVADDeathTest, AbortsUnlessThereAreThreeChannels) {
  const auto measure = [](int channels) {
    FakeEngine engine;
    if (channels > 0) engine.wavs["in.wav"] = {8000, channels, Samples(6)};
    Measure("in.wav");
    exit(0);
  };
  EXPECT_EXIT(measure(2), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(measure(0), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(measure(3), testing::ExitedWithCode(0), "");
}

TEST(TestVAD, MeasuresEveryFileThatTheDescriptionLists) {
  FakeEngine engine;
  engine.PutFile(kDescription, "2\na.wav 2,80,79,300,9,\nb.wav\t0,\n");
  engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, Samples(320, 5)};
  engine.wavs["F:/Stream/vad/input/b.wav"] = {16000, 1, Samples(160, 5)};
  engine.script<VoiceDetectionScript>().detect = [call = 0](const short*, unsigned) mutable {
    return ++call % 2 == 0 ? vadResultIsActive : vadResultIsPassive;
  };

  TestVAD("v1.2");

  // a.wav: frames 1 and 3 are sound, 80..159 and 300..309 are speech.
  char line[200];
  snprintf(line, sizeof line, "a.wav\t\t%04f\t\t%04f\t\t0.000000\t\t0.000000\t\t%04f\t\t%04f\n",
           100 * 160.0 / 320, 100 * 230.0 / 320, 20 * log10(1e-8 / 90),
           20 * log10((70 + 1e-8) / 230));
  EXPECT_EQ(engine.Bytes("F:/Stream/vad/output/report_v1.2.txt"),
            std::string(kHeaderLine) + line +
                "b.wav\t\t100.000000\t\t100.000000\t\t0.000000\t\t0.000000\t\t inf\t\t" +
                "-204.082400\n");
  EXPECT_EQ(engine.wavs["F:/Stream/vad/output/a.wav"].channels, 3);
  EXPECT_THAT(engine.wavs["F:/Stream/vad/output/a_opt.wav"].samples, SizeIs(320));
  EXPECT_THAT(engine.wavs["F:/Stream/vad/output/b_vad.wav"].samples, SizeIs(160));
}

TEST(TestVAD, OpensTheReportBeforeTheDescriptionAndClosesItAfter) {
  FakeEngine engine;
  engine.PutFile(kDescription, "0\n");
  TestVAD("x");
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:/Stream/vad/output/report_x.txt, wt)
      fprintf(F:/Stream/vad/output/report_x.txt, "Input filename\t\tBW Saving(%%)\topt BW Saving(%%)\tPESQ\t\topt PESQ\t\tFaulty Alarm(dB)\t\tFalse Alarm(dB)\n")
      fopen(F:/Stream/vad/input/vad_input_description.txt, rt)
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%d\n") = 1
      fclose(F:/Stream/vad/input/vad_input_description.txt)
      fclose(F:/Stream/vad/output/report_x.txt)
  )"));
}

TEST(TestVAD, ReadsAnEntryFieldByField) {
  FakeEngine engine;
  engine.PutFile(kDescription, "1\na.wav 2,1200,5000,9000,4000,\n");
  engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, {}};
  TestVAD("x");
  EXPECT_THAT(engine.CallsWith("fscanf"), Transcript(R"(
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%d\n") = 1
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%255s") = 1
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%d,") = 1
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%d,%d,") = 2
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "%d,%d,") = 2
      fscanf(F:/Stream/vad/input/vad_input_description.txt, "\n") = 0
  )"));
}

TEST(TestVAD, WritesTheHeaderAloneWithoutADescription) {
  FakeEngine engine;
  TestVAD("x");
  EXPECT_EQ(engine.Bytes("F:/Stream/vad/output/report_x.txt"), kHeaderLine);
}

TEST(TestVAD, EndsAtTheFirstNameThatCannotBeRead) {
  FakeEngine engine;
  engine.PutFile(kDescription, "1000000\na.wav 0,\n");
  engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, {}};
  TestVAD("x");
  EXPECT_THAT(engine.CallsWith("%255s"), SizeIs(2));
}

TEST(TestVAD, ReadsNoPairsForANegativeCount) {
  FakeEngine engine;
  engine.PutFile(kDescription, "1\na.wav -3,\n");
  engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, Samples(80)};
  TestVAD("x");
  EXPECT_THAT(engine.CallsWith("%d,%d,"), IsEmpty());
  EXPECT_EQ(engine.wavs["F:/Stream/vad/output/a.wav"].channels, 3) << "an empty list is a list";
}

TEST(TestVAD, CutsANameThatIsTooLong) {
  FakeEngine engine;
  const std::string name(255, 'n');
  engine.PutFile(kDescription, "1\n" + name + "tail 0,\n");
  engine.wavs["F:/Stream/vad/input/" + name] = {8000, 1, {}};
  TestVAD("x");
  EXPECT_THAT(engine.CallsWith("WavReader#1("), SizeIs(1));
}

TEST(TestVAD, TakesFifteenSegments) {
  FakeEngine engine;
  std::string entry = "1\na.wav 15,";
  for (int i = 0; i < 15; ++i) entry += std::to_string(100 * i) + ",10,";
  engine.PutFile(kDescription, entry + "\n");
  engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, Samples(1600)};
  TestVAD("x");
  const Samples& out = engine.wavs["F:/Stream/vad/output/a.wav"].samples;
  EXPECT_EQ(std::count(out.begin(), out.end(), 30000), 15 * 11);
}

TEST(TestVADDeathTest, AbortsOnMoreSegmentsAndOnAFileThatIsMissing) {
  const auto report = [](const char* description) {
    FakeEngine engine;
    engine.PutFile(kDescription, description);
    engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, {}};
    engine.wavs["F:/Stream/vad/output/a.wav"] = {8000, 3, {}};
    TestVAD("x");
    exit(0);
  };
  EXPECT_EXIT(report("1\na.wav 15,"), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(report("1\na.wav 16,"), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(report("1\nmissing.wav 0,\n"), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(report("0\n"), testing::ExitedWithCode(0), "");
}

// The report is there, and nothing of it has arrived: what was written is lost with the program.
TEST(TestVADDeathTest, LeavesAnEmptyReportWhenItAborts) {
  const auto report = [] {
    FakeEngine engine;
    engine.PutFile(kDescription, "2\na.wav 0,\na.wav 16,");
    engine.wavs["F:/Stream/vad/input/a.wav"] = {8000, 1, Samples(80)};
    signal(SIGABRT, [](int) {
      const FakeEngine& engine = FakeEngine::Current();
      const char* const name = "F:/Stream/vad/output/report_x.txt";
      _exit(engine.HasFile(name) && engine.Bytes(name).empty() ? 7 : 8);
    });
    TestVAD("x");
  };
  EXPECT_EXIT(report(), testing::ExitedWithCode(7), "");
}
