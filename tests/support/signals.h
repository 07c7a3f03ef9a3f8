#pragma once

#include <span>
#include <vector>

// Signals and figures for what works on sound, as floating-point numbers of full scale 1.

// White noise, the same for the same seed: uniform in [-peak, peak).
std::vector<double> WhiteNoise(int count, double peak, unsigned seed);

// Speech-like noise: bursts of 120 ms, 4 a second, between stretches 30 dB lower.
std::vector<double> BurstNoise(int count, double peak, int rate, unsigned seed);

// 16-bit integers and back.
std::vector<short> ToShorts(std::span<const double> samples);
std::vector<double> ToDoubles(std::span<const short> samples);

// Puts one or two channels into one interleaved stream, and takes a channel out of one.
std::vector<short> Interleaved(const std::vector<short>& left, const std::vector<short>& right);
std::vector<short> Channel(const std::vector<short>& samples, int channels, int channel);

// The same in opposite phase: what a sum of both channels cancels.
std::vector<short> Opposed(std::vector<short> samples);

double Decibels(double ratio);  // Of amplitudes.
double Rms(std::span<const double> samples);
double Peak(std::span<const double> samples);

// Amplitude of a sine of `frequency` Hz in samples at `rate` Hz, least squares.
double AmplitudeAt(std::span<const double> samples, double frequency, int rate);

// Total harmonic distortion of a tone: the harmonics 2 to 10 below half the rate against the first.
double Thd(std::span<const double> samples, double frequency, int rate);

// Without what lies below `corner` Hz: three second-order high-passes in a row.
std::vector<double> HighPassed(std::vector<double> samples, double corner, int rate);

// Only an octave around `centre` Hz: two second-order high-passes and two low-passes.
std::vector<double> OctaveBand(std::vector<double> samples, double centre, int rate);
