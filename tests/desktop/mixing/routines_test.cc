// The mixing routines on the desktop engine and the null device, each once and in a process of its
// own. Device and SleepMs go by a clock of the test's: a minute passes at once, and nothing is
// late.

#include "bench/mixing/routines.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "desktop/devices/audio_device.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/live/played.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/captured_stderr.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using testing::ContainsRegex;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class MixingRoutines : public testing::Test {
 protected:
  // Runs `body`, which calls a routine, in a process that has two minutes for it, and ends the
  // devices that the routine has left running. Its log is in m_log.
  static void Run(const std::function<void()>& body) {
    const int status = RunInChild([&] {
      alarm(120);
      desktop::UseNullDevices(1);
      desktop::StepClock clock;
      body();
      desktop::StopAudioDevices();
      _exit(testing::Test::HasFailure() ? 1 : 0);
    });
    EXPECT_EQ(status, 0);
  }

  static void WriteWave(const char* name, const std::vector<short>& samples, uint32_t rate,
                        uint16_t channels = 1) {
    WriteFile(name, WavBytes({.channels = channels, .rate = rate}, samples));
  }

  struct Sound {
    uint32_t rate = 0;
    uint32_t channels = 0;
    std::vector<short> samples;
  };

  static Sound Read(const char* name) {
    std::unique_ptr<desktop::FileSource> source;
    EXPECT_EQ(desktop::OpenAudioFile(name, &source), desktop::FileFault::kNone) << name;
    if (source == nullptr) return {};
    Sound sound = {source->Rate(), source->Channels(), {}};
    sound.samples.resize(source->Frames() * source->Channels());
    EXPECT_EQ(source->Read(sound.samples.data(), source->Frames()), source->Frames());
    return sound;
  }

  // How strong a tone is from one second to another, of full scale.
  static double Level(const Sound& sound, double frequency, double from, double to) {
    const std::vector<short> left = Channel(sound.samples, static_cast<int>(sound.channels), 0);
    const auto at = [&](double seconds) {
      return left.begin() + static_cast<ptrdiff_t>(seconds * sound.rate);
    };
    return AmplitudeAt(ToDoubles(std::vector<short>(at(from), at(to))), frequency,
                       static_cast<int>(sound.rate));
  }

  const TemporaryDirectory m_directory;
  const CapturedStderr m_log;
};

constexpr double kTone = 3000 / 32768.0;

TEST_F(MixingRoutines, TestAudioMixerSumsItsFiveViews) {
  const std::vector<short> whole = Tone(300, 3000, 16000, 250'000);
  WriteWave("c:\\5.wav", whole, 16000);
  Run(TestAudioMixer);
  const std::string out = ReadFile("c:\\outmix.pcm");
  ASSERT_EQ(out.size(), 500'000U / 320 * 320);
  const auto* mix = reinterpret_cast<const short*>(out.data());
  // 48000 samples are a whole number of periods: all five views say the same.
  for (const size_t at : {40U, 20'000U, 57'000U}) EXPECT_NEAR(mix[at], 5 * whole[at], 2) << at;
  for (size_t at = 202'000; at < 249'000; ++at) ASSERT_EQ(mix[at], whole[at]) << at;
}

TEST_F(MixingRoutines, TestRecordMixerSumsVoiceAndAccompaniment) {
  const std::vector<short> music = Tone(300, 3000, 44100, 44100 * 2, 2);
  const std::vector<short> voice = Tone(1000, 3000, 44100, 44100, 2);
  WriteWave("record_acc.wav", music, 44100, 2);
  WriteWave("record_voice.wav", voice, 44100, 2);
  Run(TestRecordMixer);
  const Sound mix = Read("record_out.wav");
  ASSERT_EQ(mix.samples.size(), voice.size());
  for (size_t i = 0; i < voice.size(); ++i) ASSERT_EQ(mix.samples[i], music[i] + voice[i]) << i;
}

TEST_F(MixingRoutines, TestKaraokeFileMixerWritesALateVoiceOverTheMusic) {
  std::vector<short> voice = Tone(1000, 3000, 44100, 44100 * 2);
  WriteWave("voice_record.wav", voice, 44100);
  WriteWave("music.wav", Tone(300, 3000, 44100, 44100 * 4, 2), 44100, 2);
  Run(TestKaraokeFileMixer);
  const Sound mix = Read("output.aac");
  EXPECT_EQ(mix.rate, 44100U);
  EXPECT_EQ(mix.channels, 2U);
  EXPECT_NEAR(static_cast<double>(mix.samples.size()), 2 * 4 * 44100, 2 * 3 * 1024);
  EXPECT_NEAR(Level(mix, 300, 0.08, 0.18), kTone, 0.01);
  EXPECT_LT(Level(mix, 1000, 0.08, 0.18), 0.002);  // The voice comes 200 ms later.
  EXPECT_GT(Level(mix, 1000, 0.5, 2), kTone);
}

TEST_F(MixingRoutines, TestKaraokeRecorderWritesATenthOfASecond) {
  std::filesystem::create_directory("sdcard");
  WriteWave("sdcard/dangni_acc.wav", Tone(300, 3000, 44100, 44100), 44100);
  WriteFile("sdcard/dangni_line_info.txt", "0 0 1000\n1 1000 2000\n");
  WriteFile("sdcard/dangni_score_time_range.txt", "0 500 0 0 60\n500 1000 1 0 62\n");
  Run(TestKaraokeRecorder);
  const Sound voice = Read("sdcard/voice_record.wav");
  EXPECT_EQ(voice.rate, 44100U);
  // Ten blocks, perhaps without those that were on their way when it ended.
  EXPECT_NEAR(static_cast<double>(voice.samples.size()), 4410, 882);
  EXPECT_THAT(voice.samples, Each(0));
  EXPECT_THAT(m_log.Text(), HasSubstr(" karaoke recorder: 3 lines, 2 notes, 0 sung, 0 within"));
}

TEST_F(MixingRoutines, TestFilePlayerGoesOnAfterItHasReturned) {
  const std::vector<short> music = Tone(300, 3000, 48000, 48000, 2);
  WriteWave("music.wav", music, 48000, 2);
  Run([&] {
    Played played;
    TestFilePlayer();
    SleepMs(2000);
    const std::vector<short> sound = played.Sound();
    EXPECT_NEAR(static_cast<double>(sound.size()), static_cast<double>(music.size()), 4);
    EXPECT_TRUE(std::equal(sound.begin(), sound.end(), music.begin() + 2));
  });
  EXPECT_FALSE(std::filesystem::exists("capture.pcm"));
  EXPECT_THAT(m_log.Text(), ContainsRegex(" loudspeaker: stopped after 20[0-9] .* 0 underruns"));
}

TEST_F(MixingRoutines, TestAudioRecorderRecordsUntilItIsEnded) {
  Run([] {
    desktop::StartThread([] {
      SleepMs(2000);
      _exit(0);
    }).detach();
    TestAudioRecorder();
  });
  const Sound sound = Read("audiorecorder.aac");
  EXPECT_EQ(sound.rate, 44100U);
  EXPECT_EQ(sound.channels, 1U);
  EXPECT_GT(sound.samples.size(), 44100 * 1.6);
  EXPECT_LT(sound.samples.size(), 44100 * 2.1);
  EXPECT_THAT(sound.samples, Each(testing::AllOf(testing::Ge(-8), testing::Le(8))));
}

TEST_F(MixingRoutines, TestAudioSaverRecordsOnePlayerAndThenTwo) {
  WriteWave("gangqin.wav", Tone(300, 3000, 44100, 44100 * 15), 44100);
  WriteWave("gangqin2.wav", Tone(1000, 3000, 44100, 44100 * 15), 44100);
  Run(TestAudioSaver);
  const Sound sound = Read("saver.aac");
  EXPECT_EQ(sound.rate, 44100U);
  EXPECT_EQ(sound.channels, 2U);
  EXPECT_NEAR(static_cast<double>(sound.samples.size()), 2 * 44100 * 10, 2 * 44100 * 0.15);
  EXPECT_NEAR(Level(sound, 300, 0.5, 4.5), kTone, 0.002);
  EXPECT_LT(Level(sound, 1000, 0.5, 4.5), 0.001);
  EXPECT_NEAR(Level(sound, 300, 5.5, 9.5), kTone, 0.002);
  EXPECT_NEAR(Level(sound, 1000, 5.5, 9.5), kTone, 0.002);
  EXPECT_THAT(m_log.Text(),
              Not(ContainsRegex("[1-9][0-9]* ((under|over)runs|blocks of 10 ms came)")));
}

TEST_F(MixingRoutines, TestSpeechMsgHasAMinuteForAMessageThatIsNotThere) {
  Run([] {
    testing::internal::CaptureStdout();
    const uint32_t before = GetExactTickCount();
    TestSpeechMsg();
    EXPECT_EQ(GetExactTickCount() - before, 60000U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Play Done, totalTime = 0.\n");
  });
  EXPECT_THAT(m_log.Lines(), SizeIs(1));
  EXPECT_THAT(m_log.Text(), HasSubstr(": cannot open the audio file: "));
}

// How many frames a packed file holds, and whether each is whole.
int CountFrames(const std::string& file) {
  int frames = 0;
  for (size_t at = 0; at < file.size(); ++frames) {
    uint32_t length = 0;
    if (file.size() - at < sizeof length) return -1;
    memcpy(&length, &file[at], sizeof length);
    at += sizeof length + length;
    if (length == 0 || at > file.size()) return -1;
  }
  return frames;
}

TEST_F(MixingRoutines, TestAudioChannelPlaysAllThatItPacked) {
  Run([] { TestAudioChannel(50); });
  // 10 s of 20 ms, without what the codec and the devices still held.
  const int frames = CountFrames(ReadFile("pack.enc"));
  EXPECT_GE(frames, 490);
  EXPECT_LE(frames, 500);
  EXPECT_THAT(m_log.Text(), HasSubstr(" packer: " + std::to_string(frames) +
                                      " frames, 0 left out, 0 too long, 0 samples dropped"));
  EXPECT_THAT(m_log.Text(),
              HasSubstr(" player: stream 0, " + std::to_string(frames) + " frames, "));
  EXPECT_THAT(m_log.Text(), HasSubstr(" 0 refused, "));
  EXPECT_THAT(m_log.Text(), HasSubstr(" 0 underruns"));
  EXPECT_THAT(m_log.Text(), ContainsRegex(" channel: loop delay [0-9]+ ms: "));
}

TEST_F(MixingRoutines, TestPushPcmLeavesAnEmptyFile) {
  WriteFile("Fs44100_Ch2.pcm", std::string(10 * 3528 + 99, '\1'));
  Run(TestPushPcm);
  EXPECT_TRUE(std::filesystem::exists("out.pcm"));
  EXPECT_EQ(std::filesystem::file_size("out.pcm"), 0U);
  EXPECT_THAT(m_log.Lines(), testing::IsEmpty());
}

}  // namespace
