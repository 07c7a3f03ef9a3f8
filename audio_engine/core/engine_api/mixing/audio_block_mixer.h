#pragma once

#include <memory>
#include <string>
#include <vector>

#include "../common/visibility.h"

// One block of bytes of each source: interleaved 16-bit samples, all sources in one format.
using AudioBlockList = std::vector<std::string*>;

// Mixes blocks of several sources into one. A source alone comes out bit for bit; several are
// summed and limited, never wrapped, and how many there are may change from block to block.
// Belongs to one thread at a time.
class ENGINE_API CAudioBlockMixer {
 public:
  // samples: per channel of a whole block. Both are for orientation; a block's own length counts.
  CAudioBlockMixer(int samples, int channels);
  ~CAudioBlockMixer();
  CAudioBlockMixer(const CAudioBlockMixer&) = delete;
  CAudioBlockMixer& operator=(const CAudioBlockMixer&) = delete;

  // Replaces outMix by the mix of `blocks`, as long as the shortest of them; empty without blocks.
  // Null blocks are left out. Without delay: what comes out is the mix of what came in.
  void Process(const AudioBlockList& blocks, std::string& outMix);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
