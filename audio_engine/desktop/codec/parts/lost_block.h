#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Fills gaps in interleaved samples that no codec can fill: the last block backwards, which joins
// on without a step, fading out; silence from the second lost block on.
class LostBlock {
 public:
  // samples: the length of every block, all channels.
  LostBlock(size_t samples, size_t channels);

  // Notes a block that has arrived.
  void Arrived(const short* block);

  // The block in place of a lost one; valid until the next call.
  const short* Lost();

 private:
  const size_t m_channels;
  std::vector<short> m_block;
  bool m_lost = false;
};

}  // namespace desktop
