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

  // The next `frames` frames, at most a block of the target; silent where nothing is there. False
  // when all of it is silent for that reason. The reading thread.
  bool Read(short* samples, size_t frames);

  // Whether what is read now stands in place of the microphone. The reading thread.
  bool ReplacesMicrophone() const { return m_flows && m_replaces; }

 private:
  bool ConvertBlock();

  const What m_what;
  const DeviceFormat m_target;
  BlockRing m_ring;
  std::atomic<bool> m_replaces = false;
  bool m_flows = false;  // Enough has waited.
  Resampler m_resampler;
  std::vector<short> m_block;
  std::vector<short> m_converted;  // The first m_waiting samples wait.
  size_t m_waiting = 0;
};

}  // namespace desktop
