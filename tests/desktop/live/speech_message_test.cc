#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "desktop/live/wait.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "file_player_fixture.h"
#include "support/tone.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

using SpeechMessageTest = FilePlayerFixture;

// Notes the calls in order; of the status only the first of several.
class SpeechNotes : public ISpeechMsgPlayerNotify {
 public:
  void OnAudioPlayStatus(uint32_t played, uint32_t total, uint32_t volume) override {
    EXPECT_LE(played, total);
    EXPECT_LE(volume, 100U);
    if (m_calls.empty() || m_calls.back() != "status") Note("status");
  }
  void OnAudioPlayError() override { Note("error"); }
  void OnFirstStartPlayData() override { Note("start"); }
  void OnStopPlayData(uint32_t played, uint32_t total) override {
    Note("stop " + std::to_string(played) + " of " + std::to_string(total));
  }
  void OnReachMaxPlayTime(uint32_t, uint32_t) override { Note("max"); }

  std::vector<std::string> Calls() const {
    const std::scoped_lock lock(m_mutex);
    return m_calls;
  }

 private:
  void Note(const std::string& call) {
    const std::scoped_lock lock(m_mutex);
    m_calls.push_back(call);
  }

  mutable std::mutex m_mutex;
  std::vector<std::string> m_calls;
};

TEST_F(SpeechMessageTest, TellsOfASpeechMessageInOrder) {
  Write("a.wav", Tone(300, 5000, 16000, 24000), 16000, 1);
  ISpeechMsgPlayer* player = ISpeechMsgPlayer::CreateAudioPlayer("a.wav");
  EXPECT_TRUE(player->Init());
  EXPECT_EQ(player->GetRecordFileTime(), 1500U);
  SpeechNotes notes;
  ASSERT_TRUE(player->Start(&notes));
  EXPECT_TRUE(WaitUntil([&] { return notes.Calls().size() == 3; }));
  EXPECT_THAT(notes.Calls(), ElementsAre("start", "status", "stop 1500 of 1500"));
  player->Stop();
  player->Destroy();
  EXPECT_EQ(notes.Calls().size(), 3U);
}

TEST_F(SpeechMessageTest, TellsThatASpeechMessageCannotBePlayedOn) {
  Write("a.wav", Tone(300, 5000, 16000, 48000), 16000, 1);
  ISpeechMsgPlayer* player = ISpeechMsgPlayer::CreateAudioPlayer("a.wav");
  std::filesystem::resize_file("a.wav", 44 + 2 * 16000);  // One second of three is left.
  SpeechNotes notes;
  ASSERT_TRUE(player->Start(&notes));
  EXPECT_TRUE(WaitUntil([&] { return notes.Calls().size() == 4; }));
  EXPECT_THAT(notes.Calls(),
              ElementsAre("start", "status", "error", MatchesRegex("stop 10.. of 3000")));
  player->Destroy();
  EXPECT_EQ(notes.Calls().size(), 4U);
}

TEST_F(SpeechMessageTest, CallsNothingAfterASpeechMessageWasStopped) {
  Write("a.wav", Tone(300, 5000, 16000, 160000), 16000, 1);
  ISpeechMsgPlayer* player = ISpeechMsgPlayer::CreateAudioPlayer("a.wav");
  auto notes = std::make_unique<SpeechNotes>();
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(player->Start(notes.get()));
    EXPECT_TRUE(WaitUntil([&] { return notes->Calls().size() >= 2; }));
    player->Stop();
    EXPECT_THAT(notes->Calls().back(), testing::StartsWith("stop "));
    notes = std::make_unique<SpeechNotes>();
  }
  EXPECT_TRUE(player->Start(nullptr));
  player->Destroy();
}

TEST_F(SpeechMessageTest, TakesASpeechMessageThatIsNotThereAsOneOfNoLength) {
  for (const char* name : {"", "missing.wav"}) {
    ISpeechMsgPlayer* player = ISpeechMsgPlayer::CreateAudioPlayer(name);
    ASSERT_NE(player, nullptr);
    EXPECT_FALSE(player->Init());
    EXPECT_EQ(player->GetRecordFileTime(), 0U);
    SpeechNotes notes;
    EXPECT_FALSE(player->Start(&notes));
    player->Stop();
    player->Destroy();
    EXPECT_THAT(notes.Calls(), IsEmpty());
  }
}

}  // namespace
