#include "support/talk.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/seeded_noise.h"

namespace {

size_t At(int rate, double seconds) { return static_cast<size_t>(rate * seconds); }

}  // namespace

Samples Talk(int rate, double seconds, unsigned seed, double level) {
  SeededNoise noise(seed);
  Samples talk(At(rate, seconds));
  double low = 0;
  double before = 0;
  double loudness = 0;
  size_t end = 0;
  size_t start = 0;
  for (size_t i = 0; i < talk.size(); ++i) {
    if (i == end) {
      start = i;
      end = i + At(rate, 0.15 + 0.1 * noise());
      loudness = noise() > -0.5 ? 0.7 + 0.3 * noise() : 0;
    }
    const double place = static_cast<double>(i - start) / static_cast<double>(end - start);
    const double envelope = loudness * std::sin(std::numbers::pi * place);
    const double white = noise();
    low += 0.2 * (white - low);  // A fall of 6 dB an octave over the voice band, and no rumble.
    const double coloured = low + 0.1 * white;
    talk[i] =
        NearestSample(32768 * 4.4 * std::pow(10, level / 20) * envelope * (coloured - before));
    before += 0.03 * (coloured - before);
  }
  return talk;
}

Samples Hiss(int rate, double seconds, unsigned seed, double level) {
  SeededNoise noise(seed);
  Samples hiss(At(rate, seconds));
  const double amplitude = 32768 * std::sqrt(3.0) * std::pow(10, level / 20);
  for (short& sample : hiss) sample = NearestSample(amplitude * noise());
  return hiss;
}

Samples Echo(const Samples& far, int rate, int delayMs, double gainDb) {
  struct Reflection {
    size_t at;
    double gain;
  };
  SeededNoise noise(99);
  std::vector<Reflection> room = {{At(rate, delayMs / 1000.0), 1}};
  double energy = 1;
  for (int i = 0; i < 60; ++i) {
    const double late = 0.03 * (1 + noise());
    const double gain = 0.4 * noise() * std::exp(-100 * late);
    room.push_back({At(rate, delayMs / 1000.0 + late), gain});
    energy += gain * gain;
  }
  const double gain = std::pow(10, gainDb / 20) / std::sqrt(energy);
  Samples echo(far.size());
  for (size_t i = 0; i < far.size(); ++i) {
    double sum = 0;
    for (const Reflection& one : room) sum += i < one.at ? 0 : one.gain * far[i - one.at];
    echo[i] = NearestSample(gain * sum);
  }
  return echo;
}

Samples Sum(const Samples& one, const Samples& other) {
  Samples sum(std::min(one.size(), other.size()));
  for (size_t i = 0; i < sum.size(); ++i) sum[i] = NearestSample(one[i] + other[i]);
  return sum;
}

double LevelDb(const Samples& samples, int rate, double from, double to) {
  const size_t start = At(rate, from);
  const size_t end = std::min(samples.size(), At(rate, to));
  double energy = 1e-9;
  for (size_t i = start; i < end; ++i) energy += static_cast<double>(samples[i]) * samples[i];
  return 10 * std::log10(energy / static_cast<double>(end - start) / (32768.0 * 32768.0));
}

double LossDb(const Samples& in, const Samples& out, int rate, double from, double to) {
  const double end = std::min(to, static_cast<double>(std::min(in.size(), out.size())) / rate);
  std::vector<double> levels;
  for (double at = 0; at + 0.02 <= end; at += 0.02) {
    levels.push_back(LevelDb(in, rate, at, at + 0.02));
  }
  std::vector<double> sorted = levels;
  std::sort(sorted.begin(), sorted.end());
  const double background = sorted[sorted.size() / 10];
  double energyIn = 0;
  double energyOut = 1e-20;
  for (size_t i = 0; i < levels.size(); ++i) {
    const double at = 0.02 * static_cast<double>(i);
    if (at < from || levels[i] < background + 15) continue;
    energyIn += std::pow(10, levels[i] / 10);
    energyOut += std::pow(10, LevelDb(out, rate, at, at + 0.02) / 10);
  }
  return 10 * std::log10(energyIn / energyOut);
}

double SdrDb(const Samples& wanted, const Samples& out, int rate, double from, int lag) {
  double both = 0;
  double one = 0;
  double other = 0;
  const auto late = static_cast<size_t>(lag);
  for (size_t i = At(rate, from); i + late < out.size() && i < wanted.size(); ++i) {
    both += static_cast<double>(wanted[i]) * out[i + late];
    one += static_cast<double>(wanted[i]) * wanted[i];
    other += static_cast<double>(out[i + late]) * out[i + late];
  }
  const double common = both * both / (one * other);
  return 10 * std::log10(common / (1 - common));
}

Lag FindLag(const Samples& in, const Samples& out, int most) {
  Lag best = {0, -1};
  for (int lag = 0; lag <= most; ++lag) {
    double both = 0;
    double one = 0;
    double other = 0;
    const auto late = static_cast<size_t>(lag);
    for (size_t i = 0; i + static_cast<size_t>(most) < std::min(in.size(), out.size()); ++i) {
      both += static_cast<double>(in[i]) * out[i + late];
      one += static_cast<double>(in[i]) * in[i];
      other += static_cast<double>(out[i + late]) * out[i + late];
    }
    const double agreement = both / std::sqrt(one * other + 1e-9);
    if (agreement > best.agreement) best = {lag, agreement};
  }
  return best;
}
