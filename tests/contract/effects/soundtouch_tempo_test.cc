#include <gmock/gmock.h>

#include <algorithm>

#include "bench/effects/routines.h"
#include "fake_engine/effects/soundtouch_recorder.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/platform/paths.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

// How many frames the processor is given at least before it gives some back.
size_t BlocksBeforeTheFirstOutput(const FakeEngine& engine) {
  const std::vector<std::string> received = engine.CallsWith("receiveSamples");
  const auto first = std::find_if(received.begin(), received.end(), [](const std::string& call) {
    return call.substr(call.find('=')) != "= 0";
  });
  return static_cast<size_t>(first - received.begin());
}

}  // namespace

TEST(TestSoundTouch, SetsUpInOrderAndWritesWhatTheLibraryGives) {
  FakeEngine engine;
  engine.script<PathsScript>().documents = "/docs/";
  engine.wavs["/docs/input.wav"] = {44100, 1, Shorts(441 + 441 + 440, 1)};
  int block = 0;
  engine.script<SoundTouchScript>().receive = [&](float* out, unsigned) {
    const unsigned frames = ++block == 1 ? 0 : 900;  // Nothing is written for none.
    std::fill_n(out, frames, 5.0F);
    return frames;
  };

  TestSoundTouch();

  EXPECT_THAT(engine.calls, Transcript(R"(
      SoundTouch#1()
      SoundTouch#1.setSampleRate(44100)
      SoundTouch#1.setChannels(1)
      SoundTouch#1.setTempoChange(0)
      SoundTouch#1.setPitchSemiTones(0)
      SoundTouch#1.setRateChange(0)
      SoundTouch#1.setSetting(0, 1)
      SoundTouch#1.setSetting(2, 0)
      SoundTouch#1.setTempo(0.5)
      SoundTouch#1.setSetting(3, 40)
      SoundTouch#1.setSetting(4, 15)
      SoundTouch#1.setSetting(5, 8)
      GetIosDocPath()
      WavReader#1(/docs/input.wav)
      GetIosDocPath()
      WavWriter#1(/docs/out.wav, 44100, 1)
      WavReader#1.ReadSamples(441 floats) = 441
      SoundTouch#1.putSamples(@1, 441)
      SoundTouch#1.receiveSamples(@1, 8192) = 0
      WavReader#1.ReadSamples(441 floats) = 441
      SoundTouch#1.putSamples(@1, 441)
      SoundTouch#1.receiveSamples(@1, 8192) = 900
      WavWriter#1.WriteSamples(900 floats)
      WavReader#1.ReadSamples(441 floats) = 440  # No flush follows.
      ~WavWriter#1
      ~WavReader#1
      ~SoundTouch#1
  )"));
  EXPECT_EQ(engine.wavs["/docs/out.wav"].samples, Shorts(900, 5));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestSoundTouch, GivesTwiceTheLengthLessWhatIsNotFlushed) {
  FakeEngine engine;
  engine.wavs["input.wav"] = {44100, 1, Shorts(44100, 1000)};

  TestSoundTouch();

  const auto out = static_cast<double>(engine.wavs["out.wav"].samples.size());
  const size_t waiting = BlocksBeforeTheFirstOutput(engine);
  EXPECT_GT(waiting, 2U);
  EXPECT_NEAR(out, 2 * 44100 - 2 * 441 * static_cast<double>(waiting), 4 * 882);
  EXPECT_THAT(engine.CallsWith("flush"), IsEmpty());
}

// A stereo file: its samples are put in as so many frames of one channel, and twice as many samples
// are written as frames were received.
TEST(TestSoundTouch, TakesEveryFileForMono) {
  FakeEngine engine;
  engine.wavs["input.wav"] = {48000, 2, Shorts(2 * 960, 1)};
  engine.script<SoundTouchScript>().receive = [](float* out, unsigned) {
    std::fill_n(out, 100, 3.0F);
    return 100U;
  };

  TestSoundTouch();

  EXPECT_THAT(engine.CallsWith("setSampleRate"), ElementsAre("SoundTouch#1.setSampleRate(44100)"));
  EXPECT_THAT(engine.CallsWith("setChannels"), ElementsAre("SoundTouch#1.setChannels(1)"));
  EXPECT_THAT(engine.CallsWith("WavWriter#1("), ElementsAre("WavWriter#1(out.wav, 48000, 2)"));
  EXPECT_THAT(engine.CallsWith("putSamples"), Transcript(R"(
      SoundTouch#1.putSamples(@1, 960)
      SoundTouch#1.putSamples(@1, 960)
  )"));
  // Of the second hundred the array holds what was read.
  Shorts expected(100, 3);
  expected.resize(200, 1);
  expected.resize(300, 3);
  expected.resize(400, 1);
  EXPECT_EQ(engine.wavs["out.wav"].samples, expected);
}

TEST(TestSoundTouch, WritesNoMoreWholeFramesThanItsArrayHolds) {
  for (const auto& [channels, samples] : {std::pair(1, 8192U), {4, 8192U}, {6, 8190U}}) {
    FakeEngine engine;
    engine.wavs["input.wav"] = {8000, channels, Shorts(static_cast<size_t>(80 * channels))};
    engine.script<SoundTouchScript>().receive = [](float*, unsigned room) { return room; };

    TestSoundTouch();

    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(samples)) << channels;
  }
}

TEST(TestSoundTouch, WritesAnEmptyFileWhenTheInputIsMissing) {
  FakeEngine engine;

  TestSoundTouch();

  EXPECT_THAT(engine.CallsWith("putSamples"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("Wav"), Transcript(R"(
      WavReader#1(input.wav)
      WavWriter#1(out.wav, 0, 0)
      ~WavWriter#1
      ~WavReader#1
  )"));
}
