#include "music_sounds.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>

#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr double kPi = std::numbers::pi;

// Adds a note of falling harmonics from a time on.
void AddNote(Doubles& sound, int rate, double at, double frequency, double seconds, double level) {
  const auto start = static_cast<size_t>(at * rate);
  const auto frames = static_cast<size_t>(seconds * rate);
  for (size_t i = 0; i < frames && start + i < sound.size(); ++i) {
    const double t = static_cast<double>(i) / rate;
    const double envelope = std::min(1.0, t * 100) * std::exp(-2 * t);
    for (int k = 1; k < 9 && k * frequency < 0.45 * rate; ++k) {
      sound[start + i] += level * envelope / k * std::sin(2 * kPi * k * frequency * t);
    }
  }
}

void AddDrum(Doubles& sound, int rate, double at, bool snare, std::mt19937& random) {
  const auto start = static_cast<size_t>(at * rate);
  for (size_t i = 0; i < static_cast<size_t>(rate / 5) && start + i < sound.size(); ++i) {
    const double t = static_cast<double>(i) / rate;
    const double noise = static_cast<double>(random()) / 2147483648.0 - 1;
    sound[start + i] += snare ? 0.3 * noise * std::exp(-20 * t)
                              : 0.5 * std::sin(2 * kPi * 55 * t) * std::exp(-10 * t);
  }
}

constexpr double kChords[4][3] = {
    {262, 330, 392}, {220, 262, 330}, {175, 220, 262}, {196, 247, 294}};

}  // namespace

Doubles Song(int rate, double seconds, bool chords, bool tune, bool drums) {
  Doubles sound(static_cast<size_t>(seconds * rate));
  std::mt19937 random(1);
  for (int beat = 0; beat * 0.5 < seconds; ++beat) {
    const double* chord = kChords[beat / 4 % 4];
    if (chords && beat % 2 == 0) {
      for (int i = 0; i < 3; ++i) AddNote(sound, rate, beat * 0.5, chord[i], 0.95, 0.1);
    }
    if (tune) AddNote(sound, rate, beat * 0.5, 2 * chord[beat * 7 % 3], 0.45, 0.15);
    if (drums) AddDrum(sound, rate, beat * 0.5, beat % 2 == 1, random);
  }
  return sound;
}

Doubles Wind(int rate, double seconds) {
  constexpr double kScale[] = {523, 587, 659, 784, 880};
  std::mt19937 random(3);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  Doubles sound = WhiteNoise(static_cast<int>(seconds * rate), 0.001, 1);
  double phase = 0;
  for (double at = 0; at < seconds;) {
    const double length = uniform(0.25, 0.7), frequency = kScale[random() % 5];
    const auto start = static_cast<size_t>(at * rate);
    for (size_t i = 0; i < static_cast<size_t>(length * rate) && start + i < sound.size(); ++i) {
      const double t = static_cast<double>(i) / rate;
      const double bend = 1 - 0.05 * std::exp(-14 * t) + 0.01 * std::sin(2 * kPi * 5.5 * t);
      phase += 2 * kPi * frequency * bend / rate;
      const double envelope = std::min({1.0, 25 * t, 20 * (length - t)});
      sound[start + i] =
          envelope * (0.2 * std::sin(phase) + 0.03 * std::sin(2 * phase) + 0.01 * uniform(-1, 1));
    }
    at += length + (random() % 3 == 0 ? uniform(0.3, 0.7) : 0);
  }
  return sound;
}

Doubles Speech(int rate, double seconds) {
  std::mt19937 random(7);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  Doubles sound(static_cast<size_t>(seconds * rate));
  double phase = 0;
  for (double at = 0; at < seconds;) {
    const double length = uniform(0.08, 0.25), pitch = uniform(90, 180), glide = uniform(-120, 120);
    const double first = uniform(300, 800), second = uniform(900, 2400);
    const bool hiss = random() % 4 == 0;
    const auto start = static_cast<size_t>(at * rate);
    double before = 0;
    for (size_t i = 0; i < static_cast<size_t>(length * rate) && start + i < sound.size(); ++i) {
      const double t = static_cast<double>(i) / rate;
      const double envelope = 0.2 * std::sin(kPi * t / length);
      if (hiss) {
        const double noise = uniform(-1, 1);
        sound[start + i] = envelope * 0.4 * (noise - before);
        before = noise;
        continue;
      }
      phase += 2 * kPi * std::max(60.0, pitch + glide * t) / rate;
      for (int k = 1; k < 25 && k * pitch < 0.4 * rate; ++k) {
        const double f = k * pitch;
        const double gain = std::exp(-std::pow((f - first) / 150, 2)) +
                            0.5 * std::exp(-std::pow((f - second) / 200, 2)) + 0.02;
        sound[start + i] += envelope * gain * std::sin(k * phase);
      }
    }
    at += length + (random() % 5 == 0 ? uniform(0.2, 0.6) : uniform(0, 0.06));
  }
  return sound;
}
