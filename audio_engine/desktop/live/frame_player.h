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

// Plays coded frames that it pulls from a notify. One thread pulls and decodes; another one, which
// is never kept waiting, takes the sound.
class FramePlayer {
 public:
  // stream: as it is handed to the notify. rate (Hz) and channels of what is rendered.
  FramePlayer(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t rate, uint32_t channels);

  // Pulls frames while less than kTargetMs wait, at most until the notify has none or gives one
  // without sound. To be called every 10 ms. deviceMs: how long a rendered sample takes to the
  // loudspeaker.
  void Work(uint32_t deviceMs);

  // Takes the next samples, interleaved; silence where there are none.
  void Render(short* samples, size_t frames);

  // What happened so far, in frames of the codec.
  struct Counts {
    uint32_t played;
    uint32_t concealed;  // Lost, damaged, or not there in time.
    uint32_t refused;    // Of a codec that is not here.
    uint32_t dropped;    // More in one pull than there is room for.
    uint32_t underruns;  // Rendered blocks that found too little, while frames came.
    uint32_t delayMs;    // From the pull of a frame until it is heard, the mean.
  };
  Counts GetCounts() const;

  static constexpr int kTargetMs = 80;

 private:
  // Silent until enough waits to ride over the unevenness of two threads, and again when the notify
  // had nothing for so long that all was played. Starving: what is played was made up for that.
  enum class State { kFilling, kPlaying, kStarving };

  // Whether there is more to be heard than before.
  bool Pull(uint32_t deviceMs);
  void TakeFrame();
  bool SetCodec(uint8_t codecType);
  void ConcealLost();
  void Starve();
  void Queue(const short* samples, bool madeUp);
  void Report();
  int WaitingMs() const;

  IAudioFramePlayerNotify* const m_notify;
  const uint32_t m_stream;
  const uint32_t m_rate;
  const uint32_t m_channels;
  AudioFrameData m_frame = {};
  bool m_first = true;  // No pull was answered yet.
  bool m_wantsVolume = true;
  bool m_wantsTime = true;
  int m_ticks = 0;
  int m_fillTicks = 0;       // Since the first frame of a state of filling.
  int m_codec = -1;          // Of the decoder.
  uint32_t m_lastIndex = 0;  // Of the last frame.
  std::unique_ptr<ConcealingDecoder> m_decoder;
  std::unique_ptr<Resampler> m_resampler;
  std::vector<short> m_converted;
  BlockRing m_queue;
  uint32_t m_volume = 0;  // Of the frame that was queued last.
  uint64_t m_queued = 0;  // Samples so far.
  uint32_t m_pulled = 0;  // Frames,
  double m_delaysMs = 0;  // and the sum of their delays.
  std::atomic<State> m_state = State::kFilling;
  std::atomic<uint32_t> m_underruns = 0;
  Counts m_counts = {};
};

}  // namespace desktop
