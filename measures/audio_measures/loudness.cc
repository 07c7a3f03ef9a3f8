#include "audio_measures/loudness.h"

#include <ebur128.h>

#include <cmath>

namespace audio_measures {

struct Loudness::State {
  State(int channelCount, int sampleRate)
      : channels(static_cast<unsigned>(channelCount)),
        rate(static_cast<unsigned long>(sampleRate)),
        meter(ebur128_init(channels, rate, EBUR128_MODE_I | EBUR128_MODE_LRA)) {}
  ~State() {
    if (meter != nullptr) ebur128_destroy(&meter);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  // Why there is no figure of what lasts `tenths` of a second at least, or nullptr.
  const char* Fault(uint64_t tenths) const {
    if (meter == nullptr) return "a rate or channel count that is out of range";
    if (frames == 0) return kNoSamples;
    if (!finite) return kNotFinite;
    return frames * 10 < tenths * rate ? kTooShort : nullptr;
  }

  unsigned channels;
  unsigned long rate;
  ebur128_state* meter;
  uint64_t frames = 0;
  bool finite = true;
};

Loudness::Loudness(int channels, int rate) : m_state(std::make_unique<State>(channels, rate)) {}
Loudness::~Loudness() = default;
Loudness::Loudness(Loudness&&) noexcept = default;
Loudness& Loudness::operator=(Loudness&&) noexcept = default;

void Loudness::Add(std::span<const float> frames) {
  State& state = *m_state;
  if (state.meter == nullptr || frames.empty()) return;
  state.finite = state.finite && AreFinite(frames);
  const size_t count = frames.size() / state.channels;
  state.frames += count;
  if (state.finite) ebur128_add_frames_float(state.meter, frames.data(), count);
}

Figure Loudness::Integrated() const {
  if (const char* fault = m_state->Fault(4)) return Unknown(fault);
  double loudness = 0;
  if (ebur128_loudness_global(m_state->meter, &loudness) != EBUR128_SUCCESS) {
    return Unknown("out of memory");
  }
  return std::isfinite(loudness) ? Known(loudness) : Unknown(kBelowGate);
}

Figure Loudness::Range() const {
  if (const char* fault = m_state->Fault(30)) return Unknown(fault);
  const Figure integrated = Integrated();
  if (!integrated.value) return integrated;
  double range = 0;
  if (ebur128_loudness_range(m_state->meter, &range) != EBUR128_SUCCESS) {
    return Unknown("out of memory");
  }
  return Known(range);
}

}  // namespace audio_measures
