#pragma once

#include <array>
#include <memory>
#include <vector>

#include "desktop/dsp/rate/resampler.h"
#include "engine_api/common/audio_frame.h"

namespace desktop {

// Brings the blocks of one source to the rate, channel count and length of others, whatever lengths
// the source's blocks have. Nothing is converted while both formats agree.
class BlockConverter {
 public:
  // Takes the samples of a block; `rate` (Hz) and `channels` are what will be asked for.
  void Put(const zuwebrtc::AudioFrame& block, int rate, int channels);

  // Adds the next `count` samples (of all channels) to `sums`, fewer when fewer are there.
  void AddTo(int32_t* sums, size_t count);

  // How many samples, of all channels, were put and not fetched.
  size_t Waiting() const { return m_samples.size() - m_first; }

 private:
  std::unique_ptr<Resampler> m_resampler;
  // Rate and channels that the resampler takes, then those that it gives.
  std::array<int, 4> m_path = {};
  // The first m_first samples were fetched.
  std::vector<short> m_samples;
  size_t m_first = 0;
};

}  // namespace desktop
