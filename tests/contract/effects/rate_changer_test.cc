#include "fake_engine/effects/rate_changer.h"

#include <gmock/gmock.h>

#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/platform/paths.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

// Each SetRatio with the number of blocks processed before it.
std::vector<std::string> Ratios(const FakeEngine& engine) {
  std::vector<std::string> ratios;
  int block = 0;
  for (const std::string& call : engine.calls) {
    if (call.find(".Process(") != std::string::npos) ++block;
    const size_t at = call.find("SetRatio(");
    if (at != std::string::npos) ratios.push_back(std::to_string(block) + " " + call.substr(at));
  }
  return ratios;
}

}  // namespace

TEST(TestRateChanger, SetsUpInOrderChangesWholeBlocksAndLeavesTheChangerAlive) {
  FakeEngine engine;
  engine.script<PathsScript>().documents = "/docs/";
  Shorts in(882 + 882 + 881);
  std::iota(in.begin(), in.end(), short{0});
  engine.wavs["/docs/test.wav"] = {44100, 2, in};

  TestRateChanger();

  EXPECT_THAT(engine.calls, Transcript(R"(
      GetIosDocPath()
      WavReader#1(/docs/test.wav)
      GetIosDocPath()
      WavWriter#1(/docs/rate.wav, 44100, 2)
      RateChanger#1(true)
      RateChanger#1.SetEnabled(true)
      RateChanger#1.SetRatio(1)
      RateChanger#1.SetFsAndCh(44100, 2)
      WavReader#1.ReadSamples(882) = 882
      RateChanger#1.Process(@1, 441, 2, 0 bytes) = 1764 bytes
      WavWriter#1.WriteSamples(882)
      WavReader#1.ReadSamples(882) = 882
      RateChanger#1.Process(@1, 441, 2, 0 bytes) = 1764 bytes
      WavWriter#1.WriteSamples(882)
      WavReader#1.ReadSamples(882) = 881
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["/docs/rate.wav"].samples, Shorts(in.begin(), in.begin() + 1764));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("RateChanger", 1)));
}

TEST(TestRateChanger, SweepsTheRatioEvery500BlocksWithOneBound) {
  FakeEngine engine;
  engine.wavs["test.wav"] = {8000, 1, Shorts(3001 * 80)};

  TestRateChanger();

  EXPECT_THAT(Ratios(engine), ElementsAre("0 SetRatio(1)", "500 SetRatio(2)", "1000 SetRatio(3)",
                                          "1500 SetRatio(2)", "2000 SetRatio(1)",
                                          "2500 SetRatio(2)", "3000 SetRatio(3)"));
}

TEST(TestRateChanger, StaysAtOneInLessThanFiveSeconds) {
  FakeEngine engine;
  engine.wavs["test.wav"] = {8000, 1, Shorts(499 * 80)};

  TestRateChanger();

  EXPECT_THAT(Ratios(engine), ElementsAre("0 SetRatio(1)"));
}

TEST(TestRateChanger, SetsTheRatioAlsoAfterTheLastBlock) {
  FakeEngine engine;
  engine.wavs["test.wav"] = {8000, 1, Shorts(500 * 80)};

  TestRateChanger();

  EXPECT_THAT(Ratios(engine), ElementsAre("0 SetRatio(1)", "500 SetRatio(2)"));
}

TEST(TestRateChanger, WritesWhatIsReadyWhichMayBeNothing) {
  FakeEngine engine;
  engine.wavs["test.wav"] = {16000, 1, Shorts(3 * 160)};
  int block = 0;
  engine.script<RateChangerScript>().process = [&](const short*, int, std::string& out) {
    const size_t bytes[] = {0, 641, 4};
    out = std::string(bytes[block++], 'a');
  };

  TestRateChanger();

  EXPECT_THAT(engine.CallsWith("WriteSamples"), Transcript(R"(
      WavWriter#1.WriteSamples(0)
      WavWriter#1.WriteSamples(320)
      WavWriter#1.WriteSamples(2)
  )"));
}

// 22050 Hz stereo: 441 samples are read, 220 of each channel processed.
TEST(TestRateChanger, TruncatesTheBlock) {
  FakeEngine engine;
  engine.wavs["test.wav"] = {22050, 2, Shorts(441)};

  TestRateChanger();

  EXPECT_THAT(engine.CallsWith("Process"),
              ElementsAre("RateChanger#1.Process(@1, 220, 2, 0 bytes) = 880 bytes"));
}

TEST(TestRateChanger, WritesAnEmptyFileWhenTheInputIsMissing) {
  FakeEngine engine;

  TestRateChanger();

  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("SetFsAndCh"), ElementsAre("RateChanger#1.SetFsAndCh(0, 0)"));
  EXPECT_THAT(engine.wavs["rate.wav"].samples, IsEmpty());
}
