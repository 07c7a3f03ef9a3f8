#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/codec/parts/packet_codec.h"
#include "desktop/devices/block_ring.h"
#include "desktop/devices/device_format.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/enhancement/parts/voice_detector.h"
#include "engine_api/mixing/audio_frame_packer_notify.h"

namespace desktop {

// Codes what is captured into packets for a notify. One thread puts samples in, without waiting;
// another one codes them and calls the notify.
class PacketMaker {
 public:
  // rawId: of the codec. format: a valid one, of what is put in. Returns null, with one line in the
  // log, for an id that nothing here codes.
  static std::unique_ptr<PacketMaker> Create(IAudioFramePackerNotify* notify, int rawId,
                                             DeviceFormat format);

  // Whether packets without voice are left out, from 200 ms after the last voice on. Any thread.
  void LeaveOutSilence(bool on) { m_leavesOutSilence = on; }

  // Takes interleaved samples; after 2 s of a notify that stands still they are dropped.
  void Put(const short* samples, size_t frames);

  // Codes what waits.
  void Work();

  // How long the first sample of a packet waits for it to be made, ms: until there are as many
  // samples as the packet takes, and for the change of rate.
  uint32_t DelayMs() const;

  // What happened so far.
  struct Counts {
    uint32_t packed;
    // Packets without voice.
    uint32_t leftOut;
    // Packets that were dropped because an AudioFrameData does not take so many bytes.
    uint32_t tooLong;
    // Samples of all channels for which there was no room.
    size_t droppedSamples;
  };
  Counts GetCounts() const;

 private:
  PacketMaker(IAudioFramePackerNotify* notify, DeviceFormat format, DeviceFormat target,
              std::unique_ptr<PacketEncoder> encoder);

  void TakeBlock();
  void Pack();

  IAudioFramePackerNotify* const m_notify;
  const DeviceFormat m_format;
  // The format that the codec takes.
  const DeviceFormat m_target;
  const std::unique_ptr<PacketEncoder> m_encoder;
  std::atomic<bool> m_leavesOutSilence = false;
  BlockRing m_queue;
  std::atomic<size_t> m_dropped = 0;
  // 10 ms as captured.
  std::vector<short> m_block;
  VoiceDetector m_detector;
  Resampler m_resampler;
  std::vector<short> m_converted;
  // The samples of the next packet, of which m_filled are there.
  std::vector<short> m_samples;
  size_t m_filled = 0;
  const size_t m_packetFrames;
  // What the detector says of the next packet.
  VADResultKind m_voice = vadResultIsUnknown;
  // Packets so far, those that were dropped included.
  size_t m_packets = 0;
  size_t m_sinceVoiceMs = 0;
  int m_blocks = 0;
  Counts m_counts = {};
};

}  // namespace desktop
