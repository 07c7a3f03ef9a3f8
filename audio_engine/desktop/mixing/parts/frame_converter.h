#pragma once

#include <memory>
#include <vector>

#include "desktop/dsp/rate/resampler.h"
#include "engine_api/common/audio_frame.h"

namespace desktop {

// Brings the frames of one source to the rate, channel count and length of others, whatever lengths
// the source's frames have. Nothing is converted while both formats agree.
class FrameConverter {
 public:
  // Takes the samples of a frame; `rate` (Hz) and `channels` are what will be asked for.
  void Put(const zuwebrtc::AudioFrame& frame, int rate, int channels);

  // Adds the next `samples` samples (of all channels) to `sums`, fewer when fewer are there.
  void AddTo(int32_t* sums, size_t samples);

  // Samples that wait.
  size_t Waiting() const { return m_samples.size() - m_first; }

 private:
  std::unique_ptr<Resampler> m_resampler;
  int m_from[2] = {0, 0};  // Rate and channels that the resampler takes
  int m_to[2] = {0, 0};    // and gives.
  std::vector<short> m_samples;
  size_t m_first = 0;  // Of those, the first that was not fetched.
};

}  // namespace desktop
