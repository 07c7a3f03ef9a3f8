#include "audio_measures/true_peak.h"

#include <ebur128.h>

#include <cmath>

namespace audio_measures {

struct TruePeak::State {
  State(int channelCount, int rate)
      : channels(static_cast<unsigned>(channelCount)),
        meter(ebur128_init(channels, static_cast<unsigned long>(rate), EBUR128_MODE_TRUE_PEAK)) {}
  ~State() {
    if (meter != nullptr) ebur128_destroy(&meter);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  using Reader = int (*)(ebur128_state*, unsigned, double*);
  Figure Read(Reader read, int channel) const {
    if (meter == nullptr) return Unknown("a rate or channel count that is out of range");
    if (!any) return Unknown(kNoSamples);
    if (!finite) return Unknown(kNotFinite);
    double peak = 0;
    if (read(meter, static_cast<unsigned>(channel), &peak) != EBUR128_SUCCESS) {
      return Unknown("no such channel");
    }
    return peak > 0 ? Known(20 * std::log10(peak)) : Unknown(kSilence);
  }

  unsigned channels;
  ebur128_state* meter;
  bool any = false;
  bool finite = true;
};

TruePeak::TruePeak(int channels, int rate) : m_state(std::make_unique<State>(channels, rate)) {}
TruePeak::~TruePeak() = default;
TruePeak::TruePeak(TruePeak&&) noexcept = default;
TruePeak& TruePeak::operator=(TruePeak&&) noexcept = default;

void TruePeak::Add(std::span<const float> frames) {
  State& state = *m_state;
  if (state.meter == nullptr || frames.empty()) return;
  state.finite = state.finite && AreFinite(frames);
  state.any = true;
  if (state.finite)
    ebur128_add_frames_float(state.meter, frames.data(), frames.size() / state.channels);
}

Figure TruePeak::Peak(int channel) const { return m_state->Read(ebur128_true_peak, channel); }

Figure TruePeak::LastPeak(int channel) const {
  return m_state->Read(ebur128_prev_true_peak, channel);
}

}  // namespace audio_measures
