// The batch over the corpus.

#include <gmock/gmock.h>

#include "bench/enhancement/align.h"
#include "bench/enhancement/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

const std::vector<std::string> kNoises = {"airport",    "babble",  "car",    "exhibition",
                                          "restaurant", "station", "street", "train"};

std::vector<std::string> ResultNames(const std::string& measure, const std::string& algorithm) {
  std::vector<std::string> names;
  for (const std::string& noise : kNoises) {
    names.push_back("fopen(NOIZEUS/out/result_" + measure + "_" + algorithm + "_" + noise +
                    ".txt, wt)");
  }
  return names;
}

// The names that are opened for reading, in order.
std::vector<std::string> Opened(const FakeEngine& engine, const std::string& part) {
  std::vector<std::string> names;
  for (const std::string& call : engine.CallsWith("fopen(")) {
    if (call.find(", rb)") != std::string::npos && call.find(part) != std::string::npos) {
      names.push_back(call.substr(6, call.find(',') - 6));
    }
  }
  return names;
}

}  // namespace

TEST(TestNoizeusEx, OpensAlignsScoresAndClosesSentenceBySentence) {
  FakeEngine engine;
  engine.PutSamples("NOIZEUS/in/clean/sp01.pcm", Samples(160, 256));
  engine.PutSamples("NOIZEUS/out/sp01_airport_sn0_aec.pcm", Samples(48 + 160, 257));

  TestNoizeusEx(0, 0);

  // The score of a missing sentence is not a number, of whatever sign.
  for (std::string& call : engine.calls) {
    const size_t at = call.find("-nan");
    if (at != std::string::npos) call.erase(at, 1);
  }
  EXPECT_THAT(std::vector<std::string>(engine.calls.begin(), engine.calls.begin() + 17),
              Transcript(R"(
      fopen(NOIZEUS/out/result_avg_snr_aec_airport.txt, wt)
      fopen(NOIZEUS/in/clean/sp01.pcm, rb)
      fopen(NOIZEUS/out/sp01_airport_sn0_aec.pcm, rb)
      fseek(NOIZEUS/in/clean/sp01.pcm, 0, 0)
      fseek(NOIZEUS/out/sp01_airport_sn0_aec.pcm, 96, 0)
      fread(NOIZEUS/in/clean/sp01.pcm, 320, 1) = 1
      fread(NOIZEUS/out/sp01_airport_sn0_aec.pcm, 320, 1) = 1
      fread(NOIZEUS/in/clean/sp01.pcm, 320, 1) = 0
      fprintf(NOIZEUS/out/result_avg_snr_aec_airport.txt, "%f ", 42.501431)
      fclose(NOIZEUS/in/clean/sp01.pcm)
      fclose(NOIZEUS/out/sp01_airport_sn0_aec.pcm)
      fopen(NOIZEUS/in/clean/sp02.pcm, rb) = null
      fopen(NOIZEUS/out/sp02_airport_sn0_aec.pcm, rb) = null
      fprintf(NOIZEUS/out/result_avg_snr_aec_airport.txt, "%f ", nan)
      fopen(NOIZEUS/in/clean/sp03.pcm, rb) = null
      fopen(NOIZEUS/out/sp03_airport_sn0_aec.pcm, rb) = null
      fprintf(NOIZEUS/out/result_avg_snr_aec_airport.txt, "%f ", nan)
  )"));
}

TEST(TestNoizeusEx, WalksNoisesThenLevelsThenSentences) {
  FakeEngine engine;
  TestNoizeusEx(2, 1);
  std::vector<std::string> expected;
  for (const std::string& noise : kNoises) {
    for (const char* const level : {"0", "5", "10", "15"}) {
      for (int i = 1; i <= 30; ++i) {
        const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
        expected.push_back("NOIZEUS/in/clean/sp" + number + ".pcm");
        expected.push_back("NOIZEUS/out/sp" + number + "_" + noise + "_sn" + level +
                           "_denoise.pcm");
      }
    }
  }
  EXPECT_THAT(Opened(engine, ""), Transcript(expected));
  EXPECT_THAT(engine.CallsWith(", wt)"), Transcript(ResultNames("speech_snr", "denoise")));
}

TEST(TestNoizeusEx, ReadsTheNoisySentencesThemselvesForOff) {
  FakeEngine engine;
  TestNoizeusEx(4, 0);
  EXPECT_THAT(Opened(engine, "/out/"), IsEmpty());
  EXPECT_THAT(Opened(engine, "off"), IsEmpty());
  const std::vector<std::string> noisy = Opened(engine, "street/15dB");
  ASSERT_THAT(noisy, SizeIs(30));
  EXPECT_EQ(noisy.back(), "NOIZEUS/in/street/15dB/sp30_street_sn15.pcm");
  EXPECT_THAT(engine.CallsWith(", wt)"), Transcript(ResultNames("avg_snr", "off")));
}

TEST(TestNoizeusEx, NamesTheAlgorithmsAndTheirShifts) {
  const std::tuple<int, std::string, int> algorithms[] = {
      {0, "aec", 48}, {1, "denoise_light", 80}, {2, "denoise", 80}, {3, "mcra2", 128}};
  for (const auto& [ns, name, shift] : algorithms) {
    FakeEngine engine;
    const std::string processed = "NOIZEUS/out/sp01_airport_sn0_" + name + ".pcm";
    engine.PutSamples("NOIZEUS/in/clean/sp01.pcm", Samples(160, 256));
    engine.PutSamples(processed, Samples(400, 257));
    TestNoizeusEx(ns, 1);
    const std::vector<std::string> seeks = engine.CallsWith("fseek(" + processed);
    ASSERT_EQ(seeks.size(), 6U) << name;  // Sentence 1 has five segments.
    EXPECT_EQ(seeks[0], "fseek(" + processed + ", " + std::to_string(2 * shift) + ", 0)");
    EXPECT_EQ(seeks[1], "fseek(" + processed + ", " + std::to_string(2 * (shift + 1300)) + ", 0)")
        << "the shift stays with each segment";
    EXPECT_EQ(engine.CallsWith("fseek(NOIZEUS/in/clean/sp01.pcm").front(),
              "fseek(NOIZEUS/in/clean/sp01.pcm, 0, 0)");
  }
}

TEST(Align, SkipsTheLagOfEitherFile) {
  FakeEngine engine;
  engine.PutSamples("clean", Samples(100));
  engine.PutSamples("processed", Samples(100));
  harness::StdioFile clean("clean", "rb");
  harness::StdioFile processed("processed", "rb");
  bench::Align(clean, processed, 48);
  bench::Align(clean, processed, -30);
  bench::Align(clean, processed, 0);
  EXPECT_THAT(engine.CallsWith("fseek"), Transcript(R"(
      fseek(clean, 0, 0)
      fseek(processed, 96, 0)
      fseek(clean, 60, 0)
      fseek(processed, 0, 0)
      fseek(clean, 0, 0)
      fseek(processed, 0, 0)
  )"));
}

TEST(TestNoizeusEx, WritesFourLinesOfThirtyFigures) {
  FakeEngine engine;
  for (int i = 1; i <= 30; ++i) {
    const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
    engine.PutSamples("NOIZEUS/in/clean/sp" + number + ".pcm",
                      Samples(160, static_cast<short>(256 * i)));
    for (const char* const level : {"0", "5", "10", "15"}) {
      engine.PutSamples(
          "NOIZEUS/in/car/" + std::string(level) + "dB/sp" + number + "_car_sn" + level + ".pcm",
          Samples(160, static_cast<short>(256 * i + 1)));
    }
  }

  TestNoizeusEx(4, 0);

  const std::string line =
      "42.501431 48.521847 52.043640 54.542397 56.480595 58.064217 59.403152 60.562988 61.586037 "
      "62.501186 "
      "63.329041 64.084808 64.780052 65.423744 66.023010 66.583588 67.110168 67.606636 68.076256 "
      "68.521790 "
      "68.945572 69.349640 69.735741 70.105408 70.459984 70.800652 71.128456 71.444344 71.749146 "
      "72.043610 \n";
  EXPECT_EQ(engine.Bytes("NOIZEUS/out/result_avg_snr_off_car.txt"), line + line + line + line);
  // The end of a line is written by itself, after the 30th figure.
  const std::vector<std::string> writes = engine.CallsWith("_off_car.txt");
  ASSERT_THAT(writes, SizeIs(1 + 4 * 31 + 1));
  EXPECT_EQ(writes[30], "fprintf(NOIZEUS/out/result_avg_snr_off_car.txt, \"%f \", 72.043610)");
  EXPECT_EQ(writes[31], "fprintf(NOIZEUS/out/result_avg_snr_off_car.txt, \"\\n\")");
  EXPECT_THAT(engine.Bytes("NOIZEUS/out/result_avg_snr_off_train.txt"),
              MatchesRegex("(((-nan|nan) )+\n)+"));
}

TEST(TestNoizeusEx, ClosesEachResultBeforeTheNextIsOpened) {
  FakeEngine engine;
  TestNoizeusEx(4, 2);
  std::vector<std::string> expected;
  for (const std::string& noise : kNoises) {
    expected.push_back("fopen(NOIZEUS/out/result__off_" + noise + ".txt, wt)");
    expected.push_back("fclose(NOIZEUS/out/result__off_" + noise + ".txt)");
  }
  std::vector<std::string> calls;
  for (const std::string& call : engine.CallsWith("NOIZEUS/out/result__off_")) {
    if (call.find("fprintf") != 0) calls.push_back(call);
  }
  EXPECT_THAT(calls, Transcript(expected));
}

TEST(TestNoizeusEx, WritesZerosForAMeasureThatIsNone) {
  for (const int ms : {-1, 2}) {
    FakeEngine engine;
    engine.PutSamples("NOIZEUS/in/clean/sp01.pcm", Samples(160, 256));
    TestNoizeusEx(4, ms);
    EXPECT_THAT(engine.CallsWith(", wt)"), Transcript(ResultNames("", "off")));
    EXPECT_THAT(Opened(engine, ""), SizeIs(2 * 960)) << "the files are opened all the same";
    std::string line;
    for (int i = 0; i < 30; ++i) line += "0.000000 ";
    EXPECT_EQ(engine.Bytes("NOIZEUS/out/result__off_car.txt"),
              line + "\n" + line + "\n" + line + "\n" + line + "\n");
    EXPECT_THAT(engine.CallsWith("fread"), IsEmpty());
  }
}

TEST(TestNoizeusEx, FindsNothingForAnAlgorithmThatIsNone) {
  for (const int ns : {-1, 5, 1000000}) {
    FakeEngine engine;
    TestNoizeusEx(ns, 0);
    EXPECT_THAT(engine.CallsWith(", wt)"), Transcript(ResultNames("avg_snr", "")));
    EXPECT_EQ(Opened(engine, "/out/").front(), "NOIZEUS/out/sp01_airport_sn0_.pcm");
  }
}

TEST(TestNoizeusEx, GoesOnWhereTheResultsCannotBeWritten) {
  FakeEngine engine;
  engine.unwritable = {"NOIZEUS/out/result_avg_snr_off_airport.txt"};
  TestNoizeusEx(4, 0);
  EXPECT_THAT(Opened(engine, ""), SizeIs(2 * 960));
  EXPECT_THAT(engine.CallsWith("_off_airport.txt"), SizeIs(1));
  EXPECT_TRUE(engine.HasFile("NOIZEUS/out/result_avg_snr_off_train.txt"));
}

TEST(TestNoizeusEx, PrintsNothing) {
  FakeEngine engine;
  TestNoizeusEx(4, 0);
  EXPECT_THAT(engine.calls, Each(Not(HasSubstr("stdout"))));
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
}

TEST(TestNoizeus, ScoresEveryAlgorithmWithBothMeasures) {
  FakeEngine engine;
  TestNoizeus();
  std::vector<std::string> expected;
  for (const char* const algorithm : {"aec", "denoise_light", "denoise", "mcra2", "off"}) {
    for (const char* const measure : {"avg_snr", "speech_snr"}) {
      const std::vector<std::string> names = ResultNames(measure, algorithm);
      expected.insert(expected.end(), names.begin(), names.end());
    }
  }
  EXPECT_THAT(engine.CallsWith(", wt)"), Transcript(expected));
}
