#include "demo/band.h"

#include <algorithm>
#include <cmath>

#include "demo/arithmetic.h"

namespace host {

namespace {

// The desk: instruments at their places between the ears.
class Desk {
 public:
  Desk(int rate, double seconds)
      : m_rate(rate), m_mix(2 * static_cast<size_t>(rate * seconds)), m_noise(120) {}

  // sound(t, noise): the sample t seconds after the start. right: 0 to 1.
  template <typename Sound>
  void Play(double start, double seconds, double gain, double right, Sound sound) {
    const auto first = static_cast<size_t>(start * m_rate);
    const auto count = static_cast<size_t>(seconds * m_rate);
    for (size_t i = 0; i < count && 2 * (first + i) < m_mix.size(); ++i) {
      const double t = static_cast<double>(i) / m_rate;
      const double fade = std::min(1.0, (seconds - t) / 0.01);
      const double sample = gain * fade * sound(t, m_noise.Next());
      m_mix[2 * (first + i)] += (1 - right) * sample;
      m_mix[2 * (first + i) + 1] += right * sample;
    }
  }

  std::vector<double> Mix() {
    double peak = 0;
    for (const double sample : m_mix) peak = std::max(peak, std::fabs(sample));
    for (double& sample : m_mix) sample *= 0.5 / peak;
    return std::move(m_mix);
  }

 private:
  const double m_rate;
  std::vector<double> m_mix;
  Noise m_noise;
};

void BassDrum(Desk& desk, double time) {
  desk.Play(time, 0.25, 1.6, 0.5, [](double t, double) {
    return Exp(-t / 0.08) * Sine(50 * t + 1.8 * (1 - Exp(-t / 0.03)));
  });
}

void Snare(Desk& desk, double time) {
  desk.Play(time, 0.2, 0.9, 0.45, [](double t, double noise) {
    return 0.6 * noise * Exp(-t / 0.06) + 0.5 * Sine(190 * t) * Exp(-t / 0.05);
  });
}

void Cymbal(Desk& desk, double time, double gain) {
  double before = 0;
  desk.Play(time, 0.1, gain, 0.7, [&before](double t, double noise) {
    const double hiss = noise - before;
    before = noise;
    return hiss * Exp(-t / 0.02);
  });
}

void Note(Desk& desk, double time, double frequency, double seconds, double gain, double right) {
  desk.Play(time, seconds, gain, right, [frequency](double t, double) {
    double sum = 0;
    for (int h = 1; h <= 6; ++h) sum += Sine(frequency * h * t) / (h * (1 + 0.2 * h));
    return sum * std::min(1.0, t / 0.005) * Exp(-t / 0.5);
  });
}

}  // namespace

BandMusic PlayBand(int rate, double seconds, double bpm) {
  constexpr double kChords[] = {220, 196, 174.61, 164.81};  // Hz, four beats each.
  constexpr double kBroken[] = {1, 1.25, 1.5, 1.25};
  Desk desk(rate, seconds);
  BandMusic music;
  const double period = 60 / bpm;
  for (int beat = 0; 0.5 + beat * period < seconds; ++beat) {
    const double time = 0.5 + beat * period;
    music.beats.push_back(time);
    const double chord = kChords[beat / 4 % 4];
    if (beat % 2 == 0) BassDrum(desk, time);
    if (beat % 2 == 1) Snare(desk, time);
    Cymbal(desk, time, 0.35);
    Cymbal(desk, time + period / 2, 0.3);
    Note(desk, time, chord / 4, 0.9 * period, 0.4, 0.5);
    Note(desk, time, chord * kBroken[beat % 4], 0.95 * period, 0.25, 0.25);
  }
  music.samples = desk.Mix();
  return music;
}

}  // namespace host
