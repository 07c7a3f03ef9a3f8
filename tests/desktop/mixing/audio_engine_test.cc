#include "engine_api/mixing/audio_engine.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "desktop/files/open_audio_file.h"
#include "desktop/live/file_player.h"
#include "desktop/live/microphone.h"
#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "support/captured_stderr.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::FilePlayer;
using desktop::FileSource;
using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::SizeIs;

// Counts what a capture hands over.
class CaptureNotes : public IAudioCaptureNotify {
 public:
  void OnCaptureAudioData(const void* audioSamples, uint32_t dataSize, uint8_t volume,
                          VADResultKind /*voice*/, uint32_t timeStamp) override {
    EXPECT_NE(audioSamples, nullptr);
    bytes = dataSize;
    level = volume;
    timeMs = timeStamp;
    ++blocks;
  }
  bool OnCaptureVolumeVisual(const uint32_t& /*volume*/) override { return ++volumes < 3; }

  std::atomic<uint32_t> bytes = 0;
  std::atomic<int> level = -1;
  std::atomic<uint32_t> timeMs = 0;
  std::atomic<int> blocks = 0;
  std::atomic<int> volumes = 0;
};

// The best of all stretches of 100 ms: on a busy machine the devices of a test may stumble.
ToneFit BestFit(const std::vector<short>& samples, double frequency, int rate, int channels) {
  const auto length = static_cast<ptrdiff_t>(rate) / 10 * channels;
  ToneFit best = {0, 100};
  for (auto at = samples.begin(); samples.end() - at >= length; at += length) {
    const ToneFit fit = FitTone(std::vector<short>(at, at + length), frequency, rate, channels);
    if (fit.amplitude > 0 && fit.residualDb < best.residualDb) best = fit;
  }
  return best;
}

class AudioEngineTest : public testing::Test {
 protected:
  void SetUp() override {
    desktop::UseNullDevices(4);
    m_engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
  }
  void TearDown() override { m_engine->Destroy(); }

  bool Save(const char* name, AudioSaverMode mode, AudioSaverWfMode writing) {
    std::string file = name;
    return m_engine->StartAudioSaver(file.data(), mode, writing);
  }

  // A player of a tone that lasts long enough.
  void PlayTone(FilePlayer& player, double frequency, double amplitude, AudioSourceType feedback) {
    WriteFile("tone.wav", WavBytes({.channels = 1, .rate = 48000},
                                   Tone(frequency, amplitude, 48000, 48000 * 8)));
    ASSERT_EQ(player.Open("tone.wav"), desktop::FileFault::kNone);
    player.SetFeedBack(feedback);
    ASSERT_TRUE(player.Play());
    ASSERT_TRUE(WaitUntil([&] { return player.PlayedMs() > 100; }));
  }

  // Records a second of the device's time or so, and reads the file.
  std::vector<short> Saved(const char* name, AudioSaverMode mode, int* rate, int* channels) {
    EXPECT_TRUE(Save(name, mode, AudioSaverFileOverride));
    SleepMs(250);
    m_engine->StopAudioSaver();
    std::unique_ptr<FileSource> source;
    EXPECT_EQ(desktop::OpenAudioFile(name, &source), desktop::FileFault::kNone);
    if (source == nullptr) return {};
    *rate = static_cast<int>(source->Rate());
    *channels = static_cast<int>(source->Channels());
    std::vector<short> samples(source->Frames() * source->Channels());
    EXPECT_EQ(source->Read(samples.data(), source->Frames()), source->Frames());
    return samples;
  }

  std::optional<desktop::StepClock> m_clock{std::in_place};
  const TemporaryDirectory m_directory;
  const CapturedStderr m_log;
  IAudioEngine* m_engine = nullptr;
};

TEST_F(AudioEngineTest, IsOneForTheProcess) {
  EXPECT_EQ(CreateAudioEngine(nullptr, 0, nullptr, nullptr), m_engine);
}

TEST_F(AudioEngineTest, KnowsItsFeatures) {
  EXPECT_TRUE(m_engine->Start(AudioEngineFeatureVOIP));
  EXPECT_TRUE(m_engine->Start(AudioEngineKaraokeOffLine));
  EXPECT_FALSE(m_engine->Start(TotalFeatureMode));
}

std::mutex g_linesMutex;
std::vector<std::string> g_lines;
void NoteLine(const char* line) {
  const std::scoped_lock lock(g_linesMutex);
  g_lines.emplace_back(line);
}

TEST_F(AudioEngineTest, HandsEveryLineOfItsLogToItsOwner) {
  CreateAudioEngine(nullptr, 0, nullptr, NoteLine);
  OutputDebugInfo("one line\n");
  CreateAudioEngine(nullptr, 0, nullptr, nullptr);
  OutputDebugInfo("another");
  ASSERT_THAT(g_lines, SizeIs(1));
  EXPECT_THAT(g_lines[0], testing::EndsWith(" one line"));
}

TEST_F(AudioEngineTest, CapturesBlocksOf10MsWithExactByteCounts) {
  desktop::UseNullDevices(1);
  IAudioCapture* capture = m_engine->CreateAudioCapture();
  struct Format {
    uint32_t rate, channels, bytes;
  };
  for (const Format& format : {Format{44100, 2, 1764}, {8000, 1, 160}, {48000, 2, 1920}}) {
    ASSERT_TRUE(capture->Open(format.rate, format.channels, 16));
    CaptureNotes notes;
    ASSERT_TRUE(capture->Start(&notes));
    const auto start = desktop::Now();
    ASSERT_TRUE(WaitUntil([&] { return notes.blocks >= 20; }));
    const std::chrono::duration<double, std::milli> took = desktop::Now() - start;
    capture->Stop();
    EXPECT_EQ(notes.bytes, format.bytes);
    EXPECT_EQ(notes.level, 0);
    EXPECT_GE(took.count(), 200);
    EXPECT_LE(took.count(), 220);
    EXPECT_EQ(notes.volumes, 3);  // Until it had said that it wants no more.
    EXPECT_NEAR(notes.timeMs, 10 * (notes.blocks - 1), 50);
  }
}

TEST_F(AudioEngineTest, CallsNoCaptureNotifyAfterStopOrDestroy) {
  m_clock.reset();  // One that stands still would keep threads from meeting.
  desktop::UseNullDevices(50);
  IAudioCapture* capture = m_engine->CreateAudioCapture();
  ASSERT_TRUE(capture->Open(16000, 1, 16));
  for (int i = 0; i < 20; ++i) {
    auto notes = std::make_unique<CaptureNotes>();
    ASSERT_TRUE(capture->Start(notes.get()));
    ASSERT_TRUE(WaitUntil([&] { return notes->blocks > 2; }));
    if (i < 19) capture->Stop();
    if (i == 19) capture->Destroy();
  }
}

TEST_F(AudioEngineTest, DoesNotOpenWhatNoDeviceHas) {
  IAudioCapture* capture = m_engine->CreateAudioCapture();
  EXPECT_FALSE(capture->Open(7000, 1, 16));
  EXPECT_FALSE(capture->Open(48000, 3, 16));
  EXPECT_FALSE(capture->Open(48000, 1, 8));
  EXPECT_THAT(m_log.Lines(), SizeIs(3));
  EXPECT_FALSE(capture->Start(nullptr));
  capture->Stop();
  capture->Close();
}

TEST_F(AudioEngineTest, SavesTheMicrophonePathWithAndWithoutFeedback) {
  IAudioCapture* capture = m_engine->CreateAudioCapture();
  ASSERT_TRUE(capture->Open(44100, 2, 16));
  FilePlayer player;
  PlayTone(player, 1000, 9000, AudioSourceTypeMix);
  int rate = 0;
  int channels = 0;
  const auto with = Saved("a.wav", AudioSaverOnlyCapture, &rate, &channels);
  EXPECT_EQ(rate, 44100);
  EXPECT_EQ(channels, 2);
  EXPECT_GT(with.size(), 22050U);
  const ToneFit fit = BestFit(with, 1000, 44100, 2);
  EXPECT_NEAR(fit.amplitude, 9000, 10);
  EXPECT_LT(fit.residualDb, -75);

  const auto without = Saved("a.wav", AusioSaverOnlyCaptureOri, &rate, &channels);
  EXPECT_EQ(BestFit(without, 1000, 44100, 2).amplitude, 0);
  EXPECT_FALSE(without.empty());

  player.SetFeedBack(AudioSourceTypeMic);
  SleepMs(50);
  const auto off = Saved("a.wav", AudioSaverOnlyCapture, &rate, &channels);
  EXPECT_EQ(BestFit(off, 1000, 44100, 2).amplitude, 0);
}

TEST_F(AudioEngineTest, SavesWhatIsPlayedAndBoth) {
  FilePlayer player;
  PlayTone(player, 500, 7000, AudioSourceTypeMix);
  int rate = 0;
  int channels = 0;
  const auto render = Saved("a.wav", AudioSaverOnlyRender, &rate, &channels);
  EXPECT_EQ(rate, 48000);
  EXPECT_EQ(channels, 2);
  ToneFit fit = BestFit(render, 500, 48000, 2);
  EXPECT_NEAR(fit.amplitude, 7000, 10);
  EXPECT_LT(fit.residualDb, -75);

  // What is played counts once, whether it is fed back or not.
  const auto both = Saved("b.wav", AudioSaverBoth, &rate, &channels);
  EXPECT_EQ(rate, 44100);
  EXPECT_EQ(channels, 1);
  fit = BestFit(both, 500, 44100, 1);
  EXPECT_NEAR(fit.amplitude, 7000, 10);
  EXPECT_LT(fit.residualDb, -75);
}

TEST_F(AudioEngineTest, AppendsOrReplaces) {
  WriteFile("a.wav", WavBytes({.rate = 44100}, std::vector<short>(1'000'000)));
  ASSERT_TRUE(Save("a.wav", AudioSaverOnlyCapture, AudioSaverFileAppend));
  SleepMs(100);
  m_engine->StopAudioSaver();
  EXPECT_GT(std::filesystem::file_size("a.wav"), 2'005'000U);
  int rate = 0;
  int channels = 0;
  EXPECT_LT(Saved("a.wav", AudioSaverOnlyCapture, &rate, &channels).size(), 500'000U);
}

TEST_F(AudioEngineTest, RefusesToSaveWhatItCannotWrite) {
  EXPECT_FALSE(Save("a.mp3", AudioSaverOnlyCapture, AudioSaverFileAppend));
  EXPECT_FALSE(Save("none/a.wav", AudioSaverOnlyRender, AudioSaverFileOverride));
  EXPECT_FALSE(m_engine->StartAudioSaver(nullptr, AudioSaverOnlyCapture, AudioSaverFileAppend));
  EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
  EXPECT_THAT(m_log.Lines(), SizeIs(3));
  m_engine->StopAudioSaver();
}

TEST_F(AudioEngineTest, StopsASaverWhoseCaptureIsClosed) {
  IAudioCapture* capture = m_engine->CreateAudioCapture();
  ASSERT_TRUE(capture->Open(16000, 1, 16));
  ASSERT_TRUE(Save("a.wav", AudioSaverOnlyCapture, AudioSaverFileOverride));
  CaptureNotes notes;
  ASSERT_TRUE(capture->Start(&notes));
  ASSERT_TRUE(WaitUntil([&] { return notes.blocks > 10; }));
  capture->Close();
  const auto size = std::filesystem::file_size("a.wav");
  EXPECT_GT(size, 2000U);
  m_engine->StopAudioSaver();
  EXPECT_EQ(std::filesystem::file_size("a.wav"), size);
}

// What the microphone path hands over.
class PathNotes : public desktop::CaptureListener {
 public:
  void OnCaptured(const desktop::CapturedBlock& block) override {
    const std::scoped_lock lock(m_mutex);
    m_samples.insert(m_samples.end(), block.samples, block.samples + block.frames);
  }
  std::vector<short> Samples() const {
    const std::scoped_lock lock(m_mutex);
    return m_samples;
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<short> m_samples;
};

TEST_F(AudioEngineTest, ReplacesTheMicrophoneByWhatIsFedBack) {
  FilePlayer player;
  PlayTone(player, 1000, 9000, AudioSourceTypeOuterPCM);
  const std::atomic<bool> cleans = false;
  desktop::Microphone microphone({16000, 1}, cleans);
  PathNotes notes;
  microphone.Add(&notes);
  ASSERT_TRUE(microphone.Start());
  EXPECT_TRUE(WaitUntil([&] { return notes.Samples().size() > 16000; }));
  microphone.Stop();
  microphone.Remove(&notes);
  EXPECT_NEAR(BestFit(notes.Samples(), 1000, 16000, 1).amplitude, 9000, 10);
}

TEST_F(AudioEngineTest, CleansWhatACallHearsWhileItPlays) {
  desktop::UseNullDevices(1);
  ASSERT_TRUE(m_engine->Start(AudioEngineFeatureVOIP));
  FilePlayer player;
  PlayTone(player, 1000, 9000, AudioSourceTypeMic);
  int rate = 0;
  int channels = 0;
  const auto heard = Saved("a.wav", AudioSaverOnlyCapture, &rate, &channels);
  EXPECT_GT(heard.size(), 4410U);
  EXPECT_THAT(heard, testing::Each(0));  // The microphone of no device hears no loudspeaker.
}

// A program may leave everything alive and return from main; the preset of the thread sanitizer
// therefore lets threads be left.
TEST_F(AudioEngineTest, EndsCleanlyWithAProgramThatLeavesItRunning) {
  m_clock.reset();
  WriteFile("tone.wav", WavBytes({}, Tone(500, 900, 16000, 160000)));
  const int status = RunInChild([] {
    CreateAudioEngine(nullptr, 0, nullptr, nullptr)->CreateAudioCapture()->Open(16000, 1, 16);
    IAudioFilePlayer* player = IAudioFilePlayer::Create();
    std::string file = "tone.wav";
    player->Open(file.data());
    // Counts from 0 once the player has started the device, which earlier cases have left.
    const desktop::AudioDevice& device = desktop::Loudspeaker::Shared().Device();
    const uint64_t before = device.Blocks();
    player->Play();
    while (device.Blocks() == before || device.Blocks() < 3) std::this_thread::yield();
    std::exit(0);  // NOLINT(concurrency-mt-unsafe): as a return from main does.
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(m_log.Lines(), IsSupersetOf({HasSubstr(" microphone: stopped after"),
                                           HasSubstr(" loudspeaker: stopped after")}));
}

}  // namespace
