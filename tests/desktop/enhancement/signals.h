#pragma once

#include <cstddef>
#include <vector>

// Signals to measure speech enhancement with. Levels are RMS, in steps of a 16-bit sample.

using Samples = std::vector<short>;

// White noise.
Samples Noise(size_t count, double level, unsigned seed);

// Sounds like a vowel: a pitch gliding around 120 Hz with formants, in syllables of 200 ms with
// 60 ms in between, five to a word; digital silence between words and for the first second.
Samples Speech(int rate, double seconds, double level);

// 1 for every sample that Speech(rate, seconds, ...) sounds in.
std::vector<bool> SpeechMarks(int rate, double seconds);

// Ten bursts of noise that die away, one every 500 ms, after one second of silence.
Samples Claps(int rate, double level);

// Sample by sample, clipped.
Samples Mix(const Samples& a, const Samples& b);

double Level(const Samples& samples, size_t begin, size_t end);

// The delay of `late` against `early`, 0 to `longest` samples, by their correlation.
size_t Delay(const Samples& early, const Samples& late, size_t longest);
