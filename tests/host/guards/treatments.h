#pragma once

#include "guards/sounds.h"

// Material like what people record, and what is done to it, rightly and wrongly.

Sound Speech(double seconds, int channels = 1, int rate = 48000);
Sound Music(double seconds, int channels = 2, int rate = 48000);
Sound Noise(double rms, double seconds, unsigned seed);  // White, mono, 48 kHz.

// What a sound routine may do.
Sound Louder(Sound sound, double decibels);
Sound Compressed(Sound sound);   // 4:1 above -20 dBFS, with 6 dB of make-up gain.
Sound Equalized(Sound sound);    // 8 dB more around 1 kHz.
Sound Reverberant(Sound sound);  // Six decaying echoes between 13 and 67 ms.
Sound Later(const Sound& sound, double seconds);

// What none should.
Sound Inverted(Sound sound);
Sound Swapped(Sound sound);                           // Of stereo.
Sound Shifted(Sound sound, double offset);            // By a direct current.
Sound Cut(Sound sound, double from, double seconds);  // Zeros there.
Sound OneIn40Zeroed(Sound sound);
Sound FourTimesAndClipped(Sound sound);

// As 16-bit integers would hold it.
Sound Integers(Sound sound);
