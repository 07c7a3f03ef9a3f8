#pragma once

#include <vector>

#include "audio_measures/compute.h"

namespace host {

// The spectrum of a recording in the course of time, as a picture shows it.
struct Spectrogram {
  int columns = 0;
  int rows = 0;                    // Of equal width, from 0 Hz to half the rate.
  std::vector<float> levels = {};  // dB of the highest there is, column by column.

  float Level(int column, int row) const {
    return levels[static_cast<size_t>(column) * static_cast<size_t>(rows) +
                  static_cast<size_t>(row)];
  }
};

// The powers of all channels together, in blocks of 20 to 40 ms; of the blocks and bins that fall
// into one place of the picture the strongest. What has no power is at the least level. Of a short
// recording there are fewer columns.
Spectrogram SpectrogramOf(const audio_measures::Signal& signal, int columns, int rows);

inline constexpr float kLeastLevel = -200;  // dB

}  // namespace host
