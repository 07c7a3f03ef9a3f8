#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace host {

using Waveform = std::vector<float>;

// Random numbers that are the same everywhere (splitmix64).
class Random {
 public:
  explicit Random(uint64_t seed) : m_state(seed) {}

  uint64_t Bits();
  double Uniform();  // From 0 to 1, never either.
  double Normal();   // Of mean 0 and variance 1.

 private:
  uint64_t m_state;
};

size_t Frames(int rate, double seconds);

// amplitude * sin(2 pi hz t + phase).
Waveform Sine(int rate, double seconds, double hz, double amplitude, double phase = 0);
Waveform WhiteNoise(size_t count, double rms, uint64_t seed);

// A tone in a bell of 20 ms to either side of the time, so that it is heard in its own band alone.
void AddBell(Waveform& samples, int rate, double time, double hz, double amplitude);

// One sample of this height each `apart` samples, in 2 s: flat spectra.
Waveform Impulses(int rate, size_t apart, double height);

Waveform Scaled(std::span<const float> samples, double gain);
Waveform Sum(std::span<const float> a, std::span<const float> b);
void Append(Waveform& to, std::span<const float> samples);
double Energy(std::span<const float> samples);

// Noise that is a function of time, so that it is known between the samples too: white numbers, one
// a sample, of which each is a sinc below 0.8 of half the rate in a window of 128 samples.
class TimedNoise {
 public:
  TimedNoise(size_t count, double rms, uint64_t seed);

  // The values at first + i * step, in samples, for i from 0 to count - 1.
  Waveform At(double first, double step, size_t count) const;

 private:
  double At(double place) const;

  Waveform m_numbers;
};

// White noise that has nothing of the signal in it: orthogonal to it in every block of `block`
// samples, and `snr` dB below it in each.
Waveform NoiseBelow(std::span<const float> signal, double snr, size_t block, uint64_t seed);

}  // namespace host
