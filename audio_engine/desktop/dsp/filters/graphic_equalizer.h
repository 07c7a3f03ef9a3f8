#pragma once

#include <array>
#include <cstddef>

#include "desktop/dsp/filters/equalizer_design.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// The eleven bells in a row over planar floats of any scale: what IEqualizer, AudioEffectModule and
// the karaoke chain share. The gains of the bells allow for how they overlap, as in Abel and
// Berners, "Filter design using second-order peaking and shelving sections", 2004. Without gain, or
// switched off, it changes no bit.
class GraphicEqualizer {
 public:
  // Takes effect at the next Process; `smooth` spreads it over 20 ms. Gains in dB are clamped to
  // -24 to 24; one that is no number is ignored.
  void SetGain(int band, float gain, bool smooth);

  // Sets the gains of all bands.
  void SetGains(const float* gains, bool smooth);
  void SetEnabled(bool enabled);
  bool IsEnabled() const { return m_enabled; }

  // Whether Process changes samples: switched on with some gain, or still fading.
  bool IsActive() const;

  // Forgets the samples heard so far.
  void Flush();

  // Filters rows[0..channels) in place. A rate or a number of channels other than the last call's
  // starts anew, with the gains at their full value at once. `sampleRate` as EffectGate lets pass.
  void Process(float* const* rows, int channels, size_t frames, int sampleRate);

 private:
  // A bell as a state variable filter with trapezoidal integrators (Zavalishin, The Art of VA
  // Filter Design, 2012): it stays quiet while its gain moves.
  struct Bell {
    double tangent = 0;
    double q = 1;

    // The square root of the gain at the centre, where it goes, and the factor by which it grows
    // with each sample while it fades.
    double amplitude = 1;
    double target = 1;
    double growth = 1;
    double a1 = 0, a2 = 0, a3 = 0, m1 = 0;
    double state[kMaxEffectChannels][2] = {};
    void Update();
    bool IsIdle() const { return amplitude == 1 && target == 1; }
  };

  void Retarget(bool smooth);
  void Fade(float* const* rows, int channels, size_t frames);
  static void Run(Bell& bell, float* row, int channel, size_t frames);

  EqualizerDesign m_design;
  std::array<Bell, kEqualizerBands> m_bells;
  std::array<float, kEqualizerBands> m_wanted{};
  bool m_enabled = false;
  bool m_changed = false;
  bool m_smooth = true;

  // How many frames of the fade are left.
  size_t m_fadeFrames = 0;
  int m_sampleRate = 0;
  int m_channels = 0;
};

}  // namespace desktop
