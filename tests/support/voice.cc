#include "support/voice.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr double kSlowRate = 2000;  // Of what is measured, sums a second.

// The stretch that is measured, under a Hann window and turned down by `frequency`: a component
// near it has become slow, and sums over so short a time hold all that matters of it.
std::vector<std::complex<double>> TurnedDown(const std::vector<short>& samples, double frequency,
                                             int rate, int channels) {
  const size_t frames = samples.size() / static_cast<size_t>(channels);
  const size_t begin = frames / 4;
  const size_t length = frames - frames / 8 - begin;
  const auto block = static_cast<size_t>(rate / kSlowRate);
  const std::complex<double> turn = std::polar(1.0, -2 * M_PI * frequency / rate);
  const std::complex<double> slow = std::polar(1.0, 2 * M_PI / static_cast<double>(length));
  std::complex<double> phase = 1;
  std::complex<double> window = 1;
  std::vector<std::complex<double>> sums(length / block + 1);
  for (size_t i = 0; i < length; ++i, phase *= turn, window *= slow) {
    const double sample = samples[(begin + i) * static_cast<size_t>(channels)];
    sums[i / block] += phase * (sample * (0.5 - 0.5 * window.real()));
  }
  return sums;
}

// The power of the component that is so many Hz beside the one that was turned down.
double PowerAt(const std::vector<std::complex<double>>& sums, double offset, int rate) {
  const double block = std::floor(rate / kSlowRate);
  const std::complex<double> turn = std::polar(1.0, -2 * M_PI * offset * block / rate);
  std::complex<double> phase = 1;
  std::complex<double> sum = 0;
  for (const std::complex<double>& part : sums) {
    sum += phase * part;
    phase *= turn;
  }
  return std::norm(sum);
}

double AtCents(double frequency, double cents) { return frequency * std::pow(2, cents / 1200); }

// How strong the formants of an "a" make a component.
double Formants(double frequency) {
  double sum = 0.05;
  for (const double formant : {700.0, 1100.0, 2500.0}) {
    const double off = (frequency - formant) / 120;
    sum += 1 / (1 + off * off);
  }
  return sum;
}

double NextNoise(uint32_t& state) {
  state = state * 1664525 + 1013904223;
  return static_cast<double>(state) / 2147483648.0 - 1;
}

}  // namespace

std::vector<short> SungNote(double pitch, int rate, double seconds, int channels) {
  const auto frames = static_cast<size_t>(rate * seconds);
  std::vector<double> sum(frames);
  for (int h = 1; h * pitch < 0.45 * rate && h < 60; ++h) {
    const double amplitude = Formants(h * pitch) / std::sqrt(h);
    const std::complex<double> turn = std::polar(1.0, 2 * M_PI * h * pitch / rate);
    std::complex<double> phase = std::polar(amplitude, 0.7 * h * h);
    for (size_t i = 0; i < frames; ++i, phase *= turn) sum[i] += phase.imag();
  }
  double peak = 0;
  for (const double sample : sum) peak = std::max(peak, std::fabs(sample));
  std::vector<short> samples;
  samples.reserve(frames * static_cast<size_t>(channels));
  for (const double sample : sum) {
    const auto rounded = static_cast<short>(std::lround(12000 * sample / peak));
    samples.insert(samples.end(), static_cast<size_t>(channels), rounded);
  }
  return samples;
}

std::vector<short> DarkVoice(int rate, double seconds) {
  std::vector<short> samples = SungNote(98, rate, seconds);
  const double step = 1 - std::exp(-2 * M_PI * 150 / rate);
  double once = 0;
  double twice = 0;
  for (short& sample : samples) {
    once += step * (sample - once);
    twice += step * (once - twice);
    sample = static_cast<short>(std::lround(4 * twice));
  }
  return samples;
}

std::vector<short> Babble(int rate, double seconds) {
  std::vector<short> samples(static_cast<size_t>(rate * seconds));
  uint32_t state = 1;
  double phase = 0;
  double hiss = 0;
  double amplitudes[21] = {};
  const int harmonics = std::min(20, (rate / 2 - 1) / 160);
  for (int h = 1; h <= harmonics; ++h) amplitudes[h] = Formants(h * 130) / std::sqrt(h);
  for (size_t i = 0; i < samples.size(); ++i) {
    const double time = static_cast<double>(i) / rate;
    const double syllable = std::fmod(time, 0.25) / 0.25;
    const bool pause = std::fmod(time, 2) > 1.6;
    phase += 2 * M_PI * (130 + 25 * std::sin(2 * M_PI * 0.7 * time)) / rate;
    const std::complex<double> turn = std::polar(1.0, phase);
    std::complex<double> harmonic = 1;
    double voiced = 0;
    for (int h = 1; h <= harmonics; ++h) {
      harmonic *= turn;
      voiced += amplitudes[h] * harmonic.imag();
    }
    const double noise = NextNoise(state);
    const double consonant = noise - hiss;
    hiss = noise;
    const double shape = syllable > 0.3 ? std::sin(M_PI * (syllable - 0.3) / 0.7) : 0;
    const double sound = 2500 * shape * voiced + (syllable < 0.25 ? 1200 * consonant : 0);
    samples[i] = pause ? static_cast<short>(0) : static_cast<short>(std::lround(sound));
  }
  return samples;
}

double CentsOff(const std::vector<short>& samples, double frequency, int rate, int channels) {
  const auto sums = TurnedDown(samples, frequency, rate, channels);
  double best = 0;
  double bestPower = -1;
  const auto look = [&](double from, double to, double step) {
    for (double cents = from; cents <= to; cents += step) {
      const double power = PowerAt(sums, AtCents(frequency, cents) - frequency, rate);
      if (power > bestPower) {
        bestPower = power;
        best = cents;
      }
    }
  };
  const double seconds = static_cast<double>(samples.size()) / rate / channels;
  const double lobe = 0.5 / seconds / frequency * 1731;  // Cents that half a main lobe is wide.
  look(-100, 100, std::max(lobe, 0.25));
  const double coarse = best;
  look(coarse - lobe, coarse + lobe, lobe / 8);
  return best;
}

int LargestStep(const std::vector<short>& samples, int channels) {
  int largest = 0;
  const auto stride = static_cast<size_t>(channels);
  for (size_t i = stride; i < samples.size(); ++i) {
    largest = std::max(largest, std::abs(samples[i] - samples[i - stride]));
  }
  return largest;
}

double Level(const std::vector<short>& samples) {
  double sum = 0;
  const size_t begin = samples.size() / 4;
  for (size_t i = begin; i < samples.size(); ++i) sum += double{1} * samples[i] * samples[i];
  return std::sqrt(sum / static_cast<double>(samples.size() - begin));
}

std::vector<short> AtFullScale(std::vector<short> samples) {
  int peak = 1;
  for (const short sample : samples) peak = std::max(peak, std::abs(int{sample}));
  for (short& sample : samples) sample = static_cast<short>(sample * 32767 / peak);
  return samples;
}

int LongestClip(const std::vector<short>& samples, int channels) {
  int longest = 0;
  std::vector<int> runs(static_cast<size_t>(channels));
  for (size_t i = 0; i < samples.size(); ++i) {
    int& run = runs[i % runs.size()];
    run = std::abs(int{samples[i]}) >= 32767 ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}
