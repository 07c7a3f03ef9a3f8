#pragma once

#include <vector>

namespace desktop {

// Fills gaps in interleaved samples that no codec can fill: the last frame backwards, which joins
// on without a step, fading out; silence from the second lost frame on.
class FrameLoss {
 public:
  FrameLoss(int samples, int channels);

  // Notes a frame that has arrived. Of `samples` samples, as given to the constructor.
  void Arrived(const short* frame);

  // The frame in place of a lost one; valid until the next call.
  const short* Lost();

 private:
  const int m_channels;
  std::vector<short> m_frame;
  bool m_lost = false;
};

}  // namespace desktop
