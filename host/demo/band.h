#pragma once

#include <vector>

namespace host {

struct BandMusic {
  std::vector<double> samples;  // Interleaved stereo, peak 0.5.
  std::vector<double> beats;    // Seconds.
};

// Drums, bass and a broken chord at this tempo, from 0.5 s on; beats a minute.
BandMusic PlayBand(int rate, double seconds, double bpm);

}  // namespace host
