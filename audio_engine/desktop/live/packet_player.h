#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/devices/block_ring.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/live/concealing_decoder.h"
#include "engine_api/mixing/audio_frame_player_notify.h"

namespace desktop {

// Plays packets that it pulls from a notify. One thread pulls and decodes; another one, which is
// never kept waiting, takes the sound. The delay is fixed: packets are pulled until 80 ms wait.
class PacketPlayer {
 public:
  // stream: as it is handed to the notify. rate (Hz) and channels of what is rendered.
  PacketPlayer(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t rate, uint32_t channels);

  // Pulls packets while less than kTargetMs wait, at most until the notify has none or gives one
  // without sound. To be called every 10 ms. deviceMs: how long a rendered sample takes to the
  // loudspeaker.
  void Work(uint32_t deviceMs);

  // Takes the next samples, interleaved; silence where there are none.
  void Render(short* samples, size_t frames);

  // What happened so far, in packets unless it says otherwise.
  struct Counts {
    uint32_t played;
    // Lost, damaged, or not there in time.
    uint32_t concealed;
    // Of a codec that this build does not have.
    uint32_t refused;
    // More in one pull than there is room for.
    uint32_t dropped;
    // Rendered blocks that found too little while packets came.
    uint32_t underruns;
    // The mean delay from the pull of a packet until it is heard, ms.
    uint32_t delayMs;
  };
  Counts GetCounts() const;

  static constexpr int kTargetMs = 80;

 private:
  enum class State {
    // Silent until enough waits to ride over the unevenness of two threads.
    kFilling,
    kPlaying,
    // The notify has nothing: what is played is made up, until it is silent and all was played.
    kStarving
  };

  // Returns whether there is more to be heard than before.
  bool Pull(uint32_t deviceMs);
  void TakePacket();
  bool SetCodec(int rawId);
  void ConcealLost();
  void Starve();
  void Queue(const short* samples, bool madeUp);
  void Report();
  int WaitingMs() const;

  IAudioFramePlayerNotify* const m_notify;
  const uint32_t m_stream;
  const uint32_t m_rate;
  const uint32_t m_channels;
  AudioFrameData m_packet = {};
  // No pull was answered yet.
  bool m_first = true;
  bool m_wantsVolume = true;
  bool m_wantsTime = true;
  int m_ticks = 0;
  // Ticks since the first packet in the state kFilling.
  int m_fillTicks = 0;
  // The codec that the decoder is for.
  int m_rawId = -1;
  // The index of the last packet.
  uint32_t m_lastIndex = 0;
  std::unique_ptr<ConcealingDecoder> m_decoder;
  std::unique_ptr<Resampler> m_resampler;
  std::vector<short> m_converted;
  BlockRing m_queue;
  // The volume of the block that was queued last.
  uint32_t m_volume = 0;
  // Samples that were queued so far.
  size_t m_queued = 0;
  // How many packets were pulled, and the sum of their delays.
  uint32_t m_pulled = 0;
  double m_delaysMs = 0;
  std::atomic<State> m_state = State::kFilling;
  std::atomic<uint32_t> m_underruns = 0;
  Counts m_counts = {};
};

}  // namespace desktop
