#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/sound_process.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

Shorts Ramp(size_t samples) {
  Shorts ramp(samples);
  std::iota(ramp.begin(), ramp.end(), short{0});
  return ramp;
}

// The two functions that the tests call alike.
struct Case {
  int (*routine)();
  const char* function;
  const char* flag;
};

class SoundProcessTest : public testing::TestWithParam<Case> {
 protected:
  // How a call is recorded.
  std::string Call(const std::string& format, unsigned samples, int code, unsigned produced) const {
    return GetParam().function + ("(" + format) + ", @1, " + std::to_string(samples) +
           ", @2, 8192" + GetParam().flag + ") = " + std::to_string(code) + ", " +
           std::to_string(produced);
  }
};

}  // namespace

TEST_P(SoundProcessTest, ProcessesWholeBlocksOf30MsAndClosesTheWriterFirst) {
  FakeEngine engine;
  engine.wavs["whenold_8000_1.wav"] = {8000, 1, Ramp(240 + 240 + 239)};

  EXPECT_EQ(GetParam().routine(), 0);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(whenold_8000_1.wav)
      WavWriter#1(out.wav, 8000, 1)
  )" + Times(2, "WavReader#1.ReadSamples(240) = 240\n" + Call("8000, 1", 240, 0, 240) + R"(
      WavWriter#1.WriteSamples(240)
  )") + R"(
      WavReader#1.ReadSamples(240) = 239  # Dropped.
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["out.wav"].samples, Ramp(480));
}

TEST_P(SoundProcessTest, WritesAsManySamplesAsWereProduced) {
  FakeEngine engine;
  engine.wavs["whenold_8000_1.wav"] = {16000, 2, Shorts(2 * 960)};
  int block = 0;
  engine.script<SoundProcessScript>().process = [&](const short*, unsigned, short* out,
                                                    unsigned* outSamples) {
    *outSamples = ++block == 1 ? 700 : 1200;
    std::fill_n(out, *outSamples, static_cast<short>(block));
    return 0;
  };

  EXPECT_EQ(GetParam().routine(), 0);

  EXPECT_THAT(engine.CallsWith("SoundProcess"),
              Transcript(Call("16000, 2", 960, 0, 700) + "\n" + Call("16000, 2", 960, 0, 1200)));
  Shorts expected(700, 1);
  expected.resize(1900, 2);
  EXPECT_EQ(engine.wavs["out.wav"].samples, expected);
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
}

// 22050 Hz mono: three times 220 samples, not 661.
TEST_P(SoundProcessTest, TakesThreeTruncatedBlocksOf10Ms) {
  FakeEngine engine;
  engine.wavs["whenold_8000_1.wav"] = {22050, 1, Shorts(661)};

  GetParam().routine();

  EXPECT_THAT(engine.CallsWith("SoundProcess"), ElementsAre(Call("22050, 1", 660, 0, 660)));
}

// The line names AccelerateSoundProcess in both routines.
TEST_P(SoundProcessTest, ReportsAnErrorUnderOneNameAndWritesTheCountThatWasLeft) {
  FakeEngine engine;
  engine.wavs["whenold_8000_1.wav"] = {8000, 1, Shorts(4 * 240, 9)};
  int block = 0;
  engine.script<SoundProcessScript>().process = [&](const short*, unsigned, short* out,
                                                    unsigned* outSamples) {
    ++block;
    if (block == 1) return -7;  // Touches nothing: the count is still the room.
    *outSamples = block == 3 ? 0 : 2;
    if (block == 2) std::fill_n(out, 2, short{5});
    return block == 2 ? 1 : -block;
  };

  EXPECT_EQ(GetParam().routine(), 0);

  EXPECT_THAT(engine.CallsWith("printf"), Transcript(R"(
      printf("error in AccelerateSoundProcess, %d\n", -7)
      printf("error in AccelerateSoundProcess, %d\n", -3)
      printf("error in AccelerateSoundProcess, %d\n", -4)
  )"));
  EXPECT_THAT(engine.CallsWith("WriteSamples"), Transcript(R"(
      WavWriter#1.WriteSamples(8192)
      WavWriter#1.WriteSamples(2)
      WavWriter#1.WriteSamples(0)
      WavWriter#1.WriteSamples(2)
  )"));
  Shorts expected(8192, 0);
  expected.resize(8196, 5);
  EXPECT_EQ(engine.wavs["out.wav"].samples, expected);
}

TEST_P(SoundProcessTest, WritesNoMoreThanItsArrayHolds) {
  FakeEngine engine;
  engine.wavs["whenold_8000_1.wav"] = {8000, 1, Shorts(240)};
  engine.script<SoundProcessScript>().process = [](const short*, unsigned, short*,
                                                   unsigned* outSamples) {
    *outSamples = 4000000000U;
    return 0;
  };

  GetParam().routine();

  EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(8192));
}

// 8192 samples are no multiple of 3: the largest block that fits has 8190, the next one 8193.
TEST_P(SoundProcessTest, TakesNoBlockBeyondItsArray) {
  for (const auto& [rate, blocks] : {std::pair(273000, 1U), {273100, 0U}}) {
    FakeEngine engine;
    engine.wavs["whenold_8000_1.wav"] = {rate, 1, Ramp(8193)};

    GetParam().routine();

    EXPECT_THAT(engine.CallsWith(GetParam().function), SizeIs(blocks)) << rate;
  }
}

TEST_P(SoundProcessTest, EndsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  EXPECT_EQ(GetParam().routine(), 0);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(whenold_8000_1.wav)
      WavWriter#1(out.wav, 0, 0)
      ~WavWriter#1
      ~WavReader#1
  )"));
}

INSTANTIATE_TEST_SUITE_P(, SoundProcessTest,
                         testing::Values(Case{AccelerateTest, "AccelerateSoundProcess", ", true"},
                                         Case{StretchTest, "StretchSoundProcess", ""}),
                         [](const auto& info) {
                           return info.index == 0 ? "AccelerateTest" : "StretchTest";
                         });
