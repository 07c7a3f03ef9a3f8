#include "guards/sounds.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <span>
#include <utility>

Sound Silence(double seconds, int channels, int rate) {
  const auto frames = static_cast<size_t>(std::lround(seconds * rate));
  return {.samples = std::vector<float>(frames * static_cast<size_t>(channels)),
          .rate = rate,
          .channels = channels};
}

Sound Sine(double frequency, double amplitude, double seconds, int channels, int rate) {
  Sound sound = Silence(seconds, channels, rate);
  const auto stride = static_cast<size_t>(channels);
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    const size_t frame = i / stride;
    const double time = static_cast<double>(frame) / rate;
    sound.samples[i] = static_cast<float>(amplitude * std::sin(2 * M_PI * frequency * time));
  }
  return sound;
}

namespace {

// Samples of which what was looked at before is gone with the next look.
class Forgetful : public host::SampleSource {
 public:
  explicit Forgetful(const Sound& sound) : m_sound(sound) {}

  host::Signal AsSignal() {
    host::Signal signal = m_sound.AsSignal();
    signal.samples = {*this, m_sound.samples.size()};
    return signal;
  }

  std::span<const float> View(size_t first, size_t count) override {
    const auto from = m_sound.samples.begin() + static_cast<ptrdiff_t>(first);
    std::vector<float> next(from, from + static_cast<ptrdiff_t>(count));
    std::ranges::fill(m_view, 9.0F);
    m_before = std::move(m_view);
    m_view = std::move(next);
    return m_view;
  }

 private:
  const Sound& m_sound;
  std::vector<float> m_view = {};
  std::vector<float> m_before = {};
};

}  // namespace

std::vector<host::GuardHit> Check(const Sound& input, const Sound& output,
                                  const host::GuardRules& rules) {
  Forgetful inputSamples(input);
  Forgetful outputSamples(output);
  const host::Signal in = inputSamples.AsSignal();
  const host::Signal out = outputSamples.AsSignal();
  return host::CheckGuards({.input = &in, .output = &out, .rules = rules, .facts = {}});
}

std::vector<host::GuardHit> CheckAlone(const Sound& output, const host::GuardRules& rules) {
  Forgetful samples(output);
  const host::Signal out = samples.AsSignal();
  return host::CheckGuards({.output = &out, .rules = rules, .facts = {}});
}

const host::GuardHit* Find(const std::vector<host::GuardHit>& hits, host::Guard guard) {
  const auto found = std::ranges::find(hits, guard, &host::GuardHit::guard);
  return found == hits.end() ? nullptr : &*found;
}

std::string Names(const std::vector<host::GuardHit>& hits) {
  std::string names;
  for (const host::GuardHit& hit : hits) {
    if (!names.empty()) names += ' ';
    for (const char* letter = hit.Name(); *letter != 0; ++letter) {
      names += hit.fails ? static_cast<char>(std::toupper(*letter)) : *letter;
    }
  }
  return names;
}
