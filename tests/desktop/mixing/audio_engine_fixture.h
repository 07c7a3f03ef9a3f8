#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/files/open_audio_file.h"
#include "desktop/live/file_player.h"
#include "desktop/live/wait.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/mixing/audio_engine.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

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

// The engine on devices of no sound, on a clock of the test's.
class AudioEngineFixture : public testing::Test {
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
  void PlayTone(desktop::FilePlayer& player, double frequency, double amplitude,
                AudioSourceType feedback) {
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
    std::unique_ptr<desktop::FileSource> source;
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
