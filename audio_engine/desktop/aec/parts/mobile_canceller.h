#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "desktop/aec/parts/band_split.h"
#include "desktop/aec/parts/echo_canceller.h"

namespace desktop {

// Echo cancellation on the bands of one channel: the lowest band goes through the canceller, the
// others get the gain that the upper half of the lowest one got. Allocates in the constructor only.
class MobileCanceller {
 public:
  struct Stages {
    // Stronger suppression of what the linear filter leaves.
    bool newNlp;
    bool aec;
    bool ns;
  };

  // Returns whether the rate is 8000, 16000, 32000 or 48000 Hz.
  static bool Accepts(int rate);

  explicit MobileCanceller(int rate);

  // The length of a block, 10 ms, and of its part in each band.
  size_t Frames() const { return m_frames; }
  size_t Bands() const { return m_bands; }
  size_t FramesPerBand() const { return m_frames / m_bands; }

  // Takes a block of the far end, all bands in one signal.
  void ProcessFar(const int16_t* block);

  // near and out: [band][sample]; they may be the same.
  void ProcessNear(const int16_t* const* near, int16_t* const* out, Stages stages);

  // The last block of the lowest band as it was compared.
  int16_t* AlignedFar() { return m_alignedFar.data(); }
  int16_t* AlignedNear() { return m_alignedNear.data(); }

  bool HasEcho() const { return m_canceller.HasEcho(); }
  int DelayMs() const { return m_canceller.DelayMs(); }

 private:
  void SetStages(Stages stages);
  void ProcessUpperBand(size_t band, const int16_t* near, int16_t* out, float gain);
  float UpperGain();
  size_t Lag() const;

  const size_t m_frames;
  const size_t m_bands;
  EchoCanceller m_canceller;
  BandSplit m_farSplit;
  Stages m_stages = {false, true, true};
  std::vector<int16_t> m_farBands;
  std::vector<float> m_block;

  // The lowest band of this block and the one before, and what came out now.
  std::vector<float> m_in;
  std::vector<float> m_out;
  std::vector<int16_t> m_alignedFar;
  std::vector<int16_t> m_alignedNear;

  // The upper bands, as late as the lowest one.
  std::vector<std::vector<int16_t>> m_late;
  float m_gain = 1;
};

}  // namespace desktop
