#include "guards/sounds.h"

#include <algorithm>
#include <cctype>
#include <cmath>

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

std::vector<host::GuardHit> Check(const Sound& input, const Sound& output,
                                  const host::GuardRules& rules) {
  const host::Signal in = input.AsSignal();
  const host::Signal out = output.AsSignal();
  return host::CheckGuards({.input = &in, .output = &out, .rules = rules, .facts = {}});
}

std::vector<host::GuardHit> CheckAlone(const Sound& output, const host::GuardRules& rules) {
  const host::Signal out = output.AsSignal();
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
