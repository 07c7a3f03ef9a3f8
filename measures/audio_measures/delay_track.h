#pragma once

#include <optional>
#include <span>
#include <vector>

namespace audio_measures {

inline constexpr int kDelayTrackVersion = 2;
inline constexpr int kDriftVersion = 2;

// The delay of one piece of a signal against its reference, in samples.
struct TrackedDelay {
  double middle = 0;  // Of the piece, in the reference.
  double later = 0;
};

struct Tracking {
  size_t pieceFrames = 0;
  size_t pieces = 0;   // As many at most, evenly spread.
  double around = 0;   // Where the delay of the first piece is looked for; then at the last found.
  double search = 0;   // And as far to either side.
  bool follow = true;  // False: every piece is looked for at the same place.
};

// The delays of the pieces that have a clear one (delay_finder.h, phase_fit.h), in order.
std::vector<TrackedDelay> TrackDelay(std::span<const float> reference,
                                     std::span<const float> signal, const Tracking& tracking);

// Delays on a line: later = later at 0 + slope * place.
struct DelayLine {
  double start = 0;
  double slope = 0;
  double slopeError = 0;  // Standard error.

  double At(double place) const { return start + slope * place; }
};

// By least squares, after delays far from the line of median slope (H. Theil, 1950, between delays
// half of them apart) have been left out: those more than `tolerance` samples and more than four
// times the median distance away. Nothing when fewer than three are left.
std::optional<DelayLine> FitDelayLine(std::span<const TrackedDelay> delays, double tolerance);

}  // namespace audio_measures
