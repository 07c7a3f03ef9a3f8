#pragma once

#include <vector>

// Voices made and measured.

// A note sung on "a": harmonics of `pitch` Hz under the formants of the vowel, peak 12000, the same
// in all channels, interleaved.
std::vector<short> SungNote(double pitch, int rate, double seconds, int channels = 1);

// What has the ups and downs of speech: gliding vowels, hissing consonants, pauses; mono.
std::vector<short> Babble(int rate, double seconds);

// A bass who hums: most of the sound lies below 300 Hz; mono.
std::vector<short> DarkVoice(int rate, double seconds);

// By how many cents the strongest component near `frequency` lies beside it, at most 100, over all
// but the first quarter and the last eighth.
double CentsOff(const std::vector<short>& samples, double frequency, int rate, int channels = 1);

// The largest difference between two samples of a channel in a row.
int LargestStep(const std::vector<short>& samples, int channels = 1);

// Root mean square over all but the first quarter.
double Level(const std::vector<short>& samples);

// The same sound with its peak at full scale.
std::vector<short> AtFullScale(std::vector<short> samples);

// The longest run of samples at full scale: 3 and more sound clipped.
int LongestClip(const std::vector<short>& samples, int channels = 1);
