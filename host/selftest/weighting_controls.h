#pragma once

namespace host {

// LUFS, of a sine in one channel, by the tables of ITU-R BS.1770-4.
double LoudnessOfSine(double hz, int rate, double amplitude);

}  // namespace host
