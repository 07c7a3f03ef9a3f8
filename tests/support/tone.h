#pragma once

#include <vector>

// Sines made and measured.

// `frames` samples of amplitude * sin, at `frequency` Hz, as 16-bit audio of `channels` alike.
std::vector<short> Tone(double frequency, double amplitude, int rate, int frames, int channels = 1);

struct ToneFit {
  double amplitude;
  double residualDb;  // All else (distortion, noise, offset) against the sine: THD+N.
};

// Fits a sine of `frequency` Hz to interleaved samples, least squares, over the middle half, so
// that the ends of a filter's response do not count.
ToneFit FitTone(const std::vector<short>& samples, double frequency, int rate, int channels = 1,
                int channel = 0);
ToneFit FitTone(const std::vector<double>& samples, double frequency, int rate, int channels = 1,
                int channel = 0);
