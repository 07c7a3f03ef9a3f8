// What the engine saves, and what its microphone path hands over.

#include <gmock/gmock.h>

#include <filesystem>
#include <mutex>

#include "audio_engine_fixture.h"
#include "desktop/live/microphone.h"

namespace {

using desktop::FilePlayer;
using testing::SizeIs;

using AudioEngineSaverTest = AudioEngineFixture;

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

TEST_F(AudioEngineSaverTest, SavesTheMicrophonePathWithAndWithoutFeedback) {
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

TEST_F(AudioEngineSaverTest, SavesWhatIsPlayedAndBoth) {
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

TEST_F(AudioEngineSaverTest, AppendsOrReplaces) {
  WriteFile("a.wav", WavBytes({.rate = 44100}, std::vector<short>(1'000'000)));
  ASSERT_TRUE(Save("a.wav", AudioSaverOnlyCapture, AudioSaverFileAppend));
  SleepMs(100);
  m_engine->StopAudioSaver();
  EXPECT_GT(std::filesystem::file_size("a.wav"), 2'005'000U);
  int rate = 0;
  int channels = 0;
  EXPECT_LT(Saved("a.wav", AudioSaverOnlyCapture, &rate, &channels).size(), 500'000U);
}

TEST_F(AudioEngineSaverTest, RefusesToSaveWhatItCannotWrite) {
  EXPECT_FALSE(Save("a.mp3", AudioSaverOnlyCapture, AudioSaverFileAppend));
  EXPECT_FALSE(Save("none/a.wav", AudioSaverOnlyRender, AudioSaverFileOverride));
  EXPECT_FALSE(m_engine->StartAudioSaver(nullptr, AudioSaverOnlyCapture, AudioSaverFileAppend));
  EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
  EXPECT_THAT(m_log.Lines(), SizeIs(3));
  m_engine->StopAudioSaver();
}

TEST_F(AudioEngineSaverTest, StopsASaverWhoseCaptureIsClosed) {
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

TEST_F(AudioEngineSaverTest, ReplacesTheMicrophoneByWhatIsFedBack) {
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

TEST_F(AudioEngineSaverTest, CleansWhatACallHearsWhileItPlays) {
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

}  // namespace
