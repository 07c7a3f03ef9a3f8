#pragma once

#include <kiss_fftr.h>

#include <memory>
#include <vector>

#include "desktop/common/counts.h"

namespace desktop {

// How much begins to sound, a hundred times a second: the rise of the log energy in bands of half
// an octave, summed (spectral flux as in Klapuri, Sound onset detection by applying psychoacoustic
// knowledge, 1999). Relative to the loudest of the last seconds, so that the level of a recording
// does not matter; 0 in silence. The powers of the channels are added, not the channels, so that no
// phase between them can cancel.
class OnsetEnvelope {
 public:
  // rate: Hz, 8000 to 192000. channels: at least 1. Throws when there is no memory.
  OnsetEnvelope(int rate, int channels);

  // Takes one frame and tells whether a value is ready.
  bool Put(const short* frame);

  // The newest value, 0 and more.
  float Value() const { return m_value; }

  // The same rise of the amplitudes in place of their logarithms: here a cymbal counts for less
  // than a drum.
  float Weight() const { return m_weight; }

  // That of the lowest bands alone, in which bass drum and bass play.
  float Bass() const { return m_bass; }

  // Seconds between two values, and from an onset to its peak in them.
  double Step() const { return Real(m_hop) / m_rate; }
  double Latency() const;

 private:
  struct Free {
    void operator()(kiss_fftr_cfg config) const { kiss_fftr_free(config); }
  };

  void AddPowers(const std::vector<float>& ring);
  void Analyse();

  const int m_rate;
  const size_t m_hop;

  // The length of the transform.
  const size_t m_size;
  std::unique_ptr<kiss_fftr_state, Free> m_transform;
  std::vector<float> m_window;

  // The last m_size samples of each channel.
  std::vector<std::vector<float>> m_rings;
  std::vector<float> m_block;
  std::vector<kiss_fft_cpx> m_spectrum;

  // The first bins of the bands, and the end of the last one.
  std::vector<size_t> m_edges;

  // How many of them are bass.
  size_t m_bassBands = 0;

  // The levels of the bands at the two values before, and now.
  std::vector<float> m_before[2];
  std::vector<float> m_now;
  std::vector<float> m_loud[3];
  size_t m_next = 0;
  size_t m_sinceHop = 0;
  float m_loudest = 0;
  float m_value = 0;
  float m_weight = 0;
  float m_bass = 0;
};

}  // namespace desktop
