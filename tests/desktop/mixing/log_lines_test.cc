// What is said of what is refused, word for word.

#include <gmock/gmock.h>

#include <climits>
#include <functional>
#include <string>

#include "desktop/devices/audio_device.h"
#include "desktop/live/packets.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using testing::ElementsAre;

class LogLines : public testing::Test {
 protected:
  LogLines() { desktop::UseNullDevices(1); }

  // The lines that a call leaves in the log, without their times. It is to return false.
  static std::vector<std::string> Of(const std::function<bool()>& refused) {
    const CapturedStderr log;
    EXPECT_FALSE(refused());
    std::vector<std::string> lines = log.Lines();
    for (std::string& line : lines) line.erase(0, line.find(' ') + 1);
    return lines;
  }

  const TemporaryDirectory m_directory;
};

TEST_F(LogLines, SayWhatAnEngineCannotDo) {
  IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
  for (const int feature : {-1, 6}) {
    EXPECT_THAT(Of([&] { return engine->Start(static_cast<AudioEngineFeature_t>(feature)); }),
                ElementsAre("engine: there is no feature " + std::to_string(feature)));
  }
  IAudioCapture* const capture = engine->CreateAudioCapture();
  EXPECT_THAT(Of([&] { return capture->Open(7999, 1, 16); }),
              ElementsAre("microphone: cannot be opened with 7999 Hz, 1 channels, 16 bits"));
  EXPECT_THAT(Of([&] { return capture->Open(8000, 2, 24); }),
              ElementsAre("microphone: cannot be opened with 8000 Hz, 2 channels, 24 bits"));
  WriteFile("no.wav", "To be, or not to be, that is the question.");
  const std::pair<const char*, const char*> savers[] = {
      {"a.txt", "cannot write such a file: its name ends neither in .aac nor in .wav"},
      {"missing/a.wav", "cannot write the audio file: No such file or directory"},
      {"no.wav", "cannot write the audio file: not a file or not a format to go on with"}};
  for (const auto& [name, why] : savers) {
    EXPECT_THAT(Of([&, file = std::string(name)]() mutable {
                  return engine->StartAudioSaver(file.data(), AudioSaverOnlyRender,
                                                 AudioSaverFileAppend);
                }),
                ElementsAre(std::string(name) + ": " + why));
  }
  engine->Destroy();
}

TEST_F(LogLines, SayWhatAChannelCannotDo) {
  IAudioChannel* const channel = IAudioChannel::Create();
  KeptPackets kept;
  FedPackets fed(50, {});
  EXPECT_THAT(
      Of([&] { return channel->StartPacker(&kept, 50, 96000, 48000, 1, 2); }),
      ElementsAre("packer: cannot capture 96000 Hz, process 48000 Hz, 1 channels, 2 bytes"));
  EXPECT_THAT(Of([&] { return channel->StartPacker(&kept, 50, 48000, 8000, 2, 4); }),
              ElementsAre("packer: cannot capture 48000 Hz, process 8000 Hz, 2 channels, 4 bytes"));
  EXPECT_THAT(Of([&] { return channel->StartPacker(&kept, -1, 48000, 48000, 1, 2); }),
              ElementsAre("packer: no codec for raw id -1"));
  EXPECT_THAT(Of([&] { return channel->StartPlay(&fed, 7, 7999, 2); }),
              ElementsAre("player: stream 7 cannot play at 7999 Hz with 2 channels"));
  channel->Destroy();
}

TEST_F(LogLines, SayWhatKaraokeCannotDo) {
  IKaraokeRecorder* const recorder = IKaraokeRecorder::Create();
  EXPECT_THAT(Of([&] { return recorder->Start(); }),
              ElementsAre("karaoke recorder: there is no file to record into"));
  recorder->Destroy();
  IKaraokeFileMixer* const mixer = IKaraokeFileMixer::Create();
  char out[] = "a.wav";
  EXPECT_THAT(Of([&] { return mixer->Start(out); }),
              ElementsAre("karaoke mixer: no files are open"));
  mixer->Destroy();
}

TEST_F(LogLines, SayThatNoDeviceHasAFormat) {
  for (const auto direction : {desktop::Direction::kInput, desktop::Direction::kOutput}) {
    desktop::AudioDevice device(direction, {7999, 3}, [](short*, size_t) {});
    const std::string name = direction == desktop::Direction::kInput ? "microphone" : "loudspeaker";
    EXPECT_THAT(Of([&] { return device.Start(); }),
                ElementsAre(name + ": no device has 7999 Hz and 3 channels"));
  }
}

}  // namespace
