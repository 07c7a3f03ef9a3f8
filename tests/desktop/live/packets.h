#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "engine_api/mixing/audio_frame_packer_notify.h"
#include "engine_api/mixing/audio_frame_player_notify.h"

// Keeps what a packer gives.
class KeptPackets : public IAudioFramePackerNotify {
 public:
  KeptPackets() = default;
  KeptPackets(const KeptPackets& other) : packets(other.packets), volumes(other.volumes) {}
  KeptPackets& operator=(const KeptPackets&) = delete;

  struct Packet {
    std::vector<uint8_t> bytes;
    VADResultKind voice;
    uint32_t timeMs;
  };

  void OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind voice, uint32_t timeStamp,
                        uint8_t flag) override;
  void OnAudioCaptureVolume(uint32_t volume) override { volumes.push_back(volume); }

  std::vector<Packet> packets;
  std::vector<uint32_t> volumes;

  // How many packets there are, for other threads to read.
  std::atomic<int> count = 0;
};

// Feeds packets to a player. An empty one is a pull without an answer; `lost` ones are left out,
// and the index of the next one says so.
class FedPackets : public IAudioFramePlayerNotify {
 public:
  FedPackets(int rawId, const std::vector<KeptPackets::Packet>& kept);

  bool OnPullAudioFrame(uint32_t streamId, AudioFrameData& frame, bool isFirst,
                        FramePlayerFeedbackInfo& feedback) override;
  bool OnAudioVolume(uint32_t streamId, uint32_t volume) override;
  bool OnAudioRenderPTS(uint32_t, uint32_t timeStamp) override;
  int OnAudioAncData(char**, int*, int) override { return 0; }

  int rawId;
  std::vector<std::vector<uint8_t>> packets;
  std::vector<bool> lost;
  size_t next = 0;

  // From packet emptyFrom to before emptyTo, a packet's length is told as 0.
  size_t emptyFrom = 0;
  size_t emptyTo = 0;

  std::atomic<int> pulls = 0;
  int firstPulls = 0;
  std::vector<uint32_t> volumes;
  std::vector<uint32_t> times;
  std::vector<FramePlayerFeedbackInfo> feedbacks;

  // The answer to volumes and times.
  bool wantsMore = true;
};

// `samples` packed with the codec `rawId`, 10 ms at a time.
KeptPackets Pack(int rawId, const std::vector<short>& samples, int rate, int channels = 1);

// What a player renders within `ms`, 10 ms at a time, one pulling and one rendering after the
// other.
std::vector<short> Play(FedPackets& packets, int ms, uint32_t rate, uint32_t channels = 1);
