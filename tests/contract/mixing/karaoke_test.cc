#include <gmock/gmock.h>

#include "bench/mixing/routines.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/karaoke_file_mixer.h"
#include "fake_engine/mixing/karaoke_recorder.h"
#include "fake_engine/platform/paths.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kLines = "/sdcard/dangni_line_info.txt";
constexpr const char* kNotes = "/sdcard/dangni_score_time_range.txt";

// Runs the recorder over these two tables.
void Record(FakeEngine& engine, const std::string& lines, const std::string& notes) {
  engine.PutFile(kLines, lines);
  engine.PutFile(kNotes, notes);
  TestKaraokeRecorder();
}

std::string Repeated(const std::string& line, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += line;
  return text;
}

}  // namespace

TEST(TestKaraokeFileMixer, SetsEverythingStartsWaitsAndEnds) {
  FakeEngine engine;
  IKaraokeFileMixerNotify* running = nullptr;
  engine.script<KaraokeFileMixerScript>().start = [&](IKaraokeFileMixerNotify* notify) {
    running = notify;
    return true;
  };
  int sleeps = 0;
  engine.onSleep = [&] {
    running->OnFileMixerState(10, 100);
    if (++sleeps == 3) running->OnFinishMixer();
  };

  TestKaraokeFileMixer();

  EXPECT_THAT(engine.calls, Transcript(R"(
      IKaraokeFileMixer::Create() = IKaraokeFileMixer#1
      GetDebugPath()
      GetDebugPath()
      GetDebugPath()
      IKaraokeFileMixer#1.Open(voice_record.wav, music.wav) = 1
      IKaraokeFileMixer#1.SetKaraokeFileMixerNotify(notify)
      IKaraokeFileMixer#1.SetVoiceOffset(200)
      IKaraokeFileMixer#1.EnableEqualizer(1)
      IKaraokeFileMixer#1.SetEqGains(0, -5.69999981, -1.5, -4.5999999, -3.4000001, 2.70000005, 2.29999995, 0.600000024, 2.0999999, 1, 1.29999995)
      IKaraokeFileMixer#1.EnableReverbNew(1)
      IKaraokeFileMixer#1.SetReverbFv3Param(3.5999999, -27.0499992, 4.53000021, 0.800000012, 0.600000024, 0, 0.200000003, 2.01999998, 0.560000002, 100.839996)
      IKaraokeFileMixer#1.EnableLimiter(1)
      IKaraokeFileMixer#1.SetLimiterParam(0, -2, 8.19999981, 90, 0, 0.200000003, 1, 0, 1)
      IKaraokeFileMixer#1.Start(output.aac)
      SleepMs(10)
      SleepMs(10)
      SleepMs(10)
      IKaraokeFileMixer#1.Stop()
      IKaraokeFileMixer#1.Destroy()
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

// The folder as it is, with no separator added.
TEST(TestKaraokeFileMixer, PutsTheDebugFolderInFrontOfEachName) {
  FakeEngine engine;
  engine.script<PathsScript>().debug = "/debug/of_";

  TestKaraokeFileMixer();

  EXPECT_THAT(engine.CallsWith("/debug"), Transcript(R"(
      IKaraokeFileMixer#1.Open(/debug/of_voice_record.wav, /debug/of_music.wav) = 1
      IKaraokeFileMixer#1.Start(/debug/of_output.aac)
  )"));
}

// The address sanitizer sees a notify that is gone.
TEST(TestKaraokeFileMixer, LeavesItsNotifyAlive) {
  FakeEngine engine;
  IKaraokeFileMixerNotify* given = nullptr;
  engine.script<KaraokeFileMixerScript>().start = [&](IKaraokeFileMixerNotify* notify) {
    given = notify;
    notify->OnFinishMixer();
    return true;
  };

  TestKaraokeFileMixer();

  given->OnFileMixerState(100, 100);
}

TEST(TestKaraokeFileMixer, SleepsNotWhenTheMixHasFinishedBeforeStartReturns) {
  FakeEngine engine;

  TestKaraokeFileMixer();

  EXPECT_THAT(engine.CallsWith("SleepMs"), IsEmpty());
}

// Also after an end that is told while it stops.
TEST(TestKaraokeFileMixer, WaitsAgainInASecondRun) {
  for (int run = 0; run < 2; ++run) {
    FakeEngine engine;
    engine.script<KaraokeFileMixerScript>().stop = [](IKaraokeFileMixerNotify* notify) {
      notify->OnFinishMixer();
    };
    IKaraokeFileMixerNotify* running = nullptr;
    engine.script<KaraokeFileMixerScript>().start = [&](IKaraokeFileMixerNotify* notify) {
      running = notify;
      return true;
    };
    engine.onSleep = [&] { running->OnFinishMixer(); };

    TestKaraokeFileMixer();

    EXPECT_THAT(engine.CallsWith("SleepMs"), SizeIs(1)) << run;
  }
}

// An end that is told after a run has returned is there at once for the next one: the flag is taken
// back at the end of a run and not at the start of the next.
TEST(TestKaraokeFileMixer, TakesAnEndThatWasToldAfterTheRunBeforeForItsOwn) {
  FakeEngine engine;
  IKaraokeFileMixerNotify* given = nullptr;
  engine.script<KaraokeFileMixerScript>().start = [&](IKaraokeFileMixerNotify* notify) {
    given = notify;
    notify->OnFinishMixer();
    return true;
  };
  TestKaraokeFileMixer();
  given->OnFinishMixer();
  engine.script<KaraokeFileMixerScript>().start = [](IKaraokeFileMixerNotify*) { return true; };
  engine.onSleep = [&] { given->OnFinishMixer(); };

  TestKaraokeFileMixer();
  EXPECT_THAT(engine.CallsWith("SleepMs"), IsEmpty());

  TestKaraokeFileMixer();
  EXPECT_THAT(engine.CallsWith("SleepMs"), SizeIs(1));
}

// An hour and more, also for a mixer that says that it has not started.
TEST(TestKaraokeFileMixer, WaitsForTheEndHoweverLongItTakes) {
  constexpr int kSleeps = 100 * 3700;
  for (const bool started : {true, false}) {
    FakeEngine engine;
    IKaraokeFileMixerNotify* given = nullptr;
    engine.script<KaraokeFileMixerScript>().start = [&](IKaraokeFileMixerNotify* notify) {
      given = notify;
      return started;
    };
    int sleeps = 0;
    engine.onSleep = [&] {
      if (++sleeps == kSleeps) given->OnFinishMixer();
    };

    TestKaraokeFileMixer();

    EXPECT_EQ(sleeps, kSleeps);
  }
}

TEST(TestKaraokeFileMixer, GoesOnWhateverFails) {
  FakeEngine engine;
  engine.script<KaraokeFileMixerScript>().open = false;
  engine.script<KaraokeFileMixerScript>().start = [](IKaraokeFileMixerNotify* notify) {
    notify->OnFinishMixer();
    return false;
  };

  TestKaraokeFileMixer();

  EXPECT_THAT(engine.CallsWith("Destroy"), SizeIs(1));
}

TEST(TestKaraokeRecorder, LoadsBothTablesAndRecordsFor100Ms) {
  FakeEngine engine;

  Record(engine, "1 0.5 2.5\n2 2.5 4", "0.5 1 0 1 60\n");

  EXPECT_THAT(engine.calls, Transcript(R"(
      UseAndroidOpenSlEs(1)
      IKaraokeRecorder::Create() = IKaraokeRecorder#1
      IKaraokeRecorder#1.OpenInputFile(/sdcard/dangni_mix.wav, /sdcard/dangni_acc.wav)
      IKaraokeRecorder#1.OpenOutputFile(/sdcard/voice_record.wav, )
      fopen(/sdcard/dangni_line_info.txt, rb)
      feof(/sdcard/dangni_line_info.txt) = 0
      fscanf(/sdcard/dangni_line_info.txt, "%d %f %f") = 3
      feof(/sdcard/dangni_line_info.txt) = 0
      fscanf(/sdcard/dangni_line_info.txt, "%d %f %f") = 3
      feof(/sdcard/dangni_line_info.txt) = 1
      fclose(/sdcard/dangni_line_info.txt)
      fopen(/sdcard/dangni_score_time_range.txt, rb)
      feof(/sdcard/dangni_score_time_range.txt) = 0
      fscanf(/sdcard/dangni_score_time_range.txt, "%f %f %d %d %d") = 5
      feof(/sdcard/dangni_score_time_range.txt) = 0
      fscanf(/sdcard/dangni_score_time_range.txt, "%f %f %d %d %d") = -1
      feof(/sdcard/dangni_score_time_range.txt) = 1
      feof(/sdcard/dangni_score_time_range.txt) = 1
      fclose(/sdcard/dangni_score_time_range.txt)
      IKaraokeRecorder#1.SetLineInfo(2)
      IKaraokeRecorder#1.SetScoreTimeRange(2)
      IKaraokeRecorder#1.Start()
      SleepMs(100)
      IKaraokeRecorder#1.Destroy()
  )"));
  const auto& lines = engine.script<KaraokeRecorderScript>().lines;
  EXPECT_EQ(lines[0].lineIdx, 1);
  EXPECT_EQ(lines[0].lineStartTime, 0.5F);
  EXPECT_EQ(lines[0].lineEndTime, 2.5F);
  EXPECT_EQ(lines[1].lineIdx, 2);
}

TEST(TestKaraokeRecorder, CountsOneMoreForATrailingNewline) {
  FakeEngine engine;
  Record(engine, Repeated("1 2 3\n", 3), "");
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().lines, SizeIs(4));
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().notes, SizeIs(1)) << "an empty file";
}

TEST(TestKaraokeRecorder, TakesTheThirdColumnForTheEndAndTheFourthForTheLine) {
  FakeEngine engine;

  Record(engine, "", "0.25 0.75 1 42 69");

  const auto& notes = engine.script<KaraokeRecorderScript>().notes;
  ASSERT_THAT(notes, SizeIs(1));
  EXPECT_EQ(notes[0].beginTime, 0.25F);
  EXPECT_EQ(notes[0].endTime, 0.75F);
  EXPECT_EQ(notes[0].lineEnd, 1);
  EXPECT_EQ(notes[0].lineID, 42U);
  EXPECT_EQ(notes[0].midiValue, 69);
}

TEST(TestKaraokeRecorder, KeepsTheNeighboursOfALineEndThatIsTooLarge) {
  FakeEngine engine;

  Record(engine, "", "0.25 0.75 300 42 69");

  const auto& notes = engine.script<KaraokeRecorderScript>().notes;
  ASSERT_THAT(notes, SizeIs(1));
  EXPECT_EQ(notes[0].lineEnd, 44);
  EXPECT_EQ(notes[0].lineID, 42U);
  EXPECT_EQ(notes[0].midiValue, 69);
}

TEST(TestKaraokeRecorder, StopsAtTheCapacityOfItsTables) {
  FakeEngine engine;
  Record(engine, Repeated("1 2 3\n", 1005), Repeated("1 2 3 4 5\n", 8005));
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().lines, SizeIs(1000));
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().notes, SizeIs(8000));
}

TEST(TestKaraokeRecorder, StopsAtAFieldThatIsNoNumber) {
  FakeEngine engine;
  Record(engine, "1 2 3\n4 five 6\n7 8 9\n", "1 2 3 4 5\nsix 2 3 4 5\n1 2 3 4 5\n");
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().lines, SizeIs(1));
  EXPECT_THAT(engine.script<KaraokeRecorderScript>().notes, SizeIs(1));
}

TEST(TestKaraokeRecorder, TakesMissingTablesForEmptyOnes) {
  FakeEngine engine;

  TestKaraokeRecorder();

  EXPECT_THAT(engine.CallsWith("SetLineInfo"), ElementsAre("IKaraokeRecorder#1.SetLineInfo(0)"));
  EXPECT_THAT(engine.CallsWith("SetScore"), ElementsAre("IKaraokeRecorder#1.SetScoreTimeRange(0)"));
  EXPECT_THAT(engine.CallsWith("feof"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("IKaraokeRecorder#1.Start()"), SizeIs(1));
}
