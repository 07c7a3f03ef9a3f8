// Files of packed frames as they come from broken cards, pulled to their end.

#include "fuzz/fuzz_target.h"
#include "harness/audio_frame_player_test_notify.h"
#include "support/file_bytes.h"

extern const int kIterations = 5000;

namespace {

std::string Record(uint32_t length, size_t bytes) {
  std::string record(reinterpret_cast<const char*>(&length), sizeof length);
  record.append(bytes, 'f');
  return record;
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"", Record(40, 40) + Record(0, 0) + Record(7, 7), Record(1024, 1024) + Record(1, 1),
          Record(1030, 1030) + Record(70000, 70000) + Record(3, 3), Record(0xFFFFFFFF, 100)};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  char name[] = "fuzz.enc";
  WriteFile(name, std::string(data, data + size));
  AudioFramePlayerTestNotify player(fopen(name, "rb"), name, 2, size % 2 == 1);
  AudioFrameData frame = {};
  FramePlayerFeedbackInfo feedback = {};
  uint32_t frames = 0;
  // Each pull takes 4 bytes of the file, or comes in a stretch of silence, or is after the end.
  for (size_t pull = 0; pull < size / 4 + 400; ++pull) {
    if (player.OnPullAudioFrame(0, frame, false, feedback)) ++frames;
    REQUIRE(frame.frameIndex == frames);
  }
  REQUIRE(!player.OnPullAudioFrame(0, frame, false, feedback));
  return 0;
}
