#include "engine_api/mixing/karaoke_file_mixer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <mutex>
#include <thread>

#include "desktop/codec/ffmpeg.h"
#include "desktop/files/open_audio_file.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/voice.h"
#include "support/wav_bytes.h"

using testing::HasSubstr;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

constexpr NreverbFv3Parameter kReverb = {3.6f, -100, 4.53f, 0.8f, 0.6f, 0, 0.2f, 2.02f, 0.56f, 100};
constexpr LimiterParam kLimiter = {0, -2, 8.2f, 90, 0, 5, 1, 0, 1};

// Counts the ends of runs and keeps what it hears of their progress.
class Heard : public IKaraokeFileMixerNotify {
 public:
  void OnFileMixerState(uint32_t current, uint32_t total) override {
    const std::scoped_lock lock(m_mutex);
    m_states.emplace_back(current, total);
  }
  void OnFinishMixer() override { ++ends; }

  // False when `count` ends have not come within a minute.
  bool WaitFor(int count) const {
    for (int i = 0; i < 12000 && ends < count; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return ends == count;
  }

  std::vector<std::pair<uint32_t, uint32_t>> States() {
    const std::scoped_lock lock(m_mutex);
    return m_states;
  }

  std::atomic<int> ends = 0;

 private:
  std::mutex m_mutex;
  std::vector<std::pair<uint32_t, uint32_t>> m_states;
};

class KaraokeFileMixer : public testing::Test {
 protected:
  KaraokeFileMixer() { m_mixer->SetKaraokeFileMixerNotify(&m_heard); }
  ~KaraokeFileMixer() override { m_mixer->Destroy(); }

  static void WriteWave(const char* name, const Shorts& samples, uint32_t rate, uint16_t channels) {
    WriteFile(name, WavBytes({.channels = channels, .rate = rate}, samples));
  }

  bool Open(const char* voice = "voice.wav", const char* music = "music.wav") {
    return m_mixer->Open(const_cast<char*>(voice), const_cast<char*>(music));
  }

  bool Start(const char* out = "out.wav") { return m_mixer->Start(const_cast<char*>(out)); }

  // Runs to the end and reads the result.
  Shorts Mix(const char* out = "out.wav") {
    EXPECT_TRUE(Open());
    const int before = m_heard.ends;
    EXPECT_TRUE(Start(out));
    EXPECT_TRUE(m_heard.WaitFor(before + 1));
    return Read(out);
  }

  static Shorts Read(const char* name) {
    std::unique_ptr<desktop::FileSource> source;
    if (desktop::OpenAudioFile(name, &source) != desktop::FileFault::kNone) return {};
    Shorts samples(source->Frames() * source->Channels());
    samples.resize(source->Read(samples.data(), source->Frames()) * source->Channels());
    return samples;
  }

  TemporaryDirectory m_directory;
  Heard m_heard;
  IKaraokeFileMixer* const m_mixer = IKaraokeFileMixer::Create();
};

// Where the loudest sample of a channel lies, ms.
double PeakMs(const Shorts& samples, int channels, int channel, int rate) {
  const Shorts one = Channel(samples, channels, channel);
  const auto peak = std::max_element(one.begin(), one.end());
  return static_cast<double>(peak - one.begin()) * 1000 / rate;
}

}  // namespace

// A click in the voice at 500 ms, one in the left channel of the accompaniment at 1000 ms.
TEST_F(KaraokeFileMixer, PutsTheVoiceWhereItIsAskedTo) {
  Shorts voice(16000);
  voice[8000] = 3000;
  Shorts music(88200 * 2);
  music[44100 * 2] = 32000;
  WriteWave("voice.wav", voice, 16000, 1);
  WriteWave("music.wav", music, 44100, 2);
  for (const bool effects : {false, true}) {
    m_mixer->EnableReverbNew(effects);
    m_mixer->SetReverbFv3Param(kReverb);
    m_mixer->EnableLimiter(effects);
    m_mixer->SetLimiterParam(kLimiter);
    for (const int offset : {200, 0, -300}) {
      m_mixer->SetVoiceOffset(offset);
      const Shorts mix = Mix();
      ASSERT_THAT(mix, SizeIs(music.size()));
      EXPECT_NEAR(PeakMs(mix, 2, 0, 44100), 1000, 0.03) << offset;
      EXPECT_NEAR(PeakMs(mix, 2, 1, 44100), 500 + offset, 0.1) << offset;
    }
  }
}

TEST_F(KaraokeFileMixer, IsAsLongAsTheAccompanimentOrTheShiftedVoice) {
  WriteWave("voice.wav", Tone(440, 5000, 16000, 16001), 16000, 1);
  WriteWave("music.wav", Tone(220, 5000, 22050, 33333), 22050, 1);
  const std::pair<int, size_t> lengths[] = {
      {0, 33333}, {500, 33333}, {900, 22051 + 22050 * 900 / 1000}, {-5000, 33333}};
  m_mixer->EnableLimiter(true);
  for (const auto& [offset, frames] : lengths) {
    m_mixer->SetVoiceOffset(offset);
    EXPECT_THAT(Mix(), SizeIs(frames)) << offset;
  }
}

TEST_F(KaraokeFileMixer, LetsTheAccompanimentPassBitForBitWhileTheVoiceIsSilent) {
  const Shorts music = ToShorts(WhiteNoise(44100, 1, 1));
  WriteWave("voice.wav", Shorts(8000), 8000, 1);
  WriteWave("music.wav", music, 22050, 2);
  EXPECT_EQ(Mix(), music);
}

// 4.53 dB of the reverberation's dry sound and 8.2 dB ahead of the limiter.
TEST_F(KaraokeFileMixer, RaisesAQuietVoiceByTheGainsOfItsStages) {
  WriteWave("voice.wav", Tone(1000, 1000, 16000, 32000), 16000, 1);
  WriteWave("music.wav", Shorts(88200), 44100, 1);
  EXPECT_NEAR(FitTone(Mix(), 1000, 44100).amplitude, 1000, 5);
  m_mixer->EnableReverbNew(true);
  m_mixer->SetReverbFv3Param(kReverb);
  m_mixer->EnableLimiter(true);
  m_mixer->SetLimiterParam(kLimiter);
  const ToneFit raised = FitTone(Mix(), 1000, 44100);
  EXPECT_NEAR(Decibels(raised.amplitude / 1000), 12.73, 0.1);
  EXPECT_LT(raised.residualDb, -50);
  m_mixer->EnableEqualizer(true);
  float gains[11] = {0, 0, 0, 0, 0, 0, -6, 0, 0, 0, 0};
  m_mixer->SetEqGains(gains);
  EXPECT_NEAR(Decibels(FitTone(Mix(), 1000, 44100).amplitude / 1000), 6.73, 0.1);
}

TEST_F(KaraokeFileMixer, LimitsTheSumWithoutClipping) {
  WriteWave("voice.wav", Tone(1000, 30000, 44100, 44100), 44100, 1);
  WriteWave("music.wav", Tone(400, 32000, 44100, 44100), 44100, 1);
  m_mixer->EnableLimiter(true);
  m_mixer->SetLimiterParam(kLimiter);
  const Shorts mix = Mix();
  int atTheEdge = 0;
  for (size_t i = 1; i < mix.size(); ++i) {
    atTheEdge += std::abs(mix[i]) >= 32766 && std::abs(mix[i - 1]) >= 32766 ? 1 : 0;
  }
  EXPECT_LT(atTheEdge, 20);
  const std::vector<double> steady = ToDoubles(Shorts(mix.begin() + 10000, mix.end() - 10000));
  EXPECT_GT(Decibels(Peak(steady)), -0.5);
  // Both tones are still there, each at half of what the limiter lets out.
  EXPECT_NEAR(Decibels(AmplitudeAt(steady, 1000, 44100)), -6, 1);
  EXPECT_NEAR(Decibels(AmplitudeAt(steady, 400, 44100)), -6, 1);
}

TEST_F(KaraokeFileMixer, TellsItsProgressAndItsEndOnce) {
  WriteWave("voice.wav", SungNote(220, 44100, 4, 2), 44100, 2);
  WriteWave("music.wav", SungNote(330, 44100, 4, 2), 44100, 2);
  m_mixer->EnableReverbNew(true);
  Mix();
  const auto states = m_heard.States();
  ASSERT_FALSE(states.empty());
  EXPECT_TRUE(std::is_sorted(states.begin(), states.end()));
  for (const auto& [current, total] : states) EXPECT_EQ(total, 4000U) << current;
  EXPECT_EQ(states.back().first, 4000U);
  EXPECT_EQ(m_heard.ends, 1);
}

TEST_F(KaraokeFileMixer, ReportsAnEndForEveryStartThatFails) {
  const CapturedStderr log;
  EXPECT_FALSE(Start());  // Not opened.
  EXPECT_TRUE(m_heard.WaitFor(1));
  EXPECT_FALSE(Open("missing.wav"));
  EXPECT_FALSE(Start());
  EXPECT_TRUE(m_heard.WaitFor(2));
  WriteWave("voice.wav", Shorts(1000), 8000, 1);
  WriteWave("music.wav", Shorts(1000), 8000, 1);
  EXPECT_FALSE(Open("voice.wav", "missing.wav"));
  EXPECT_TRUE(Open());
  EXPECT_FALSE(Start("out.mid"));
  EXPECT_TRUE(m_heard.WaitFor(3));
  EXPECT_FALSE(std::filesystem::exists("out.mid"));
  EXPECT_THAT(log.Lines(), SizeIs(5));
  m_mixer->SetKaraokeFileMixerNotify(nullptr);
  EXPECT_FALSE(Start("out.mid"));  // Nobody to tell.
}

TEST_F(KaraokeFileMixer, ReportsAnEndWhenTheDiskIsFull) {
  WriteWave("voice.wav", SungNote(220, 44100, 2), 44100, 1);
  WriteWave("music.wav", SungNote(330, 44100, 2), 44100, 1);
  ASSERT_TRUE(Open());
  const CapturedStderr log;
  {
    const FileSizeLimit limit(100000);
    ASSERT_TRUE(Start());
    EXPECT_TRUE(m_heard.WaitFor(1));
  }
  EXPECT_THAT(log.Lines(), SizeIs(1));
  EXPECT_THAT(Read("out.wav"), SizeIs(testing::Lt(50001U)));
}

TEST_F(KaraokeFileMixer, StopsInMidRunAndTellsNothingAfterwards) {
  const Shorts note(60 * 88200, 100);
  WriteWave("voice.wav", note, 44100, 2);
  WriteWave("music.wav", note, 44100, 2);
  m_mixer->EnableReverbNew(true);
  ASSERT_TRUE(Open());
  ASSERT_TRUE(Start());
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  m_mixer->Stop();
  EXPECT_EQ(m_heard.ends, 1);
  const size_t states = m_heard.States().size();
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  EXPECT_THAT(m_heard.States(), SizeIs(states));
  EXPECT_LT(Read("out.wav").size(), note.size());

  // The next run begins at the start of both files.
  WriteWave("voice.wav", Shorts(1000), 8000, 1);
  WriteWave("music.wav", Tone(100, 1000, 8000, 1000), 8000, 1);
  EXPECT_EQ(Mix("second.wav"), Tone(100, 1000, 8000, 1000));
}

TEST_F(KaraokeFileMixer, WritesAacThatOthersDecode) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  WriteWave("voice.wav", SungNote(220, 16000, 2), 16000, 1);
  WriteWave("music.wav", SungNote(330, 44100, 3, 2), 44100, 2);
  m_mixer->SetVoiceOffset(200);
  Mix("out.aac");
  const Decoded decoded = DecodeWithFfmpeg(ReadFile("out.aac"));
  if (!decoded.available) GTEST_SKIP() << "ffmpeg is not installed";
  EXPECT_EQ(decoded.complaints, "");
  EXPECT_EQ(decoded.rate, 44100);
  EXPECT_EQ(decoded.channels, 2);
  EXPECT_NEAR(decoded.seconds, 3, 0.12);
}

// As the accompaniment, as far as a file is written like that.
TEST_F(KaraokeFileMixer, WritesTheNearestFormatThatAFileHas) {
  struct Format {
    uint32_t rate;
    uint16_t channels;
  };
  const std::pair<Format, Format> formats[] = {
      {{96000, 1}, {48000, 1}}, {{4000, 1}, {8000, 1}}, {{16000, 3}, {16000, 2}}};
  for (const auto& [music, expected] : formats) {
    WriteWave("voice.wav", Shorts(1600), 16000, 1);
    WriteWave("music.wav", Shorts(size_t{music.rate} / 10 * music.channels), music.rate,
              music.channels);
    Mix();
    std::unique_ptr<desktop::FileSource> source;
    ASSERT_EQ(desktop::OpenAudioFile("out.wav", &source), desktop::FileFault::kNone);
    EXPECT_EQ(source->Rate(), expected.rate);
    EXPECT_EQ(source->Channels(), expected.channels);
    EXPECT_EQ(source->LengthMs(), 100U);
  }
}
