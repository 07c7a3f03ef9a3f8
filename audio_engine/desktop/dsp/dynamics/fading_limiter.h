#pragma once

#include <array>
#include <vector>

#include "desktop/dsp/dynamics/limiter.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// A limiter that is switched and set while sound passes: what plays and what is wanted next run
// side by side for 20 ms while the one fades into the other. The next one has heard the last 40 ms
// before, so that its delay lines hold sound and its gain is down where it must be. Switched off it
// changes no bit.
class FadingLimiter {
 public:
  // Take effect at the next Process; before the first one at once, and during a fade after it.
  void SetEnabled(bool enabled) { m_wanted.enabled = enabled; }
  void SetParameter(const LimiterParameter& parameter) {
    m_wanted.parameter = Limiter::InRange(parameter);
  }
  void SetParameter(const LimiterParam& parameter) {
    SetParameter(Limiter::ToParameter(parameter));
  }

  // How many samples later the sound comes out with these settings.
  int Latency(int sampleRate) const;

  // Processes rows[0..channels) in place. Allocates when a setting or the format changed, and
  // throws when there is no memory.
  void Process(float* const* rows, int channels, size_t frames, int sampleRate);

 private:
  struct Setting {
    bool enabled = false;
    LimiterParameter parameter = Limiter::kDefault;
  };

  static bool Alike(const Setting& a, const Setting& b);
  void Start(int channels, int sampleRate);
  void BeginFade();
  void Remember(float* const* rows, size_t frames);
  void Fade(float* const* rows, size_t frames);
  void Run(size_t which, float* const* rows, size_t frames);

  Setting m_wanted;

  // What plays is m_setting[m_playing]; while fading, what comes is the other one.
  std::array<Setting, 2> m_setting;
  std::array<Limiter, 2> m_limiter;
  size_t m_playing = 0;
  bool m_fading = false;
  size_t m_faded = 0;

  // A rate of 0 before the first call.
  int m_sampleRate = 0;
  int m_channels = 0;

  // Rings of what came last.
  std::array<std::vector<float>, kMaxEffectChannels> m_past;
  size_t m_at = 0;
};

}  // namespace desktop
