#include <gmock/gmock.h>

#include "bench/mixing/routines.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_engine.h"
#include "fake_engine/mixing/speech_msg_player.h"
#include "harness/log_sinks.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST(TestFilePlayer, StartsToPlayAndReturnsAtOnce) {
  FakeEngine engine;

  TestFilePlayer();

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioEngine(null, 0, null, log) = IAudioEngine#1
      IAudioEngine#1.CreateAudioCapture() = IAudioCapture#1
      IAudioFilePlayer::Create() = IAudioFilePlayer#1
      IAudioFilePlayer#1.Open(music.wav) = 0
      IAudioFilePlayer#1.Play()
      IAudioFilePlayer#1.SetFeedBackToMicMode(0)
  )"));
  EXPECT_EQ(engine.script<AudioEngineScript>().log, PrintSdkLog);
  EXPECT_THAT(engine.live, UnorderedElementsAre(Pair("IAudioEngine", 1), Pair("IAudioCapture", 1),
                                                Pair("IAudioFilePlayer", 1)));
}

TEST(TestFilePlayer, PlaysWhateverOpenAnswers) {
  FakeEngine engine;
  engine.script<AudioEngineScript>().openPlayer = -4;

  TestFilePlayer();

  EXPECT_THAT(engine.CallsWith("Play()"), SizeIs(1));
}

TEST(TestAudioRecorder, RecordsUntilTheProcessEnds) {
  FakeEngine engine;
  struct End {};
  constexpr int kSleeps = 1000;
  engine.onSleep = [sleeps = 0]() mutable {
    if (++sleeps == kSleeps) throw End();
  };

  EXPECT_THROW(TestAudioRecorder(), End);

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioEngine(null, 0, null, null) = IAudioEngine#1
      IAudioEngine#1.Start(0)
      IAudioEngine#1.StartAudioSaver(audiorecorder.aac, 0, 0) = 1
  )" + Times(kSleeps, "SleepMs(10)")));
}

TEST(TestAudioSaver, RecordsFiveSecondsWithOnePlayerAndFiveWithTwo) {
  FakeEngine engine;

  TestAudioSaver();

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioEngine(null, 0, null, log) = IAudioEngine#1
      IAudioEngine#1.Start(3)
      IAudioFilePlayer::Create() = IAudioFilePlayer#1
      IAudioFilePlayer#1.Open(gangqin.wav) = 0
      IAudioFilePlayer#1.Play()
      IAudioFilePlayer#1.SetFeedBackToMicMode(2)
      IAudioEngine#1.CreateAudioCapture() = IAudioCapture#1
      IAudioCapture#1.Open(44100, 2, 16)
      IAudioCapture#1.Start(null)
      IAudioEngine#1.StartAudioSaver(saver.aac, 0, 1) = 1
      SleepMs(5000)
      IAudioFilePlayer::Create() = IAudioFilePlayer#2
      IAudioFilePlayer#2.Open(gangqin2.wav) = 0
      IAudioFilePlayer#2.Play()
      IAudioFilePlayer#2.SetFeedBackToMicMode(2)
      SleepMs(5000)
      IAudioEngine#1.StopAudioSaver()
  )"));
  EXPECT_EQ(engine.script<AudioEngineScript>().log, PrintSdkLog);
  EXPECT_THAT(engine.live, UnorderedElementsAre(Pair("IAudioEngine", 1), Pair("IAudioCapture", 1),
                                                Pair("IAudioFilePlayer", 2)));
}

TEST(TestAudioSaver, TakesTenSecondsAlsoWhenNothingIsSaved) {
  FakeEngine engine;
  engine.script<AudioEngineScript>().saver = false;

  TestAudioSaver();

  EXPECT_EQ(engine.nowMs, 10000U);
}

TEST(TestSpeechMsg, TakesAMinuteAndSaysHowLongTheMessageIs) {
  FakeEngine engine;
  engine.script<SpeechMsgPlayerScript>().recordFileTime = 1234;

  TestSpeechMsg();

  EXPECT_THAT(engine.calls, Transcript(R"(
      ISpeechMsgPlayer::CreateAudioPlayer() = ISpeechMsgPlayer#1
      ISpeechMsgPlayer#1.Init() = 1
      ISpeechMsgPlayer#1.GetRecordFileTime() = 1234
      ISpeechMsgPlayer#1.Start(notify)
      SleepMs(60000)
      ISpeechMsgPlayer#1.Stop()
      ISpeechMsgPlayer#1.Destroy()
      printf("Play Done, totalTime = %d.\n", 1234)
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestSpeechMsg, TakesAMinuteAlsoForNothing) {
  FakeEngine engine;
  engine.script<SpeechMsgPlayerScript>().init = false;

  TestSpeechMsg();

  EXPECT_EQ(engine.nowMs, 60000U);
  EXPECT_THAT(engine.CallsWith("printf"),
              ElementsAre("printf(\"Play Done, totalTime = %d.\\n\", 0)"));
}

// The address sanitizer sees a notify that is gone.
TEST(TestSpeechMsg, LeavesItsNotifyAlive) {
  FakeEngine engine;

  TestSpeechMsg();

  engine.script<SpeechMsgPlayerScript>().notify->OnStopPlayData(0, 0);
}
