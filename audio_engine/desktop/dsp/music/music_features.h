#pragma once

#include <kissfft/kiss_fftr.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "desktop/common/counts.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// What tells music from speech in the last seconds of a sound, measured every 20 ms below 3.6 kHz
// only, so that every rate gives the same figures.
class MusicFeatures {
 public:
  enum Feature {
    // How far the level of 10 ms deviates from its mean, dB: speech has syllables and pauses.
    kLevelDeviation,

    // The share of the spectral peaks that have stood still for 200 ms.
    kSustained,

    // For how many looks the five steadiest peaks have stood still, at most 50 (Seyerlehner, Pohle,
    // Schedl and Widmer, "Automatic music detection in television productions", 2007).
    kTonal,

    // How much the shape of the spectrum changes from one look to the next, dB (Scheirer and
    // Slaney, "Construction and evaluation of a robust multifeature speech/music discriminator",
    // 1997).
    kFlux,

    // How far the ratio of highs to lows deviates from its mean, dB: vowels and consonants
    // alternate.
    kColourDeviation,

    // How well the onsets repeat once, twice and three times, up to 1.
    kBeat,
    kCount
  };
  using Values = std::array<double, kCount>;

  // Starts anew at a rate in Hz. Allocates, and throws when there is no memory.
  void Reset(int sampleRate);

  // Starts anew at the same rate.
  void Restart();

  // Takes a frame of one or two channels (full scale 1); true when there are new figures. They are
  // those of the mean power of the channels, so that no phase between these can cancel.
  bool Push(const float* frame, int channels);

  // The figures over the last 3 s, or since the start; at least one look must have been taken.
  Values Measure() const;

  // Looks taken since the start, and those since the last sound above -75 dBFS.
  int Looks() const { return m_looks; }
  int SilentLooks() const { return m_silentLooks; }

 private:
  // How many looks are kept, 3 s, and how many onsets, 6 s.
  static constexpr int kHistory = 150;
  static constexpr int kOnsets = 300;
  static constexpr int kBands = 18;

  struct Look {
    // The levels of the two 10 ms, dB.
    double level[2] = {};
    double sustained = 0;
    double peaks = 0;
    double steadiest = 0;
    double flux = 0;
    double colour = 0;
  };

  struct FreeFft {
    void operator()(kiss_fftr_state* state) const { kiss_fftr_free(state); }
  };

  void SetChannels(size_t channels);
  void TakeLook();
  void FollowPeaks(Look& look);
  void CompareBands(Look& look);
  double BeatStrength() const;
  const Look& Recent(int back) const { return m_history[Size((m_looks - 1 - back) % kHistory)]; }

  int m_sampleRate = 0;
  size_t m_fftSize = 0;

  // The samples in 10 ms, and the bins up to 3.6 kHz.
  size_t m_hop = 0;
  size_t m_bins = 0;
  std::unique_ptr<kiss_fftr_state, FreeFft> m_fft;
  std::vector<float> m_window;

  struct Channel {
    // A ring of the last m_fftSize samples.
    std::vector<float> samples;
    double lowPassed = 0;
  };

  // As many as the last frame had are listened to.
  std::array<Channel, kMaxEffectChannels> m_channel;
  size_t m_channels = 1;

  // The samples of a channel in order and windowed.
  std::vector<float> m_windowed;
  std::vector<kiss_fft_cpx> m_spectrum;

  // By bin: the power in dB, and for how many looks a peak has stood there, now and one look
  // before.
  std::vector<double> m_power;
  std::vector<int> m_standing;
  std::vector<int> m_stood;
  std::array<double, kBands> m_bands{};
  size_t m_at = 0;
  size_t m_inBlock = 0;
  int m_block = 0;
  double m_lowPassStep = 1;
  double m_energy = 0;
  double m_levels[2] = {};
  int m_looks = 0;
  int m_silentLooks = 0;
  std::array<Look, kHistory> m_history{};
  std::array<double, kOnsets> m_onsets{};
};

}  // namespace desktop
