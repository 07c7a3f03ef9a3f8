#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <vector>

#include "desktop/dsp/real_fft.h"

namespace desktop {

// Finds the delay of the far end's echo in the near end, from the cross spectrum of their last
// second, of which only the phase counts (Knapp and Carter, "The generalized correlation method for
// estimation of time delay", 1976). Mono. Allocates in the constructor only. Belongs to one thread
// at a time.
class DelayTracker {
 public:
  // rate: 8000 or 16000 Hz. maxDelayMs: the longest echo that is looked for, up to 500 ms.
  DelayTracker(int rate, int maxDelayMs);

  // Take any number of samples each, far end first. Where one end is more than a second ahead of
  // the other, the other is taken to have been silent; so it is where one was at least 100 ms ahead
  // for as long as it takes both to go on by a second.
  void AddFar(const short* samples, size_t count);
  void AddNear(const short* samples, size_t count);

  // The last delay that was sure; 0 until there is one.
  int DelayMs() const { return m_delayMs.value_or(0); }
  bool KnowsDelay() const { return m_delayMs.has_value(); }

  // How far the peak of the correlation stands above its mean, as the median over the run: about 5
  // for unrelated signals and 10 to 35 with an echo. 0 until both ends have sounded for a second.
  float MedianScore() const;

  // A score from here on means an echo.
  static constexpr float kEchoScore = 7.4f;

 private:
  struct End {
    // The last samples.
    std::vector<float> ring;

    // How many samples were taken, with the silences that were put in.
    size_t count = 0;

    // How many samples came since the ends were compared.
    size_t heard = 0;
  };
  using Spectrum = std::vector<std::complex<float>>;

  void Add(End& end, End& other, const short* samples, size_t count);
  void AddBlock(End& end, const short* samples, size_t count);
  void AddSilence(End& end, size_t count);
  void NoteLead();
  void Pair();
  bool Transform(const End& end, float leastRms, Spectrum& spectrum);
  void Analyse();
  void FindPeak();

  // All in samples: how many are looked at, how many lie between two looks, and the longest delay.
  const size_t m_window;
  const size_t m_hop;
  const size_t m_maxDelay;
  const size_t m_samplesPerMs;
  RealFft m_fft;
  End m_far;
  End m_near;

  // By how many samples the near end was ahead, the least and the most since both were compared.
  ptrdiff_t m_leastLead = 0;
  ptrdiff_t m_mostLead = 0;

  // The sample that ends the next look.
  size_t m_next;
  std::vector<float> m_block;
  Spectrum m_farSpectrum;
  Spectrum m_nearSpectrum;

  // The cross spectrum, smoothed.
  Spectrum m_cross;
  std::optional<int> m_delayMs;

  // How often each tenth of a score was seen, in m_looks looks.
  std::array<int, 1000> m_scores = {};
  int m_looks = 0;
};

}  // namespace desktop
