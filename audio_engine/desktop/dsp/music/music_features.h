#pragma once

#include <kissfft/kiss_fftr.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace desktop {

// What tells music from speech in the last seconds of a sound, measured every 20 ms below 3.6 kHz
// only, so that every rate gives the same figures.
class MusicFeatures {
 public:
  enum Feature {
    kLevelDeviation,   // Of the level of 10 ms, dB: speech has syllables and pauses.
    kSustained,        // Share of the spectral peaks that have stood still for 200 ms.
    kTonal,            // Looks that the five steadiest peaks have stood still, at most 50, after
                       // Seyerlehner et al., Automatic music detection in television productions
                       // (2007).
    kFlux,             // Change of the spectrum's shape from one look to the next, dB.
    kColourDeviation,  // Of the ratio of highs to lows, dB: vowels and consonants alternate.
    kBeat,             // How well the onsets repeat once, twice and three times, up to 1.
    kCount
  };
  using Values = std::array<double, kCount>;

  // Starts anew at a rate in Hz. Allocates, and throws when there is no memory.
  void Reset(int sampleRate);

  // Starts anew at the same rate.
  void Restart();

  // Takes a sample (mono, full scale 1); true when there are new figures.
  bool Push(float sample);

  // The figures over the last 3 s, or since the start; at least one look must have been taken.
  Values Measure() const;

  // Looks taken since the start, and those since the last sound above -75 dBFS.
  int Looks() const { return m_looks; }
  int SilentLooks() const { return m_silentLooks; }

 private:
  static constexpr int kHistory = 150;  // Looks; 3 s.
  static constexpr int kOnsets = 300;   // Looks; 6 s.
  static constexpr int kBands = 18;

  struct Look {
    double level[2] = {};  // Of 10 ms each, dB.
    double sustained = 0;
    double peaks = 0;
    double steadiest = 0;
    double flux = 0;
    double colour = 0;
  };

  struct FreeFft {
    void operator()(kiss_fftr_state* state) const { kiss_fftr_free(state); }
  };

  void TakeLook();
  void FollowPeaks(Look& look);
  void CompareBands(Look& look);
  double BeatStrength() const;
  const Look& Recent(int back) const {
    return m_history[static_cast<size_t>((m_looks - 1 - back) % kHistory)];
  }

  int m_sampleRate = 0;
  int m_fftSize = 0;
  int m_hop = 0;   // Samples in 10 ms.
  int m_bins = 0;  // Up to 3.6 kHz.
  std::unique_ptr<kiss_fftr_state, FreeFft> m_fft;
  std::vector<float> m_window;
  std::vector<float> m_samples;  // A ring of the last m_fftSize.
  std::vector<float> m_frame;
  std::vector<kiss_fft_cpx> m_spectrum;
  std::vector<double> m_power;  // dB per bin.
  std::vector<int> m_standing;  // Looks that a peak has stood at a bin.
  std::vector<int> m_stood;     // The same one look before.
  std::array<double, kBands> m_bands{};
  size_t m_at = 0;
  int m_inBlock = 0;
  int m_block = 0;
  double m_lowPassed = 0;
  double m_lowPassStep = 1;
  double m_energy = 0;
  double m_levels[2] = {};
  int m_looks = 0;
  int m_silentLooks = 0;
  std::array<Look, kHistory> m_history{};
  std::array<double, kOnsets> m_onsets{};
};

}  // namespace desktop
