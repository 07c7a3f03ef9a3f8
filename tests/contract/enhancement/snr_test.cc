// Both measures, down to single samples.

#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "bench/enhancement/routines.h"
#include "bench/enhancement/speech_segment.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

constexpr double kStep = 1.0 / 65536;  // What a 16-bit step counts.

Samples Constant(size_t count, short value) { return Samples(count, value); }

Samples Noise(size_t count, int amplitude, unsigned seed) {
  std::mt19937 random(seed);
  Samples noise(count);
  for (short& sample : noise) {
    sample = static_cast<short>(
        static_cast<int>(random() % (2U * static_cast<unsigned>(amplitude))) - amplitude);
  }
  return noise;
}

float Average(const Samples& clean, const Samples& processed) {
  FakeEngine engine;
  engine.PutSamples("clean", clean);
  engine.PutSamples("processed", processed);
  FILE* cf = fopen("clean", "rb");
  FILE* pf = fopen("processed", "rb");
  const float score = MeasureAverageSNR(cf, pf);
  fclose(cf);
  fclose(pf);
  return score;
}

// Of speech, with the files standing `cfStart` and `pfStart` bytes in; the calls it made.
float Speech(int no, const Samples& clean, const Samples& processed,
             std::vector<std::string>* calls = nullptr, long cfStart = 0, long pfStart = 0) {
  FakeEngine engine;
  engine.PutSamples("clean", clean);
  engine.PutSamples("processed", processed);
  FILE* cf = fopen("clean", "rb");
  FILE* pf = fopen("processed", "rb");
  fseek(cf, cfStart, SEEK_SET);
  fseek(pf, pfStart, SEEK_SET);
  engine.calls.clear();
  const float score = MeasureSpeechSNR(no, cf, pf);
  if (calls != nullptr) *calls = engine.calls;
  fclose(cf);
  fclose(pf);
  return score;
}

// A frame of 160 samples that all are `clean` in one file and `clean` + `error` in the other: these
// sums are exact.
double Term(int clean, int error) {
  const double signal = 160 * clean * clean * kStep * kStep;
  return log10(signal / (160 * error * error * kStep * kStep + 1e-7) + 1);
}

// The frame's term on single-precision sums, taken in order.
double TermInSteps(const Samples& clean, const Samples& processed, size_t begin) {
  volatile float signal = 0;
  volatile float error = 0;
  for (size_t i = begin; i < begin + 160; ++i) {
    const volatile float ref = static_cast<float>(clean[i]) / 65536;
    const volatile float difference = static_cast<float>(processed[i]) / 65536 - ref;
    const volatile float refSquare = ref * ref;
    const volatile float square = difference * difference;
    signal = signal + refSquare;
    error = error + square;
  }
  return log10(static_cast<double>(signal) / (static_cast<double>(error) + 1e-7) + 1);
}

}  // namespace

// With a scale of 2^-15 the error of one step would be four times as much against the 1e-7.
TEST(MeasureAverageSNR, CountsAStepAsOneIn65536) {
  EXPECT_EQ(Average(Constant(160, 256), Constant(160, 257)),
            static_cast<float>(Term(256, 1)) * 10.0F);
  EXPECT_NEAR(Average(Constant(160, 256), Constant(160, 257)), 42.501, 0.001);
}

TEST(MeasureAverageSNR, KeepsAPerfectFrameFinite) {
  const double signal = 160 * 1000.0 * 1000 * kStep * kStep;
  EXPECT_EQ(Average(Constant(160, 1000), Constant(160, 1000)),
            static_cast<float>(log10(signal / 1e-7 + 1)) * 10.0F);
}

TEST(MeasureAverageSNR, SumsInSinglePrecision) {
  const Samples clean = Noise(160 * 2000, 9000, 1);
  Samples processed = Noise(160 * 2000, 300, 2);
  for (size_t i = 0; i < clean.size(); ++i)
    processed[i] = static_cast<short>(processed[i] + clean[i]);
  volatile float total = 0;
  double exact = 0;
  for (size_t frame = 0; frame < 2000; ++frame) {
    const double term = TermInSteps(clean, processed, frame * 160);
    total = static_cast<float>(static_cast<double>(total) + term);
    exact += term;
  }
  const volatile float tenfold = total * 10.0F;
  EXPECT_EQ(Average(clean, processed), tenfold / 2000.0F);
  EXPECT_NE(tenfold / 2000.0F, static_cast<float>(exact * 10 / 2000)) << "the signal tells nothing";
}

// After a loud sample each of the soft ones is too small to change a single-precision sum.
TEST(MeasureAverageSNR, LosesSoftSamplesAfterALoudOne) {
  Samples clean = Constant(160, 7);
  clean[0] = -32768;
  const Samples silence(160);
  ASSERT_EQ(TermInSteps(clean, silence, 0), log10(0.25 / (0.25 + 1e-7) + 1));
  EXPECT_EQ(Average(clean, silence), static_cast<float>(TermInSteps(clean, silence, 0)) * 10.0F);
}

TEST(MeasureAverageSNR, CountsSilentFramesWithZeroDecibels) {
  Samples clean = Constant(160, 256);
  clean.resize(480);
  Samples processed = Constant(160, 257);
  processed.resize(480);
  EXPECT_EQ(Average(Constant(160, 0), Constant(160, 0)), 0.0F);
  EXPECT_EQ(Average(clean, processed), static_cast<float>(Term(256, 1)) * 10.0F / 3.0F);
}

TEST(MeasureAverageSNR, StopsWithTheShorterFileAndLeavesPartFramesOut) {
  const float one = static_cast<float>(Term(256, 1)) * 10.0F;
  Samples processed = Constant(319, 257);
  processed.back() = 0;
  EXPECT_EQ(Average(Constant(800, 256), processed), one);
  EXPECT_EQ(Average(Constant(319, 256), Constant(800, 257)), one);

  FakeEngine engine;
  engine.PutSamples("clean", Constant(800, 256));
  engine.PutSamples("processed", Constant(160, 256));
  FILE* cf = fopen("clean", "rb");
  FILE* pf = fopen("processed", "rb");
  engine.calls.clear();
  MeasureAverageSNR(cf, pf);
  EXPECT_THAT(engine.calls, Transcript(R"(
      fread(clean, 320, 1) = 1
      fread(processed, 320, 1) = 1
      fread(clean, 320, 1) = 1
      fread(processed, 320, 1) = 0
  )"));
  fclose(cf);
  fclose(pf);
}

TEST(MeasureAverageSNR, IsNotANumberWithoutAFrame) {
  EXPECT_TRUE(std::isnan(Average(Constant(159, 1), Constant(160, 1))));
  EXPECT_TRUE(std::isnan(MeasureAverageSNR(nullptr, nullptr)));
}

TEST(MeasureSpeechSNR, SeeksEachSegmentAndReadsItsWholeFrames) {
  std::vector<std::string> calls;
  Speech(2, Constant(30000, 256), Constant(30000, 257), &calls, 100, 260);
  const std::string frame = R"(
      fread(clean, 320, 1) = 1
      fread(processed, 320, 1) = 1
  )";
  // Each seek is where the file stood and the segment's start, of two bytes a sample.
  EXPECT_THAT(calls, Transcript(R"(
      ftell(clean) = 100
      ftell(processed) = 260
      fseek(clean, 2726, 0)  # 100 + 2 * 1313
      fseek(processed, 2886, 0)
  )" + Times(5687 / 160, frame) +
                                R"(
      fseek(clean, 14536, 0)  # 100 + 2 * 7218
      fseek(processed, 14696, 0)
  )" + Times(8782 / 160, frame) +
                                R"(
      fseek(clean, 33700, 0)  # 100 + 2 * 16800
      fseek(processed, 33860, 0)
  )" + Times(3759 / 160, frame)));
}

// Every frame has the 160 samples that were read for it: alike frames score alike, however long
// their segment is.
TEST(MeasureSpeechSNR, TakesTheSamplesThatWereRead) {
  volatile float total = 0;
  for (int frame = 0; frame < 35 + 54 + 23; ++frame) {
    total = static_cast<float>(static_cast<double>(total) + Term(256, 1));
  }
  EXPECT_EQ(Speech(2, Constant(30000, 256), Constant(30000, 257)), total * 10.0F / 112.0F);
}

TEST(MeasureSpeechSNR, LeavesOutWhatIsNotSpeech) {
  Samples clean = Constant(30000, 256);
  Samples processed = Constant(30000, 257);
  const float before = Speech(2, clean, processed);
  processed[1312] = 9999;             // Before the first segment,
  processed[1313 + 35 * 160] = 9999;  // after its last whole frame,
  processed[16800 + 3759] = 9999;     // and after the last segment.
  EXPECT_EQ(Speech(2, clean, processed), before);
  processed[1313] = 9999;
  EXPECT_LT(Speech(2, clean, processed), before);
}

// The processed file ends 10 frames into the first segment: every further turn still reads the
// clean one on, and nothing is counted.
TEST(MeasureSpeechSNR, SpendsATurnOnAFailedRead) {
  std::vector<std::string> calls;
  const Samples shortened = Constant(1176 + 10 * 160 + 80, 257);
  const float score = Speech(7, Constant(30000, 256), shortened, &calls);
  volatile float total = 0;
  for (int frame = 0; frame < 10; ++frame) {
    total = static_cast<float>(static_cast<double>(total) + Term(256, 1));
  }
  EXPECT_EQ(score, total * 10.0F / 10.0F);
  EXPECT_THAT(calls, SizeIs(2 + 4 + 2 * (13384 / 160 + 4446 / 160)));
  EXPECT_EQ(calls.back(), "fread(processed, 320, 1) = 0");
  EXPECT_EQ(calls[calls.size() - 2], "fread(clean, 320, 1) = 1");

  Speech(7, shortened, Constant(30000, 256), &calls);
  EXPECT_EQ(calls.back(), "fread(clean, 320, 1) = 0") << "the processed file is not read then";
}

TEST(MeasureSpeechSNR, FindsNothingForASentenceThatIsNotThere) {
  for (const int no : {0, 31, -1}) {
    EXPECT_TRUE(std::isnan(Speech(no, Constant(30000, 1), Constant(30000, 1)))) << no;
  }
  EXPECT_TRUE(std::isnan(MeasureSpeechSNR(1, nullptr, nullptr)));
}

TEST(SpeechSegments, AreTheMarkedOnes) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const auto& row : g_speechSegment) {
    for (const int32_t value : row) hash = (hash ^ static_cast<uint32_t>(value)) * 0x100000001b3;
    EXPECT_EQ(row[12], -1) << "six pairs at the most, then the end";
  }
  EXPECT_EQ(hash, 0xec33e3dbc01d2018U);
  EXPECT_EQ(g_speechSegment[0][0], 1300);
  EXPECT_EQ(g_speechSegment[29][3], 4001);
}
