#include "engine_api/mixing/audio_engine.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <mutex>
#include <string>

#include "audio_engine_fixture.h"
#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::SizeIs;

using AudioEngineTest = AudioEngineFixture;

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
