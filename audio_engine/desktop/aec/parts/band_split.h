#pragma once

#include <cstdint>
#include <vector>

namespace desktop {

// Splits 16-bit audio into 2 or 3 bands of equal width and as many times fewer samples, and puts
// such bands together again: a cosine-modulated filter bank (Lin and Vaidyanathan, "A Kaiser window
// approach for the design of prototype filters of cosine modulated filterbanks", 1998). Both ways
// together give the input within 0.1 dB, LagSamples() later. Allocates in the constructor only.
class BandSplit {
 public:
  // frames: samples of one block, a multiple of `bands`.
  BandSplit(int bands, int frames);

  // One block into bands[band][frames / bands], and back. Each way has a history of its own.
  void Analyse(const int16_t* block, int16_t* const* bands);
  void Synthesise(const int16_t* const* bands, int16_t* block);

  static int LagSamples(int bands);

 private:
  const int m_bands;
  const int m_frames;
  const int m_taps;
  std::vector<float> m_analysis;   // [band][tap]
  std::vector<float> m_synthesis;  // [band][tap]
  std::vector<float> m_in;         // History and block.
  std::vector<float> m_out;        // Block and what is still to come of it.
};

}  // namespace desktop
