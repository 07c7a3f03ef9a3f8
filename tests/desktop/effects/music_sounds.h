#pragma once

#include <vector>

// Music and speech that are made, mono, as floating-point numbers of full scale 1.

// Seconds of a song: chords and a tune over drums, each part if wanted.
std::vector<double> Song(int rate, double seconds, bool chords, bool tune, bool drums);

// A lone wind instrument without a beat in a quiet room: notes with vibrato and breath that slide
// in, and rests.
std::vector<double> Wind(int rate, double seconds);

// Something like speech: syllables of gliding pitch and changing colour, hisses, pauses, no beat.
std::vector<double> Speech(int rate, double seconds);
