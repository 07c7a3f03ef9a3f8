#include "fake_engine/mixing/audio_channel.h"

#include <gmock/gmock.h>

#include "bench/mixing/routines.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_engine.h"
#include "harness/log_sinks.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

void Pack(IAudioFramePackerNotify& notify, const std::string& frame) {
  notify.OnPackAudioFrame(reinterpret_cast<const uint8_t*>(frame.data()),
                          static_cast<uint32_t>(frame.size()), vadResultIsActive, 0, 0);
}

}  // namespace

TEST(TestAudioChannel, PacksTenSecondsThenPlaysThem) {
  FakeEngine engine;
  engine.script<AudioChannelScript>().pack = [](IAudioFramePackerNotify& notify) {
    Pack(notify, "ab");
    Pack(notify, "cde");
  };
  std::string played;
  std::vector<int> codecs;
  engine.script<AudioChannelScript>().pull = [&](IAudioFramePlayerNotify& notify) {
    AudioFrameData frame = {};
    FramePlayerFeedbackInfo feedback = {};
    while (notify.OnPullAudioFrame(0, frame, false, feedback)) {
      played +=
          std::string(reinterpret_cast<const char*>(frame.frameData), frame.frameLength) + "|";
      codecs.push_back(frame.codecType);
    }
  };

  TestAudioChannel(51);

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioEngine(null, 0, null, log) = IAudioEngine#1
      IAudioEngine#1.Start(0)
      IAudioChannel::Create() = IAudioChannel#1
      IAudioChannel#1.EnablePackerVad(0)
      IAudioChannel#1.StartPacker(notify, 51, 48000, 48000, 1, 2) = 1
      IAudioChannel#1.OpenCapture()
      SleepMs(10000)
      fopen(pack.enc, wb)
      fwrite(pack.enc, 4, 1)
      fwrite(pack.enc, 2, 1)
      fwrite(pack.enc, 4, 1)
      fwrite(pack.enc, 3, 1)
      IAudioChannel#1.StopPacker()
      fclose(pack.enc)
      fopen(pack.enc, rb)
      IAudioChannel#1.StartPlay(notify, 0, 44100, 2) = 1
      SleepMs(10000)
      fread(pack.enc, 4, 1) = 1
      fread(pack.enc, 2, 1) = 1
      fread(pack.enc, 4, 1) = 1
      fread(pack.enc, 3, 1) = 1
      fread(pack.enc, 4, 1) = 0
      IAudioChannel#1.StopPlay(0)
      fclose(pack.enc)
  )"));
  EXPECT_EQ(played, "ab|cde|");  // No silence is simulated.
  EXPECT_THAT(codecs, ElementsAre(51, 51));
  EXPECT_EQ(engine.script<AudioEngineScript>().log, PrintSdkLog);
  EXPECT_THAT(engine.live, UnorderedElementsAre(Pair("IAudioEngine", 1), Pair("IAudioChannel", 1)));
}

TEST(TestAudioChannel, HandsTheCodecTypeOnWhateverItIs) {
  FakeEngine engine;

  TestAudioChannel(-1);

  EXPECT_THAT(engine.CallsWith("StartPacker"),
              ElementsAre("IAudioChannel#1.StartPacker(notify, -1, 48000, 48000, 1, 2) = 1"));
}

TEST(TestAudioChannel, GoesThroughBothPhasesWhateverFails) {
  FakeEngine engine;
  engine.script<AudioChannelScript>().packer = false;
  engine.script<AudioChannelScript>().play = false;

  TestAudioChannel(2);

  EXPECT_EQ(engine.nowMs, 20000U);
  EXPECT_THAT(engine.CallsWith("fopen"), ElementsAre("fopen(pack.enc, rb) = null"));
  EXPECT_THAT(engine.CallsWith("StopPlay"), SizeIs(1));
}
