#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <mutex>
#include <numbers>
#include <string>

#include "desktop/devices/audio_device.h"
#include "desktop/files/adts_reader.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/live/file_player.h"
#include "desktop/live/microphone.h"
#include "desktop/live/wait.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "sound_server_fixture.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/real_time.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::AudioDevice;
using desktop::Direction;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;

constexpr double kFrequency = 440;
constexpr double kAmplitude = 8000;
constexpr int kRate = 48000;

// What a server whose devices nobody hears gives back of a tone.
std::vector<short> PlayAndCapture(milliseconds length, InRealTime& time) {
  std::vector<short> heard;
  heard.reserve(kRate * 60);
  AudioDevice input(Direction::kInput, {kRate, 1}, [&](short* samples, size_t frames) {
    heard.insert(heard.end(), samples, samples + frames);
  });
  int played = 0;
  AudioDevice output(Direction::kOutput, {kRate, 1}, [&](short* samples, size_t frames) {
    for (size_t i = 0; i < frames; ++i, ++played) {
      const double phase = 2 * std::numbers::pi * kFrequency * played / kRate;
      samples[i] = static_cast<short>(std::lrint(kAmplitude * std::sin(phase)));
    }
  });
  EXPECT_TRUE(output.Start());
  EXPECT_TRUE(input.Start());
  std::this_thread::sleep_for(length);
  EXPECT_GT(output.LatencyMs(), 10U);
  time.Expect(output.LatencyMs() < 300, "latency " + std::to_string(output.LatencyMs()) + " ms");
  input.Stop();
  output.Stop();
  const uint64_t failures = output.Failures() + input.Failures();
  time.Expect(failures == 0, std::to_string(failures) + " failures");
  return heard;
}

// Amplitude and phase of the tone in 1000 samples, against a tone that starts at sample 0.
std::complex<double> ToneAt(const std::vector<short>& samples, size_t start) {
  std::complex<double> sum = 0;
  for (size_t i = start; i < start + 1200; ++i) {  // Eleven periods.
    const double phase = 2 * std::numbers::pi * kFrequency * static_cast<double>(i) / kRate;
    sum += static_cast<double>(samples[i]) * std::polar(1.0, -phase);
  }
  return sum * (2.0 / 1200);
}

class RecordedServer : public SoundServerTest {
 protected:
  // Records for `total` and does `what` to the server after 500 ms.
  template <typename What>
  void RecordWhile(milliseconds total, const What& what) {
    IAudioEngine* engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
    std::string file = "saver.wav";
    const auto start = steady_clock::now();
    ASSERT_TRUE(
        engine->StartAudioSaver(file.data(), AudioSaverOnlyCapture, AudioSaverFileOverride));
    std::this_thread::sleep_for(milliseconds(500));
    what();
    std::this_thread::sleep_until(start + total);
    engine->StopAudioSaver();
    engine->Destroy();
    const auto late = steady_clock::now() - start - total;
    m_time.Expect(late < milliseconds(1500), "stopped late");
    std::unique_ptr<desktop::FileSource> source;
    ASSERT_EQ(desktop::OpenAudioFile("saver.wav", &source), desktop::FileFault::kNone);
    const auto off = static_cast<int64_t>(source->LengthMs()) - total.count();
    m_time.Expect(std::abs(off) < 150, "a recording is " + std::to_string(off) + " ms too long");
  }
};

TEST_F(SoundServerTest, GivesBackWhatIsPlayedWithoutGapsOrRepeats) {
  const std::vector<short> heard = PlayAndCapture(milliseconds(3000), m_time);
  EXPECT_EQ(LinesWith("sound server"), 2);
  const int loudest = *std::max_element(heard.begin(), heard.end());
  EXPECT_NEAR(20 * std::log10(loudest / kAmplitude), 0, 0.5);
  if (!m_time.Expect(heard.size() > kRate * 5U / 2, "too little was heard")) return;
  const std::complex<double> first = ToneAt(heard, kRate / 2);
  for (size_t at = kRate / 2; at + 1200 <= heard.size(); at += 1200) {
    const std::complex<double> tone = ToneAt(heard, at);
    const double decibels = 20 * std::log10(std::abs(tone) / kAmplitude);
    // One sample is 3.3 degrees. A frequency 0.01 Hz off would show as 9 in the end.
    const double degrees = std::arg(tone / first) * 180 / std::numbers::pi;
    m_time.Expect(std::abs(decibels) < 0.5 && std::abs(degrees) < 8,
                  "a gap or a repeat at " + std::to_string(at));
  }
}

std::vector<short> ReadSound(const char* name) {
  std::unique_ptr<desktop::FileSource> source;
  if (desktop::OpenAudioFile(name, &source) != desktop::FileFault::kNone) return {};
  std::vector<short> samples(source->Frames() * source->Channels());
  source->Read(samples.data(), source->Frames());
  return samples;
}

// Keeps the microphone path.
class Path : public desktop::CaptureListener {
 public:
  void OnCaptured(const desktop::CapturedBlock& block) override {
    samples.insert(samples.end(), block.samples, block.samples + block.frames);
  }
  std::vector<short> samples;
};

// The microphone hears both players; what is fed back stands in its place.
TEST_F(SoundServerTest, HearsNothingOfAMicrophoneThatIsReplaced) {
  WriteFile("heard.wav", WavBytes({.rate = 48000}, Tone(1000, 8000, kRate, kRate * 4)));
  WriteFile("fed.wav", WavBytes({.rate = 48000}, Tone(500, 8000, kRate, kRate * 4)));
  desktop::FilePlayer heard;
  desktop::FilePlayer fed;
  fed.SetFeedBack(AudioSourceTypeOuterPCM);
  Path path;
  const std::atomic<bool> cleans = false;
  desktop::Microphone microphone({kRate, 1}, cleans);
  microphone.Add(&path);
  ASSERT_TRUE(microphone.Start());
  ASSERT_EQ(heard.Open("heard.wav"), desktop::FileFault::kNone);
  ASSERT_EQ(fed.Open("fed.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(heard.Play());
  ASSERT_TRUE(fed.Play());
  std::this_thread::sleep_for(milliseconds(1200));
  microphone.Stop();
  microphone.Remove(&path);
  if (!m_time.Expect(path.samples.size() > 48000, "too little was heard")) return;
  const std::vector<double> late =
      ToDoubles(std::vector<short>(path.samples.end() - 24000, path.samples.end()));
  const double fedLevel = AmplitudeAt(late, 500, kRate);
  m_time.Expect(std::abs(fedLevel - 8000 / 32768.0) < 0.01, "what was fed has gaps");
  m_time.Expect(AmplitudeAt(late, 1000, kRate) < 0.001, "the microphone comes through");
}

// Where the first sample beyond half the level of a burst is, s.
double Onset(const std::vector<int>& samples) {
  const auto loud = [](int sample) { return std::abs(sample) > 3000; };
  return static_cast<double>(std::find_if(samples.begin(), samples.end(), loud) - samples.begin()) /
         44100;
}

// The microphone hears the accompaniment as a singer does: in the mix both are at the same time,
// however long the way through the server is.
TEST_F(SoundServerTest, MixesTheVoiceWithWhatTheSingerHeard) {
  std::vector<short> music = Tone(1000, 6000, 44100, 44100 * 3);
  std::fill_n(music.begin(), 44100, short{0});
  WriteFile("music.wav", WavBytes({.rate = 44100}, music));
  char none[] = "";
  char song[] = "music.wav";
  char voice[] = "voice.wav";
  char mixed[] = "mix.wav";
  // The loudspeaker runs already: what it is given from now on is heard a tenth of a second later.
  WriteFile("silence.wav", WavBytes({.rate = 48000}, std::vector<short>(kRate * 4)));
  desktop::FilePlayer silence;
  ASSERT_EQ(silence.Open("silence.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(silence.Play());
  std::this_thread::sleep_for(milliseconds(300));
  IKaraokeRecorder* recorder = IKaraokeRecorder::Create();
  ASSERT_TRUE(recorder->OpenInputFile(none, song));
  ASSERT_TRUE(recorder->OpenOutputFile(voice, mixed));
  ASSERT_TRUE(recorder->Start());
  std::this_thread::sleep_for(milliseconds(1700));
  recorder->Destroy();

  const std::vector<short> heard = ReadSound(voice);
  const std::vector<short> mix = ReadSound(mixed);
  ASSERT_EQ(mix.size(), 2 * heard.size());
  std::vector<int> sung(heard.begin(), heard.end());
  std::vector<int> played(heard.size());
  for (size_t i = 0; i < heard.size(); ++i) played[i] = mix[2 * i] - heard[i];
  const double apart = Onset(sung) - Onset(played);
  m_time.Expect(Onset(sung) < 1.6 && std::abs(apart) < 0.03,
                "voice and song are " + std::to_string(apart) + " s apart");
}

TEST_F(RecordedServer, GoesOnWithoutAServerThatDied) {
  RecordWhile(milliseconds(2000), [&] { m_server.Kill(); });
  EXPECT_EQ(LinesWith("the sound server is lost"), 1);
}

TEST_F(RecordedServer, GoesOnWithoutAServerThatHangs) {
  RecordWhile(milliseconds(3500), [&] { m_server.Pause(); });
  EXPECT_EQ(LinesWith("the sound server is lost"), 1);
}

TEST_F(RecordedServer, TakesTheNullDeviceWhenTheServerHangsFromTheStart) {
  m_server.Pause();
  RecordWhile(milliseconds(2500), [] {});
  EXPECT_EQ(LinesWith("no sound server: it does not answer"), 1);
}

TEST_F(SoundServerTest, StopsWithinASecondWhileTheServerHangs) {
  m_server.Pause();
  AudioDevice output(Direction::kOutput, {}, [](short*, size_t) {});
  ASSERT_TRUE(output.Start());
  std::this_thread::sleep_for(milliseconds(100));
  const auto before = steady_clock::now();
  output.Stop();
  m_time.Expect(steady_clock::now() - before < milliseconds(1000), "stopped late");
}

TEST_F(SoundServerTest, TakesTheNullDeviceAtOnceWithoutAServer) {
  m_server.Kill();
  AudioDevice output(Direction::kOutput, {}, [](short*, size_t) {});
  ASSERT_TRUE(output.Start());
  EXPECT_TRUE(WaitUntil([&] { return output.Blocks() > 5; }));
  output.Stop();
  EXPECT_EQ(LinesWith("no sound server: Connection refused"), 1);
}

}  // namespace
