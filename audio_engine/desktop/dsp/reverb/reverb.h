#pragma once

#include <array>
#include <vector>

#include "desktop/dsp/reverb/reverb_design.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// A reverberation over planar floats: all-pass diffusers (Schroeder, Natural sounding artificial
// reverberation, 1962) into a network of sixteen delay lines that a Hadamard matrix mixes (Jot and
// Chaigne, Digital delay networks for designing artificial reverberators, 1991). The left channel
// enters the even lines, the right one the odd lines.
class Reverb {
 public:
  // Of a new reverberation.
  static constexpr NreverbFv3Parameter kDefault = {1, -12, 0, 0.5f, 0.5f, 0, 0, 1.5f, 1, 10};

  // Takes effect at the next Process. A change of anything but Wet, Dry and Width drops the tail.
  void SetParameter(const NreverbFv3Parameter& parameter);

  // Fades over 20 ms; once faded out it changes no bit and has forgotten its tail.
  void SetEnabled(bool enabled) { m_enabled = enabled; }

  // Forgets all that it heard.
  void Flush() { m_sampleRate = m_lastRate = 0; }

  // Adds the tail to rows[0..channels) in place. Allocates when the rate, the channels or the
  // parameter changed, and throws when there is no memory. The caller holds a DenormalGuard.
  void Process(float* const* rows, int channels, size_t frames, int sampleRate);

 private:
  // Delays its input by a number of samples.
  struct Line {
    std::vector<float> samples;
    size_t at = 0;
    void Reset(int delay);

    // What stands at the place of the next sample: the oldest.
    float& Oldest() { return samples[at]; }
    void Advance() { at = at + 1 == samples.size() ? 0 : at + 1; }
  };

  // A gain on its way.
  struct Fader {
    float now = 0;
    float target = 0;
    float step = 0;
    void Set(float value, float frames);
    float Next();
  };

  void Prepare(int channels, int sampleRate);
  void Retarget(bool smooth);
  float Diffuse(int channel, float sample);
  void Room(const float* in, float* out);

  NreverbFv3Parameter m_parameter = kDefault;
  ReverbDesign m_design;
  bool m_enabled = false;
  bool m_wasEnabled = false;
  bool m_redesign = true;
  bool m_remix = true;

  // The format of the delay lines; a rate of 0 while none are kept.
  int m_sampleRate = 0;
  int m_channels = 0;

  // The rate of the last call; gains fade from call to call.
  int m_lastRate = 0;
  Fader m_dry{.now = 1};

  // The gains of a channel's own tail, and of the other channel's.
  Fader m_same;
  Fader m_cross;
  std::array<Line, 2> m_preDelay;
  std::array<std::array<Line, kReverbDiffusers>, 2> m_diffuser;
  std::array<Line, kReverbLines> m_line;

  // The states of the losses.
  std::array<float, kReverbLines> m_high{};
  std::array<float, kReverbLines> m_low{};
  std::array<float, 2> m_output{};
};

}  // namespace desktop
