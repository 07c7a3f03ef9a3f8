// The suppressor over one file and over the corpus.

#include <gmock/gmock.h>

#include "bench/enhancement/routines.h"
#include "fake_engine/enhancement/audio_denoise.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

constexpr const char* kIn = "NOIZEUS/in/airport/0dB/sp01_airport_sn0.pcm";
constexpr const char* kOut = "NOIZEUS/out/sp01_airport_sn0_denoise.pcm";
constexpr const char* kOutLight = "NOIZEUS/out/sp01_airport_sn0_denoise_light.pcm";

}  // namespace

TEST(TestDenoiseProcess, CleansWholeBlocksThenReleasesLastOpenedFirst) {
  FakeEngine engine;
  engine.wavs["ns_in.wav"] = {16000, 1, Samples(160 + 160 + 7, 1)};
  engine.script<DenoiseScript>().process = [](short* block, int samples) {
    std::fill_n(block, samples, short{5});
  };

  TestDenoiseProcess();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(ns_in.wav)
      CAudioDenoise#1(16000, 1)
      WavWriter#1(ns_out.wav, 16000, 1)
      CAudioDenoise#1.EnableLightDenoise(false)
      WavReader#1.ReadSamples(160) = 160
      CAudioDenoise#1.Process
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 160
      CAudioDenoise#1.Process
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 7  # Dropped.
      ~WavWriter#1
      ~CAudioDenoise#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["ns_out.wav"].samples, Samples(320, 5));
}

TEST(TestDenoiseProcess, TruncatesTheBlockOfAllChannels) {
  FakeEngine engine;
  engine.wavs["ns_in.wav"] = {22050, 2, Samples(441, 1)};
  TestDenoiseProcess();
  EXPECT_THAT(engine.CallsWith("ReadSamples"), Transcript(R"(
      WavReader#1.ReadSamples(441) = 441
      WavReader#1.ReadSamples(441) = 0
  )"));
}

TEST(TestDenoiseProcess, LeavesAnEmptyFileWhenTheInputIsMissing) {
  FakeEngine engine;
  TestDenoiseProcess();
  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_THAT(engine.wavs["ns_out.wav"].samples, IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestDenoiseProcessNoizeus, TakesAFreshSuppressorForEachFile) {
  FakeEngine engine;
  engine.PutSamples(kIn, Samples(80 + 79, 1));
  engine.script<DenoiseScript>().process = [](short* block, int samples) {
    EXPECT_EQ(samples, 80);
    std::fill_n(block, samples, short{5});
  };

  TestDenoiseProcessNoizeus();

  EXPECT_THAT(std::vector<std::string>(engine.calls.begin(), engine.calls.begin() + 11),
              Transcript(R"(
      fopen(NOIZEUS/in/airport/0dB/sp01_airport_sn0.pcm, rb)
      fopen(NOIZEUS/out/sp01_airport_sn0_denoise.pcm, wb)
      CAudioDenoise#1(8000, 1)
      CAudioDenoise#1.EnableLightDenoise(false)
      fread(NOIZEUS/in/airport/0dB/sp01_airport_sn0.pcm, 2, 80) = 80
      CAudioDenoise#1.Process
      fwrite(NOIZEUS/out/sp01_airport_sn0_denoise.pcm, 2, 80)
      fread(NOIZEUS/in/airport/0dB/sp01_airport_sn0.pcm, 2, 80) = 79  # Dropped.
      fclose(NOIZEUS/in/airport/0dB/sp01_airport_sn0.pcm)
      fclose(NOIZEUS/out/sp01_airport_sn0_denoise.pcm)
      ~CAudioDenoise#1
  )"));
  EXPECT_EQ(engine.Values<short>(kOut), Samples(80, 5));
  EXPECT_EQ(engine.Values<short>(kOutLight), Samples(80, 5));
  EXPECT_THAT(engine.CallsWith("CAudioDenoise#1920(8000, 1)"), SizeIs(1));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestDenoiseProcessNoizeus, CleansTheCorpusInNormalModeThenInLightMode) {
  FakeEngine engine;
  TestDenoiseProcessNoizeus();
  std::vector<std::string> expected;
  for (const char* const mode : {"denoise", "denoise_light"}) {
    for (const std::string noise :
         {"airport", "babble", "car", "exhibition", "restaurant", "station", "street", "train"}) {
      for (const std::string level : {"0", "5", "10", "15"}) {
        for (int i = 1; i <= 30; ++i) {
          const std::string name = "sp" + std::string(i < 10 ? "0" : "") + std::to_string(i) + "_" +
                                   noise + "_sn" + level;
          expected.push_back("fopen(NOIZEUS/in/" + noise + "/" + level + "dB/" + name +
                             ".pcm, rb) = null");
          expected.push_back("fopen(NOIZEUS/out/" + name + "_" + mode + ".pcm, wb)");
        }
      }
    }
  }
  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(expected));
  EXPECT_THAT(engine.CallsWith("EnableLightDenoise(false)"), SizeIs(960));
  EXPECT_THAT(engine.CallsWith("EnableLightDenoise(true)"), SizeIs(960));
  EXPECT_EQ(engine.CallsWith("EnableLightDenoise")[959],
            "CAudioDenoise#960.EnableLightDenoise(false)");
}

TEST(TestDenoiseProcessNoizeus, LeavesAnEmptyFileForLessThanABlock) {
  FakeEngine engine;
  engine.PutSamples(kIn, Samples(79, 1));
  TestDenoiseProcessNoizeus();
  EXPECT_TRUE(engine.HasFile(kOut));
  EXPECT_EQ(engine.Bytes(kOut), "");
}
