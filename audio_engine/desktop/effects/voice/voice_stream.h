#pragma once

#include <cstddef>
#include <memory>

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/effects/effect_gate.h"
#include "desktop/effects/voice/voice_chain.h"

namespace desktop {

// A stream of voice whose recipe may change at any time: the next chain runs beside the old one
// until it gives sound, then fades in over 20 ms.
class VoiceStream {
 public:
  explicit VoiceStream(const char* facility) : m_gate(facility) {}

  // Taken up at the next Process; at the start of a stream at once, without a fade.
  void Set(const VoiceRecipe& recipe) { m_wanted = recipe; }

  // Processes interleaved samples in place; Sample is short or int. What cannot be done stays as it
  // is, with one line in the log.
  template <typename Sample>
  void Process(char* samples, int frames, int rate, int channels, int sampleSize) {
    if (!m_gate.Passes(samples, frames, rate, channels, sampleSize) || !Prepare(rate, channels)) {
      return;
    }
    if (!IsActive()) return;
    const DenormalGuard guard;
    ProcessInBlocks<Sample>(samples, frames, channels,
                            [this](float* const* rows, size_t count) { Run(rows, count); });
  }

  // Whether Process may change samples at present.
  bool IsActive() const { return m_chain || m_next || m_fading || m_wanted != m_playing; }

  // Forgets the samples heard so far.
  void Flush() { m_rate = 0; }

 private:
  bool Prepare(int rate, int channels);
  void Run(float* const* rows, size_t frames);

  EffectGate m_gate;
  VoiceRecipe m_wanted;

  // The recipe of m_next while that fades in, else of m_chain.
  VoiceRecipe m_playing;

  // The format of the chains; a rate of 0 before the stream has begun.
  int m_rate = 0;
  int m_channels = 0;

  // Null where nothing is to be done.
  std::unique_ptr<VoiceChain> m_chain;
  std::unique_ptr<VoiceChain> m_next;
  bool m_fading = false;

  // How many frames it takes until m_next gives sound, and how many of the fade are done.
  size_t m_wait = 0;
  size_t m_faded = 0;
};

}  // namespace desktop
