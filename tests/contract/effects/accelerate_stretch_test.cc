#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/audio_accelerate.h"
#include "fake_engine/effects/sound_process.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

constexpr const char* kIn = "F:\\44100_2_new1.wav";
constexpr const char* kOut = "F:\\44100_2_new1_out.wav";

Shorts Ramp(size_t samples) {
  Shorts ramp(samples);
  std::iota(ramp.begin(), ramp.end(), short{0});
  return ramp;
}

// A WAVE as TestAudioAccelerate takes it: 44 bytes that it does not look at, then samples.
std::string Header() {
  std::string header(44, 'h');
  for (size_t i = 0; i < header.size(); ++i) header[i] = static_cast<char>(i);
  return header;
}

std::string AudioOfBlocks(size_t blocks, size_t restBytes = 0) {
  std::string bytes = Header();
  for (size_t block = 0; block < blocks; ++block)
    bytes += std::string(4096, static_cast<char>(block));
  return bytes + std::string(restBytes, 'r');
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

TEST(TestAudioAccelerate, CopiesTheHeaderProcessesWholeBlocksAndClosesTheOutputFirst) {
  FakeEngine engine;
  engine.nowMs = 1000;
  engine.PutFile(kIn, AudioOfBlocks(2, 4095));
  int block = 0;
  engine.script<AudioAccelerateScript>().process = [&](short* samples, int, int) {
    engine.nowMs += 70;
    samples[0] = 77;
    return ++block == 1 ? 800 : 0;
  };

  TestAudioAccelerate();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:\44100_2_new1.wav, rb)
      fopen(F:\44100_2_new1_out.wav, wb)
      fread(F:\44100_2_new1.wav, 1, 44) = 44
      fwrite(F:\44100_2_new1_out.wav, 1, 44)
      CreateAudioAccelerate() = IAudioAccelerate#1
      IAudioAccelerate#1.SetEnabled(false)
      IAudioAccelerate#1.SetAccelerateRate(25)
      GetExactTickCount() = 1000
      fread(F:\44100_2_new1.wav, 4096, 1) = 1
      IAudioAccelerate#1.Process(@1, 1024, 44100, 2, 16) = 800
      fwrite(F:\44100_2_new1_out.wav, 1, 3200)
      fread(F:\44100_2_new1.wav, 4096, 1) = 1
      IAudioAccelerate#1.Process(@1, 1024, 44100, 2, 16) = 0
      fwrite(F:\44100_2_new1_out.wav, 1, 0)
      fread(F:\44100_2_new1.wav, 4096, 1) = 0
      GetExactTickCount() = 1140
      OutputDebugInfo("TestAudioAccelerate: %d", 140)
      ~IAudioAccelerate#1
      fclose(F:\44100_2_new1_out.wav)
      fclose(F:\44100_2_new1.wav)
  )"));
  EXPECT_EQ(engine.Bytes(kOut), Header() + std::string("M\0", 2) + std::string(3198, '\0'));
  EXPECT_THAT(engine.live, IsEmpty());
}

// 215 blocks are 220160 frames, 216 are 221184: on in the 216th, off again in the 431st, although
// the constant is named after ten seconds.
TEST(TestAudioAccelerate, SwitchesEvery220500Frames) {
  FakeEngine engine;
  engine.PutFile(kIn, AudioOfBlocks(650));

  TestAudioAccelerate();

  std::vector<std::string> switches;
  int block = 0;
  for (const std::string& call : engine.calls) {
    if (call.find(".Process(") != std::string::npos) ++block;
    const bool set = call.find("SetEnabled") != std::string::npos && block > 0;
    if (set || call.find("able: ") != std::string::npos) {
      switches.push_back(std::to_string(block + 1) + " " + call);
    }
  }
  EXPECT_EQ(block, 650);
  EXPECT_THAT(switches, Transcript(R"(
      216 OutputDebugInfo("TestAudioAccelerate1 enable: %d, %d", 1, 221184)
      216 IAudioAccelerate#1.SetEnabled(true)
      431 OutputDebugInfo("TestAudioAccelerate disable: %d, %d", 2, 441344)
      431 IAudioAccelerate#1.SetEnabled(false)
      646 OutputDebugInfo("TestAudioAccelerate1 enable: %d, %d", 3, 661504)
      646 IAudioAccelerate#1.SetEnabled(true)
  )"));
}

TEST(TestAudioAccelerate, ProcessesEveryBlockWhileItIsDisabled) {
  FakeEngine engine;
  engine.PutFile(kIn, AudioOfBlocks(3));

  TestAudioAccelerate();

  EXPECT_THAT(engine.CallsWith("Process"), SizeIs(3));
  EXPECT_EQ(engine.Bytes(kOut), AudioOfBlocks(3));
}

TEST(TestAudioAccelerate, SaysSoWhenTheInputCannotBeOpened) {
  FakeEngine engine;

  TestAudioAccelerate();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:\44100_2_new1.wav, rb) = null
      puts("fail to open file!")
  )"));
}

TEST(TestAudioAccelerate, SaysSoAndLeavesTheInputOpenWhenTheOutputCannotBeOpened) {
  FakeEngine engine;
  engine.PutFile(kIn, AudioOfBlocks(1));
  engine.unwritable.insert(kOut);

  TestAudioAccelerate();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:\44100_2_new1.wav, rb)
      fopen(F:\44100_2_new1_out.wav, wb) = null
      puts("fail to open file!")
  )"));
}

TEST(TestAudioAccelerate, WritesNoMoreThanItsArrayHolds) {
  for (const auto& [answer, bytes] : {std::pair(1025, 4096U), {2147483647, 4096U}, {-1, 0U}}) {
    FakeEngine engine;
    engine.PutFile(kIn, AudioOfBlocks(1));
    engine.script<AudioAccelerateScript>().process = [answer = answer](short*, int, int) {
      return answer;
    };

    TestAudioAccelerate();

    EXPECT_THAT(engine.Bytes(kOut), SizeIs(44 + bytes)) << answer;
  }
}

TEST(TestAudioAccelerate, CopiesOfAShorterHeaderWhatThereIs) {
  FakeEngine engine;
  engine.PutFile(kIn, "short");

  TestAudioAccelerate();

  EXPECT_EQ(engine.Bytes(kOut), "short");
}
