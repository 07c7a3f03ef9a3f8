#include "fake_engine/effects/audio_accelerate.h"

#include <gmock/gmock.h>

#include "bench/effects/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kIn = "F:\\44100_2_new1.wav";
constexpr const char* kOut = "F:\\44100_2_new1_out.wav";

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

}  // namespace

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
