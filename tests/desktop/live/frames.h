#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "engine_api/mixing/audio_frame_packer_notify.h"
#include "engine_api/mixing/audio_frame_player_notify.h"

// Keeps what a packer gives.
class KeptFrames : public IAudioFramePackerNotify {
 public:
  KeptFrames() = default;
  KeptFrames(const KeptFrames& other) : frames(other.frames), volumes(other.volumes) {}
  KeptFrames& operator=(const KeptFrames&) = delete;

  struct Frame {
    std::vector<uint8_t> bytes;
    VADResultKind voice;
    uint32_t timeMs;
  };

  void OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind voice, uint32_t timeStamp,
                        uint8_t flag) override;
  void OnAudioCaptureVolume(uint32_t volume) override { volumes.push_back(volume); }

  std::vector<Frame> frames;
  std::vector<uint32_t> volumes;
  std::atomic<int> count = 0;  // Of the frames, while they come on another thread.
};

// Feeds frames to a player. An empty one is a pull without an answer; `lost` ones are left out, and
// the index of the next one says so.
class FedFrames : public IAudioFramePlayerNotify {
 public:
  FedFrames(int rawId, const std::vector<KeptFrames::Frame>& kept);

  bool OnPullAudioFrame(uint32_t streamId, AudioFrameData& frame, bool isFirst,
                        FramePlayerFeedbackInfo& feedback) override;
  bool OnAudioVolume(uint32_t streamId, uint32_t volume) override;
  bool OnAudioRenderPTS(uint32_t, uint32_t timeStamp) override;
  int OnAudioAncData(char**, int*, int) override { return 0; }

  int rawId;
  std::vector<std::vector<uint8_t>> frames;
  std::vector<bool> lost;
  size_t next = 0;
  size_t emptyFrom = 0;  // From this frame on
  size_t emptyTo = 0;    // to this one their length is told as 0.
  std::atomic<int> pulls = 0;
  int firstPulls = 0;
  std::vector<uint32_t> volumes;
  std::vector<uint32_t> times;
  std::vector<FramePlayerFeedbackInfo> feedbacks;
  bool wantsMore = true;  // The answer to volumes and times.
};

// `samples` packed with the codec `rawId`, 10 ms at a time.
KeptFrames Pack(int rawId, const std::vector<short>& samples, int rate, int channels = 1);

// What a player renders within `ms`, 10 ms at a time, one pulling and one rendering after the
// other.
std::vector<short> Play(FedFrames& frames, int ms, uint32_t rate, uint32_t channels = 1);
