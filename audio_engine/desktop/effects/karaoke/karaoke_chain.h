#pragma once

#include "desktop/dsp/dynamics/compressor.h"
#include "desktop/dsp/dynamics/fading_limiter.h"
#include "desktop/dsp/filters/graphic_equalizer.h"
#include "desktop/dsp/reverb/reverb.h"

namespace desktop {

// What a karaoke voice goes through, over planar floats of full scale 1: equaliser, reverberation,
// compressor, limiter. A member is switched and set directly, in sound without a click; nothing
// clips between them.
class KaraokeChain {
 public:
  GraphicEqualizer equalizer;
  Reverb reverb;
  FadingLimiter limiter;

  // Whether equaliser and reverberation take part at all.
  void EnableEqReverb(bool enabled);
  void EnableEqualizer(bool enabled);
  void EnableReverb(bool enabled);
  void EnableCompressor(bool enabled) { m_compressorEnabled = enabled; }
  void EnableLimiter(bool enabled) { limiter.SetEnabled(enabled); }

  // How many samples later the sound comes out.
  int Latency(int sampleRate) const { return limiter.Latency(sampleRate); }

  // Processes rows[0..channels) in place. Allocates when a setting or the format changed, and
  // throws when there is no memory. The caller holds a DenormalGuard.
  void Process(float* const* rows, int channels, size_t frames, int sampleRate);

 private:
  void Compress(float* const* rows, int channels, size_t frames, int sampleRate);

  Compressor m_compressor{
      {.threshold = -15, .ratio = 2, .knee = 0, .attackMs = 5, .releaseMs = 120}};
  bool m_eqReverbEnabled = true;
  bool m_equalizerEnabled = false;
  bool m_reverbEnabled = false;
  bool m_compressorEnabled = false;

  // How much of the compressor's gain is in use; 0 while it rests and knows nothing.
  float m_compressorShare = 0;
  int m_compressorRate = 0;
};

}  // namespace desktop
