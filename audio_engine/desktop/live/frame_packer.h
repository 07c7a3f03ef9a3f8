#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/codec/parts/packet_codec.h"
#include "desktop/devices/block_ring.h"
#include "desktop/dsp/rate/resampler.h"
#include "engine_api/enhancement/voice_detection.h"
#include "engine_api/mixing/audio_frame_packer_notify.h"

namespace desktop {

// Codes what is captured into frames for a notify. One thread puts samples in, without waiting;
// another one codes them and calls the notify.
class FramePacker {
 public:
  // rawId: of the codec. rate (Hz) and channels: of what is put in, 8000 to 48000 and 1 or 2. Null,
  // with one line in the log, for an id that nothing here codes.
  static std::unique_ptr<FramePacker> Create(IAudioFramePackerNotify* notify, int rawId, int rate,
                                             int channels);

  // Whether frames without voice are left out, from 200 ms after the last voice on. Any thread.
  void LeaveOutSilence(bool on) { m_leavesOutSilence = on; }

  // Takes interleaved samples; after 2 s of a notify that stands still they are dropped.
  void Put(const short* samples, size_t frames);

  // Codes what waits.
  void Work();

  // How long the first sample of a frame waits for it to be packed, ms: until the frame is full,
  // and for the change of rate.
  uint32_t DelayMs() const;

  // What happened so far, in frames of the codec; samples of all channels.
  struct Counts {
    uint32_t packed;
    uint32_t leftOut;
    uint32_t tooLong;  // Dropped: longer than an AudioFrameData takes.
    size_t droppedSamples;
  };
  Counts GetCounts() const;

 private:
  FramePacker(IAudioFramePackerNotify* notify, int rate, int channels, const CodecSetup& setup,
              std::unique_ptr<PacketEncoder> encoder);

  void TakeBlock();
  void Pack();

  IAudioFramePackerNotify* const m_notify;
  const int m_channels;
  const CodecSetup m_setup;
  const std::unique_ptr<PacketEncoder> m_encoder;
  std::atomic<bool> m_leavesOutSilence = false;
  BlockRing m_queue;
  std::atomic<size_t> m_dropped = 0;
  std::vector<short> m_block;  // 10 ms as captured.
  CVoiceDetectionEx m_detector;
  Resampler m_resampler;
  std::vector<short> m_converted;
  std::vector<short> m_frame;                  // What the codec takes,
  size_t m_inFrame = 0;                        // so many of them yet.
  VADResultKind m_voice = vadResultIsUnknown;  // Of the frame that is being filled.
  int64_t m_frames = 0;                        // Filled so far.
  int m_sinceVoiceMs = 0;
  int m_blocks = 0;
  Counts m_counts = {};
};

}  // namespace desktop
