#pragma once

#include <atomic>
#include <vector>

#include "desktop/devices/block_ring.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/live/loudspeaker.h"

namespace desktop {

// Carries what is played, or what of it goes into the microphone path, to a thread that works at
// the pace of another device and in another format. 80 ms wait on the way, because servers take and
// give up to 60 ms at once; where the two devices run apart it skips or waits.
class PlayFeed : public PlayListener {
 public:
  enum class What { kPlayed, kFeedback };

  PlayFeed(What what, DeviceFormat target);

  void OnPlayed(const PlayedBlock& block) override;

  // Gives the next `frames` frames, at most a block of the target; silence where nothing waits.
  // Returns false when nothing waits at all. The reading thread.
  bool Read(short* samples, size_t frames);

  // Returns whether what is read now takes the place of the microphone. The reading thread.
  bool ReplacesMicrophone() const { return m_flows && m_replaces; }

 private:
  bool ConvertBlock();

  const What m_what;
  const DeviceFormat m_target;
  BlockRing m_ring;
  std::atomic<bool> m_replaces = false;
  // Enough has waited.
  bool m_flows = false;
  Resampler m_resampler;
  std::vector<short> m_block;
  // The first m_waiting samples wait to be read.
  std::vector<short> m_converted;
  size_t m_waiting = 0;
};

}  // namespace desktop
