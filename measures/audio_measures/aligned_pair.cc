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
constexpr double kFineSearch = 0.005;  // s, once the line is taken out.
constexpr double kSignificant = 4;     // Standard errors.
constexpr double kLeastChange = 0.05;  // Samples over the whole that are worth being taken out.
constexpr int kRefinements = 3;

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

  Tracking Pieces(double around, double search) const {
    return {.pieceFrames = Frames(kPiece),
            .pieces = m_reference.size(),
            .around = around,
            .search = search * m_rate};
  }

  // Sees whether the delay changes, and follows a drift closer and closer.
  void Track() {
    const Tracking tracking = Pieces(m_line.At(0), kTrackSearch);
    m_delays = TrackDelay(m_reference, m_signal, tracking);
    auto line = FitDelayLine(m_delays, 1);
    if (!m_drifts && (!line || !Stands(*line))) {
      if (line) m_drift = line->slope;
      return;
    }
    if (line) m_line = *line;
    for (int i = 0; i < kRefinements; ++i) {
      const std::vector<float> moved = Moved(m_signal, m_line, {0, m_reference.size()});
      m_delays = TrackDelay(m_reference, moved, Pieces(0, kFineSearch));
      line = FitDelayLine(m_delays, 1);
      for (TrackedDelay& delay : m_delays) {
        delay.later = m_line.At(delay.middle) + delay.later * (1 + m_line.slope);
      }
      if (!line) break;
      // What is left is seen at the places of the reference, as the line is.
      m_line.start += line->start * (1 + m_line.slope);
      m_line.slope += line->slope * (1 + m_line.slope);
      if (std::fabs(line->slope) * Size() < kLeastChange / 10) break;
    }
    m_drifts = true;
    m_drift = m_line.slope;
  }

  double Size() const { return static_cast<double>(m_reference.size()); }

  bool Stands(const DelayLine& line) const {
    const double slope = std::fabs(line.slope);
    return slope > kSignificant * line.slopeError && slope * Size() > kLeastChange;
  }

  AlignedPair Move() {
    AlignedPair pair;
    Overlap overlap = Overlapping(m_reference.size(), m_signal.size(), m_line, false);
    pair.signal = Moved(m_signal, m_line, overlap);
    Likeness likeness = Compare(m_reference.subspan(overlap.begin, overlap.count), pair.signal);
    if (!m_drifts) {
      const DelayLine line = {.start = std::round(m_line.start)};
      const Overlap whole = Overlapping(m_reference.size(), m_signal.size(), line, true);
      const std::span<const float> signal = m_signal.subspan(
          static_cast<size_t>(static_cast<double>(whole.begin) + line.start), whole.count);
      const Likeness ofWhole = Compare(m_reference.subspan(whole.begin, whole.count), signal);
      // Also over the same samples: what is wrong near an end alone speaks against neither.
      const Likeness ofSame =
          overlap.count == 0 ? Likeness{}
                             : Compare(m_reference.subspan(overlap.begin, overlap.count),
                                       signal.subspan(overlap.begin - whole.begin, overlap.count));
      if (std::max(std::fabs(ofWhole.correlation), std::fabs(ofSame.correlation)) >=
          std::fabs(likeness.correlation)) {
        likeness = ofWhole;
        overlap = whole;
        m_line = line;
        pair.signal.assign(signal.begin(), signal.end());
      }
    }
    if (likeness.correlation == 0) return Without(kSilence);
    const std::span<const float> reference = m_reference.subspan(overlap.begin, overlap.count);
    pair.reference.assign(reference.begin(), reference.end());
    Report(likeness, overlap, pair);
    for (float& sample : pair.signal) {
      sample = static_cast<float>(static_cast<double>(sample) / likeness.gain);
    }
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
