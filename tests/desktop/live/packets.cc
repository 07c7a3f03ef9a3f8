#include "desktop/live/packets.h"

#include <algorithm>

#include "desktop/live/packet_maker.h"
#include "desktop/live/packet_player.h"

void KeptPackets::OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind voice,
                                   uint32_t timeStamp, uint8_t /*flag*/) {
  packets.push_back({std::vector<uint8_t>(data, data + len), voice, timeStamp});
  ++count;
}

FedPackets::FedPackets(int rawId, const std::vector<KeptPackets::Packet>& kept) : rawId(rawId) {
  for (const KeptPackets::Packet& packet : kept) packets.push_back(packet.bytes);
  lost.resize(packets.size());
}

bool FedPackets::OnPullAudioFrame(uint32_t, AudioFrameData& frame, bool isFirst,
                                  FramePlayerFeedbackInfo& feedback) {
  ++pulls;
  firstPulls += isFirst ? 1 : 0;
  feedbacks.push_back(feedback);
  while (next < packets.size() && lost[next]) {
    ++next;
    ++frame.frameIndex;
  }
  if (next >= packets.size()) return false;
  const bool isEmpty = next >= emptyFrom && next < emptyTo;
  const std::vector<uint8_t>& bytes = packets[next++];
  if (bytes.empty()) return false;
  std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof frame.frameData), frame.frameData);
  frame.frameLength = isEmpty ? uint16_t{0} : static_cast<uint16_t>(bytes.size());
  frame.codecType = static_cast<uint8_t>(rawId);
  frame.timestamp = static_cast<uint32_t>(next);
  ++frame.frameIndex;
  return true;
}

bool FedPackets::OnAudioVolume(uint32_t, uint32_t volume) {
  volumes.push_back(volume);
  return wantsMore;
}

bool FedPackets::OnAudioRenderPTS(uint32_t, uint32_t timeStamp) {
  times.push_back(timeStamp);
  return wantsMore;
}

KeptPackets Pack(int rawId, const std::vector<short>& samples, int rate, int channels) {
  KeptPackets kept;
  const desktop::DeviceFormat format = {static_cast<uint32_t>(rate),
                                        static_cast<uint32_t>(channels)};
  const auto packer = desktop::PacketMaker::Create(&kept, rawId, format);
  if (packer == nullptr) return kept;
  const size_t block = format.BlockFrames() * format.channels;
  for (size_t at = 0; at + block <= samples.size(); at += block) {
    packer->Put(&samples[at], format.BlockFrames());
    packer->Work();
  }
  return kept;
}

std::vector<short> Play(FedPackets& packets, int ms, uint32_t rate, uint32_t channels) {
  desktop::PacketPlayer player(&packets, 0, rate, channels);
  const size_t block = rate / 100;
  std::vector<short> played;
  for (int done = 0; done < ms; done += 10) {
    player.Work(0);
    played.resize(played.size() + block * channels);
    player.Render(&played[played.size() - block * channels], block);
  }
  return played;
}
