#include "audio_measures/aligned_pair.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "audio_measures/alignment.h"
#include "audio_measures/delay_track.h"
#include "audio_measures/interpolation.h"
#include "audio_measures/phase_fit.h"

namespace audio_measures {

namespace {

constexpr double kPiece = 2;           // s
constexpr double kShortPiece = 0.25;   // s
constexpr size_t kShortPieces = 40;    // Each is looked for all over the search.
constexpr double kTrackSearch = 0.05;  // s, from one piece to the next.
constexpr double kSignificant = 4;     // Standard errors.
constexpr double kFollowed = 0.005;    // Samples over the whole that need not be followed closer.
constexpr int kRefinements = 3;
constexpr double kNothing = 1e-12;  // A rest that is none: 120 dB below.

// What there is of a signal at places of the reference: `line` says how much later it is there.
struct Overlap {
  size_t begin = 0;  // In the reference.
  size_t count = 0;
};

Overlap Overlapping(size_t reference, size_t signal, const DelayLine& line, bool whole) {
  const double margin = whole ? 0 : kInterpolationReach;
  const double step = 1 + line.slope;
  const double first = std::ceil(std::max(0.0, (margin - line.start) / step));
  const double last = std::min(static_cast<double>(reference) - 1,
                               (static_cast<double>(signal) - 1 - margin - line.start) / step);
  if (last < first) return {};
  return {static_cast<size_t>(first), static_cast<size_t>(std::floor(last) - first) + 1};
}

std::vector<float> Moved(std::span<const float> signal, const DelayLine& line, Overlap overlap) {
  const auto begin = static_cast<double>(overlap.begin);
  return Interpolate(signal, begin + line.At(begin), 1 + line.slope, overlap.count);
}

struct Likeness {
  double gain = 0;         // Of the signal against the reference.
  double correlation = 0;  // From -1 to 1.

  double Size() const { return std::fabs(correlation); }
  // The part of the energy that is nothing of the reference.
  double Rest() const { return 1 - correlation * correlation; }
};

Likeness Compare(std::span<const float> reference, std::span<const float> signal) {
  double product = 0;
  double ofReference = 0;
  double ofSignal = 0;
  for (size_t i = 0; i < reference.size(); ++i) {
    const auto a = static_cast<double>(reference[i]);
    const auto b = static_cast<double>(signal[i]);
    product += a * b;
    ofReference += a * a;
    ofSignal += b * b;
  }
  if (!(ofReference > 0) || !(ofSignal > 0)) return {};
  return {product / ofReference, product / std::sqrt(ofReference * ofSignal)};
}

AlignedPair Without(const char* fault) {
  return {.fault = fault,
          .delay = Unknown(fault),
          .delayTrack = Unknown(fault),
          .drift = Unknown(fault),
          .gain = Unknown(fault),
          .polarity = Unknown(fault)};
}

class Aligner {
 public:
  Aligner(std::span<const float> reference, std::span<const float> signal, int rate,
          double searchSeconds)
      : m_reference(reference), m_signal(signal), m_rate(rate) {
    const double shorter = static_cast<double>(std::min(reference.size(), signal.size()));
    m_search = std::min(searchSeconds, shorter / 2 / rate);
  }

  AlignedPair Run() {
    if (const char* fault = Find()) return Without(fault);
    Track();
    return Move();
  }

 private:
  // The delay of the whole, without drift or with a drift that can be seen in short pieces.
  const char* Find() {
    const Alignment whole = Align(m_reference, m_signal, m_rate, -m_search, m_search);
    if (whole.delay.value) {
      m_line.start = *whole.delay.value * m_rate;
      m_peak = static_cast<double>(whole.peak);
      return nullptr;
    }
    const Tracking tracking = {.pieceFrames = Frames(kShortPiece),
                               .pieces = kShortPieces,
                               .search = m_search * m_rate,
                               .follow = false};
    const auto line = FitDelayLine(TrackDelay(m_reference, m_signal, tracking), 0.001 * m_rate);
    if (!line) return whole.delay.reason;
    m_line = *line;
    m_drifts = true;
    return nullptr;
  }

  // At least what a fit of phases takes.
  size_t Frames(double seconds) const {
    return std::max(PhaseFit::kBlock, static_cast<size_t>(seconds * m_rate));
  }

  Tracking Pieces(double around) const {
    return {.pieceFrames = Frames(kPiece),
            .pieces = m_reference.size(),
            .around = around,
            .search = kTrackSearch * m_rate};
  }

  // Sees whether the delay changes, and follows a drift closer and closer.
  void Track() {
    m_delays = TrackDelay(m_reference, m_signal, Pieces(m_line.At(0)));
    auto line = FitDelayLine(m_delays, 1);
    if (!m_drifts && (!line || !Stands(*line))) {
      if (line) m_drift = line->slope;
      return;
    }
    if (line) m_line = *line;
    for (int i = 0; i < kRefinements; ++i) {
      const std::vector<float> moved = Moved(m_signal, m_line, {0, m_reference.size()});
      m_delays = TrackDelay(m_reference, moved, Pieces(0));
      line = FitDelayLine(m_delays, 1);
      for (TrackedDelay& delay : m_delays) {
        delay.later = m_line.At(delay.middle) + delay.later * (1 + m_line.slope);
      }
      if (!line) break;
      // What is left is seen at the places of the reference, as the line is.
      m_line.start += line->start * (1 + m_line.slope);
      m_line.slope += line->slope * (1 + m_line.slope);
      if (std::fabs(line->slope) * Size() < kFollowed) break;
    }
    m_drifts = true;
    m_drift = m_line.slope;
  }

  double Size() const { return static_cast<double>(m_reference.size()); }

  static bool Stands(const DelayLine& line) {
    return std::fabs(line.slope) > kSignificant * line.slopeError;
  }

  // The signal beside the reference.
  struct Place {
    DelayLine line;
    Overlap overlap;
    std::span<const float> signal;
    Likeness likeness;
  };

  std::span<const float> ReferenceIn(const Overlap& overlap) const {
    return m_reference.subspan(overlap.begin, overlap.count);
  }

  Place AtWhole(double later) const {
    Place place = {.line = {.start = later}, .overlap = {}, .signal = {}, .likeness = {}};
    place.overlap = Overlapping(m_reference.size(), m_signal.size(), place.line, true);
    place.signal = m_signal.subspan(
        static_cast<size_t>(static_cast<double>(place.overlap.begin) + later), place.overlap.count);
    place.likeness = Compare(ReferenceIn(place.overlap), place.signal);
    return place;
  }

  // The fit of phases has windows that nearly close at both ends; the peak of the correlation is
  // where all samples count.
  Place AtWholeSamples() const {
    const Place fitted = AtWhole(std::round(m_line.start));
    if (std::fabs(m_peak - m_line.start) > kInterpolationReach) return fitted;
    const Place peak = AtWhole(m_peak);
    return peak.likeness.Size() > fitted.likeness.Size() ? peak : fitted;
  }

  // Whether both are more alike than at whole samples, and not by chance: a delay that is fitted
  // takes a part out of noise that is the square of its standard errors over the samples.
  bool IsMoreAlike(const Place& moved, const Place& whole) const {
    if (whole.likeness.Size() >= moved.likeness.Size()) return false;
    // Over the same samples: what is wrong near an end alone speaks against neither.
    const Likeness same = Compare(
        ReferenceIn(moved.overlap),
        whole.signal.subspan(moved.overlap.begin - whole.overlap.begin, moved.overlap.count));
    const double chance = kSignificant * kSignificant / static_cast<double>(moved.overlap.count);
    return same.Rest() > moved.likeness.Rest() * (1 + chance) + kNothing;
  }

  AlignedPair Move() {
    Place place = {.line = m_line,
                   .overlap = Overlapping(m_reference.size(), m_signal.size(), m_line, false),
                   .signal = {},
                   .likeness = {}};
    const std::vector<float> moved = Moved(m_signal, m_line, place.overlap);
    place.signal = moved;
    place.likeness = Compare(ReferenceIn(place.overlap), moved);
    if (!m_drifts) {
      const Place whole = AtWholeSamples();
      if (!IsMoreAlike(place, whole)) place = whole;
    }
    if (place.likeness.correlation == 0) return Without(kSilence);
    m_line = place.line;
    const std::span<const float> reference = ReferenceIn(place.overlap);
    AlignedPair pair;
    pair.reference.assign(reference.begin(), reference.end());
    pair.signal.assign(place.signal.begin(), place.signal.end());
    for (float& sample : pair.signal) {
      sample = static_cast<float>(static_cast<double>(sample) / place.likeness.gain);
    }
    Report(place.likeness, place.overlap, pair);
    return pair;
  }

  void Report(const Likeness& likeness, const Overlap& overlap, AlignedPair& pair) const {
    const double middle =
        static_cast<double>(overlap.begin) + static_cast<double>(overlap.count) / 2;
    pair.delay = Known(m_line.At(middle) / m_rate);
    pair.gain = Known(20 * std::log10(std::fabs(likeness.gain)));
    pair.polarity = Known(likeness.gain < 0 ? -1 : 1);
    pair.drift = m_drift ? Known(*m_drift * 1e6) : Unknown("too few pieces with a clear delay");
    if (m_delays.size() < 2) {
      pair.delayTrack = Unknown("too few pieces with a clear delay");
      return;
    }
    const auto [least, most] = std::ranges::minmax(m_delays, {}, &TrackedDelay::later);
    pair.delayTrack = Known((most.later - least.later) / m_rate);
  }

  std::span<const float> m_reference;
  std::span<const float> m_signal;
  int m_rate;
  double m_search = 0;  // s
  DelayLine m_line = {};
  double m_peak = 0;  // Samples, of the whole.
  bool m_drifts = false;
  std::optional<double> m_drift = {};
  std::vector<TrackedDelay> m_delays = {};
};

}  // namespace

AlignedPair AlignPair(std::span<const float> reference, std::span<const float> signal, int rate,
                      double searchSeconds) {
  return Aligner(reference, signal, rate, searchSeconds).Run();
}

}  // namespace audio_measures
