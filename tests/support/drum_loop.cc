#include "support/drum_loop.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

class Player {
 public:
  Player(int rate, double seconds) : m_rate(rate), m_mix(static_cast<size_t>(rate * seconds)) {}

  // A drop in pitch to 50 Hz.
  void BassDrum(double time, double gain) {
    Add(time, 0.25, [&](double t) {
      return gain * std::exp(-t / 0.08) *
             std::sin(2 * M_PI * (50 * t + 1.8 * (1 - std::exp(-t / 0.03))));
    });
  }

  void Snare(double time, double gain) {
    Add(time, 0.2, [&](double t) {
      return gain * (0.6 * Noise() * std::exp(-t / 0.06) +
                     0.5 * std::sin(2 * M_PI * 190 * t) * std::exp(-t / 0.05));
    });
  }

  // Hissing noise that lasts `ring` s.
  void Cymbal(double time, double gain, double ring = 0.02) {
    double before = 0;
    Add(time, 5 * ring, [&](double t) {
      const double noise = Noise();
      const double hiss = noise - before;
      before = noise;
      return 0.5 * gain * hiss * std::exp(-t / ring);
    });
  }

  void Note(double time, double gain, double frequency, double seconds) {
    Add(time, seconds, [&](double t) {
      double sum = 0;
      for (int h = 1; h <= 6; ++h) sum += std::sin(2 * M_PI * frequency * h * t) / std::pow(h, 1.3);
      const double ends = std::min({1.0, t / 0.005, (seconds - t) / 0.01});
      return gain * sum * ends * std::exp(-t / 0.5);
    });
  }

  std::vector<short> Samples(int channels) const {
    double peak = 1e-9;
    for (const double sample : m_mix) peak = std::max(peak, std::fabs(sample));
    std::vector<short> samples;
    for (const double sample : m_mix) {
      const auto rounded = static_cast<short>(std::lround(23000 * sample / peak));
      samples.insert(samples.end(), static_cast<size_t>(channels), rounded);
    }
    return samples;
  }

 private:
  template <typename Sound>
  void Add(double time, double seconds, Sound sound) {
    const auto begin = static_cast<size_t>(std::lround(time * m_rate));
    const auto length = static_cast<size_t>(seconds * m_rate);
    for (size_t i = 0; i < length && begin + i < m_mix.size(); ++i) {
      m_mix[begin + i] += sound(static_cast<double>(i) / m_rate);
    }
  }

  double Noise() {
    m_state = m_state * 1664525 + 1013904223;
    return static_cast<double>(m_state) / 2147483648.0 - 1;
  }

  const int m_rate;
  std::vector<double> m_mix;
  uint32_t m_state = 1;
};

// What a groove plays from one beat to the next.
void PlayBeat(Player& player, Groove groove, int beat, double time, double period) {
  const double chord = (std::vector<double>{220, 196, 175, 165})[static_cast<size_t>(beat / 4 % 4)];
  const size_t bar = groove == Groove::kWaltz ? 3 : 4;
  const double third = (std::vector<double>{1, 1.26, 1.5, 1.26})[static_cast<size_t>(beat) % bar];
  switch (groove) {
    case Groove::kRock:
      beat % 2 == 0 ? player.BassDrum(time, 0.8) : player.Snare(time, 0.7);
      player.Cymbal(time, 0.35);
      player.Cymbal(time + period / 2, 0.3);
      player.Note(time, 0.2, chord / 4, 0.9 * period);
      break;
    case Groove::kHouse:
      player.BassDrum(time, 0.9);
      player.Cymbal(time + period / 2, 0.4, 0.04);
      if (beat % 2 == 1) player.Snare(time, 0.4);
      break;
    case Groove::kWaltz:
      beat % 3 == 0 ? player.BassDrum(time, 0.8) : player.Snare(time, 0.4);
      player.Cymbal(time, 0.3);
      player.Note(time, 0.2, chord * third / 2, 0.6 * period);
      break;
    case Groove::kSwing:
      player.Cymbal(time, 0.5, 0.06);
      if (beat % 2 == 1) player.Cymbal(time + period * 2 / 3, 0.4, 0.03);
      player.Note(time, 0.5, chord * third / 4, 0.95 * period);
      if (beat % 2 == 0) player.BassDrum(time, 0.25);
      break;
    case Groove::kBallad:
      player.Note(time, beat % 4 == 0 ? 0.3 : 0.15, chord / 2, period);
      player.Note(time, 0.2, chord * third, period / 2);
      player.Note(time + period / 2, 0.12, chord * 2, period / 2);
      break;
    case Groove::kShuffle:
      for (const double note : {time, time + period * 2 / 3}) {
        beat % 2 == 0 ? player.BassDrum(note, 0.7) : player.Snare(note, 0.5);
        player.Cymbal(note, 0.3);
        player.Note(note, 0.25, chord / 4, 0.3 * period);
      }
      break;
    case Groove::kGuitar:
      beat % 2 == 0 ? player.BassDrum(time, 0.5) : player.Snare(time, 0.45);
      if (beat % 4 == 0) player.BassDrum(time + period / 2, 0.45);
      player.Cymbal(time, 0.25);
      player.Cymbal(time + period / 2, 0.35, 0.08);
      for (int part = 0; part < 4; ++part) {
        player.Note(time + part * period / 4, 0.4, chord / 2, 0.22 * period);
      }
      break;
  }
}

}  // namespace

DrumLoop RenderLoop(Groove groove, double bpm, double seconds, double start, int rate,
                    int channels) {
  Player player(rate, seconds);
  const double period = 60 / bpm;
  DrumLoop loop;
  for (int beat = 0; start + beat * period < seconds; ++beat) {
    loop.beats.push_back(start + beat * period);
    PlayBeat(player, groove, beat, loop.beats.back(), period);
  }
  loop.samples = player.Samples(channels);
  return loop;
}
