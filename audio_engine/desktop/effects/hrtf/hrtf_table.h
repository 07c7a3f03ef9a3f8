#pragma once

#include <cstddef>

namespace desktop {

// The measurements of the KEMAR dummy head that the MIT Media Lab published (Gardner and Martin
// 1994), as write_hrtf_table writes them at build time and mit_hrtf.cc finds them in the program.

inline constexpr size_t kHrtfPositions = 710;

// The responses at one rate: at each position left ear, then right ear.
template <unsigned taps>
struct HrtfResponses {
  short values[kHrtfPositions][2][taps];
};

struct HrtfTable {
  // Degrees: clockwise seen from above, 0 <= azimuth < 360, and upwards. Not all are whole numbers.
  struct Position {
    double azimuth;
    double elevation;
  };
  Position positions[kHrtfPositions];
  HrtfResponses<512> at44100;
  HrtfResponses<558> at48000;
};

}  // namespace desktop
