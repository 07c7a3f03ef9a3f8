#include "engine_api/mixing/karaoke_recorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numbers>
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

  // After 300 ms of silence a voice that glides up for a second, and down again.
  static std::vector<short> Glide() {
    std::vector<short> voice(Frames(300));
    double phase = 0;
    for (int i = 0; i < 2 * kRate; ++i) {
      const double pitch = 440 * std::exp2((GlideAt(1000.0 * i / kRate) - 69) / 12);
      phase += 2 * std::numbers::pi * pitch / kRate;
      double sum = 0;
      for (int k = 1; k <= 4; ++k) sum += std::sin(k * phase) / k;
      voice.push_back(static_cast<short>(6000 * sum));
    }
    return voice;
  }

  // The MIDI note it has reached so many milliseconds after its silence.
  static double GlideAt(double ms) { return 72 - kGlide * std::fabs(ms - 1000); }
  static constexpr double kGlide = 0.024;  // Semitones in a millisecond.

  // The time of the first sound, ms.
  static double Onset(const std::vector<short>& samples) {
    const auto first = std::ranges::find_if(samples, [](short s) { return std::abs(s) > 200; });
    return 1000.0 * static_cast<double>(first - samples.begin()) / kRate;
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

// When the singer begins is taken from the files that were recorded, so it does not matter when
// that is. What is scored 10 ms late is 2.4 tenths of a semitone too low on the way up and as much
// too high on the way down.
TEST_F(KaraokeRecorder, ScoresAGlideAtTheTimesOfTheSong) {
  WriteWave("singer.wav", Glide());
  std::vector<short> music(Frames(100));
  music.resize(Frames(3000), 1000);
  WriteWave("music.wav", music);
  // Of 70 ms each, for seven pitches; on the way up, then on the way down.
  std::vector<ScoreTimeRange> notes;
  for (int i = 0; i < 16; ++i) {
    const float begin = (i < 8 ? 502.F : 702.F) + 100.F * static_cast<float>(i);
    notes.push_back({begin, begin + 70, 1, 0, static_cast<int>(GlideAt(begin + 35 - 373))});
  }
  std::vector<int8_t> visual(notes.size());
  ASSERT_TRUE(OpenInput("", "music.wav"));
  ASSERT_TRUE(OpenOutput("voice.wav", "mix.wav"));
  m_recorder->SetScoreTimeRange(notes.data(), static_cast<uint32_t>(notes.size()), visual.data());
  desktop::FilePlayer singer;
  singer.SetFeedBack(AudioSourceTypeOuterPCM);
  ASSERT_EQ(singer.Open("singer.wav"), desktop::FileFault::kNone);

  // All begins between two blocks of a loudspeaker that runs already.
  const Played played;
  SleepMs(5);
  ASSERT_TRUE(singer.Play());
  ASSERT_TRUE(m_recorder->Start());
  SleepMs(2600);
  m_recorder->Destroy();

  const double songMs = Onset(Channel(Read("mix.wav"), 2, 1)) - 100;
  const double voiceMs = Onset(Read("voice.wav"));
  double lateMs = 0;
  for (size_t i = 0; i < notes.size(); ++i) {
    const bool rises = i < notes.size() / 2;
    const double sungMs = notes[i].beginTime + 35 + songMs - voiceMs;
    EXPECT_TRUE(rises ? sungMs > 100 && sungMs < 900 : sungMs > 1100 && sungMs < 1900) << sungMs;
    const double above = GlideAt(sungMs) - notes[i].midiValue - visual[i] / 10.0;
    lateMs += above / (rises ? kGlide : -kGlide) / static_cast<double>(notes.size());
  }
  EXPECT_NEAR(lateMs, 0, 3);
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
