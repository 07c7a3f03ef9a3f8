#pragma once

#include <vector>

// The patterns of a drummer and a bass player: rock with eighths, a steady bass drum with open
// cymbals between, a waltz, a swinging cymbal, notes of a broken chord without drums, a
// shuffle whose two notes are as loud, and a guitar that plays sixteenths over a bass drum before
// the second beat.
enum class Groove { kRock, kHouse, kWaltz, kSwing, kBallad, kShuffle, kGuitar };

struct DrumLoop {
  std::vector<short> samples;  // Interleaved, the same in all channels.
  std::vector<double> beats;   // Seconds.
};

// A loop of `bpm` beats a minute whose first beat is at `start` s.
DrumLoop RenderLoop(Groove groove, double bpm, double seconds, double start, int rate,
                    int channels = 1);
