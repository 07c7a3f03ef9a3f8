#include "engine_api/mixing/karaoke_recorder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <thread>

#include "desktop/devices/audio_device.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/live/file_player.h"
#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/voice.h"
#include "support/wav_bytes.h"

using testing::HasSubstr;

namespace {

constexpr int kRate = 44100;

// The frames of so many milliseconds.
constexpr int Frames(int ms) { return kRate * ms / 1000; }

class KaraokeRecorder : public testing::Test {
 protected:
  KaraokeRecorder() { desktop::UseNullDevices(1); }

  static void WriteWave(const char* name, const std::vector<short>& samples) {
    WriteFile(name, WavBytes({.rate = 44100}, samples));
  }

  bool OpenInput(const char* guide, const char* music) {
    return m_recorder->OpenInputFile(const_cast<char*>(guide), const_cast<char*>(music));
  }
  bool OpenOutput(const char* voice, const char* mix) {
    return m_recorder->OpenOutputFile(const_cast<char*>(voice), const_cast<char*>(mix));
  }

  static std::vector<short> Read(const char* name) {
    std::unique_ptr<desktop::FileSource> source;
    if (desktop::OpenAudioFile(name, &source) != desktop::FileFault::kNone) return {};
    std::vector<short> samples(source->Frames() * source->Channels());
    source->Read(samples.data(), source->Frames());
    return samples;
  }

  std::optional<desktop::StepClock> m_clock{std::in_place};
  TemporaryDirectory m_directory;
  IKaraokeRecorder* m_recorder = IKaraokeRecorder::Create();
};

}  // namespace

// The singer is fed into the microphone path: the first note right, the second a semitone flat,
// the third not at all, the fourth right and still sung at the end. The notes lie well inside of
// what is sung, because a busy machine starts the singer late.
TEST_F(KaraokeRecorder, ComparesASingerWithTheNotes) {
  std::vector<short> song = SungNote(220, 44100, 1.2);
  const std::vector<short> flat = SungNote(261.63 / 1.0595, 44100, 1.2);
  song.insert(song.end(), flat.begin(), flat.end());
  song.resize(song.size() + 44100);
  const std::vector<short> last = SungNote(220, 44100, 1.6);
  song.insert(song.end(), last.begin(), last.end());
  WriteWave("singer.wav", song);
  WriteWave("music.wav", Tone(1000, 3000, 44100, 44100 * 5));
  ScoreTimeRange notes[] = {{400, 1000, 1, 0, 57},
                            {1800, 2300, 1, 1, 60},
                            {3000, 3200, 2, 1, 60},
                            {3800, 9000, 2, 1, 57}};
  ScoreLineInfo songLines[] = {{1, 0, 2500}, {2, 2500, 3500}};
  auto visual = std::make_unique<int8_t[]>(4);
  m_recorder->Destroy();

  std::string log;
  {
    const CapturedStderr lines;
    m_recorder = IKaraokeRecorder::Create();
    ASSERT_TRUE(OpenInput("missing.wav", "music.wav"));
    ASSERT_TRUE(OpenOutput("voice.wav", "mix.wav"));
    m_recorder->SetLineInfo(songLines, 2);
    m_recorder->SetScoreTimeRange(notes, 4, visual.get());
    desktop::FilePlayer singer;
    singer.SetFeedBack(AudioSourceTypeOuterPCM);
    ASSERT_EQ(singer.Open("singer.wav"), desktop::FileFault::kNone);
    ASSERT_TRUE(m_recorder->Start());
    singer.Play();
    EXPECT_EQ(std::atomic_ref(visual[2]).load(), 127);
    constexpr uintmax_t kBytes = 44 + 43 * 8820;  // 4.3 s.
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::file_size("voice.wav") >= kBytes; }));
    m_recorder->Destroy();
    log = lines.Text();
    fputs(log.c_str(), stderr);
  }

  EXPECT_NEAR(visual[0], 0, 2);
  EXPECT_NEAR(visual[1], -10, 2);
  EXPECT_EQ(visual[2], 127);
  EXPECT_NEAR(visual[3], 0, 2);
  EXPECT_THAT(log, HasSubstr(" karaoke recorder: 2 lines, 4 notes, 3 sung, 2 within 50 cents\n"));

  const std::vector<short> voice = Read("voice.wav");
  ASSERT_GE(voice.size(), 44100U * 4);
  // Inside of the first note, and between the second and the fourth.
  const std::vector<short> first(voice.begin() + Frames(750), voice.begin() + Frames(1100));
  EXPECT_NEAR(CentsOff(first, 220, 44100), 0, 5);
  const std::vector<double> mix = ToDoubles(Channel(Read("mix.wav"), 2, 1));
  EXPECT_EQ(mix.size(), voice.size());
  const std::span<const double> unsung(mix.data() + Frames(2750), Frames(500));
  EXPECT_NEAR(AmplitudeAt(unsung, 1000, 44100), 3000 / 32768.0, 0.002);
  const std::span<const double> sung(mix.data() + Frames(750), first.size());
  const double alone = AmplitudeAt(ToDoubles(first), 220, 44100);
  EXPECT_GT(alone, 0.01);
  EXPECT_NEAR(AmplitudeAt(sung, 220, 44100), alone, 0.1 * alone);
}

TEST_F(KaraokeRecorder, PlaysTheGuideWhereThereIsNoAccompaniment) {
  WriteWave("guide.wav", Tone(1000, 3000, 44100, 44100));
  EXPECT_TRUE(OpenInput("guide.wav", "missing.wav"));
  EXPECT_FALSE(OpenInput("missing.wav", ""));
  m_recorder->Destroy();
}

TEST_F(KaraokeRecorder, PlaysTheAccompanimentAndNotTheGuideWhereItHasBoth) {
  WriteWave("guide.wav", std::vector<short>(44100 * 10, 500));
  WriteWave("music.wav", std::vector<short>(44100 * 10, 900));
  ASSERT_TRUE(OpenInput("guide.wav", "music.wav"));
  ASSERT_TRUE(OpenOutput("voice.wav", ""));
  const Played played;
  ASSERT_TRUE(m_recorder->Start());
  EXPECT_TRUE(WaitUntil([&] { return played.Last() == 900; }));
  m_recorder->Destroy();
}

TEST_F(KaraokeRecorder, RecordsTheVoiceWithoutASongAndFinishesItsFile) {
  int8_t visual = 5;
  ScoreTimeRange note = {0, 1000, 1, 1, 60};
  EXPECT_FALSE(OpenInput("missing.wav", "missing too.wav"));
  ASSERT_TRUE(OpenOutput("voice.wav", ""));
  m_recorder->SetScoreTimeRange(&note, 1, &visual);
  ASSERT_TRUE(m_recorder->Start());
  EXPECT_FALSE(m_recorder->Start());  // It runs.
  SleepMs(100);
  m_recorder->Destroy();
  EXPECT_GT(Read("voice.wav").size(), 0U);
  EXPECT_LT(Read("voice.wav").size(), 44100U);
  EXPECT_EQ(visual, 127);
  EXPECT_FALSE(std::filesystem::exists("mix.wav"));
}

TEST_F(KaraokeRecorder, DoesNotStartWithoutAFileToRecordInto) {
  const CapturedStderr log;
  EXPECT_FALSE(m_recorder->Start());
  EXPECT_TRUE(OpenOutput("", ""));
  EXPECT_FALSE(m_recorder->Start());
  EXPECT_FALSE(OpenOutput("voice.mid", ""));
  EXPECT_FALSE(m_recorder->Start());
  m_recorder->Destroy();
  EXPECT_THAT(log.Lines(), testing::SizeIs(4));
}

// The array is freed right after the end: the address or thread checkers see a write.
TEST_F(KaraokeRecorder, TouchesNothingAfterDestroy) {
  WriteWave("music.wav", SungNote(220, 44100, 1));
  m_recorder->Destroy();
  m_clock.reset();  // One that stands still would keep threads from meeting.
  ScoreTimeRange note = {0, 1000, 1, 1, 57};
  for (int i = 0; i < 6; ++i) {
    auto visual = std::make_unique<int8_t>();
    m_recorder = IKaraokeRecorder::Create();
    OpenInput("", "music.wav");
    OpenOutput("voice.wav", "");
    m_recorder->SetScoreTimeRange(&note, 1, visual.get());
    ASSERT_TRUE(m_recorder->Start());
    SleepMs(20 * i);
    m_recorder->Destroy();
    visual.reset();
  }
}
