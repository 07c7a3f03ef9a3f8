#include "desktop/enhancement/signals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr double kSyllable = 0.26;  // Seconds, of which 0.2 sound.
constexpr double kWord = 5 * kSyllable + 0.7;

short Clip(double value) {
  return static_cast<short>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
}

bool Sounds(double seconds) {
  if (seconds < 1) return false;
  const double inWord = std::fmod(seconds - 1, kWord);
  return inWord < 5 * kSyllable && std::fmod(inWord, kSyllable) < 0.2;
}

// Harmonics of the pitch up to 3.4 kHz under three formants.
double Vowel(double phase, double pitch) {
  double sum = 0;
  for (int harmonic = 1; harmonic * pitch < 3400; ++harmonic) {
    const double frequency = harmonic * pitch;
    double gain = 0;
    for (const double formant : {500.0, 1500.0, 2500.0}) {
      gain += 1 / (1 + std::pow((frequency - formant) / 150, 2)) * 500 / formant;
    }
    sum += gain * std::sin(harmonic * phase);
  }
  return sum;
}

}  // namespace

Samples Noise(size_t count, double level, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal(0, level);
  Samples noise(count);
  for (short& sample : noise) sample = Clip(normal(random));
  return noise;
}

Samples Speech(int rate, double seconds, double level) {
  std::vector<double> speech(static_cast<size_t>(rate * seconds));
  double phase = 0;
  double energy = 0;
  size_t sounding = 0;
  for (size_t i = 0; i < speech.size(); ++i) {
    const double time = static_cast<double>(i) / rate;
    const double pitch = 120 + 20 * std::sin(2 * std::numbers::pi * 1.7 * time);
    phase += 2 * std::numbers::pi * pitch / rate;
    if (!Sounds(time)) continue;
    speech[i] = Vowel(phase, pitch);
    energy += speech[i] * speech[i];
    ++sounding;
  }
  const double scale = sounding > 0 ? level / std::sqrt(energy / static_cast<double>(sounding)) : 0;
  Samples samples(speech.size());
  std::transform(speech.begin(), speech.end(), samples.begin(),
                 [scale](double value) { return Clip(value * scale); });
  return samples;
}

std::vector<bool> SpeechMarks(int rate, double seconds) {
  std::vector<bool> marks(static_cast<size_t>(rate * seconds));
  for (size_t i = 0; i < marks.size(); ++i) marks[i] = Sounds(static_cast<double>(i) / rate);
  return marks;
}

Samples Claps(int rate, double level) {
  Samples claps(static_cast<size_t>(6 * rate));
  const Samples noise = Noise(claps.size(), level, 5);
  for (size_t i = static_cast<size_t>(rate); i < claps.size(); ++i) {
    const double sinceClap = std::fmod(static_cast<double>(i) / rate, 0.5);
    claps[i] = Clip(noise[i] * std::exp(-sinceClap / 0.02));
  }
  return claps;
}

Samples Mix(const Samples& a, const Samples& b) {
  Samples mix(std::min(a.size(), b.size()));
  for (size_t i = 0; i < mix.size(); ++i) mix[i] = Clip(static_cast<double>(a[i]) + b[i]);
  return mix;
}

double Level(const Samples& samples, size_t begin, size_t end) {
  double energy = 0;
  for (size_t i = begin; i < end; ++i) energy += static_cast<double>(samples[i]) * samples[i];
  return std::sqrt(energy / static_cast<double>(end - begin));
}

size_t Delay(const Samples& early, const Samples& late, size_t longest) {
  size_t best = 0;
  double highest = 0;
  for (size_t delay = 0; delay <= longest; ++delay) {
    double correlation = 0;
    for (size_t i = delay; i < late.size(); ++i) {
      correlation += static_cast<double>(early[i - delay]) * late[i];
    }
    if (correlation > highest) {
      highest = correlation;
      best = delay;
    }
  }
  return best;
}
